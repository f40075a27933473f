// The records of a zone: its own, its nine cost rows and the fourteen rows of each of its
// locations.
//
// Each function here belongs into one transaction, which its caller begins and commits: what throws
// after its first change leaves the rest to be rolled back with it.
//
// The keys of a zone's locations are its key x 100 + location, so a zone with 100 locations or more
// takes keys of the zones that follow. Where rows of another zone are in the way, the change is
// refused as a duplicate key (3022) with a sentence that names both, before anything is written.
#pragma once

#include <QString>
#include <QVariant>

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "datafile/ZoneKeys.h"
#include "platform/RuntimeError.h"

namespace worksheets {

struct Zone {
    std::int32_t key = 0;
    QString name;
    std::int32_t locations = 0;
    bool operator==(const Zone&) const = default;
};

}  // namespace worksheets

namespace ZoneRecords {

// The rows that depend on a zone, with their values as the file has them.
struct Dependents {
    struct Cost {
        std::int32_t sequence = 0;
        QVariant topSize;
        QVariant cost;
    };
    struct Values {
        std::int32_t fmzRLKey = 0;
        std::int32_t resource = 0;
        std::array<QVariant, ZoneKeys::kFilLevels> levels;
    };
    std::vector<Cost> costs;
    std::vector<Values> values;
};

// All zones in the order of their keys.
std::vector<worksheets::Zone> All();
// Nothing where the file has no such zone.
std::optional<worksheets::Zone> Find(std::int32_t key);

// Throws overflow (6), with a sentence that names the zone, for more locations than a zone can
// have.
void RequireSensible(const QString& name, std::int32_t locations);

// Adds a zone with its nine cost rows and fourteen rows for each location, values left empty, and
// gives its key: the first one after those in use whose rows are free. Less than one location is
// taken as one, with a warning in the log.
std::int32_t Create(const QString& name, std::int32_t locations);

// Writes name and number of locations when they differ from what is stored, and gives the number
// that is stored now. No current record (3021) when there is no such zone.
//
// More locations get their rows first; rows that are there from an earlier, larger number are kept
// with their values, with a warning in the log. Fewer locations leave the rows in the file, with a
// warning, which `belowOne` asks for too; less than one is taken as one.
std::int32_t Change(const worksheets::Zone& zone, bool belowOne = false);
// Whether an error of Change was a refusal, before which nothing was written.
bool IsRefusal(const platform::RuntimeError& error);

// Undoing. Writes a zone as it was before or after an action. Rows of locations that it is not to
// have go unless they hold values, which then come back with the locations.
void PutBack(const worksheets::Zone& zone);
// Takes a zone out of the file with all rows that depend on it, and gives those.
Dependents Remove(const worksheets::Zone& zone);
// Puts a zone back under its former key, with these rows.
void Restore(const worksheets::Zone& zone, const Dependents& dependents);

}  // namespace ZoneRecords
