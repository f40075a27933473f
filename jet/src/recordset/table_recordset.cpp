#include "recordset/table_recordset.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

#include "jet/error.h"
#include "os/out_of_memory.h"
#include "values/text.h"

namespace jet {

namespace {

bool BeginsWith(const Key& key, const Key& start) {
    return key.size() >= start.size() && std::equal(start.begin(), start.end(), key.begin());
}

}  // namespace

TableRecordset::TableRecordset(std::shared_ptr<OpenFile> file, Table& table, bool system)
    : RowCursor(std::move(file), table, system, {}) {
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

bool TableRecordset::Search(Comparison comparison, Bytes key) {
    const IndexTree& tree = index_->Tree();
    std::optional<IndexEntry> entry;
    switch (comparison) {
        case Comparison::kEqual:
        case Comparison::kGreaterOrEqual:
            return tree.FirstNotBelow(key, found_);
        case Comparison::kGreater:
            entry = tree.FirstBeyond(key);
            break;
        case Comparison::kLess:
            entry = tree.LastBelow(key);
            break;
        case Comparison::kLessOrEqual:
            entry = tree.LastNotBeyond(key);
            break;
    }
    if (entry) found_ = std::move(*entry);
    return entry.has_value();
}

bool TableRecordset::Seek(Comparison comparison, std::span<const Value> key) {
    return Guarded([&] {
        RequireOpen();
        DropEdit();
        RequireIndex();
        index_->MakeSearchKey(key, searchKey_);
        noMatch_ = !Search(comparison, searchKey_) ||
                   (comparison == Comparison::kEqual && !BeginsWith(found_.key, searchKey_));
        SetSearchFailed(noMatch_);
        if (noMatch_) return false;
        std::swap(entry_, found_);
        hint_ = {};
        Arrive(entry_.row, Place::kNowhere);
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
    const std::size_t common = std::min(key.size(), entry_.key.size());
    const int order = std::memcmp(entry_.key.data(), key.data(), common);
    return order != 0 || common == key.size() ? order : -1;
}

std::optional<RowId> TableRecordset::GoTo(std::optional<IndexEntry> entry) {
    if (!entry) return std::nullopt;
    entry_ = std::move(*entry);
    hint_ = {};
    return entry_.row;
}

std::optional<RowId> TableRecordset::GoFirst() {
    return index_ == nullptr ? Source().Rows().First() : GoTo(index_->Tree().First());
}

std::optional<RowId> TableRecordset::GoLast() {
    return index_ == nullptr ? Source().Rows().Last() : GoTo(index_->Tree().Last());
}

std::optional<RowId> TableRecordset::GoNext() {
    if (index_ == nullptr) return Source().Rows().After(Row());
    if (!index_->Tree().Next(entry_, hint_, found_)) return std::nullopt;
    std::swap(entry_, found_);
    return entry_.row;
}

std::optional<RowId> TableRecordset::GoPrevious() {
    return index_ == nullptr ? Source().Rows().Before(Row()) : GoTo(index_->Tree().Before(entry_));
}

// The record stays the current one, at the place that its new values give it in the index.
// The change is done by now, so nothing here may fail it: without memory for the new key the
// position keeps the old one, which leads to the same neighbours as before the change.
void TableRecordset::CurrentChanged() {
    if (index_ == nullptr || index_->Obstacle()) return;
    try {
        const RowView& view = CurrentView();
        TableIndex::RowKey key;
        index_->MakeRowKey([&](std::size_t column) { return Source().ReadValue(view, column); },
                           key);
        if (key.entered) entry_.key = std::move(key.key);
        hint_ = {};
    } catch (const Error&) {
        return;
    } catch (const std::bad_alloc&) {
        return;
    }
}

}  // namespace jet
