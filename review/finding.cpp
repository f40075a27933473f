#include "review/finding.h"

#include <algorithm>
#include <array>

#include "review/json.h"
#include "review/wording.h"
#include "season/text.h"

namespace review {

std::string_view SeverityName(Severity severity) {
    constexpr std::array<std::string_view, 3> kNames{"error", "warning", "note"};
    return kNames[static_cast<std::size_t>(severity)];
}

std::string Place::Words() const {
    PlaceWords words;
    if (zone) {
        words.Add(season::IsBlank(*zone)
                      ? "The zone with key " + std::to_string(zoneKey.value_or(0))
                      : *zone);
    }
    if (location) {
        words.Add("location " + std::to_string(*location));
    }
    if (resource) {
        words.Add(*resource);
    }
    if (fil) {
        words.Add("FIL " + std::to_string(*fil));
    }
    if (sizeClass) {
        words.Add("class " + std::to_string(*sizeClass));
    }
    if (goal) {
        words.Add(*goal);
    }
    return std::move(words).Text();
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
