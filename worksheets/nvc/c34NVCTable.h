// The net value change table of one representative location of one zone: dollars gained or lost per
// acre for each of 14 resources at each of 6 FIL levels.
//
// Loads from and saves to the fourteen rows of "NVCPerAcre" that belong to the location. It never
// adds or deletes rows; a missing row reads as zeros. Resources and levels count from 1; an index
// outside throws subscript out of range (9).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "datafile/ZoneKeys.h"

class c34NVCTable {
public:
    // Throws overflow (6) when the location's key does not fit 32 bits.
    void Initialize(std::int32_t zoneKey, std::int32_t location);

    [[nodiscard]] float NVCCellValue(int resource, int level) const;
    // Marks the table changed, also when the value is the one that was there.
    void NVCCellValue(int resource, int level, float value);
    // The same as NVCCellValue without an entry in the log, for what is painted again and again.
    [[nodiscard]] float Value(int resource, int level) const;

    // The level's total over all resources, to three significant digits.
    [[nodiscard]] float FilTotal(int level) const;

    // Writes all rows when anything was changed, or none of them when that fails. A row that is
    // missing does not keep the others from being saved: when they are, 3021 is thrown, with a
    // sentence that names what could not be stored, and the next call has nothing to save.
    void SaveChanges();

private:
    static std::size_t Position(int resource, int level);
    [[nodiscard]] bool SaveRow(int resource) const;  // false when the row is missing

    std::int32_t fmzRLKey_ = 0;
    std::array<float, std::size_t{ZoneKeys::kResources} * ZoneKeys::kFilLevels> values_{};
    bool changed_ = false;
};
