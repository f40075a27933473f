// The C interface: record sets.
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "capi/guard.h"
#include "jet/convert.h"
#include "values/column.h"

namespace {

using jet::FieldId;
using jet::Value;
using jet::capi::GiveBytes;
using jet::capi::GiveText;
using jet::capi::Guarded;
using jet::capi::Require;
using jet::capi::ThrowBadArgument;

jet::Recordset& RowsOf(jet_recordset* recordset) {
    return *Require(recordset).rows;
}

FieldId FieldOf(const jet::Recordset& rows, size_t field) {
    if (field >= rows.Fields().size()) ThrowBadArgument();
    return {static_cast<int>(field)};
}

void GiveNull(bool isNull, int* is_null) {
    if (is_null != nullptr) *is_null = isNull ? 1 : 0;
}

// A call without arguments or results.
template <typename Call>
int Do(jet_recordset* recordset, jet_error* error, const Call& call) {
    return Guarded(error, [&] { call(RowsOf(recordset)); });
}

// Goes on with the reader of the part before this one, where there is one: to begin anew at each
// part takes the time of reading everything before it.
template <typename Unit>
std::optional<std::size_t> ReadNext(jet_recordset& recordset, size_t field, uint64_t offset,
                                    std::span<Unit> into) {
    jet_part_reader& parts = recordset.parts;
    const jet::Recordset& rows = *recordset.rows;
    if (!parts.reader || parts.field != field || parts.next != offset || rows.IsEditing() ||
        parts.record != rows.RecordId()) {
        return std::nullopt;
    }
    try {
        return parts.reader->Read(into);
    } catch (const jet::Error& error) {
        // The database has been changed since.
        if (error.Kind() != jet::ErrorKind::kNoCurrentRecord) throw;
        return std::nullopt;
    }
}

template <typename Unit>
std::optional<std::size_t> ReadPart(jet_recordset& recordset, size_t field, uint64_t offset,
                                    std::span<Unit> into) {
    jet_part_reader& parts = recordset.parts;
    std::optional<std::size_t> count = ReadNext(recordset, field, offset, into);
    if (!count) {
        parts.reader = recordset.rows->OpenReader(FieldOf(*recordset.rows, field), offset);
        if (!parts.reader) return std::nullopt;
        count = parts.reader->Read(into);
    }
    parts.next = offset + *count;
    parts.field = field;
    if (recordset.rows->IsEditing()) {
        parts.reader.reset();
    } else {
        parts.record = recordset.rows->RecordId();
    }
    return count;
}

// A part of a long value, in bytes or in units of text.
template <typename Unit, typename Given>
int GetPart(jet_recordset* recordset, size_t field, uint64_t offset, Given* to, size_t capacity,
            size_t* size, int* is_null, jet_error* error) {
    return Guarded(error, [&] {
        FieldOf(RowsOf(recordset), field);
        auto* const units = static_cast<Unit*>(static_cast<void*>(to));
        if (capacity > 0) Require(units);
        const auto count = ReadPart(*recordset, field, offset, std::span(units, capacity));
        if (count && size != nullptr) *size = *count;
        GiveNull(!count, is_null);
    });
}

// The value of a field, converted; `convert` is not called for null.
template <typename Result, typename Convert>
int GetAs(jet_recordset* recordset, size_t field, Result* value, int* is_null, jet_error* error,
          const Convert& convert) {
    return Guarded(error, [&] {
        Require(value);
        const jet::Recordset& rows = RowsOf(recordset);
        const Value found = rows.Get(FieldOf(rows, field));
        if (!found.IsNull()) *value = convert(found);
        GiveNull(found.IsNull(), is_null);
    });
}

int SetTo(jet_recordset* recordset, size_t field, jet_error* error, const Value& value) {
    return Guarded(error, [&] {
        jet::Recordset& rows = RowsOf(recordset);
        rows.Set(FieldOf(rows, field), value);
    });
}

// Exactly, where the field holds decimal digits.
std::int64_t TenThousandths(const Value& value) {
    jet::Column currency;
    currency.type = jet::ColumnType::kCurrency;
    return std::get<jet::Currency>(jet::ConvertForSearch(currency, value).Get()).tenThousandths;
}

std::span<const std::byte> BytesOf(const Value& value) {
    if (const auto* bytes = std::get_if<jet::Binary>(&value.Get())) return *bytes;
    if (const auto* guid = std::get_if<jet::Guid>(&value.Get())) return guid->bytes;
    throw jet::Error(jet::ErrorKind::kTypeMismatch, "The field holds no bytes.");
}

}  // namespace

int jet_open_table(jet_database* database, const char* name, jet_recordset** recordset,
                   jet_error* error) {
    return Guarded(error, [&] {
        Require(recordset);
        auto opened = std::make_unique<jet_recordset>();
        opened->rows = Require(database).opened->OpenTable(&Require(name));
        *recordset = opened.release();
    });
}

int jet_open_query(jet_database* database, const char* sql, const jet_value* parameters,
                   size_t count, jet_recordset** recordset, jet_error* error) {
    return Guarded(error, [&] {
        Require(recordset);
        auto opened = std::make_unique<jet_recordset>();
        const std::vector<Value> values = jet::capi::ValuesOf(parameters, count);
        opened->rows = Require(database).opened->OpenQuery(&Require(sql), std::span(values));
        *recordset = opened.release();
    });
}

void jet_recordset_close(jet_recordset* recordset) {
    const std::unique_ptr<jet_recordset> owned(recordset);
}

int jet_record_count(jet_recordset* recordset, int32_t* count, jet_error* error) {
    return Guarded(error, [&] { Require(count) = RowsOf(recordset).RecordCount(); });
}

int jet_field_count(jet_recordset* recordset, size_t* count, jet_error* error) {
    return Guarded(error, [&] { Require(count) = RowsOf(recordset).Fields().size(); });
}

int jet_field_name(jet_recordset* recordset, size_t field, char* name, size_t capacity,
                   size_t* size, jet_error* error) {
    return Guarded(error, [&] {
        const auto& fields = RowsOf(recordset).Fields();
        if (field >= fields.size()) ThrowBadArgument();
        GiveText(fields[field].name, name, capacity, size);
    });
}

int jet_field_type(jet_recordset* recordset, size_t field, int32_t* type, jet_error* error) {
    return Guarded(error, [&] {
        const auto& fields = RowsOf(recordset).Fields();
        if (field >= fields.size()) ThrowBadArgument();
        Require(type) = static_cast<int32_t>(fields[field].type);
    });
}

int jet_describe_field(jet_recordset* recordset, size_t field, jet_column* column,
                       jet_error* error) {
    return Guarded(error, [&] {
        const auto& fields = RowsOf(recordset).Fields();
        if (field >= fields.size()) ThrowBadArgument();
        const jet::ColumnSchema& found = fields[field];
        const bool isDecimal = found.type == jet::ColumnType::kDecimal;
        Require(column) = {nullptr,
                           static_cast<int32_t>(found.type),
                           found.length,
                           found.autoNumber ? 1 : 0,
                           found.required ? 1 : 0,
                           found.allowZeroLength ? 1 : 0,
                           isDecimal ? found.precision : 0,
                           isDecimal ? found.scale : 0};
    });
}

int jet_find_field(jet_recordset* recordset, const char* name, size_t* field, jet_error* error) {
    return Guarded(error, [&] {
        Require(field) = static_cast<size_t>(RowsOf(recordset).Field(&Require(name)).position);
    });
}

int jet_set_index(jet_recordset* recordset, const char* index, jet_error* error) {
    return Do(recordset, error, [&](jet::Recordset& rows) { rows.SetIndex(&Require(index)); });
}

int jet_move_first(jet_recordset* recordset, jet_error* error) {
    return Do(recordset, error, [](jet::Recordset& rows) { rows.MoveFirst(); });
}

int jet_move_last(jet_recordset* recordset, jet_error* error) {
    return Do(recordset, error, [](jet::Recordset& rows) { rows.MoveLast(); });
}

int jet_move_next(jet_recordset* recordset, jet_error* error) {
    return Do(recordset, error, [](jet::Recordset& rows) { rows.MoveNext(); });
}

int jet_move_previous(jet_recordset* recordset, jet_error* error) {
    return Do(recordset, error, [](jet::Recordset& rows) { rows.MovePrevious(); });
}

int jet_is_bof(jet_recordset* recordset, int* is_bof, jet_error* error) {
    return Guarded(error, [&] { Require(is_bof) = RowsOf(recordset).IsBof() ? 1 : 0; });
}

int jet_is_eof(jet_recordset* recordset, int* is_eof, jet_error* error) {
    return Guarded(error, [&] { Require(is_eof) = RowsOf(recordset).IsEof() ? 1 : 0; });
}

int jet_seek(jet_recordset* recordset, int comparison, const jet_value* key, size_t count,
             int* found, jet_error* error) {
    return Guarded(error, [&] {
        Require(found);
        if (comparison < JET_EQUAL || comparison > JET_LESS_OR_EQUAL) ThrowBadArgument();
        const std::vector<Value> values = jet::capi::ValuesOf(key, count);
        const auto way = static_cast<jet::Comparison>(comparison);
        *found = RowsOf(recordset).Seek(way, std::span(values)) ? 1 : 0;
    });
}

int jet_get_boolean(jet_recordset* recordset, size_t field, int* value, int* is_null,
                    jet_error* error) {
    return GetAs(recordset, field, value, is_null, error,
                 [](const Value& found) { return found.AsBoolean() ? 1 : 0; });
}

int jet_get_long(jet_recordset* recordset, size_t field, int32_t* value, int* is_null,
                 jet_error* error) {
    return GetAs(recordset, field, value, is_null, error,
                 [](const Value& found) { return found.AsLong(); });
}

int jet_get_double(jet_recordset* recordset, size_t field, double* value, int* is_null,
                   jet_error* error) {
    return GetAs(recordset, field, value, is_null, error,
                 [](const Value& found) { return found.AsDouble(); });
}

int jet_get_currency(jet_recordset* recordset, size_t field, int64_t* value, int* is_null,
                     jet_error* error) {
    return GetAs(recordset, field, value, is_null, error, TenThousandths);
}

int jet_get_text(jet_recordset* recordset, size_t field, char* text, size_t capacity, size_t* size,
                 int* is_null, jet_error* error) {
    return Guarded(error, [&] {
        const jet::Recordset& rows = RowsOf(recordset);
        const bool found = rows.ReadText(FieldOf(rows, field), recordset->text);
        if (found) GiveText(recordset->text, text, capacity, size);
        GiveNull(!found, is_null);
    });
}

int jet_get_bytes(jet_recordset* recordset, size_t field, void* bytes, size_t capacity,
                  size_t* size, int* is_null, jet_error* error) {
    return Guarded(error, [&] {
        const jet::Recordset& rows = RowsOf(recordset);
        const Value found = rows.Get(FieldOf(rows, field));
        if (!found.IsNull()) {
            const auto held = BytesOf(found);
            GiveBytes(held.data(), held.size(), bytes, capacity, size);
        }
        GiveNull(found.IsNull(), is_null);
    });
}

int jet_get_part(jet_recordset* recordset, size_t field, uint64_t offset, void* bytes,
                 size_t capacity, size_t* size, int* is_null, jet_error* error) {
    return GetPart<std::byte>(recordset, field, offset, bytes, capacity, size, is_null, error);
}

int jet_get_memo_part(jet_recordset* recordset, size_t field, uint64_t offset, uint16_t* units,
                      size_t capacity, size_t* size, int* is_null, jet_error* error) {
    static_assert(sizeof(char16_t) == sizeof(uint16_t));
    return GetPart<char16_t>(recordset, field, offset, units, capacity, size, is_null, error);
}

int jet_add_new(jet_recordset* recordset, jet_error* error) {
    return Do(recordset, error, [](jet::Recordset& rows) { rows.AddNew(); });
}

int jet_edit(jet_recordset* recordset, jet_error* error) {
    return Do(recordset, error, [](jet::Recordset& rows) { rows.Edit(); });
}

int jet_set(jet_recordset* recordset, size_t field, const jet_value* value, jet_error* error) {
    return Guarded(error, [&] {
        jet::Recordset& rows = RowsOf(recordset);
        rows.Set(FieldOf(rows, field), jet::capi::ValueOf(Require(value)));
    });
}

int jet_set_null(jet_recordset* recordset, size_t field, jet_error* error) {
    return SetTo(recordset, field, error, Value());
}

int jet_set_boolean(jet_recordset* recordset, size_t field, int value, jet_error* error) {
    return SetTo(recordset, field, error, Value(value != 0));
}

int jet_set_long(jet_recordset* recordset, size_t field, int32_t value, jet_error* error) {
    return SetTo(recordset, field, error, Value(value));
}

int jet_set_double(jet_recordset* recordset, size_t field, double value, jet_error* error) {
    return SetTo(recordset, field, error, Value(value));
}

int jet_set_currency(jet_recordset* recordset, size_t field, int64_t value, jet_error* error) {
    return SetTo(recordset, field, error, Value(jet::Currency{value}));
}

int jet_set_decimal(jet_recordset* recordset, size_t field, const char* decimal, jet_error* error) {
    const jet_value value = {JET_DECIMAL, 0, 0, 0, decimal, 0};
    return jet_set(recordset, field, &value, error);
}

int jet_set_date(jet_recordset* recordset, size_t field, double days, jet_error* error) {
    return SetTo(recordset, field, error, Value(jet::Date{days}));
}

int jet_set_text(jet_recordset* recordset, size_t field, const char* text, jet_error* error) {
    const jet_value value = {JET_TEXT, 0, 0, 0, text, 0};
    return jet_set(recordset, field, &value, error);
}

int jet_set_bytes(jet_recordset* recordset, size_t field, const void* bytes, size_t size,
                  jet_error* error) {
    const jet_value value = {JET_BINARY, 0, 0, 0, bytes, size};
    return jet_set(recordset, field, &value, error);
}

int jet_append_bytes(jet_recordset* recordset, size_t field, const void* bytes, size_t size,
                     jet_error* error) {
    return Guarded(error, [&] {
        jet::Recordset& rows = RowsOf(recordset);
        const auto* from = static_cast<const std::byte*>(bytes);
        if (size > 0) Require(from);
        rows.Append(FieldOf(rows, field), std::span(from, size));
    });
}

int jet_append_text(jet_recordset* recordset, size_t field, const char* text, jet_error* error) {
    return Guarded(error, [&] {
        jet::Recordset& rows = RowsOf(recordset);
        rows.Append(FieldOf(rows, field), jet::ToUtf16(&Require(text)));
    });
}

int jet_update(jet_recordset* recordset, jet_error* error) {
    return Do(recordset, error, [](jet::Recordset& rows) { rows.Update(); });
}

int jet_cancel_update(jet_recordset* recordset, jet_error* error) {
    return Do(recordset, error, [](jet::Recordset& rows) { rows.CancelUpdate(); });
}

int jet_delete(jet_recordset* recordset, jet_error* error) {
    return Do(recordset, error, [](jet::Recordset& rows) { rows.Delete(); });
}
