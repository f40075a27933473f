#include "recordset/base_recordset.h"

#include <algorithm>
#include <bit>
#include <numeric>
#include <utility>

#include "catalog/new_table.h"
#include "jet/convert.h"
#include "jet/error.h"
#include "os/out_of_memory.h"
#include "page/bytes.h"
#include "recordset/default_value.h"
#include "recordset/value_reader.h"
#include "values/text.h"

namespace jet {

namespace {

// The bytes of a long value that are kept in memory before its pieces go to a draft.
constexpr std::size_t kLongestHeld = std::size_t{256} << 10;

std::vector<std::size_t> AllColumns(const Definition& definition) {
    std::vector<std::size_t> columns(definition.columns.size());
    std::iota(columns.begin(), columns.end(), std::size_t{0});
    return columns;
}

[[noreturn]] void ThrowNoCurrent() {
    throw Error(ErrorKind::kNoCurrentRecord, "There is no current record.");
}

}  // namespace

BaseRecordset::BaseRecordset(std::shared_ptr<OpenFile> file, Table& table, bool system,
                             const std::vector<std::size_t>& columns)
    : file_(std::move(file)),
      table_(&table),
      readOnly_(system || file_->Pages().IsReadOnly()),
      columns_(FieldColumnsOf(table.Def(), columns.empty() ? AllColumns(table.Def()) : columns)) {
    const TableSchema schema = SchemaOf(table.Name(), table.Def());
    for (const FieldColumn& field : columns_) fields_.push_back(schema.columns[field.column]);
}

std::vector<BaseRecordset::FieldColumn> BaseRecordset::FieldColumnsOf(
    const Definition& definition, const std::vector<std::size_t>& columns) {
    std::vector<FieldColumn> fields;
    for (const std::size_t column : columns) {
        const Column& stored = definition.columns[column];
        const std::uint32_t size = SizeOfType(stored.type);
        fields.push_back({.column = static_cast<std::uint16_t>(column),
                          .number = stored.number,
                          .offset = stored.fixedOffset,
                          .type = stored.type,
                          .plain = stored.fixed && size != 0 && stored.length == size});
    }
    return fields;
}

void BaseRecordset::Close() {
    DropEdit();
    cursor_.reset();
    closed_ = true;
    viewKnown_ = false;
    stored_ = StoredRow();
}

const std::vector<ColumnSchema>& BaseRecordset::Fields() const {
    RequireOpen();
    return fields_;
}

void BaseRecordset::ThrowClosed() {
    throw Error(ErrorKind::kClosed, "The record set has been closed.");
}

FieldId BaseRecordset::Field(std::string_view name) const {
    return Guarded([&] {
        RequireOpen();
        for (std::size_t i = 0; i < fields_.size(); ++i) {
            if (fields_[i].name == name) return FieldId{static_cast<int>(i)};
        }
        const std::u16string wide = WidenName(name);
        for (std::size_t i = 0; i < columns_.size(); ++i) {
            const Column& column = table_->Def().columns[columns_[i].column];
            if (SameName(column.wide, wide, table_->Def().version))
                return FieldId{static_cast<int>(i)};
        }
        throw Error(ErrorKind::kNoSuchField,
                    "The table '" + table_->Name() + "' has no field '" + std::string(name) + "'.");
    });
}

bool BaseRecordset::IsBof() const {
    RequireOpen();
    return place_ == Place::kNowhere || place_ == Place::kBefore;
}

bool BaseRecordset::IsEof() const {
    RequireOpen();
    return place_ == Place::kNowhere || place_ == Place::kBehind;
}

std::uint32_t BaseRecordset::RecordId() const {
    RequireOpen();
    if (!IsOnRecord()) ThrowNoCurrent();
    return cursor_->Row().Packed();
}

void BaseRecordset::UseOrder(std::unique_ptr<TableCursor> cursor) {
    const bool found = cursor->SeekToFirst();
    cursor_ = std::move(cursor);
    Arrive(found, Place::kNowhere);
}

void BaseRecordset::Arrive(bool found, Place otherwise) {
    place_ = found ? Place::kAmong : otherwise;
    viewKnown_ = false;
}

void BaseRecordset::MoveFirst() {
    return Guarded([&] {
        RequireOpen();
        DropEdit();
        searchFailed_ = false;
        Arrive(cursor_->SeekToFirst(), Place::kNowhere);
    });
}

void BaseRecordset::MoveLast() {
    return Guarded([&] {
        RequireOpen();
        DropEdit();
        searchFailed_ = false;
        Arrive(cursor_->SeekToLast(), Place::kNowhere);
    });
}

void BaseRecordset::MoveNext() {
    return Guarded([&] {
        RequireOpen();
        DropEdit();
        searchFailed_ = false;
        if (place_ == Place::kNowhere || place_ == Place::kBehind) ThrowNoCurrent();
        Arrive(place_ == Place::kBefore ? cursor_->SeekToFirst() : cursor_->Next(), Place::kBehind);
    });
}

void BaseRecordset::MovePrevious() {
    return Guarded([&] {
        RequireOpen();
        DropEdit();
        searchFailed_ = false;
        if (place_ == Place::kNowhere || place_ == Place::kBefore) ThrowNoCurrent();
        Arrive(place_ == Place::kBehind ? cursor_->SeekToLast() : cursor_->Prev(), Place::kBefore);
    });
}

void BaseRecordset::ThrowDropped() const {
    throw Error(ErrorKind::kNoSuchTable,
                "The table '" + table_->Name() + "' is not there: its creation was rolled back.");
}

void BaseRecordset::ThrowNoField() const {
    RequireOpen();
    throw Error(ErrorKind::kNoSuchField, "The record set has no such field.");
}

bool BaseRecordset::IsInEdit(std::size_t column) const {
    const EditKind edit = OpenEdit();
    return edit == EditKind::kAdd || (edit == EditKind::kEdit && values_.given[column]);
}

// Finds the current record's bytes; they are looked at where they lie.
const RowView& BaseRecordset::FindCurrentView() const {
    if (!IsOnRecord()) ThrowNoCurrent();
    const std::uint64_t change = table_->Pages().ChangeCount();
    // A page that changed may be another one in memory now.
    if (viewChange_ != change) stored_ = StoredRow();
    viewKnown_ = false;
    if (!table_->Rows().Find(cursor_->Row(), stored_)) {
        throw Error(ErrorKind::kDamaged, "The file is damaged: a record of the table '" +
                                             table_->Name() + "' is missing.");
    }
    view_ = table_->View(stored_.bytes);
    viewKnown_ = true;
    viewChange_ = change;
    return view_;
}

Value BaseRecordset::Get(FieldId field) const {
    return Guarded([&] {
        RequireOpen();
        const std::size_t column = ColumnOf(field).column;
        if (IsInEdit(column)) return values_.ValueOf(column);
        return table_->ReadValue(CurrentView(), column);
    });
}

template <typename Number>
bool BaseRecordset::ReadPlain(const FieldColumn& field, Number& into) const {
    const RowView& row = CurrentView();
    if (!row.IsSet(field.number)) return false;
    const Bytes bytes = row.Fixed(field.offset, sizeof(Number));
    if constexpr (sizeof(Number) == 8) {
        into = std::bit_cast<Number>(ReadU64(bytes, 0));
    } else {
        into = std::bit_cast<Number>(ReadU32(bytes, 0));
    }
    return true;
}

bool BaseRecordset::ReadLong(FieldId field, std::int32_t& into) const {
    return Guarded([&] {
        const FieldColumn& column = ColumnOf(field);
        if (IsPlain(column, ColumnType::kLong)) return ReadPlain(column, into);
        const Value value = Get(field);
        if (value.IsNull()) return false;
        into = value.AsLong();
        return true;
    });
}

bool BaseRecordset::ReadSingle(FieldId field, float& into) const {
    return Guarded([&] {
        const FieldColumn& column = ColumnOf(field);
        if (IsPlain(column, ColumnType::kSingle)) return ReadPlain(column, into);
        const Value value = Get(field);
        if (value.IsNull()) return false;
        into = value.AsSingle();
        return true;
    });
}

bool BaseRecordset::ReadDouble(FieldId field, double& into) const {
    return Guarded([&] {
        const FieldColumn& column = ColumnOf(field);
        if (IsPlain(column, ColumnType::kDouble)) return ReadPlain(column, into);
        const Value value = Get(field);
        if (value.IsNull()) return false;
        into = value.AsDouble();
        return true;
    });
}

bool BaseRecordset::ReadText(FieldId field, std::u16string& into) const {
    return Guarded([&] {
        RequireOpen();
        const std::size_t column = ColumnOf(field).column;
        if (!IsInEdit(column)) return table_->ReadText(CurrentView(), column, into);
        const Value value = values_.ValueOf(column);
        if (value.IsNull()) return false;
        into = value.AsText();
        return true;
    });
}

bool BaseRecordset::ReadText(FieldId field, std::string& into) const {
    return Guarded([&] {
        RequireOpen();
        const std::size_t column = ColumnOf(field).column;
        if (!IsInEdit(column)) return table_->ReadText(CurrentView(), column, into);
        const Value value = values_.ValueOf(column);
        if (value.IsNull()) return false;
        ToUtf8(value.AsText(), into);
        return true;
    });
}

std::unique_ptr<ValueReader> BaseRecordset::OpenReader(FieldId field, std::uint64_t from) const {
    return Guarded([&] {
        RequireOpen();
        const std::size_t place = ColumnOf(field).column;
        const Column& column = table_->Def().columns[place];
        if (!IsLongValue(column.type)) {
            throw Error(ErrorKind::kTypeMismatch,
                        "The field '" + column.name + "' is no memo and no OLE field.");
        }
        std::unique_ptr<LongValueReader> reader;
        if (IsInEdit(place)) {
            const Value& value = values_.values[place];
            if (values_.DraftOf(place) != nullptr) {
                reader = std::make_unique<LongValueReader>(file_, values_.drafts[place]);
            } else if (!value.IsNull()) {
                reader = std::make_unique<LongValueReader>(file_, value);
            }
        } else if (const auto bytes = table_->ColumnBytes(CurrentView(), place)) {
            reader = std::make_unique<LongValueReader>(file_, column, *bytes);
        }
        if (reader) reader->Skip(from);
        return reader;
    });
}

void BaseRecordset::RequireWritable() const {
    RequireOpen();
    if (!readOnly_) return;
    throw Error(ErrorKind::kReadOnly,
                "The table '" + table_->Name() + "' is open for reading only.");
}

void BaseRecordset::RequireCurrent() const {
    if (!IsOnRecord() || searchFailed_) ThrowNoCurrent();
}

void BaseRecordset::StartEdit(EditKind kind) {
    DropEdit();
    const std::size_t count = table_->Def().columns.size();
    values_.values.clear();
    values_.values.resize(count);
    values_.given.assign(count, false);
    written_.assign(count, false);
    if (kind == EditKind::kAdd) FillDefaults();
    edit_ = kind;
    editRollbacks_ = file_->Rollbacks();
}

void BaseRecordset::AddNew() {
    return Guarded([&] {
        RequireWritable();
        StartEdit(EditKind::kAdd);
    });
}

// The number of an auto-number field shows at once; it is given out when the record is written.
void BaseRecordset::FillDefaults() {
    const auto& columns = table_->Def().columns;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (columns[i].type == ColumnType::kBoolean) values_.values[i] = false;
        if (columns[i].autoNumber) {
            values_.values[i] = static_cast<std::int32_t>(table_->Counters().LastAutoNumber() + 1);
        } else if (!columns[i].defaultValue.empty()) {
            FillDefault(i);
        }
    }
}

void BaseRecordset::FillDefault(std::size_t column) {
    const auto value = LiteralDefault(table_->Def().columns[column], table_->Def().version);
    if (!value) return;
    values_.values[column] = *value;
    values_.given[column] = true;
}

void BaseRecordset::Edit() {
    return Guarded([&] {
        RequireWritable();
        RequireCurrent();
        static_cast<void>(CurrentView());
        StartEdit(EditKind::kEdit);
    });
}

void BaseRecordset::RequireEdit() const {
    RequireOpen();
    if (OpenEdit() != EditKind::kNone) return;
    throw Error(ErrorKind::kNoEditBegun, "The record is not being added or edited.");
}

void BaseRecordset::Set(FieldId field, const Value& value) {
    return Guarded([&] { Set(field, Value(value)); });
}

void BaseRecordset::Set(FieldId field, Value&& value) {
    return Guarded([&] {
        RequireEdit();
        const std::size_t column = ColumnOf(field).column;
        values_.values[column] = ConvertForColumn(table_->Def().columns[column], std::move(value),
                                                  table_->Def().version);
        values_.given[column] = true;
        written_[column] = true;
        if (values_.DraftOf(column) != nullptr) values_.SetDraft(column, nullptr);
    });
}

template <typename Held, typename Piece>
void BaseRecordset::AppendTo(FieldId field, ColumnType type, Piece piece) {
    RequireEdit();
    const std::size_t place = ColumnOf(field).column;
    const Column& column = table_->Def().columns[place];
    if (column.type != type) {
        throw Error(ErrorKind::kTypeMismatch,
                    "The field '" + column.name + "' is not written in such pieces.");
    }
    if (written_[place]) {
        AppendToColumn<Held>(place, piece);
        return;
    }
    // What a default has filled in is no beginning.
    Value filledIn = std::exchange(values_.values[place], Value());
    try {
        AppendToColumn<Held>(place, piece);
    } catch (...) {
        values_.values[place] = std::move(filledIn);
        throw;
    }
    values_.given[place] = true;
    written_[place] = true;
}

template <typename Held, typename Piece>
void BaseRecordset::AppendToColumn(std::size_t place, Piece piece) {
    const Column& column = table_->Def().columns[place];
    ValueDraft* draft = values_.DraftOf(place);
    Value& value = values_.values[place];
    Held* held = std::get_if<Held>(&value.Get());
    constexpr std::size_t kBytesOfUnit = sizeof(*piece.data());
    const std::uint64_t before = draft != nullptr  ? draft->Size()
                                 : held != nullptr ? held->size() * kBytesOfUnit
                                                   : 0;
    const std::uint64_t after = before + piece.size() * kBytesOfUnit;
    if (after > kLongestLongValue) {
        throw Error(ErrorKind::kTextTooLong,
                    "The field '" + column.name + "' is too small to accept the amount of data.");
    }
    if (draft != nullptr) {
        draft->Append(piece);
        return;
    }
    if (after <= kLongestHeld || column.fixed) {
        if (held == nullptr) {
            value = Held(piece.begin(), piece.end());
        } else {
            held->insert(held->end(), piece.begin(), piece.end());
        }
        return;
    }
    auto fresh = std::make_shared<ValueDraft>(table_->Pages(), column.type == ColumnType::kMemo
                                                                   ? ValueDraft::Kind::kText
                                                                   : ValueDraft::Kind::kBytes);
    if (held != nullptr) fresh->Append(Piece(*held));
    fresh->Append(piece);
    values_.SetDraft(place, std::move(fresh));
    value = Value();
}

void BaseRecordset::Append(FieldId field, std::u16string_view text) {
    return Guarded([&] { AppendTo<std::u16string>(field, ColumnType::kMemo, text); });
}

void BaseRecordset::Append(FieldId field, std::span<const std::byte> bytes) {
    return Guarded([&] { AppendTo<Binary>(field, ColumnType::kOle, bytes); });
}

void BaseRecordset::Update() {
    return Guarded([&] {
        RequireWritable();
        RequireEdit();
        if (edit_ == EditKind::kEdit) {
            RequireCurrent();
            UpdateCurrent();
        } else {
            AddRow();
        }
    });
}

void BaseRecordset::AddRow() {
    cursor_->MakeRoomForRow();
    Operation operation(table_->Pages());
    const RowId row = table_->Insert(operation, values_);
    operation.Commit();
    DropEdit();
    cursor_->RowAdded(row);
}

void BaseRecordset::UpdateCurrent() {
    Operation operation(table_->Pages());
    const bool indexChanged = table_->Update(operation, cursor_->Row(), values_);
    operation.Commit();
    DropEdit();
    if (indexChanged) cursor_->RowChanged();
}

void BaseRecordset::CancelUpdate() {
    RequireOpen();
    DropEdit();
}

void BaseRecordset::Delete() {
    return Guarded([&] {
        RequireWritable();
        DropEdit();
        RequireCurrent();
        std::vector<TableRow> deleted;
        Operation operation(table_->Pages());
        table_->Delete(operation, cursor_->Row(), deleted, cursor_->Place());
        const bool inTransaction = file_->InTransaction();
        if (inTransaction) {
            for (const TableRow& place : deleted) {
                place.table->Rows().Cursors().MakeRoomForDeleted(deleted.size());
            }
        }
        operation.Commit();
        for (const TableRow& place : deleted) {
            place.table->Rows().Cursors().RowDeleted(place.row, inTransaction);
        }
    });
}

}  // namespace jet
