#include "rollup/sqlite.h"

#include <cmath>
#include <filesystem>
#include <system_error>

#include "jet/path.h"
#include "rollup/destination.h"

namespace rollup {

namespace {

constexpr int kPatience = 60000;  // ms, while another program writes

}  // namespace

SqliteDatabase::SqliteDatabase(const std::string& file, Mode mode) : file_(file) {
    std::error_code absent;
    if (std::filesystem::is_directory(jet::PathOf(file), absent)) {
        throw DestinationError(file_ +
                               ": This is a folder. A roll-up in CSV files is named csv:FOLDER.");
    }
    sqlite3* opened = nullptr;
    const int flags =
        mode == Mode::kRead ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
    const int result = sqlite3_open_v2(file.c_str(), &opened, flags, nullptr);
    database_.reset(opened);
    if (result != SQLITE_OK) {
        ThrowLastError();
    }
    sqlite3_extended_result_codes(opened, 1);
    sqlite3_busy_timeout(opened, kPatience);
}

void SqliteDatabase::ThrowLastError() const {
    const char* const words = database_ ? sqlite3_errmsg(database_.get()) : "out of memory";
    throw DestinationError(file_ + ": SQLite reports: " + words + ".");
}

void SqliteDatabase::Execute(const std::string& sql) {
    if (sqlite3_exec(database_.get(), sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
        ThrowLastError();
    }
}

SqliteStatement SqliteDatabase::Prepare(const std::string& sql) {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(database_.get(), sql.c_str(), static_cast<int>(sql.size()), &statement,
                           nullptr) != SQLITE_OK) {
        ThrowLastError();
    }
    return {*this, statement};
}

bool SqliteDatabase::IsInTransaction() const {
    return sqlite3_get_autocommit(database_.get()) == 0;
}

void SqliteStatement::Bind(int parameter, const Cell& value) {
    sqlite3_stmt* const statement = statement_.get();
    const int at = parameter + 1;
    int result = SQLITE_OK;
    if (const auto* text = std::get_if<std::string_view>(&value)) {
        // An empty view may have no address, which would bind null.
        const char* const begin = text->empty() ? "" : text->data();
        result =
            sqlite3_bind_text64(statement, at, begin, text->size(), SQLITE_STATIC, SQLITE_UTF8);
    } else if (const auto* whole = std::get_if<std::int64_t>(&value)) {
        result = sqlite3_bind_int64(statement, at, *whole);
    } else if (const auto* truth = std::get_if<bool>(&value)) {
        result = sqlite3_bind_int(statement, at, *truth ? 1 : 0);
    } else if (const auto* number = std::get_if<double>(&value)) {
        // SQLite has no such number and would take null for it.
        result = std::isnan(*number) ? sqlite3_bind_text(statement, at, "NaN", -1, SQLITE_STATIC)
                                     : sqlite3_bind_double(statement, at, *number);
    } else {
        result = sqlite3_bind_null(statement, at);
    }
    if (result != SQLITE_OK) {
        database_->ThrowLastError();
    }
}

bool SqliteStatement::Step() {
    const int result = sqlite3_step(statement_.get());
    if (result != SQLITE_ROW && result != SQLITE_DONE) {
        database_->ThrowLastError();
    }
    return result == SQLITE_ROW;
}

void SqliteStatement::Reset() {
    sqlite3_reset(statement_.get());
}

void SqliteStatement::Run() {
    struct Always {
        SqliteStatement& statement;
        ~Always() { statement.Reset(); }
    } const always{*this};
    Step();
}

bool SqliteStatement::IsNull(int column) const {
    return sqlite3_column_type(statement_.get(), column) == SQLITE_NULL;
}

std::string SqliteStatement::Text(int column) const {
    const auto* const text =
        reinterpret_cast<const char*>(sqlite3_column_text(statement_.get(), column));
    const int size = sqlite3_column_bytes(statement_.get(), column);
    return text == nullptr ? std::string() : std::string(text, static_cast<std::size_t>(size));
}

std::int64_t SqliteStatement::Whole(int column) const {
    return sqlite3_column_int64(statement_.get(), column);
}

double SqliteStatement::Number(int column) const {
    return sqlite3_column_double(statement_.get(), column);
}

std::optional<std::string> SqliteStatement::OptionalText(int column) const {
    return IsNull(column) ? std::nullopt : std::optional(Text(column));
}

std::optional<std::int64_t> SqliteStatement::OptionalWhole(int column) const {
    return IsNull(column) ? std::nullopt : std::optional(Whole(column));
}

}  // namespace rollup
