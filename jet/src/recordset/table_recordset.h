// The record set of a whole table, in stored order or in that of an index.
#pragma once

#include "recordset/row_cursor.h"

namespace jet {

class TableRecordset : public RowCursor {
public:
    TableRecordset(std::shared_ptr<OpenFile> file, Table& table, bool system);

    void SetIndex(std::string_view name) override;
    [[nodiscard]] std::string Index() const override {
        RequireOpen();
        return indexName_;
    }
    [[nodiscard]] std::int32_t RecordCount() const override;
    bool Seek(Comparison comparison, std::span<const Value> key) override;
    [[nodiscard]] bool NoMatch() const override {
        RequireOpen();
        return noMatch_;
    }
    void MakeKey(std::span<const Value> key, std::vector<std::byte>& into) const override;
    [[nodiscard]] int CompareToKey(std::span<const std::byte> key) const override;

protected:
    std::optional<RowId> GoFirst() override;
    std::optional<RowId> GoLast() override;
    std::optional<RowId> GoNext() override;
    std::optional<RowId> GoPrevious() override;
    void CurrentChanged() override;

private:
    void RequireIndex() const;
    std::optional<RowId> GoTo(std::optional<IndexEntry> entry);
    // Finds the entry that a search leads to; `found_` then holds it.
    bool Search(Comparison comparison, Bytes key);

    const TableIndex* index_ = nullptr;
    std::string indexName_;
    IndexEntry entry_;  // the current place in the index
    LeafHint hint_;     // of the last step
    IndexEntry found_;  // what a search or a step leads to, before it is the current place
    Key searchKey_;
    bool noMatch_ = false;
};

}  // namespace jet
