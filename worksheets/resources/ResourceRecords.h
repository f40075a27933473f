// A suppression resource and its record in "SRMasterList".
//
// Each function here belongs into one transaction, which its caller begins and commits.
#pragma once

#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

#include "platform/RuntimeError.h"

namespace worksheets {

struct Resource {
    std::int32_t key = 0;
    // The number in front of it; a list need not be numbered from 1 on. Nothing for an empty field.
    std::optional<std::int32_t> sequence;
    QString longName;
    QString shortName;
    QString units;
    QString unitType;           // "time" or "item"; chosen when it is added, never changed
    std::optional<float> cost;  // dollars per unit
    bool operator==(const Resource&) const = default;
};

}  // namespace worksheets

namespace ResourceRecords {

// All resources in the order of their sequence.
std::vector<worksheets::Resource> All();

// Adds a resource without its sequence, which the list writes, and gives its key.
std::int32_t Add(const worksheets::Resource& resource);
// Puts a resource back under its former key, with all its fields.
void Restore(const worksheets::Resource& resource);

// Writes the record's five fields when one of them differs; true when it did. No current record
// (3021) when there is none with this key.
bool Save(const worksheets::Resource& resource);
// Writes the sequence alone. A record that is not there is passed over.
void SaveSequence(const worksheets::Resource& resource);

[[nodiscard]] bool Exists(std::int32_t key);
// No current record (3021) when there is none with this key.
void Delete(std::int32_t key);

}  // namespace ResourceRecords
