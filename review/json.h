// JSON as it is written: one object after another, without blanks.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "season/season.h"

namespace review {

// A text in quotes, escaped; what is no Unicode becomes U+FFFD.
std::string JsonText(std::string_view text);
// The shortest number that reads back as the same; what is infinite or no number becomes a text.
std::string JsonNumber(double number);
std::string JsonNumber(const season::Single& number);  // null stays null

class JsonObject {
public:
    JsonObject& Add(std::string_view name, std::string_view text);
    JsonObject& Add(std::string_view name, const char* text) {
        return Add(name, std::string_view(text));
    }
    JsonObject& Add(std::string_view name, const std::string& text) {
        return Add(name, std::string_view(text));
    }
    JsonObject& Add(std::string_view name, const std::optional<std::string>& text);
    JsonObject& Add(std::string_view name, const std::optional<std::int32_t>& number);
    JsonObject& Add(std::string_view name, const season::Single& number);
    JsonObject& AddRaw(std::string_view name, std::string_view json);
    [[nodiscard]] std::string Text() const { return "{" + members_ + "}"; }

private:
    std::string members_;
};

}  // namespace review
