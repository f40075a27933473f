#include <algorithm>
#include <string>

#include "check/tree_check.h"
#include "index/collation.h"
#include "index/index_page.h"

namespace jet {

namespace {

Key VariantKey(const std::vector<KeyColumn>& columns, const std::vector<const Value*>& values,
               Version version) {
    Key key;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const auto* text = std::get_if<std::u16string>(&values[i]->Get());
        if (text != nullptr && version == Version::kJet4) {
            key.push_back(columns[i].ascending ? std::byte{0x7F} : std::byte{0x80});
            AppendGeneralLegacy(key, *text, columns[i].ascending, LetterCount::kCharacters);
        } else {
            AppendKeyPart(key, columns[i], *values[i], version);
        }
    }
    return key;
}

}  // namespace

EntryCheck::EntryCheck(CheckContext& context, const TableLayout& table,
                       const RealIndexLayout& index)
    : context_(context), table_(table), index_(index) {
    for (const RealIndexLayout::Part& part : index.parts) {
        const Column* column = table.FindColumn(part.column);
        if (column == nullptr) {
            comparable_ = false;
            continue;
        }
        columns_.push_back({column->type, part.ascending, column->collation});
        places_.push_back(static_cast<std::size_t>(column - table.columns.data()));
        if (const auto obstacle = KeyObstacle(columns_.back(), context.format.version)) {
            comparable_ = false;
            context.findings.Note({table.name, index.root, -1}, "index-keys",
                                  Named("Its keys are not compared: " + *obstacle + "."));
        }
    }
}

std::string EntryCheck::Named(const std::string& sentence) const {
    return "Index " + index_.name + ": " + sentence;
}

void EntryCheck::AddRow(const CheckedRow& row) {
    Expected& expected = rows_[row.id];
    bool allNull = !places_.empty();
    for (const std::size_t place : places_) {
        expected.comparable = expected.comparable && row.readable[place];
        const bool null = row.values[place].IsNull();
        expected.hasNull = expected.hasNull || null;
        allNull = allNull && null;
    }
    if (!expected.comparable) {
        return;
    }
    expected.ignored = allNull && index_.IgnoresNulls();
    if (expected.hasNull && index_.IsRequired()) {
        context_.findings.Error(At(row.id), "index-null",
                                Named("The row has a null in a column that must have a value."));
    }
    if (comparable_) {
        MakeKey(row, expected);
    }
}

void EntryCheck::MakeKey(const CheckedRow& row, Expected& expected) const {
    std::vector<const Value*> values;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        values.push_back(&row.values[places_[i]]);
        AppendKeyPart(expected.key, columns_[i], *values.back(), context_.format.version);
    }
    expected.variant = VariantKey(columns_, values, context_.format.version);
    if (expected.variant == expected.key) {
        expected.variant.clear();
    }
}

void EntryCheck::Compare(const std::vector<Key>& entries) {
    for (const Key& entry : entries) {
        CompareOne(entry);
    }
    for (const auto& [row, expected] : rows_) {
        if (!expected.seen && !expected.ignored && expected.comparable) {
            context_.findings.Error(At(row), "index-missing", Named("The row has no entry."));
        }
    }
    if (index_.IsUnique() && comparable_) {
        CheckUnique();
    }
}

void EntryCheck::CompareOne(const Key& bytes) {
    const IndexEntry entry = EntryFromBytes(bytes);
    const auto found = rows_.find(entry.row);
    if (found == rows_.end() || found->second.ignored) {
        context_.findings.Error(
            At(entry.row), "index-extra",
            Named(found == rows_.end() ? "There is an entry for a row that does not exist."
                                       : "There is an entry for a row without values."));
        return;
    }
    Expected& expected = found->second;
    if (expected.seen) {
        context_.findings.Error(At(entry.row), "index-double", Named("The row has two entries."));
        return;
    }
    expected.seen = true;
    if (!comparable_ || !expected.comparable || entry.key == expected.key) {
        return;
    }
    if (entry.key == expected.variant) {
        context_.findings.Warning(
            At(entry.row), "index-key-variant",
            Named("The key counts letters that stand for two as another writer does."));
        return;
    }
    context_.findings.Error(At(entry.row), "index-key",
                            Named("The key of the entry is not that of the row."));
}

void EntryCheck::CheckUnique() const {
    std::map<Key, RowId> keys;
    for (const auto& [row, expected] : rows_) {
        if (!expected.comparable || expected.hasNull || expected.ignored) {
            continue;
        }
        const auto [other, isNew] = keys.emplace(expected.key, row);
        if (!isNew) {
            context_.findings.Error(
                At(row), "index-unique",
                Named("Row " + std::to_string(other->second.slot) + " of page " +
                      std::to_string(other->second.page.value) + " has the same key."));
        }
    }
}

}  // namespace jet
