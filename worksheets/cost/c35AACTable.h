// The suppression cost per acre of one zone: up to nine classes of fire size, each with its largest
// size in acres and its cost in dollars per acre.
//
// Classes are used from 1 upward with ascending sizes. A class that is not in use has size and cost
// 0; the last one in use may have size 0 and a cost, and then stands for all larger fires. This is
// what the worksheet keeps; nothing here enforces it. Classes count from 1; an index outside 1 to 9
// throws subscript out of range (9).
#pragma once

#include <array>
#include <cstdint>

#include "datafile/ZoneKeys.h"

class c35AACTable {
public:
    struct SizeClass {
        float topSize = 0;
        float cost = 0;
    };

    [[nodiscard]] float TopSize(int index) const;
    void TopSize(int index, float acres);  // marks the table changed
    [[nodiscard]] float Cost(int index) const;
    void Cost(int index, float dollars);  // marks the table changed
    // Both, without an entry in the log, for what is painted again and again.
    [[nodiscard]] const SizeClass& Class(int index) const;

    // What an acre costs in a fire of this size. A size exactly at a class's bound belongs to it.
    [[nodiscard]] float CostForSize(float acres) const;

    // Loads the nine classes of a zone; missing rows and empty fields read as 0.
    void Initialize(std::int32_t zoneKey);
    // Writes all nine classes when anything was changed, or none of them when that fails. A row
    // that is missing does not keep the others from being saved: when they are, 3021 is thrown,
    // with a sentence that names what could not be stored, and the next call has nothing to save.
    void SaveChanges();

private:
    static std::size_t Position(int index);
    [[nodiscard]] float CostBeyondBounds() const;
    [[nodiscard]] bool SaveRow(int index) const;  // false when the row is missing

    std::int32_t zoneKey_ = 0;
    std::array<SizeClass, ZoneKeys::kCostClasses> classes_{};
    bool changed_ = false;
};
