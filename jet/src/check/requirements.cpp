#include "check/requirements.h"

#include <utility>

#include "values/key.h"

namespace jet {

Requirements::Requirements(const TableLayout& table)
    : table_(table),
      keys_(table.indexes.size()),
      repeated_(table.indexes.size(), false),
      null_(table.indexes.size(), false),
      nullColumns_(table.columns.size(), false) {}

void Requirements::AddRow(const CheckedRow& row, Version version) {
    for (std::size_t i = 0; i < row.values.size(); ++i) {
        nullColumns_[i] = nullColumns_[i] || row.values[i].IsNull();
    }
    for (std::size_t i = 0; i < keys_.size(); ++i) {
        AddKey(i, row, version);
    }
}

void Requirements::AddKey(std::size_t i, const CheckedRow& row, Version version) {
    const RealIndexLayout& index = table_.indexes[i];
    Key key;
    bool anyNull = false;
    for (const RealIndexLayout::Part& part : index.parts) {
        const Column* column = table_.FindColumn(part.column);
        if (column == nullptr) {
            return;
        }
        const auto place = static_cast<std::size_t>(column - table_.columns.data());
        const Value& value = row.values[place];
        anyNull = anyNull || value.IsNull();
        // The new file sorts by the usual rules, whatever the old one did.
        const KeyColumn usual{column->type, part.ascending, {}};
        if (KeyObstacle(usual, version)) {
            return;
        }
        AppendKeyPart(key, usual, value, version);
    }
    null_[i] = null_[i] || anyNull;
    if (index.IsUnique() && !anyNull && !keys_[i].insert(std::move(key)).second) {
        repeated_[i] = true;
    }
}

}  // namespace jet
