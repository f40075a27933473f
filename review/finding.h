// What was found in a season, and where to look.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace review {

enum class Severity { kError, kWarning, kNote };

std::string_view SeverityName(Severity severity);  // "error", "warning", "note"

// The one place to go to; what does not apply is empty.
struct Place {
    std::optional<std::string> zone;  // its name
    std::optional<std::int32_t> zoneKey;
    std::optional<std::int32_t> location;
    std::optional<std::string> resource;  // its name
    std::optional<std::int32_t> fil;
    std::optional<std::int32_t> sizeClass;
    std::optional<std::string> goal;  // its heading, or its number

    // "Wet Prairie, location 2, Forage, FIL 3"
    [[nodiscard]] std::string Words() const;
};

// The number or the text in question, if it is one.
using FoundValue = std::variant<std::monostate, double, std::string>;

struct Finding {
    std::string_view rule;
    Severity severity = Severity::kError;
    Place place;
    FoundValue value;
    std::string text;    // what is there, as a sentence
    std::string advice;  // what may be the matter and what to do
};

// A line for people, without the file: "warning: nvc-slip: Wet Prairie, ..."
std::string LineOf(const Finding& finding);
// A line for programs.
std::string JsonOf(const Finding& finding, std::string_view file);

}  // namespace review
