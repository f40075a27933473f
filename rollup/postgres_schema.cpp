#include "rollup/postgres_schema.h"

#include <algorithm>
#include <charconv>

#include "rollup/destination.h"
#include "rollup/views.h"

namespace rollup {

namespace {

// Tells tables that a roll-up has made from those of others.
constexpr const char* kMark = "Made by fcdtool rollup.";

std::string TypeName(ColumnType type) {
    switch (type) {
        case ColumnType::kText:
            return "text";
        case ColumnType::kWhole:
            return "bigint";
        case ColumnType::kNumber:
            return "double precision";
        case ColumnType::kTruth:
            break;
    }
    return "boolean";
}

std::uint32_t NumberOf(const std::string& digits) {
    std::uint32_t number = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return number;
}

[[noreturn]] void ThrowWantsMore(const std::string& table, const std::string& column) {
    throw DestinationError("The table " + table + " of the destination wants a value for " +
                           column + ", which a roll-up does not have.");
}

std::string PartitionStatement(const std::string& table, const std::string& ending,
                               const std::string& value) {
    return "CREATE TABLE IF NOT EXISTS " + table + "_" + ending + " PARTITION OF " + table +
           " FOR VALUES IN (" + value + ")";
}

}  // namespace

PostgresSchema::PostgresSchema(PostgresConnection& connection) : connection_(connection) {
    connection_.Execute("BEGIN");
    for (const Table& table : Tables()) {
        if (!IsThere(table.name)) {
            Make(table);
        }
        LookAt(table);
    }
    connection_.Execute("COMMIT");
}

bool PostgresSchema::IsThere(std::string_view relation) {
    return connection_.Execute("SELECT to_regclass($1)", {std::string(relation)})
        .Field(0, 0)
        .has_value();
}

void PostgresSchema::Make(const Table& table) {
    const std::string name(table.name);
    std::string columns;
    for (const Column& column : table.columns) {
        columns += (columns.empty() ? "" : ", ") + connection_.Quoted(column.name) + " " +
                   TypeName(column.type);
    }
    connection_.Execute("CREATE TABLE " + name + " (" + columns + ") PARTITION BY LIST (year)");
    connection_.Execute("COMMENT ON TABLE " + name + " IS '" + kMark + "'");
    if (table.id == TableId::kFiles) {
        connection_.Execute("CREATE INDEX ON files (path)");
        connection_.Execute("CREATE INDEX ON files (sha256)");
    }
    connection_.Execute("CREATE INDEX ON " + name + " (file_id)");
}

void PostgresSchema::LookAt(const Table& table) {
    const std::string name(table.name);
    const PostgresResult found = connection_.Execute(
        "SELECT attname, atttypid, attnotnull AND NOT atthasdef AND attidentity = '' "
        "FROM pg_attribute WHERE attrelid = to_regclass($1) AND attnum > 0 AND NOT attisdropped",
        {name});
    std::vector<std::uint32_t> types(table.columns.size());
    std::size_t fitting = 0;
    for (int row = 0; row < found.Rows(); ++row) {
        const std::string column = found.Text(row, 0);
        const auto own =
            std::find_if(table.columns.begin(), table.columns.end(),
                         [&column](const Column& known) { return known.name == column; });
        if (own != table.columns.end()) {
            types[static_cast<std::size_t>(own - table.columns.begin())] =
                NumberOf(found.Text(row, 1));
            ++fitting;
        } else if (found.Text(row, 2) == "t") {
            ThrowWantsMore(name, column);
        }
    }
    if (fitting < types.size()) {
        const auto missing = std::find(types.begin(), types.end(), 0U) - types.begin();
        throw DestinationError("The table " + name + " of the destination lacks the column " +
                               std::string(table.columns[static_cast<std::size_t>(missing)].name) +
                               ".");
    }
    const auto at = static_cast<std::size_t>(table.id);
    formats_[at] = PostgresFormat(table, std::move(types));
    isOwn_[at] = connection_.Execute("SELECT obj_description(to_regclass($1), 'pg_class')", {name})
                     .Text(0, 0) == kMark;
}

std::string PostgresSchema::Columns(TableId table) const {
    std::string columns;
    for (const Column& column : TableOf(table).columns) {
        columns += (columns.empty() ? "" : ", ") + connection_.Quoted(column.name);
    }
    return columns;
}

void PostgresSchema::MakeRoomFor(std::optional<std::int64_t> year) {
    if (years_.contains(year) || newYears_.contains(year)) {
        return;
    }
    const std::string value = year ? std::to_string(*year) : "NULL";
    const std::string ending = year ? std::to_string(*year) : "unknown";
    for (const Table& table : Tables()) {
        if (isOwn_[static_cast<std::size_t>(table.id)]) {
            connection_.Execute(PartitionStatement(std::string(table.name), ending, value));
        }
    }
    newYears_.insert(year);
}

void PostgresSchema::Committed() {
    years_.merge(newYears_);
    newYears_.clear();
}

void PostgresSchema::RolledBack() {
    newYears_.clear();
}

void PostgresSchema::MakeViews() {
    const std::vector<std::string> statements = ViewStatements(Dialect::kPostgres);
    for (std::size_t i = 0; i < statements.size(); ++i) {
        if (!IsThere(Views()[i].name)) {
            connection_.Execute(statements[i]);
        }
    }
}

}  // namespace rollup
