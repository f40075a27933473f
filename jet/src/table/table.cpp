#include "table/table.h"

#include <algorithm>
#include <random>
#include <type_traits>

#include "jet/error.h"
#include "page/bytes.h"
#include "record/draft_form.h"
#include "values/text.h"

namespace jet {

namespace {

Guid RandomGuid() {
    std::random_device source;
    Guid guid;
    for (std::byte& byte : guid.bytes) byte = static_cast<std::byte>(source() & 0xFF);
    // The marks of a random identifier, in the third and fourth field.
    guid.bytes[7] = (guid.bytes[7] & std::byte{0x0F}) | std::byte{0x40};
    guid.bytes[8] = (guid.bytes[8] & std::byte{0x3F}) | std::byte{0x80};
    return guid;
}

void RequireNoNull(const TableIndex& index, const TableIndex::RowKey& key) {
    if (!key.anyNull || !index.IsRequired()) return;
    throw Error(ErrorKind::kNullNotAllowed,
                "Index or primary key '" + index.Name() + "' cannot contain a null value.");
}

}  // namespace

Table::Table(Pager& pager, std::string name, Definition definition, TableFamily* family)
    : pager_(&pager),
      name_(std::move(name)),
      definition_(std::move(definition)),
      rules_(definition_),
      relations_(*this, family),
      rows_(pager, definition_.page, definition_.ownedMap, definition_.freeMap) {
    for (std::size_t i = 0; i < definition_.realIndexes.size(); ++i) {
        indexes_.push_back(std::make_unique<TableIndex>(pager, definition_, i));
    }
    for (std::size_t i = 0; i < definition_.columns.size(); ++i) {
        const Column& column = definition_.columns[i];
        if (!column.fixed && column.type != ColumnType::kBoolean) variableOrder_.push_back(i);
        hasAutoColumn_ = hasAutoColumn_ || column.autoNumber || column.autoGuid;
    }
    std::sort(variableOrder_.begin(), variableOrder_.end(),
              [this](std::size_t left, std::size_t right) {
                  return definition_.columns[left].variableIndex <
                         definition_.columns[right].variableIndex;
              });
    longValues_.resize(definition_.columns.size());
    for (std::size_t i = 0; i < longValues_.size(); ++i) {
        const LongValueMaps* maps = definition_.FindLongValueMaps(definition_.columns[i].number);
        if (maps != nullptr && maps->owned) longValues_[i].emplace(pager, maps->owned, maps->free);
    }
    newKeys_.resize(indexes_.size());
    oldKeys_.resize(indexes_.size());
}

std::optional<Bytes> Table::ColumnBytes(const RowView& row, std::size_t column) const {
    const Column& wanted = definition_.columns[column];
    if (!row.IsSet(wanted.number)) return std::nullopt;
    if (wanted.fixed) return row.Fixed(wanted.fixedOffset, wanted.length);
    if (wanted.variableIndex >= row.VariableCount()) return std::nullopt;
    return row.Variable(wanted.variableIndex);
}

Value Table::ReadValue(const RowView& row, std::size_t column) const {
    const Column& wanted = definition_.columns[column];
    if (wanted.type == ColumnType::kBoolean) return row.IsSet(wanted.number);
    const auto bytes = ColumnBytes(row, column);
    if (!bytes) return {};
    if (!IsLongValue(wanted.type)) return DecodeValue(wanted, *bytes, definition_.version);
    PageRef page;
    return DecodeValue(wanted, ReadLongValue(*pager_, *bytes, page, longValue_),
                       definition_.version);
}

template <typename Text>
bool Table::ReadTextInto(const RowView& row, std::size_t column, Text& into) const {
    const Column& wanted = definition_.columns[column];
    if (wanted.type != ColumnType::kText && wanted.type != ColumnType::kMemo) {
        const Value value = ReadValue(row, column);
        if (value.IsNull()) return false;
        if constexpr (std::is_same_v<Text, std::string>) {
            into = NarrowName(value.AsText());
        } else {
            into = value.AsText();
        }
        return true;
    }
    const auto bytes = ColumnBytes(row, column);
    if (!bytes) return false;
    if (wanted.type == ColumnType::kText) {
        DecodeText(*bytes, definition_.version, into);
        return true;
    }
    PageRef page;
    DecodeText(ReadLongValue(*pager_, *bytes, page, longValue_), definition_.version, into);
    return true;
}

bool Table::ReadText(const RowView& row, std::size_t column, std::u16string& into) const {
    return ReadTextInto(row, column, into);
}

bool Table::ReadText(const RowView& row, std::size_t column, std::string& into) const {
    return ReadTextInto(row, column, into);
}

void Table::RequireWritable() const {
    relations_.RequireKnown();
    rules_.RequireKnown();
    if (!definition_.ownedMap || !definition_.freeMap) {
        throw Error(ErrorKind::kUnsupported,
                    "The table '" + name_ + "' has no list of its pages, so it is not written to.");
    }
}

void Table::RequireIndex(const TableIndex& index) const {
    if (!index.Obstacle()) return;
    throw Error(ErrorKind::kUnsupported, "The index '" + index.Name() + "' of the table '" + name_ +
                                             "' cannot be kept right (" + *index.Obstacle() +
                                             "), so the change is refused.");
}

// The tree says in passing whether the key was there before, so a unique index is searched once.
void Table::EnterKey(Operation& operation, std::size_t index, const TableIndex::RowKey& key,
                     RowId id) {
    if (!key.entered) return;
    TableIndex& entered = *indexes_[index];
    if (entered.Tree().Insert(operation, key.key, id)) {
        Counters().AddDistinctKey(operation, index);
    } else if (entered.IsUnique() && !key.allNull) {
        throw Error(ErrorKind::kDuplicateKey,
                    "The change would create a second record with the same values in the index '" +
                        entered.Name() + "'.");
    }
}

void Table::EraseKey(Operation& operation, std::size_t index, const TableIndex::RowKey& key,
                     RowId id, const IndexPlace& found) {
    if (!key.entered) return;
    TableIndex& erased = *indexes_[index];
    erased.Tree().Erase(operation, key.key, id,
                        found.index == &erased ? found.entry : EntryPlace());
}

void Table::RaiseAutoNumber(Operation& operation, std::int32_t value) {
    if (value > static_cast<std::int32_t>(Counters().LastAutoNumber())) {
        Counters().SetLastAutoNumber(operation, static_cast<std::uint32_t>(value));
    }
}

RowValues Table::WithAutoNumbers(Operation& operation, const RowValues& row) {
    RowValues numbered = row;
    for (std::size_t i = 0; i < definition_.columns.size(); ++i) {
        const Column& column = definition_.columns[i];
        if (!column.autoNumber && !column.autoGuid) continue;
        const bool missing = !row.given[i] || row.values[i].IsNull();
        numbered.given[i] = true;
        if (column.autoGuid) {
            if (missing) numbered.values[i] = RandomGuid();
        } else if (missing) {
            const std::uint32_t next = Counters().LastAutoNumber() + 1;
            Counters().SetLastAutoNumber(operation, next);
            numbered.values[i] = static_cast<std::int32_t>(next);
        } else {
            RaiseAutoNumber(operation, row.values[i].AsLong());
        }
    }
    return numbered;
}

LongValueStore& Table::LongValuesOf(std::size_t column) {
    if (!longValues_[column]) {
        throw Error(ErrorKind::kUnsupported, "The field '" + definition_.columns[column].name +
                                                 "' has no list of its pages, so it is not "
                                                 "written to.");
    }
    return *longValues_[column];
}

void Table::EncodeLongValue(const Value& value, std::size_t& plainLength) {
    longValue_.clear();
    plainLength = 0;
    if (const auto* text = std::get_if<std::u16string>(&value.Get())) {
        plainLength = text->size() * pager_->FileFormat().bytesPerCharacter;
        EncodeText(*text, definition_.version, plainLength <= pager_->FileFormat().longValueInRow,
                   longValue_);
        plainLength = std::max(plainLength, longValue_.size());
    } else if (const auto* bytes = std::get_if<Binary>(&value.Get())) {
        plainLength = bytes->size();
        longValue_.assign(bytes->begin(), bytes->end());
    }
}

void Table::BuildLongValue(Operation& operation, std::size_t column, const Value& value,
                           const RowView* old, std::vector<std::byte>& into) {
    LongValueStore& store = LongValuesOf(column);
    std::size_t plainLength = 0;
    EncodeLongValue(value, plainLength);
    if (const auto stored = OldBytes(old, column)) {
        store.Replace(operation, *stored, longValue_, plainLength, into);
    } else {
        store.Write(operation, longValue_, plainLength, into);
    }
}

void Table::BuildFromDraft(Operation& operation, std::size_t column, const ValueDraft& draft,
                           const RowView* old, std::vector<std::byte>& into) {
    LongValueStore& store = LongValuesOf(column);
    store.WriteChain(operation, *StoredForm(*pager_, draft), into);
    if (const auto stored = OldBytes(old, column)) store.Release(operation, *stored);
}

std::optional<Bytes> Table::OldBytes(const RowView* old, std::size_t column) const {
    return old == nullptr ? std::nullopt : ColumnBytes(*old, column);
}

void Table::BuildFixedPart(const RowValues& row, const RowView* old) {
    for (std::size_t i = 0; i < definition_.columns.size(); ++i) {
        const Column& column = definition_.columns[i];
        if (column.type == ColumnType::kBoolean) {
            const bool set = row.given[i] ? !row.values[i].IsNull() && row.values[i].AsBoolean()
                                          : old != nullptr && old->IsSet(column.number);
            if (set) builder_.Set(column.number);
            continue;
        }
        if (!column.fixed) continue;
        fixedValue_.clear();
        if (!row.given[i]) {
            const auto bytes = OldBytes(old, i);
            if (!bytes) continue;
            fixedValue_.assign(bytes->begin(), bytes->end());
        } else {
            if (row.values[i].IsNull()) continue;
            EncodeValue(column, row.values[i], definition_.version, fixedValue_);
        }
        builder_.Set(column.number);
        const MutableBytes place = builder_.Fixed(column.fixedOffset, column.length);
        std::copy_n(fixedValue_.begin(), std::min(fixedValue_.size(), place.size()), place.begin());
    }
}

void Table::BuildVariablePart(Operation& operation, const RowValues& row, const RowView* old) {
    for (const std::size_t i : variableOrder_) {
        const Column& column = definition_.columns[i];
        std::vector<std::byte>& into = builder_.StartVariable(column.variableIndex);
        if (!row.given[i]) {
            const auto bytes = OldBytes(old, i);
            if (!bytes) continue;
            into.insert(into.end(), bytes->begin(), bytes->end());
        } else if (const ValueDraft* draft = row.DraftOf(i)) {
            BuildFromDraft(operation, i, *draft, old, into);
        } else if (row.values[i].IsNull()) {
            if (old != nullptr) ReleaseLongValue(operation, i, *old);
            continue;
        } else if (IsLongValue(column.type)) {
            BuildLongValue(operation, i, row.values[i], old, into);
        } else {
            EncodeValue(column, row.values[i], definition_.version, into);
        }
        builder_.Set(column.number);
    }
}

// Columns that are not given keep the bytes of the old row, the heads of long values included.
Bytes Table::BuildRow(Operation& operation, const RowValues& row, const RowView* old) {
    builder_.Start(pager_->FileFormat(), definition_.shape);
    BuildFixedPart(row, old);
    BuildVariablePart(operation, row, old);
    return builder_.Finish();
}

void Table::ReleaseLongValue(Operation& operation, std::size_t column, const RowView& old) {
    if (!IsLongValue(definition_.columns[column].type)) return;
    const auto bytes = ColumnBytes(old, column);
    const auto head = bytes ? ReadLongValueHead(*bytes) : std::nullopt;
    if (!head || head->form == LongValueForm::kInline) return;
    if (!longValues_[column]) {
        ThrowDamaged("The file is damaged: the pages of a long value are not listed.");
    }
    longValues_[column]->Release(operation, *bytes);
}

RowView Table::TakeOldRow(RowId id) {
    StoredRow stored;
    if (!rows_.Find(id, stored)) {
        throw Error(ErrorKind::kNoCurrentRecord, "The record has been deleted.");
    }
    oldRow_.assign(stored.bytes.begin(), stored.bytes.end());
    return View(oldRow_);
}

RowId Table::Insert(Operation& operation, const RowValues& given) {
    RequireWritable();
    RowValues numbered;
    if (hasAutoColumn_) numbered = WithAutoNumbers(operation, given);
    const RowValues& row = hasAutoColumn_ ? numbered : given;
    const auto value = [&row](std::size_t column) {
        return row.given[column] ? row.ValueOf(column) : Value();
    };
    rules_.Check(row, true, value);
    for (std::size_t i = 0; i < indexes_.size(); ++i) {
        RequireIndex(*indexes_[i]);
        indexes_[i]->MakeRowKey(value, newKeys_[i]);
        RequireNoNull(*indexes_[i], newKeys_[i]);
    }
    const RowId id = rows_.Insert(operation, BuildRow(operation, row, nullptr));
    for (std::size_t i = 0; i < indexes_.size(); ++i) {
        EnterKey(operation, i, newKeys_[i], id);
    }
    Counters().AddRows(operation, 1);
    relations_.RequireParents(row, true, value);
    return id;
}

std::vector<std::size_t> Table::ChangedIndexes(const RowValues& row, const ColumnValue& oldValue,
                                               const ColumnValue& newValue) {
    std::vector<std::size_t> changed;
    for (std::size_t i = 0; i < indexes_.size(); ++i) {
        const RealIndex& real = indexes_[i]->Real();
        const bool concerned =
            real.unknownPart || std::any_of(real.parts.begin(), real.parts.end(),
                                            [&row](const RealIndex::Part& part) -> bool {
                                                return row.given[part.column];
                                            });
        if (!concerned) continue;
        RequireIndex(*indexes_[i]);
        indexes_[i]->MakeRowKey(newValue, newKeys_[i]);
        indexes_[i]->MakeRowKey(oldValue, oldKeys_[i]);
        if (newKeys_[i].key == oldKeys_[i].key) continue;
        RequireNoNull(*indexes_[i], newKeys_[i]);
        changed.push_back(i);
    }
    return changed;
}

bool Table::UpdateOne(Operation& operation, RowId id, const RowValues& row,
                      std::vector<RowChange>& cascade) {
    RequireWritable();
    const RowView old = TakeOldRow(id);
    const auto readOld = [&](std::size_t column) { return ReadValue(old, column); };
    const auto readNew = [&](std::size_t column) {
        return row.given[column] ? row.ValueOf(column) : ReadValue(old, column);
    };
    const ColumnValue oldValue = std::ref(readOld);
    const ColumnValue newValue = std::ref(readNew);
    rules_.Check(row, false, newValue);
    const std::vector<std::size_t> changed = ChangedIndexes(row, oldValue, newValue);
    relations_.CascadeUpdate(row, oldValue, newValue, cascade);
    rows_.Replace(operation, id, BuildRow(operation, row, &old));
    for (const std::size_t i : changed) {
        EraseKey(operation, i, oldKeys_[i], id);
        EnterKey(operation, i, newKeys_[i], id);
    }
    for (std::size_t i = 0; i < definition_.columns.size(); ++i) {
        if (definition_.columns[i].autoNumber && row.given[i]) {
            RaiseAutoNumber(operation, row.values[i].AsLong());
        }
    }
    // Two relationships can lead to one row, and change it one after the other: when something goes
    // on from here, references are looked at when all is done.
    if (cascade.empty()) relations_.RequireParents(row, false, newValue);
    return !changed.empty();
}

void Table::DeleteOne(Operation& operation, RowId id, const IndexPlace& found,
                      std::vector<TableRow>& cascade, std::vector<RowChange>& releases) {
    RequireWritable();
    for (const auto& index : indexes_) RequireIndex(*index);
    const RowView old = TakeOldRow(id);
    const auto value = [&](std::size_t column) { return ReadValue(old, column); };
    relations_.CascadeDelete(id, value, cascade, releases);
    for (std::size_t i = 0; i < indexes_.size(); ++i) {
        indexes_[i]->MakeRowKey(value, oldKeys_[i]);
        EraseKey(operation, i, oldKeys_[i], id, found);
    }
    for (std::size_t i = 0; i < definition_.columns.size(); ++i)
        ReleaseLongValue(operation, i, old);
    rows_.Remove(operation, id);
    Counters().AddRows(operation, -1);
}

}  // namespace jet
