// A connection of SQLite in memory, for tests.
#pragma once

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <string>
#include <vector>

namespace tarn_test {

using SqlRow = std::vector<std::string>;

class Connection {
public:
    Connection() { EXPECT_EQ(sqlite3_open(":memory:", &connection_), SQLITE_OK); }
    ~Connection() { sqlite3_close_v2(connection_); }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    [[nodiscard]] sqlite3* Get() const { return connection_; }

    // The library as any program loads it.
    void LoadExtension(const std::string& path) {
        sqlite3_db_config(connection_, SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 1, nullptr);
        char* message = nullptr;
        EXPECT_EQ(sqlite3_load_extension(connection_, path.c_str(), nullptr, &message), SQLITE_OK)
            << (message == nullptr ? "" : message);
        sqlite3_free(message);
    }

    int Execute(const std::string& statement) {
        return sqlite3_exec(connection_, statement.c_str(), nullptr, nullptr, nullptr);
    }

    // All rows, each value with its type before it, so that 1 and '1' differ. The result code of
    // the last step is left in `code`.
    std::vector<SqlRow> Query(const std::string& statement) {
        std::vector<SqlRow> rows;
        sqlite3_stmt* prepared = nullptr;
        code = sqlite3_prepare_v2(connection_, statement.c_str(), -1, &prepared, nullptr);
        while (code == SQLITE_OK || code == SQLITE_ROW) {
            code = sqlite3_step(prepared);
            if (code != SQLITE_ROW) break;
            SqlRow& row = rows.emplace_back();
            for (int column = 0; column < sqlite3_column_count(prepared); ++column) {
                row.push_back(Value(prepared, column));
            }
        }
        sqlite3_finalize(prepared);
        return rows;
    }

    [[nodiscard]] std::string Message() const { return sqlite3_errmsg(connection_); }

    int code = SQLITE_OK;

private:
    static std::string Value(sqlite3_stmt* statement, int column) {
        const int type = sqlite3_column_type(statement, column);
        const auto* bytes = static_cast<const char*>(sqlite3_column_blob(statement, column));
        const auto count = static_cast<std::size_t>(sqlite3_column_bytes(statement, column));
        const std::string text = bytes == nullptr ? std::string() : std::string(bytes, count);
        return std::to_string(type) + ':' + text;
    }

    sqlite3* connection_ = nullptr;
};

}  // namespace tarn_test
