// The names of the fourteen resources, as the table "NVCResources" has them.
#pragma once

#include <QString>

#include <array>

#include "datafile/ZoneKeys.h"

namespace worksheets {

class NVCResourceNames {
public:
    // Reads all names from the open data file; a missing row gives an empty name.
    void Load();
    // Resources count from 1; outside 1 to 14: subscript out of range (9).
    [[nodiscard]] const QString& Name(int resource) const;
    // Marks the name changed when it differs.
    void SetName(int resource, const QString& name);
    // Writes the names that were changed, or none of them when that fails. Names whose row is
    // missing do not keep the others from being saved: when they are, 3021 is thrown, and the next
    // call has nothing to save.
    void Save();

private:
    [[nodiscard]] bool SaveName(int resource) const;  // false when the row is missing

    struct Entry {
        QString name;
        bool changed = false;
    };
    std::array<Entry, ZoneKeys::kResources> entries_;
};

}  // namespace worksheets
