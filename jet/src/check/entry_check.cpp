#include <algorithm>
#include <string>

#include "check/tree_check.h"
#include "index/index_page.h"
#include "page/bytes.h"
#include "values/collation.h"

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
    Expected expected;
    expected.row = row.id;
    bool allNull = !places_.empty();
    for (const std::size_t place : places_) {
        expected.comparable = expected.comparable && row.readable[place];
        const bool null = row.values[place].IsNull();
        expected.hasNull = expected.hasNull || null;
        allNull = allNull && null;
    }
    if (expected.comparable) {
        expected.ignored = allNull && index_.IgnoresNulls();
        if (expected.hasNull && index_.IsRequired()) {
            context_.findings.Error(At(row.id), "index-null",
                                    Named("The row has a null in a column that must have a "
                                          "value."));
        }
        if (comparable_) {
            MakeKey(row, expected);
        }
    }
    rows_.push_back(expected);
}

void EntryCheck::MakeKey(const CheckedRow& row, Expected& expected) {
    std::vector<const Value*> values;
    expected.keyAt = keys_.size();
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        values.push_back(&row.values[places_[i]]);
        AppendKeyPart(keys_, columns_[i], *values.back(), context_.format.version);
    }
    expected.keySize = static_cast<std::uint32_t>(keys_.size() - expected.keyAt);
    Key variant = VariantKey(columns_, values, context_.format.version);
    if (!Equal(variant, KeyOf(expected))) {
        variants_.emplace(row.id, std::move(variant));
    }
}

EntryCheck::Expected* EntryCheck::Find(RowId row) {
    const auto below = [](const Expected& expected, RowId id) { return expected.row < id; };
    if (!sorted_) {
        std::stable_sort(rows_.begin(), rows_.end(),
                         [](const Expected& a, const Expected& b) { return a.row < b.row; });
        sorted_ = true;
    }
    const auto found = std::lower_bound(rows_.begin(), rows_.end(), row, below);
    return found == rows_.end() || found->row != row ? nullptr : &*found;
}

void EntryCheck::AddEntry(const Key& bytes) {
    const IndexEntry entry = EntryFromBytes(bytes);
    Expected* const expected = Find(entry.row);
    if (expected == nullptr || expected->ignored) {
        context_.findings.Error(
            At(entry.row), "index-extra",
            Named(expected == nullptr ? "There is an entry for a row that does not exist."
                                      : "There is an entry for a row without values."));
        return;
    }
    if (expected->seen) {
        context_.findings.Error(At(entry.row), "index-double", Named("The row has two entries."));
        return;
    }
    expected->seen = true;
    if (!comparable_ || !expected->comparable || Equal(entry.key, KeyOf(*expected))) {
        return;
    }
    const auto variant = variants_.find(entry.row);
    if (variant != variants_.end() && entry.key == variant->second) {
        context_.findings.Warning(
            At(entry.row), "index-key-variant",
            Named("The key counts letters that stand for two as another writer does."));
        return;
    }
    context_.findings.Error(At(entry.row), "index-key",
                            Named("The key of the entry is not that of the row."));
}

void EntryCheck::Finish() {
    for (const Expected& expected : rows_) {
        if (!expected.seen && !expected.ignored && expected.comparable) {
            context_.findings.Error(At(expected.row), "index-missing",
                                    Named("The row has no entry."));
        }
    }
    if (index_.IsUnique() && comparable_) {
        CheckUnique();
    }
}

void EntryCheck::CheckUnique() {
    std::erase_if(rows_, [](const Expected& expected) {
        return !expected.comparable || expected.hasNull || expected.ignored;
    });
    const auto below = [&](const Expected& a, const Expected& b) {
        const Bytes left = KeyOf(a);
        const Bytes right = KeyOf(b);
        return std::lexicographical_compare(left.begin(), left.end(), right.begin(), right.end());
    };
    std::stable_sort(rows_.begin(), rows_.end(), below);
    for (std::size_t i = 1; i < rows_.size(); ++i) {
        const RowId other = rows_[i - 1].row;
        if (Equal(KeyOf(rows_[i - 1]), KeyOf(rows_[i]))) {
            context_.findings.Error(At(rows_[i].row), "index-unique",
                                    Named("Row " + std::to_string(other.slot) + " of page " +
                                          std::to_string(other.page.value) + " has the same key."));
        }
    }
}

}  // namespace jet
