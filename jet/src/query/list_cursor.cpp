#include "query/list_cursor.h"

#include <algorithm>

namespace jet {

ListCursor::ListCursor(RowStore& rows, std::span<const RowId> list)
    : TableCursor(rows),
      count_(list.size()),
      end_(list.size()),
      openedInTransaction_(rows.Pages().InTransaction()) {
    entries_.reserve(list.size());
    for (const RowId row : list) entries_.push_back({row.Packed()});
}

bool ListCursor::Forward(std::size_t from) {
    while (from < end_ && entries_[from].deletedIn != kThere) ++from;
    if (from >= end_) return false;
    at_ = from;
    Arrive(RowId::FromPacked(entries_[at_].row));
    return true;
}

bool ListCursor::Backward(std::size_t end) {
    while (end > begin_ && entries_[end - 1].deletedIn != kThere) --end;
    if (end <= begin_) return false;
    at_ = end - 1;
    Arrive(RowId::FromPacked(entries_[at_].row));
    return true;
}

bool ListCursor::SeekToFirst() {
    while (begin_ < end_ && entries_[begin_].deletedIn != kThere) ++begin_;
    return Forward(begin_);
}

bool ListCursor::SeekToLast() {
    while (end_ > begin_ && entries_[end_ - 1].deletedIn != kThere) --end_;
    return Backward(end_);
}

void ListCursor::MakeRoomForRow() {
    if (entries_.size() == entries_.capacity()) entries_.reserve(entries_.size() * 2 + 1);
}

void ListCursor::RowAdded(RowId row) noexcept {
    entries_.push_back({row.Packed()});
    end_ = entries_.size();
    ++count_;
    if (Rows().Pages().InTransaction()) ++added_;
    if (!placesKnown_) return;
    try {
        places_[row.Packed()] = entries_.size() - 1;
    } catch (...) {
        // Without memory for it they are found anew when they are needed.
        placesKnown_ = false;
    }
}

void ListCursor::FindPlaces() {
    places_.clear();
    places_.reserve(count_);
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        if (entries_[i].deletedIn == kThere) places_[entries_[i].row] = i;
    }
    placesKnown_ = true;
}

// The entry of a row that is there, or null.
ListCursor::Entry* ListCursor::EntryOf(RowId row) noexcept {
    if (Valid() && row == Row()) return &entries_[at_];
    try {
        if (!placesKnown_) FindPlaces();
        const auto found = places_.find(row.Packed());
        return found == places_.end() ? nullptr : &entries_[found->second];
    } catch (...) {
        // There is no memory for the places, so they are looked through.
        const auto found = std::find_if(entries_.begin(), entries_.end(), [&](const Entry& entry) {
            return entry.row == row.Packed() && entry.deletedIn == kThere;
        });
        return found == entries_.end() ? nullptr : &*found;
    }
}

void ListCursor::Lose(Entry& entry, std::uint32_t deletedIn) noexcept {
    entry.deletedIn = deletedIn;
    --count_;
}

void ListCursor::RowDeleted(RowId row) noexcept {
    if (Entry* entry = EntryOf(row)) {
        Lose(*entry, Rows().Pages().InTransaction() ? transaction_ : kGone);
        if (placesKnown_) places_.erase(row.Packed());
    }
    TableCursor::RowDeleted(row);
}

void ListCursor::TransactionEnded() noexcept {
    openedInTransaction_ = false;
    added_ = 0;
    ++transaction_;
}

// The rows that the transaction added. The place of the position stays in the list.
void ListCursor::DropAdded() noexcept {
    const std::size_t before = entries_.size() - added_;
    for (std::size_t i = before; i < entries_.size(); ++i) {
        if (entries_[i].deletedIn == kThere) --count_;
        entries_[i].deletedIn = kGone;
    }
    entries_.resize(std::max(before, std::min(at_ + 1, entries_.size())));
}

void ListCursor::TransactionRolledBack(std::span<const RowId> deleted) noexcept {
    TableCursor::TransactionRolledBack(deleted);
    placesKnown_ = false;
    places_.clear();
    DropAdded();
    for (Entry& entry : entries_) {
        if (openedInTransaction_) {
            if (entry.deletedIn == kThere && !Survives(RowId::FromPacked(entry.row), deleted)) {
                Lose(entry, kGone);
            }
        } else if (entry.deletedIn == transaction_) {
            entry.deletedIn = kThere;
            ++count_;
        }
    }
    begin_ = 0;
    end_ = entries_.size();
}

}  // namespace jet
