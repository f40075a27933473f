// A table: its rows and all of its indexes, changed as one.
//
// Reading goes through views of the stored bytes. Each of the three changes takes the open
// Operation that makes it whole; what it wrote before an error is rolled back with that operation.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "jet/value.h"
#include "page/operation.h"
#include "page/pager.h"
#include "record/long_value.h"
#include "record/row.h"
#include "table/definition.h"
#include "table/relations.h"
#include "table/row_keys.h"
#include "table/row_rules.h"
#include "table/row_store.h"
#include "table/row_values.h"
#include "table/table_cursor.h"

namespace jet {

class Table {
public:
    // Without a family, a table that takes part in a relationship is not written to.
    Table(Pager& pager, std::string name, Definition definition, TableFamily* family = nullptr);
    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;

    [[nodiscard]] const std::string& Name() const { return name_; }
    [[nodiscard]] const Definition& Def() const { return definition_; }
    [[nodiscard]] Pager& Pages() const { return *pager_; }
    [[nodiscard]] RowStore& Rows() { return rows_; }
    [[nodiscard]] DefinitionCounters Counters() const { return {*pager_, definition_.page}; }
    // Marks a table whose creation was rolled back.
    void Drop() noexcept { dropped_ = true; }
    [[nodiscard]] bool IsDropped() const { return dropped_; }
    // One for each real index.
    [[nodiscard]] const std::vector<std::unique_ptr<TableIndex>>& Indexes() const {
        return indexes_;
    }

    [[nodiscard]] RowView View(Bytes row) const {
        return {row, pager_->FileFormat(), definition_.shape};
    }
    // The stored bytes of a column that is not boolean; nothing for null.
    [[nodiscard]] std::optional<Bytes> ColumnBytes(const RowView& row, std::size_t column) const;
    [[nodiscard]] Value ReadValue(const RowView& row, std::size_t column) const;
    // The text of a text or memo column, into memory that is used again; false for null.
    bool ReadText(const RowView& row, std::size_t column, std::u16string& into) const;
    // The same as UTF-8.
    bool ReadText(const RowView& row, std::size_t column, std::string& into) const;

    // Values must have been converted (ConvertForColumn). Errors: kDuplicateKey, kNullNotAllowed,
    // kZeroLengthNotAllowed, kRuleViolated, kRelatedRecords, kNoRelatedRecord, kRecordTooLarge,
    // kUnsupported and those of the pager. Changes and deletions go on to other rows where a
    // relationship says so; `deleted` takes all rows that were deleted. `found` is where a cursor
    // stands on the row.
    RowId Insert(Operation& operation, const RowValues& row);
    // True when an index has other entries now.
    bool Update(Operation& operation, RowId id, const RowValues& row);
    void Delete(Operation& operation, RowId id, std::vector<TableRow>& deleted,
                const IndexPlace& found = {});

private:
    void RequireWritable() const;
    void RequireIndex(const TableIndex& index) const;
    bool UpdateOne(Operation& operation, RowId id, const RowValues& row,
                   std::vector<RowChange>& cascade);
    void DeleteOne(Operation& operation, RowId id, const IndexPlace& found,
                   std::vector<TableRow>& cascade, std::vector<RowChange>& releases);
    [[nodiscard]] bool Has(RowId id);
    // kDuplicateKey; the entry that was made is rolled back with the operation.
    void EnterKey(Operation& operation, std::size_t index, const TableIndex::RowKey& key, RowId id);
    void EraseKey(Operation& operation, std::size_t index, const TableIndex::RowKey& key, RowId id,
                  const IndexPlace& found = {});
    Bytes BuildRow(Operation& operation, const RowValues& row, const RowView* old);
    [[nodiscard]] LongValueStore& LongValuesOf(std::size_t column);
    void EncodeLongValue(const Value& value, std::size_t& plainLength);
    void BuildLongValue(Operation& operation, std::size_t column, const Value& value,
                        const RowView* old, std::vector<std::byte>& into);
    void BuildFromDraft(Operation& operation, std::size_t column, const ValueDraft& draft,
                        const RowView* old, std::vector<std::byte>& into);
    void ReleaseLongValue(Operation& operation, std::size_t column, const RowView& old);
    RowValues WithAutoNumbers(Operation& operation, const RowValues& row);
    void RaiseAutoNumber(Operation& operation, std::int32_t value);
    void BuildFixedPart(const RowValues& row, const RowView* old);
    void BuildVariablePart(Operation& operation, const RowValues& row, const RowView* old);
    template <typename Text>
    bool ReadTextInto(const RowView& row, std::size_t column, Text& into) const;
    std::optional<Bytes> OldBytes(const RowView* old, std::size_t column) const;
    // The indexes whose entry differs between the old row and the new values, with both keys made.
    std::vector<std::size_t> ChangedIndexes(const RowValues& row, const ColumnValue& oldValue,
                                            const ColumnValue& newValue);
    // A copy of the row's bytes, since the page is about to change.
    RowView TakeOldRow(RowId id);

    Pager* pager_;
    std::string name_;
    Definition definition_;
    RowRules rules_;
    Relations relations_;
    RowStore rows_;
    std::vector<std::unique_ptr<TableIndex>> indexes_;
    std::vector<std::size_t> variableOrder_;                 // positions of the variable columns
    std::vector<std::optional<LongValueStore>> longValues_;  // by column
    bool hasAutoColumn_ = false;
    bool dropped_ = false;
    // Memory that is used again from one row to the next.
    RowBuilder builder_;
    std::vector<std::byte> fixedValue_;
    std::vector<std::byte> oldRow_;
    mutable std::vector<std::byte> longValue_;
    std::vector<TableIndex::RowKey> newKeys_;
    std::vector<TableIndex::RowKey> oldKeys_;
};

}  // namespace jet
