// What a query finds in a Jet file, it finds in a copy of the table that SQLite keeps itself.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "jet/database.h"
#include "jet/recordset.h"
#include "jetsql/Connection.h"
#include "support/jet_files.h"
#include "support/paths.h"
#include "support/reasons.h"

namespace {

using tarn_test::Connection;
using tarn_test::SqlRow;

constexpr int kMostRecords = 3000;
constexpr int kValuesOfColumn = 5;

std::string Quoted(const std::string& name, char quote) {
    std::string quoted(1, quote);
    for (const char character : name) {
        if (character == quote) quoted += quote;
        quoted += character;
    }
    return quoted + quote;
}

// A table of a Jet file as "jet_side", and a copy of it as "copy".
class Pair {
public:
    Pair(Connection& connection, const std::filesystem::path& file, const jet::TableSchema& table)
        : connection_(connection), table_(table) {
        connection_.Execute("DROP TABLE IF EXISTS jet_side");
        connection_.Execute("DROP TABLE IF EXISTS copy");
        EXPECT_EQ(connection_.Execute("CREATE VIRTUAL TABLE jet_side USING jet(" +
                                      Quoted(file.string(), '\'') + ", " +
                                      Quoted(table.name, '\'') + ")"),
                  SQLITE_OK)
            << connection_.Message();
        EXPECT_EQ(connection_.Execute("CREATE TABLE copy(" + Columns() + ")"), SQLITE_OK)
            << connection_.Message();
        EXPECT_EQ(connection_.Execute("INSERT INTO copy SELECT * FROM jet_side"), SQLITE_OK)
            << connection_.Message();
    }

    // Both sides give the same rows to a condition and, in the columns of the order, in one order.
    void ExpectSame(const std::string& condition, const std::string& order = {}) {
        const std::string where = condition.empty() ? "" : " WHERE " + condition;
        std::vector<SqlRow> ours = connection_.Query("SELECT * FROM jet_side" + where);
        EXPECT_EQ(connection_.code, SQLITE_DONE) << connection_.Message() << where;
        std::vector<SqlRow> theirs = connection_.Query("SELECT * FROM copy" + where);
        std::ranges::sort(ours);
        std::ranges::sort(theirs);
        EXPECT_EQ(ours, theirs) << table_.name << where;
        if (!order.empty()) {
            const std::string columns =
                order.find(" DESC") == std::string::npos ? order : Without(order, " DESC");
            const std::string tail = where + " ORDER BY " + order;
            EXPECT_EQ(connection_.Query("SELECT " + columns + " FROM jet_side" + tail),
                      connection_.Query("SELECT " + columns + " FROM copy" + tail))
                << table_.name << tail;
        }
        ++asked;
    }

    std::vector<std::string> ValuesOf(const std::string& column) {
        std::vector<std::string> values;
        for (const SqlRow& row : connection_.Query("SELECT DISTINCT quote(" + column +
                                                   ") FROM copy ORDER BY random() LIMIT " +
                                                   std::to_string(kValuesOfColumn))) {
            values.push_back(row[0].substr(row[0].find(':') + 1));
        }
        return values;
    }

    int asked = 0;

private:
    static std::string Without(std::string text, const std::string& part) {
        for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part)) {
            text.erase(at, part.size());
        }
        return text;
    }

    std::string Columns() {
        std::string columns;
        for (const SqlRow& row :
             connection_.Query("SELECT name, type FROM pragma_table_info('jet_side')")) {
            columns += (columns.empty() ? "" : ", ") + Quoted(row[0].substr(2), '"') + ' ' +
                       row[1].substr(2);
        }
        return columns;
    }

    Connection& connection_;
    const jet::TableSchema& table_;
};

void AskOfColumn(Pair& pair, const std::string& column) {
    std::vector<std::string> values = pair.ValuesOf(column);
    for (const char* odd : {"NULL", "0", "-0.0", "0.5", "-1e300", "1e300", "'abc'", "''", "'7'",
                            "'2001-01-01'", "'1899-12-29 12:00:00'", "x'00'"}) {
        values.emplace_back(odd);
    }
    for (const std::string& value : values) {
        for (const char* sign : {" = ", " < ", " <= ", " > ", " >= "}) {
            pair.ExpectSame(column + sign + value, column);
        }
        pair.ExpectSame(column + " = " + value + " COLLATE NOCASE");
        pair.ExpectSame(column + " = " + value + " OR " + column + " < " + values.front());
        pair.ExpectSame(column + " IN (" + value + ", 1, 'x')", column + " DESC");
    }
    pair.ExpectSame(column + " IS NULL");
    pair.ExpectSame("", column);
    pair.ExpectSame("", column + " DESC");
}

void AskOfIndex(Pair& pair, const jet::IndexSchema& index) {
    if (index.columns.size() < 2) return;
    const std::string first = Quoted(index.columns[0].name, '"');
    const std::string second = Quoted(index.columns[1].name, '"');
    pair.ExpectSame("", first + ", " + second);
    pair.ExpectSame("", first + " DESC, " + second + " DESC");
    pair.ExpectSame("", first + " DESC, " + second);
    for (const std::string& value : pair.ValuesOf(first)) {
        for (const std::string& other : pair.ValuesOf(second)) {
            const std::string fixed = first + " = " + value + " AND ";
            pair.ExpectSame(fixed + second + " = " + other, second);
            pair.ExpectSame(fixed + second + " > " + other, second);
            pair.ExpectSame(fixed + second + " <= " + other, second + " DESC");
        }
    }
}

int AskOfFile(Connection& connection, const std::filesystem::path& file) {
    std::vector<jet::TableSchema> tables;
    {
        const auto data = jet::Database::Open(file, {.exclusive = false, .readOnly = true});
        for (const std::string& name : data->TableNames()) {
            if (data->OpenTable(name)->RecordCount() <= kMostRecords) {
                tables.push_back(data->Describe(name));
            }
        }
    }
    int asked = 0;
    for (const jet::TableSchema& table : tables) {
        Pair pair(connection, file, table);
        for (const jet::IndexSchema& index : table.indexes) {
            AskOfColumn(pair, Quoted(index.columns[0].name, '"'));
            AskOfIndex(pair, index);
        }
        asked += pair.asked;
    }
    return asked;
}

TEST(SqlOverJet, EveryIndexOfFilesOfOtherOrigin_AnswersAsACopyDoes) {
    const std::vector<std::filesystem::path> files = tarn_test::CorpusFiles();
    if (files.empty()) GTEST_SKIP() << tarn_test::kNoCorpus;
    Connection connection;
    connection.LoadExtension((support::BuildFolder() / "bin/libjetsql").string());
    int asked = 0;
    for (const std::filesystem::path& file : files) {
        SCOPED_TRACE(file.filename().string());
        try {
            asked += AskOfFile(connection, file);
        } catch (const jet::Error&) {
            continue;  // no database, or one that is refused
        }
        if (::testing::Test::HasFailure()) break;
    }
    EXPECT_GT(asked, 1000);
}

}  // namespace
