// The record set of a whole table, in stored order or in that of an index.
#pragma once

#include "index/index_cursor.h"
#include "recordset/base_recordset.h"
#include "table/row_cursor.h"

namespace jet {

class TableRecordset : public BaseRecordset {
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
    [[nodiscard]] std::optional<RowId> EntryRow(bool found) const;
    [[nodiscard]] std::optional<RowId> StoredRowOf(bool found) const;

    const TableIndex* index_ = nullptr;
    std::string indexName_;
    // The current place: in stored order while no index is set, else in the index.
    RowCursor rows_;
    IndexCursor entries_;
    Key searchKey_;
    bool noMatch_ = false;
};

}  // namespace jet
