#include "query/query_recordset.h"

#include <algorithm>

#include "jet/error.h"
#include "query/candidates.h"
#include "query/row_condition.h"
#include "table/row_cursor.h"
#include "values/text.h"

namespace jet {

namespace {

std::vector<std::size_t> ColumnsOf(const Table& table, const Query& query) {
    std::vector<std::size_t> columns;
    for (const std::string& field : query.fields) columns.push_back(RequireColumn(table, field));
    return columns;
}

// The order of a query, as keys like those of an index.
class Order {
public:
    Order(const Table& table, const Query& query) : table_(&table) {
        for (const OrderTerm& term : query.order) {
            const std::size_t column = RequireColumn(table, term.field);
            KeyColumn key;
            key.type = table.Def().columns[column].type;
            // The keys are compared with each other only, so one order of texts serves them all.
            if (key.type == ColumnType::kMemo) key.type = ColumnType::kText;
            key.ascending = term.ascending;
            columns_.push_back(column);
            keys_.push_back(key);
        }
    }

    [[nodiscard]] Key KeyOf(const RowView& row) const {
        Key key;
        for (std::size_t i = 0; i < columns_.size(); ++i) {
            AppendKeyPart(key, keys_[i], table_->ReadValue(row, columns_[i]),
                          table_->Def().version);
        }
        return key;
    }

private:
    const Table* table_;
    std::vector<std::size_t> columns_;
    std::vector<KeyColumn> keys_;
};

// Calls `visit` with each row that the query has to look at, in stored order.
template <typename Visit>
void ForEachCandidate(Table& table, const Query& query, Visit visit) {
    if (const auto rows = RowsByIndex(table, query)) {
        for (const RowId row : *rows) visit(row);
        return;
    }
    RowCursor cursor(table.Rows());
    for (bool on = cursor.SeekToFirst(); on; on = cursor.Next()) visit(cursor.Row());
}

std::vector<RowId> Select(Table& table, const Query& query) {
    std::vector<RowCondition> tests;
    for (const Condition& condition : query.conditions) tests.emplace_back(table, condition);
    const Order order(table, query);
    std::vector<std::pair<Key, RowId>> found;
    StoredRow stored;
    ForEachCandidate(table, query, [&](RowId row) {
        if (!table.Rows().Find(row, stored)) return;
        const RowView view = table.View(stored.bytes);
        if (std::all_of(tests.begin(), tests.end(),
                        [&view](RowCondition& test) { return test.Passes(view); })) {
            found.emplace_back(order.KeyOf(view), row);
        }
    });
    std::stable_sort(found.begin(), found.end(), [](const auto& left, const auto& right) {
        return KeyOrder()(left.first, right.first);
    });
    std::vector<RowId> rows;
    rows.reserve(found.size());
    for (const auto& [key, row] : found) rows.push_back(row);
    return rows;
}

}  // namespace

QueryRecordset::QueryRecordset(std::shared_ptr<OpenFile> file, Table& table, bool system,
                               const Query& query)
    : BaseRecordset(std::move(file), table, system, ColumnsOf(table, query)),
      rows_(Select(table, query)) {
    Arrive(GoTo(0), Place::kNowhere);
}

void QueryRecordset::SetIndex(std::string_view name) {
    RequireOpen();
    if (name.empty()) return;
    throw Error(ErrorKind::kNoSuchIndex, "The result of a query has no indexes.");
}

std::int32_t QueryRecordset::RecordCount() const {
    RequireOpen();
    return static_cast<std::int32_t>(rows_.size());
}

void QueryRecordset::ThrowNoIndex() const {
    RequireOpen();
    throw Error(ErrorKind::kNoSuchIndex, "The result of a query has no indexes.");
}

bool QueryRecordset::Seek(Comparison /*comparison*/, std::span<const Value> /*key*/) {
    ThrowNoIndex();
}

void QueryRecordset::MakeKey(std::span<const Value> /*key*/,
                             std::vector<std::byte>& /*into*/) const {
    ThrowNoIndex();
}

int QueryRecordset::CompareToKey(std::span<const std::byte> /*key*/) const {
    ThrowNoIndex();
}

std::optional<RowId> QueryRecordset::GoTo(std::size_t place) {
    if (place >= rows_.size()) return std::nullopt;
    at_ = place;
    return rows_[place];
}

std::optional<RowId> QueryRecordset::GoFirst() {
    return GoTo(0);
}

std::optional<RowId> QueryRecordset::GoLast() {
    return rows_.empty() ? std::nullopt : GoTo(rows_.size() - 1);
}

std::optional<RowId> QueryRecordset::GoNext() {
    return GoTo(Where() == Place::kGone ? at_ : at_ + 1);
}

std::optional<RowId> QueryRecordset::GoPrevious() {
    return at_ == 0 ? std::nullopt : GoTo(at_ - 1);
}

void QueryRecordset::RowDeleted(const Table& table, RowId row) {
    if (&table != &Source()) return;
    BaseRecordset::RowDeleted(table, row);
    const auto found = std::find(rows_.begin(), rows_.end(), row);
    if (found == rows_.end()) return;
    if (static_cast<std::size_t>(found - rows_.begin()) < at_) --at_;
    rows_.erase(found);
}

// Where the first of these is that is among the rows, or the end.
std::size_t QueryRecordset::PlaceOfFirst(std::span<const RowId> rows) const {
    for (const RowId row : rows) {
        const auto found = std::find(rows_.begin(), rows_.end(), row);
        if (found != rows_.end()) return static_cast<std::size_t>(found - rows_.begin());
    }
    return rows_.size();
}

// Removes the rows that were not there before the transaction. Gives the new place of what is at
// `place`, or of its follower.
std::size_t QueryRecordset::KeepSurvivors(std::size_t place,
                                          std::span<const DeletedRow> deleted) noexcept {
    std::size_t kept = 0;
    std::size_t newPlace = 0;
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        if (i == place) newPlace = kept;
        if (Survives(rows_[i], deleted)) rows_[kept++] = rows_[i];
    }
    if (place >= rows_.size()) newPlace = kept;
    rows_.resize(kept);
    return newPlace;
}

void QueryRecordset::TransactionRolledBack(std::span<const DeletedRow> deleted) noexcept {
    const bool wasOn = Where() == Place::kOn;
    BaseRecordset::TransactionRolledBack(deleted);
    const std::size_t next = wasOn && Where() == Place::kGone ? at_ + 1 : at_;
    if (!rowsBefore_) {
        at_ = KeepSurvivors(next, deleted);
        return;
    }
    rows_.swap(*rowsBefore_);
    const std::span<const RowId> rest(*rowsBefore_);
    at_ = PlaceOfFirst(rest.subspan(std::min(next, rest.size())));
}

}  // namespace jet
