#include "review/json.h"

#include <array>
#include <charconv>
#include <cmath>

#include "review/figures.h"
#include "season/text.h"

namespace review {

namespace {

void AppendEscaped(std::string& to, char c) {
    constexpr std::string_view kHex = "0123456789abcdef";
    const auto code = static_cast<unsigned char>(c);
    switch (c) {
        case '"':
            to += "\\\"";
            return;
        case '\\':
            to += "\\\\";
            return;
        case '\n':
            to += "\\n";
            return;
        case '\r':
            to += "\\r";
            return;
        case '\t':
            to += "\\t";
            return;
        default:
            break;
    }
    if (code < 0x20 || code == 0x7F) {
        to += "\\u00";
        to += kHex[code >> 4];
        to += kHex[code & 15];
    } else {
        to += c;
    }
}

std::string Shortest(double number) {
    std::array<char, 64> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number);
    return {buffer.data(), end.ptr};
}

}  // namespace

std::string JsonText(std::string_view text) {
    std::string result = "\"";
    for (const char c : season::WellFormed(text)) {
        AppendEscaped(result, c);
    }
    return result + '"';
}

std::string JsonNumber(double number) {
    if (std::isnan(number)) {
        return "\"NaN\"";
    }
    if (std::isinf(number)) {
        return number < 0 ? "\"-Infinity\"" : "\"Infinity\"";
    }
    return Shortest(number == 0 ? 0.0 : number);
}

std::string JsonNumber(const season::Single& number) {
    return number ? JsonNumber(Typed(*number)) : "null";
}

JsonObject& JsonObject::Add(std::string_view name, std::string_view text) {
    return AddRaw(name, JsonText(text));
}

JsonObject& JsonObject::Add(std::string_view name, const std::optional<std::string>& text) {
    return AddRaw(name, text ? JsonText(*text) : "null");
}

JsonObject& JsonObject::Add(std::string_view name, const std::optional<std::int32_t>& number) {
    return AddRaw(name, number ? std::to_string(*number) : "null");
}

JsonObject& JsonObject::Add(std::string_view name, const season::Single& number) {
    return AddRaw(name, JsonNumber(number));
}

JsonObject& JsonObject::AddRaw(std::string_view name, std::string_view json) {
    if (!members_.empty()) {
        members_ += ',';
    }
    members_ += JsonText(name) + ':' + std::string(json);
    return *this;
}

}  // namespace review
