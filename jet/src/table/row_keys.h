// The indexes of a table, and the keys that its rows have in them.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "index/index_tree.h"
#include "table/definition.h"
#include "table/row_values.h"
#include "values/key.h"

namespace jet {

class TableIndex {
public:
    TableIndex(Pager& pager, const Definition& definition, std::size_t real);

    [[nodiscard]] const IndexTree& Tree() const { return tree_; }
    [[nodiscard]] IndexTree& Tree() { return tree_; }
    [[nodiscard]] bool IsUnique() const { return unique_; }
    // True when no part of a key may be null.
    [[nodiscard]] bool IsRequired() const { return required_; }
    // The name of the first logical index that uses this one.
    [[nodiscard]] std::string Name() const;
    [[nodiscard]] const std::vector<KeyColumn>& KeyColumns() const { return keyColumns_; }
    [[nodiscard]] const RealIndex& Real() const { return definition_->realIndexes[real_]; }
    // Why no key of this index can be made, or nothing.
    [[nodiscard]] const std::optional<std::string>& Obstacle() const { return obstacle_; }

    // What a row has in this index.
    struct RowKey {
        Key key;
        bool entered = true;  // false: the index leaves out rows without any value
        bool allNull = false;
        bool anyNull = false;
    };
    void MakeRowKey(const ColumnValue& value, RowKey& into) const;
    // The beginning of all keys with these values in the leading columns. kTypeMismatch for too
    // many values, kUnsupported.
    void MakeSearchKey(std::span<const Value> values, Key& into) const;

private:
    const Definition* definition_;
    std::size_t real_;
    IndexTree tree_;
    std::vector<KeyColumn> keyColumns_;
    bool unique_;
    bool required_;
    std::optional<std::string> obstacle_;
};

}  // namespace jet
