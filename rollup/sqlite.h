// SQLite's interface as objects that close themselves.
#pragma once

#include <sqlite3.h>

#include <memory>
#include <string>

#include "rollup/tables.h"

namespace rollup {

class SqliteStatement;

class SqliteDatabase {
public:
    enum class Mode { kRead, kWrite };

    // Throws DestinationError, as everything here does. For writing a missing file is made.
    SqliteDatabase(const std::string& file, Mode mode);

    void Execute(const std::string& sql);
    [[nodiscard]] SqliteStatement Prepare(const std::string& sql);
    [[nodiscard]] bool IsInTransaction() const;
    [[noreturn]] void ThrowLastError() const;

private:
    struct Close {
        void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
    };
    std::string file_;
    std::unique_ptr<sqlite3, Close> database_;
};

// Columns and parameters are counted from 0.
class SqliteStatement {
public:
    SqliteStatement(const SqliteDatabase& database, sqlite3_stmt* statement)
        : database_(&database), statement_(statement) {}

    // Texts are not copied: they must live until the statement has run.
    void Bind(int parameter, const Cell& value);
    // True when there is a row.
    bool Step();
    void Reset();
    // Runs a statement that gives no rows.
    void Run();

    [[nodiscard]] bool IsNull(int column) const;
    [[nodiscard]] std::string Text(int column) const;
    [[nodiscard]] std::int64_t Whole(int column) const;
    [[nodiscard]] double Number(int column) const;
    [[nodiscard]] std::optional<std::string> OptionalText(int column) const;
    [[nodiscard]] std::optional<std::int64_t> OptionalWhole(int column) const;

private:
    struct Finalize {
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };
    const SqliteDatabase* database_;
    std::unique_ptr<sqlite3_stmt, Finalize> statement_;
};

}  // namespace rollup
