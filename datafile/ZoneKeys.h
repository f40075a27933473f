// The rule that ties a zone to its dependent rows, written once.
//
// A zone owns nine rows of SuppressionPerAcreCost (FMZKey, Sequence 1 to 9) and, for each of its
// representative locations, fourteen rows of NVCPerAcre (FMZRLKey, ResourceNumber 1 to 14).
#pragma once

#include <cstdint>

namespace ZoneKeys {

inline constexpr int kCostClasses = 9;
inline constexpr int kResources = 14;
inline constexpr int kFilLevels = 6;

// zone key x 100 + location (from 1); throws overflow (6) outside 32 bits.
std::int32_t FMZRLKey(std::int32_t zoneKey, std::int32_t location);

// Adds the nine cost rows of a new zone, sizes and costs left empty.
void AddCostRows(std::int32_t zoneKey);
// Adds the fourteen rows of one location, values left empty. Rows that exist already stay as they
// are when `keepExisting`; otherwise they are refused (3022). Gives the number of rows that
// existed.
int AddLocationRows(std::int32_t zoneKey, std::int32_t location, bool keepExisting);

}  // namespace ZoneKeys
