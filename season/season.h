// A data file as plain values: what a unit entered for one season.
//
// Everything is as stored: nulls stay nulls, keys and numbers keep their values, rows that nothing
// refers to are kept apart. Lists are in the order in which TARN Prep shows them: goals, zones and
// names by key, resources by `sequence`.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "jet/schema.h"

namespace season {

inline constexpr int kCostClasses = 9;
inline constexpr int kNvcResources = 14;
inline constexpr int kFilLevels = 6;
inline constexpr int kLocationsWithRoom = 99;  // whose keys lie before the next zone

using Text = std::optional<std::string>;
using Whole = std::optional<std::int32_t>;
using Single = std::optional<float>;

struct Property {
    std::string name;
    Text value;
};

struct Goal {
    std::int32_t key = 0;
    Text area;
    Text explanation;
};

// A suppression resource and its cost per unit in dollars.
struct Resource {
    std::int32_t key = 0;
    Whole sequence;
    Text longName;
    Text shortName;
    Text units;
    Text unitType;
    Single cost;
};

// A class of fire size: its largest size in acres, its cost in dollars per acre.
struct CostClass {
    std::int32_t number = 0;
    Single topSize;
    Single cost;
};

// One resource's net value change in dollars per acre, for FIL 1 to 6.
struct NvcRow {
    std::int32_t resource = 0;
    std::array<Single, kFilLevels> values;
};

struct Location {
    std::int32_t number = 0;
    std::vector<NvcRow> rows;  // by resource
};

struct Zone {
    std::int32_t key = 0;
    Text name;
    Whole rlCount;
    std::vector<CostClass> classes;   // by number
    std::vector<Location> locations;  // by number; those beyond `rlCount` too, where rows are kept
};

struct NvcResource {
    std::int32_t number = 0;
    Text name;
};

// Rows whose zone is not there.
struct StrayCost {
    std::int32_t zoneKey = 0;
    CostClass row;
};
struct StrayNvc {
    std::int32_t locationKey = 0;
    NvcRow row;
};

struct Season {
    std::filesystem::path path;
    std::uint64_t bytes = 0;
    jet::Version version = jet::Version::kJet4;
    std::string format;  // as stored: "4.01.01", "4.00.00", "3.92.00" or "3.00.00"

    std::vector<Property> properties;  // all of them, the format's included
    std::vector<Goal> goals;
    std::vector<Resource> resources;
    std::vector<NvcResource> nvcResources;
    std::string nvcKeyField = "Key";  // the name of their key's field, which files differ in
    std::vector<Zone> zones;
    std::vector<StrayCost> strayCosts;
    std::vector<StrayNvc> strayNvc;

    // The value of a property, or an empty text. Names ignore case.
    [[nodiscard]] std::string PropertyText(std::string_view name) const;
    // The name of an NVC resource; "Resource 3" where there is none.
    [[nodiscard]] std::string NvcName(std::int32_t number) const;
};

// How many records there are.
std::size_t CountRows(const Season& season);
// How many of a zone's locations count: 1 to `rlCount`, 99 at most.
int LiveCount(const Zone& zone);
// Null where no row is stored.
const Location* FindLocation(const Zone& zone, std::int32_t number);
const NvcRow* FindRow(const Location& location, std::int32_t resource);
const CostClass* FindClass(const Zone& zone, std::int32_t number);

// A zone's key and a location's number as one key, and back. No location has the number 0, so that
// a key that ends in 00 is location 100 of the zone before.
struct LocationKey {
    std::int64_t zone = 0;
    std::int32_t location = 0;
};
std::int64_t JoinKey(std::int32_t zone, std::int32_t location);
LocationKey SplitKey(std::int32_t key);

inline double Amount(const Single& number) {
    return number ? static_cast<double>(*number) : 0.0;
}
inline std::int32_t Amount(const Whole& number) {
    return number.value_or(0);
}
inline std::string_view Words(const Text& text) {
    return text ? std::string_view(*text) : std::string_view();
}

}  // namespace season
