#include "recordset/table_recordset.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "jet/error.h"
#include "os/out_of_memory.h"
#include "values/text.h"

namespace jet {

namespace {

SeekTo WayOf(Comparison comparison) {
    switch (comparison) {
        case Comparison::kEqual:
            return SeekTo::kBeginning;
        case Comparison::kGreaterOrEqual:
            return SeekTo::kNotBelow;
        case Comparison::kGreater:
            return SeekTo::kBeyond;
        case Comparison::kLess:
            return SeekTo::kBelow;
        case Comparison::kLessOrEqual:
            return SeekTo::kNotBeyond;
    }
    return SeekTo::kBeginning;  // unreachable: every comparison is listed
}

}  // namespace

TableRecordset::TableRecordset(std::shared_ptr<OpenFile> file, Table& table, bool system)
    : BaseRecordset(std::move(file), table, system, {}), rows_(table.Rows()) {
    Arrive(GoFirst(), Place::kNowhere);
}

void TableRecordset::SetIndex(std::string_view name) {
    return Guarded([&] {
        RequireOpen();
        DropEdit();
        SetSearchFailed(false);
        if (name.empty()) {
            index_ = nullptr;
            indexName_.clear();
        } else {
            const LogicalIndex* found = Source().Def().FindIndex(WidenName(name));
            if (found == nullptr) {
                throw Error(ErrorKind::kNoSuchIndex, "The table '" + Source().Name() +
                                                         "' has no index '" + std::string(name) +
                                                         "'.");
            }
            index_ = Source().Indexes()[found->real].get();
            indexName_ = found->name;
            entries_ = IndexCursor(index_->Tree());
        }
        Arrive(GoFirst(), Place::kNowhere);
    });
}

std::int32_t TableRecordset::RecordCount() const {
    return Guarded([&] {
        RequireOpen();
        const std::uint32_t count = Source().Counters().RowCount();
        constexpr std::uint32_t kMost = std::numeric_limits<std::int32_t>::max();
        return static_cast<std::int32_t>(std::min(count, kMost));
    });
}

bool TableRecordset::Seek(Comparison comparison, std::span<const Value> key) {
    return Guarded([&] {
        RequireOpen();
        DropEdit();
        RequireIndex();
        index_->MakeSearchKey(key, searchKey_);
        noMatch_ = !entries_.Seek(searchKey_, WayOf(comparison));
        SetSearchFailed(noMatch_);
        if (noMatch_) return false;
        Arrive(entries_.Entry().row, Place::kNowhere);
        return true;
    });
}

void TableRecordset::RequireIndex() const {
    if (index_ == nullptr) {
        throw Error(ErrorKind::kNoSuchIndex,
                    "No index of the table '" + Source().Name() + "' has been chosen.");
    }
}

void TableRecordset::MakeKey(std::span<const Value> key, std::vector<std::byte>& into) const {
    return Guarded([&] {
        RequireOpen();
        RequireIndex();
        index_->MakeSearchKey(key, into);
    });
}

int TableRecordset::CompareToKey(std::span<const std::byte> key) const {
    RequireOpen();
    RequireIndex();
    if (Where() != Place::kOn) {
        throw Error(ErrorKind::kNoCurrentRecord, "There is no current record.");
    }
    const Key& own = entries_.Entry().key;
    const std::size_t common = std::min(key.size(), own.size());
    const int order = std::memcmp(own.data(), key.data(), common);
    return order != 0 || common == key.size() ? order : -1;
}

// The row that a verb of the index's cursor led to.
std::optional<RowId> TableRecordset::EntryRow(bool found) const {
    return found ? std::optional(entries_.Entry().row) : std::nullopt;
}

std::optional<RowId> TableRecordset::StoredRowOf(bool found) const {
    return found ? std::optional(rows_.Row()) : std::nullopt;
}

std::optional<RowId> TableRecordset::GoFirst() {
    return index_ == nullptr ? StoredRowOf(rows_.SeekToFirst()) : EntryRow(entries_.SeekToFirst());
}

std::optional<RowId> TableRecordset::GoLast() {
    return index_ == nullptr ? StoredRowOf(rows_.SeekToLast()) : EntryRow(entries_.SeekToLast());
}

std::optional<RowId> TableRecordset::GoNext() {
    return index_ == nullptr ? StoredRowOf(rows_.Next()) : EntryRow(entries_.Next());
}

std::optional<RowId> TableRecordset::GoPrevious() {
    return index_ == nullptr ? StoredRowOf(rows_.Prev()) : EntryRow(entries_.Prev());
}

// The record stays the current one, at the place that its new values give it in the index.
// The change is done by now, so nothing here may fail it: without memory for the new key the
// position keeps the old one, which leads to the same neighbors as before the change.
void TableRecordset::CurrentChanged() {
    if (index_ == nullptr || index_->Obstacle()) return;
    try {
        Guarded([&] {
            const RowView& view = CurrentView();
            TableIndex::RowKey key;
            index_->MakeRowKey([&](std::size_t column) { return Source().ReadValue(view, column); },
                               key);
            if (key.entered) entries_.SeekToEntry({std::move(key.key), Row()});
        });
    } catch (const Error&) {
        return;
    }
}

}  // namespace jet
