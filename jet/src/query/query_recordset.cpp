#include "query/query_recordset.h"

#include <algorithm>

#include "jet/error.h"
#include "query/candidates.h"
#include "values/text.h"

namespace jet {

namespace {

std::size_t RequireColumn(const Table& table, const std::string& name) {
    const auto column = table.Def().FindColumn(WidenName(name));
    if (!column) {
        throw Error(ErrorKind::kNoSuchField,
                    "The table '" + table.Name() + "' has no field '" + name + "'.");
    }
    return *column;
}

std::vector<std::size_t> ColumnsOf(const Table& table, const Query& query) {
    std::vector<std::size_t> columns;
    for (const std::string& field : query.fields) columns.push_back(RequireColumn(table, field));
    return columns;
}

bool Holds(Operator comparison, int order) {
    switch (comparison) {
        case Operator::kEqual:
            return order == 0;
        case Operator::kNotEqual:
            return order != 0;
        case Operator::kLess:
            return order < 0;
        case Operator::kLessOrEqual:
            return order <= 0;
        case Operator::kGreater:
            return order > 0;
        case Operator::kGreaterOrEqual:
            return order >= 0;
        default:  // unreachable: what is asked about null was answered before
            return false;
    }
}

bool IsPlainLetter(char16_t c) {
    return (c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z');
}

// Of a plain letter or digit.
char16_t Raised(char16_t c) {
    return c >= u'a' ? static_cast<char16_t>(c - u'a' + u'A') : c;
}

// True for most texts that differ, without making their keys: each letter and digit of the Latin
// alphabet has a weight of its own, so the first place where two of them differ decides.
bool SurelyDiffer(std::u16string_view left, std::u16string_view right) {
    const std::size_t common = std::min(left.size(), right.size());
    for (std::size_t i = 0; i < common; ++i) {
        if (!IsPlainLetter(left[i]) || !IsPlainLetter(right[i])) return false;
        if (Raised(left[i]) != Raised(right[i])) return true;
    }
    return false;
}

// One condition with its column found and its literal ready to be compared.
class Test {
public:
    Test(const Table& table, const Condition& condition)
        : table_(&table),
          column_(RequireColumn(table, condition.field)),
          comparison_(condition.comparison) {
        const ColumnType type = table.Def().columns[column_].type;
        isText_ = type == ColumnType::kText || type == ColumnType::kMemo;
        if (comparison_ == Operator::kIsNull || comparison_ == Operator::kIsNotNull) return;
        if (isText_ != std::holds_alternative<std::u16string>(condition.literal.Get())) {
            throw Error(ErrorKind::kTypeMismatch, "The condition on the field '" + condition.field +
                                                      "' compares different types.");
        }
        if (isText_) {
            text_ = condition.literal.AsText();
        } else {
            number_ = condition.literal.AsDouble();
        }
    }

    bool Passes(const RowView& row) {
        if (isText_) {
            const bool present = table_->ReadText(row, column_, current_);
            if (IsAboutNull()) return present == (comparison_ == Operator::kIsNotNull);
            if (comparison_ == Operator::kEqual && SurelyDiffer(current_, text_)) return false;
            return present &&
                   Holds(comparison_, CompareText(current_, text_, table_->Def().version));
        }
        const Value value = table_->ReadValue(row, column_);
        if (IsAboutNull()) return value.IsNull() == (comparison_ == Operator::kIsNull);
        if (value.IsNull()) return false;
        const double number = value.AsDouble();
        return Holds(comparison_, number < number_ ? -1 : number > number_ ? 1 : 0);
    }

private:
    [[nodiscard]] bool IsAboutNull() const {
        return comparison_ == Operator::kIsNull || comparison_ == Operator::kIsNotNull;
    }

    const Table* table_;
    std::size_t column_;
    Operator comparison_;
    bool isText_ = false;
    std::u16string text_;
    std::u16string current_;
    double number_ = 0;
};

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
    for (auto row = table.Rows().First(); row; row = table.Rows().After(*row)) visit(*row);
}

std::vector<RowId> Select(Table& table, const Query& query) {
    std::vector<Test> tests;
    for (const Condition& condition : query.conditions) tests.emplace_back(table, condition);
    const Order order(table, query);
    std::vector<std::pair<Key, RowId>> found;
    StoredRow stored;
    ForEachCandidate(table, query, [&](RowId row) {
        if (!table.Rows().Find(row, stored)) return;
        const RowView view = table.View(stored.bytes);
        if (std::all_of(tests.begin(), tests.end(),
                        [&view](Test& test) { return test.Passes(view); })) {
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
    : RowCursor(std::move(file), table, system, ColumnsOf(table, query)),
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
    RowCursor::RowDeleted(table, row);
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
    RowCursor::TransactionRolledBack(deleted);
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
