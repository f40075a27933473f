// A resource as a row of the grid has it, and its record in "SRMasterList".
#pragma once

#include <QString>

#include <cstdint>

struct Resource {
    std::int32_t key = 0;
    std::int32_t sequence = 0;
    QString longName;
    QString shortName;
    QString units;
    float cost = 0;
};

namespace ResourceRecords {

// Adds a resource with its way of measuring costs ("time" or "item") and gives its key. Its place
// in the list is not written here: the list does that when it is saved.
std::int32_t Add(const Resource& resource, const QString& unitType);

// Writes the record when it differs from `resource`; true when it did. No current record (3021)
// when there is none with this key.
bool Save(const Resource& resource);

// Deletes the record; false when there is none with this key.
bool Delete(std::int32_t key);

}  // namespace ResourceRecords
