// A record set: one current record among the rows of a table or of a query's result.
//
// A table record set moves through the rows in stored order, or in the order of the index that was
// set. An index position is remembered as key and row, so it survives changes made through any
// other record set of the same database.
//
// Positions. A record set opens on its first record (IsEof and IsBof both true when there is none).
// - Moving past an end sets IsEof or IsBof; there is no current record there (kNoCurrentRecord).
// - After AddNew and Update the current record is the one from before AddNew.
// - After Delete there is no current record until the next move; MoveNext goes to the row that
//   followed the deleted one.
// - A Seek that finds nothing sets NoMatch and leaves the former record readable, but Edit and
//   Delete then throw kNoCurrentRecord until the next successful Seek or move, so a missing row can
//   never cause another one to be overwritten.
// - Any move, Seek or close while an AddNew or Edit is open drops that edit.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "jet/error.h"
#include "jet/schema.h"
#include "jet/value.h"

namespace jet {

enum class Comparison { kEqual, kGreaterOrEqual, kGreater, kLess, kLessOrEqual };

// The place of a field in its record set; get one by name once and use it for every row.
struct FieldId {
    int position = 0;
};

// Reads one long value without ever holding all of it. It borrows its record set's database. Any
// change of the database ends it: reading then throws kNoCurrentRecord, and another one can be
// opened where this one stood. Errors besides: kClosed, kDamaged, kIo, kOutOfMemory.
class ValueReader {
public:
    ValueReader() = default;
    ValueReader(const ValueReader&) = delete;
    ValueReader& operator=(const ValueReader&) = delete;
    virtual ~ValueReader() = default;

    // Bytes of an OLE value, UTF-16 units of a memo.
    [[nodiscard]] virtual std::uint64_t Size() const = 0;
    // The next units, as many as there are and fit; 0 at the end. kTypeMismatch for the other kind.
    virtual std::size_t Read(std::span<std::byte> into) = 0;
    virtual std::size_t Read(std::span<char16_t> into) = 0;
};

class Recordset {
public:
    Recordset() = default;
    Recordset(const Recordset&) = delete;
    Recordset& operator=(const Recordset&) = delete;
    virtual ~Recordset() = default;

    // Every later call throws kClosed, as it does once the database is closed; only Close itself
    // does nothing then.
    virtual void Close() = 0;

    // Names and fields. Names ignore case; kNoSuchField and kNoSuchIndex.
    [[nodiscard]] virtual const std::vector<ColumnSchema>& Fields() const = 0;
    [[nodiscard]] virtual FieldId Field(std::string_view name) const = 0;
    virtual void SetIndex(std::string_view name) = 0;  // empty: stored order
    [[nodiscard]] virtual std::string Index() const = 0;

    // Moving. Errors: kNoCurrentRecord past an end, kDamaged, kIo.
    virtual void MoveFirst() = 0;
    virtual void MoveLast() = 0;
    virtual void MoveNext() = 0;
    virtual void MovePrevious() = 0;
    [[nodiscard]] virtual bool IsBof() const = 0;
    [[nodiscard]] virtual bool IsEof() const = 0;
    [[nodiscard]] virtual std::int32_t RecordCount() const = 0;
    // Tells the current record from all others of its table for as long as it is there, in whatever
    // order and by whatever record set it is found. kNoCurrentRecord.
    [[nodiscard]] virtual std::uint32_t RecordId() const = 0;

    // Seeking in the current index by its leading columns. kEqual, kGreaterOrEqual and kGreater
    // find the first such entry, kLess and kLessOrEqual the last. True when there is one. Errors:
    // kNoSuchIndex (none is set), kTypeMismatch, kOverflow, kUnsupported (an order that is not
    // known), kDamaged.
    virtual bool Seek(Comparison comparison, std::span<const Value> key) = 0;
    bool Seek(Comparison comparison, std::initializer_list<Value> key) {
        return Seek(comparison, std::span<const Value>(key.begin(), key.size()));
    }
    [[nodiscard]] virtual bool NoMatch() const = 0;

    // The end of a scan of a range of the current index. MakeKey gives the bytes by which the
    // index orders records with these values in its leading columns; CompareToKey compares the
    // current record with them: below 0 when it stands before all such records, 0 when it is one
    // of them, above 0 behind them. Descending columns are turned round in both. Errors: those of
    // Seek; kNoCurrentRecord.
    virtual void MakeKey(std::span<const Value> key, std::vector<std::byte>& into) const = 0;
    [[nodiscard]] virtual int CompareToKey(std::span<const std::byte> key) const = 0;

    // Reading the current record, or the open edit's values when there is one. Errors:
    // kNoCurrentRecord, kNoSuchField, kDamaged; kTypeMismatch and kOverflow of a conversion.
    [[nodiscard]] virtual Value Get(FieldId field) const = 0;
    [[nodiscard]] Value Get(std::string_view field) const { return Get(Field(field)); }
    // The same without an allocation: false for null, and `into` is left alone.
    virtual bool ReadLong(FieldId field, std::int32_t& into) const = 0;
    virtual bool ReadSingle(FieldId field, float& into) const = 0;
    virtual bool ReadDouble(FieldId field, double& into) const = 0;
    virtual bool ReadText(FieldId field, std::u16string& into) const = 0;
    // As UTF-8; see jet/convert.h for what is no character.
    virtual bool ReadText(FieldId field, std::string& into) const = 0;
    // A memo or OLE value in pieces, beginning `from` units behind its beginning; null for null.
    // kTypeMismatch for fields of other types.
    [[nodiscard]] virtual std::unique_ptr<ValueReader> OpenReader(FieldId field,
                                                                  std::uint64_t from = 0) const = 0;

    // Changing. AddNew, Edit, Delete: kReadOnly, kNoCurrentRecord. Set converts between number
    // types; kNoEditBegun, kNoSuchField, kTypeMismatch, kOverflow, kTextTooLong.
    // Update: kDuplicateKey, kNullNotAllowed, kZeroLengthNotAllowed, kRuleViolated,
    // kNoRelatedRecord, kRelatedRecords, kRecordTooLarge, kUnsupported, kDiskFull, kIo; after
    // an error the edit stays open with its values and the file is as before. Delete:
    // kRelatedRecords, kUnsupported, kDiskFull, kIo, and those of Update where a relationship sets
    // the references of other rows to null.
    virtual void AddNew() = 0;
    virtual void Edit() = 0;
    virtual void Set(FieldId field, const Value& value) = 0;
    virtual void Set(FieldId field, Value&& value) = 0;
    void Set(std::string_view field, const Value& value) { Set(Field(field), value); }
    void Set(std::string_view field, Value&& value) { Set(Field(field), std::move(value)); }
    // A memo or OLE value in pieces: each call adds one to the value that the open edit has for the
    // field, the first one to nothing. A value of any size takes little memory in this way: pieces
    // beyond the first 256 KiB wait in a temporary file beside the database until Update. Errors:
    // kNoEditBegun, kNoSuchField, kTypeMismatch for fields of other types, kTextTooLong; kDiskFull,
    // kIo, kPermissionDenied and kReadOnly of the temporary file. After an error the value is as it
    // was before the call, and the field untouched if it was so before.
    virtual void Append(FieldId field, std::u16string_view text) = 0;
    virtual void Append(FieldId field, std::span<const std::byte> bytes) = 0;
    virtual void Update() = 0;
    virtual void CancelUpdate() = 0;
    virtual void Delete() = 0;
    [[nodiscard]] virtual bool IsEditing() const = 0;
};

}  // namespace jet
