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

    // The level's total over all resources, to three significant digits.
    [[nodiscard]] float FilTotal(int level) const;

    // Writes all rows when anything was changed. A row that cannot be written (3021 when it is
    // missing) does not keep the others from being saved; its error is thrown at the end and the
    // table stays marked.
    void SaveChanges();

private:
    static std::size_t Position(int resource, int level);
    void SaveRow(int resource) const;

    std::int32_t fmzRLKey_ = 0;
    std::array<float, std::size_t{ZoneKeys::kResources} * ZoneKeys::kFilLevels> values_{};
    bool changed_ = false;
};
