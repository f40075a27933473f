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
    : BaseRecordset(std::move(file), table, system, ColumnsOf(table, query)) {
    auto rows = std::make_unique<ListCursor>(table.Rows(), Select(table, query));
    rows_ = rows.get();
    UseOrder(std::move(rows));
}

void QueryRecordset::SetIndex(std::string_view name) {
    RequireOpen();
    if (name.empty()) return;
    throw Error(ErrorKind::kNoSuchIndex, "The result of a query has no indexes.");
}

std::int32_t QueryRecordset::RecordCount() const {
    RequireOpen();
    return static_cast<std::int32_t>(rows_->Count());
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

}  // namespace jet
