// The keys that tie a zone to its dependent rows.
//
// A zone owns nine rows of SuppressionPerAcreCost (FMZKey, Sequence 1 to 9) and, for each of its
// representative locations, fourteen rows of NVCPerAcre (FMZRLKey, ResourceNumber 1 to 14).
//
// The key of a location leaves room for 99 of them. A zone with more reaches into the keys of the
// zones after it.
#pragma once

#include <cstdint>

namespace ZoneKeys {

inline constexpr int kCostClasses = 9;
inline constexpr int kResources = 14;
inline constexpr int kFilLevels = 6;

// The keys of a zone's locations begin this far behind those of the zone before.
inline constexpr std::int32_t kStep = 100;
// The most locations of a zone, as many as so many digits can say. A larger number is damage.
inline constexpr int kLocationDigits = 3;
inline constexpr std::int32_t kMostLocations = 999;
// The most zones behind a zone whose keys its locations can reach.
inline constexpr std::int32_t kZonesReached = kMostLocations / kStep;

// zone key x 100 + location (from 1); throws overflow (6) outside 32 bits.
std::int32_t FMZRLKey(std::int32_t zoneKey, std::int32_t location);

}  // namespace ZoneKeys
