// Chosen rows of a table, in the order of a list.
//
// Rows that are deleted stay in the list, as gone, so that a deletion takes the same time however
// long the list is, and a rollback finds them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

#include "table/table_cursor.h"

namespace jet {

class ListCursor final : public TableCursor {
public:
    ListCursor(RowStore& rows, std::span<const RowId> list);

    // Of the rows that are there.
    [[nodiscard]] std::size_t Count() const { return count_; }

    bool SeekToFirst() override;
    bool SeekToLast() override;
    bool Next() override { return Forward(at_ + 1); }
    bool Prev() override { return Backward(at_); }

    void MakeRoomForRow() override;
    void RowAdded(RowId row) noexcept override;

private:
    // What an entry's row is: there, gone for good, or deleted in the transaction of that number.
    static constexpr std::uint32_t kThere = 0;
    static constexpr std::uint32_t kGone = 1;
    static constexpr std::uint32_t kFirstTransaction = 2;
    struct Entry {
        std::uint32_t row = 0;
        std::uint32_t deletedIn = kThere;
    };

    bool Forward(std::size_t from);
    bool Backward(std::size_t end);
    void Lose(Entry& entry, std::uint32_t deletedIn) noexcept;
    void RowDeleted(RowId row) noexcept override;
    void TransactionEnded() noexcept override;
    void TransactionRolledBack(std::span<const RowId> deleted) noexcept override;
    void DropAdded() noexcept;
    [[nodiscard]] Entry* EntryOf(RowId row) noexcept;
    void FindPlaces();

    std::vector<Entry> entries_;
    std::size_t count_;
    std::size_t at_ = 0;
    // No row is there before the first of them, none from the second on.
    std::size_t begin_ = 0;
    std::size_t end_;
    bool openedInTransaction_;
    std::uint32_t transaction_ = kFirstTransaction;
    std::size_t added_ = 0;  // since the transaction began
    // The places of the rows that are there, once one is deleted that is not the current one.
    std::unordered_map<std::uint32_t, std::size_t> places_;
    bool placesKnown_ = false;
};

}  // namespace jet
