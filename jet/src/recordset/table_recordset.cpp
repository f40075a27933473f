#include "recordset/table_recordset.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "jet/error.h"
#include "os/out_of_memory.h"
#include "table/row_cursor.h"
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
    : BaseRecordset(std::move(file), table, system, {}) {
    UseOrder(std::make_unique<RowCursor>(table.Rows()));
}

void TableRecordset::SetIndex(std::string_view name) {
    return Guarded([&] {
        RequireOpen();
        DropEdit();
        SetSearchFailed(false);
        if (name.empty()) {
            UseOrder(std::make_unique<RowCursor>(Source().Rows()));
            index_ = nullptr;
            entries_ = nullptr;
            indexName_.clear();
            return;
        }
        const LogicalIndex* found = Source().Def().FindIndex(WidenName(name));
        if (found == nullptr) {
            throw Error(ErrorKind::kNoSuchIndex, "The table '" + Source().Name() +
                                                     "' has no index '" + std::string(name) + "'.");
        }
        std::string newName = found->name;
        const TableIndex* index = Source().Indexes()[found->real].get();
        auto cursor = std::make_unique<KeyCursor>(Source(), *index);
        KeyCursor* entries = cursor.get();
        UseOrder(std::move(cursor));
        index_ = index;
        entries_ = entries;
        indexName_ = std::move(newName);
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
        noMatch_ = !entries_->Seek(searchKey_, WayOf(comparison));
        SetSearchFailed(noMatch_);
        if (noMatch_) return false;
        Arrive(true, Place::kNowhere);
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
    if (!IsOnRecord()) {
        throw Error(ErrorKind::kNoCurrentRecord, "There is no current record.");
    }
    const Key& own = entries_->RowKey();
    const std::size_t common = std::min(key.size(), own.size());
    const int order = std::memcmp(own.data(), key.data(), common);
    return order != 0 || common == key.size() ? order : -1;
}

}  // namespace jet
