// What differs between two seasons.
//
// Records are paired as pairs.h says. Keys, `Sequence`, the order of records and the file's format
// are no difference, nor is null against 0 or an empty text, nor are rows of dropped locations.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "review/pairs.h"
#include "season/season.h"

namespace review {

enum class Change { kChanged, kAdded, kRemoved, kRenamed };

std::string_view ChangeName(Change change);  // "changed", ...

// A figure, a text, or nothing.
using Content = std::variant<std::monostate, float, std::string>;

struct Difference {
    Change kind = Change::kChanged;
    // "goal", "resource", "zone", "location", "cost", "nvc", "name" or "property"
    std::string_view what;
    std::optional<std::string> zone;
    std::optional<std::int32_t> location;
    std::optional<std::string> resource;
    std::optional<std::int32_t> fil;
    std::optional<std::int32_t> sizeClass;
    std::optional<std::string> goal;
    std::optional<std::string> field;  // the data file's name for it
    Content older;
    Content newer;

    // "Wet Prairie, class 3, TopSize"
    [[nodiscard]] std::string Place() const;
};

std::vector<Difference> Compare(const season::Season& older, const season::Season& newer,
                                double tolerance = kUsualTolerance);

// Five columns between tabs; tabs, line ends and backslashes of texts as \t, \n, \\.
std::string LineOf(const Difference& difference);
std::string JsonOf(const Difference& difference);

// How many there are of each kind and what.
struct DifferenceCount {
    Change kind = Change::kChanged;
    std::string_view what;
    std::size_t number = 0;
};
std::vector<DifferenceCount> CountDifferences(const std::vector<Difference>& differences);

// A figure or text as it stands in a line.
std::string TextOf(const Content& content);

}  // namespace review
