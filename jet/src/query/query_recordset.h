// The record set of a query: the places of the rows that it selected, in its order.
#pragma once

#include "jet/query.h"
#include "recordset/base_recordset.h"

namespace jet {

class QueryRecordset : public BaseRecordset {
public:
    QueryRecordset(std::shared_ptr<OpenFile> file, Table& table, bool system, const Query& query);

    void SetIndex(std::string_view name) override;
    [[nodiscard]] std::string Index() const override {
        RequireOpen();
        return {};
    }
    [[nodiscard]] std::int32_t RecordCount() const override;
    bool Seek(Comparison comparison, std::span<const Value> key) override;
    [[nodiscard]] bool NoMatch() const override {
        RequireOpen();
        return false;
    }
    void MakeKey(std::span<const Value> key, std::vector<std::byte>& into) const override;
    [[nodiscard]] int CompareToKey(std::span<const std::byte> key) const override;

protected:
    std::optional<RowId> GoFirst() override;
    std::optional<RowId> GoLast() override;
    std::optional<RowId> GoNext() override;
    std::optional<RowId> GoPrevious() override;
    void MakeRoomForRow() override {
        if (rows_.size() == rows_.capacity()) rows_.reserve(rows_.size() * 2 + 1);
    }
    void RowAdded(RowId row) override { rows_.push_back(row); }
    void RowDeleted(const Table& table, RowId row) override;
    void TransactionBegun() override { rowsBefore_ = rows_; }
    void TransactionEnded() noexcept override { rowsBefore_.reset(); }
    void TransactionRolledBack(std::span<const DeletedRow> deleted) noexcept override;

private:
    [[noreturn]] void ThrowNoIndex() const;
    std::optional<RowId> GoTo(std::size_t place);
    [[nodiscard]] std::size_t PlaceOfFirst(std::span<const RowId> rows) const;
    std::size_t KeepSurvivors(std::size_t place, std::span<const DeletedRow> deleted) noexcept;

    std::vector<RowId> rows_;
    std::optional<std::vector<RowId>> rowsBefore_;  // the transaction that is open
    std::size_t at_ = 0;  // of the current record, or of the follower of one that was removed
};

}  // namespace jet
