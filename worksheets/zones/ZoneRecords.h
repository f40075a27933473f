// Adding a zone and changing one, with the rows that depend on it: the rules behind the zone form,
// without a window.
//
// The keys of a zone's locations are its key x 100 + location, so a zone with 100 locations or more
// takes keys of the zones that follow. Such a clash is refused as a duplicate key (3022) before
// anything is written; the rows of both zones stay as they were.
#pragma once

#include <QString>

#include <cstdint>

namespace ZoneRecords {

// No zone gets more locations than three digits tell.
inline constexpr std::int32_t kMostLocations = 999;

// A typed number of locations: the leading number, halves to the even neighbour. Throws overflow
// (6) outside 32 bits.
std::int32_t LocationsFromText(const QString& text);

// Adds a zone with its nine cost rows and fourteen rows for each location, and gives its key. When
// any of them is refused the whole zone is taken back and the error thrown. Less than one location
// is taken as one, with a warning in the log.
std::int32_t Create(const QString& name, std::int32_t locations);

// Writes name and number of locations when they differ from what is stored, and gives the number
// that is stored now.
//
// More locations get their rows first; rows that are there from an earlier, larger number are kept
// with their values, with a warning in the log. Fewer locations leave the rows in the file, with a
// warning; less than one is taken as one.
std::int32_t Change(std::int32_t zoneKey, const QString& name, std::int32_t locations);

}  // namespace ZoneRecords
