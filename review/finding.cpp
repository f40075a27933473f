#include "review/finding.h"

#include <algorithm>
#include <array>

#include "review/json.h"
#include "season/text.h"

namespace review {

std::string_view SeverityName(Severity severity) {
    constexpr std::array<std::string_view, 3> kNames{"error", "warning", "note"};
    return kNames[static_cast<std::size_t>(severity)];
}

std::string Place::Words() const {
    std::string words;
    const auto add = [&words](const std::string& part) {
        words += (words.empty() ? "" : ", ") + part;
    };
    if (zone) {
        add(season::IsBlank(*zone) ? "The zone with key " + std::to_string(zoneKey.value_or(0))
                                   : *zone);
    }
    if (location) {
        add("location " + std::to_string(*location));
    }
    if (resource) {
        add(*resource);
    }
    if (fil) {
        add("FIL " + std::to_string(*fil));
    }
    if (sizeClass) {
        add("class " + std::to_string(*sizeClass));
    }
    if (goal) {
        add(*goal);
    }
    return words;
}

std::string OnOneLine(std::string_view text) {
    std::string line;
    for (const char c : season::WellFormed(text)) {
        const auto code = static_cast<unsigned char>(c);
        if (c == '\t') {
            line += "\\t";
        } else if (c == '\n') {
            line += "\\n";
        } else if (c == '\r') {
            line += "\\r";
        } else {
            // Nothing that a file holds may steer a terminal.
            line += code < 0x20 || code == 0x7F ? '?' : c;
        }
    }
    return line;
}

std::string LineOf(const Finding& finding) {
    return OnOneLine(std::string(SeverityName(finding.severity)) + ": " +
                     std::string(finding.rule) + ": " + finding.text +
                     (finding.advice.empty() ? "" : " " + finding.advice));
}

std::string JsonOf(const Finding& finding, std::string_view file) {
    std::string value = "null";
    if (const double* number = std::get_if<double>(&finding.value)) {
        value = JsonNumber(*number);
    } else if (const std::string* text = std::get_if<std::string>(&finding.value)) {
        value = JsonText(*text);
    }
    const Place& place = finding.place;
    return JsonObject()
        .Add("file", file)
        .Add("rule", finding.rule)
        .Add("severity", SeverityName(finding.severity))
        .Add("zone", place.zone)
        .Add("zoneKey", place.zoneKey)
        .Add("location", place.location)
        .Add("resource", place.resource)
        .Add("fil", place.fil)
        .Add("class", place.sizeClass)
        .Add("goal", place.goal)
        .AddRaw("value", value)
        .Add("text", finding.text)
        .Add("advice", finding.advice)
        .Text();
}

}  // namespace review
