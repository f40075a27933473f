// The rule that ties a zone to its dependent rows, written once.
//
// A zone owns nine rows of SuppressionPerAcreCost (FMZKey, Sequence 1 to 9) and, for each of its
// representative locations, fourteen rows of NVCPerAcre (FMZRLKey, ResourceNumber 1 to 14).
//
// The key of a location leaves room for 99 of them. A zone with more reaches into the keys of the
// zones after it; where such a zone has its rows already, the add is refused as a duplicate key
// (3022) and everything that the call had added is taken back.
#pragma once

#include <QString>

#include <cstdint>

namespace ZoneKeys {

inline constexpr int kCostClasses = 9;
inline constexpr int kResources = 14;
inline constexpr int kFilLevels = 6;

// zone key x 100 + location (from 1); throws overflow (6) outside 32 bits.
std::int32_t FMZRLKey(std::int32_t zoneKey, std::int32_t location);

// Adds a zone and all its dependent rows and gives its key, or adds nothing and throws.
std::int32_t AddZone(const QString& name, std::int32_t locations);
// Adds the rows of the locations first to last of an existing zone. Rows that are there already,
// kept from before the zone had fewer locations, stay as they are; gives their number. All or
// nothing: rows of another zone in the way throw.
int AddLocations(std::int32_t zoneKey, std::int32_t first, std::int32_t last);

// An add that fails takes back what it had added. Where the disk refuses that, too, it is done
// later: the next add begins with it, and so does making the file durable. Throws when it still
// cannot be done.
void TakeBackLeftOver();
// The file is closed.
void ForgetLeftOver();

// Adds those of the nine cost rows that are missing; gives their number.
int AddMissingCostRows(std::int32_t zoneKey);
// Adds whatever rows of any zone are missing, values left empty, with a warning for each zone. A
// run that ended while a zone was being added leaves such a zone.
void CompleteZones();

}  // namespace ZoneKeys
