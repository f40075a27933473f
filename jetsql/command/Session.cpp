#include "jetsql/command/Session.h"

#include <algorithm>
#include <cctype>
#include <filesystem>

#include "jet/path.h"
#include "jetsql/JetTable.h"
#include "jetsql/Values.h"

extern "C" int sqlite3_jetsql_init(sqlite3* connection, char** message,
                                   const sqlite3_api_routines* api);

namespace jetsql {

namespace {

// The statements behind the two words that are no SQL.
constexpr const char* kTables =
    "SELECT iif(t.schema = 'main', '', t.schema || '.') || t.name AS \"table\", "
    "t.ncol AS columns, j.records FROM pragma_table_list t, files f, jet_tables(f.path) j "
    "WHERE f.schema = t.schema AND j.name = t.name ORDER BY 1";
constexpr const char* kSchema = "SELECT sql FROM described ORDER BY 1";

std::string InLowerCase(std::string text) {
    std::ranges::transform(text, text.begin(),
                           [](unsigned char letter) { return std::tolower(letter); });
    return text;
}

// In single quotes, for SQL.
std::string Literal(const std::string& text) {
    std::string quoted = "'";
    for (const char character : text) {
        if (character == '\'') quoted += '\'';
        quoted += character;
    }
    return quoted + '\'';
}

bool IsOfFile(int code) {
    switch (code & 0xFF) {
        case SQLITE_CORRUPT:
        case SQLITE_IOERR:
        case SQLITE_CANTOPEN:
            return true;
        default:
            return false;
    }
}

struct Finalizer {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Statement = std::unique_ptr<sqlite3_stmt, Finalizer>;

std::vector<std::string> Headings(sqlite3_stmt* statement) {
    std::vector<std::string> headings;
    for (int column = 0; column < sqlite3_column_count(statement); ++column) {
        headings.emplace_back(sqlite3_column_name(statement, column));
    }
    return headings;
}

}  // namespace

Session::Session() : schemas_{"main", "temp"} {
    sqlite3* connection = nullptr;
    const int code = sqlite3_open(":memory:", &connection);
    connection_.reset(connection);
    if (code != SQLITE_OK) Throw(code);
    files_ = std::make_shared<OpenedFiles>();
    if (AddJetModule(connection, files_) != SQLITE_OK ||
        AddTablesFunction(connection, files_) != SQLITE_OK) {
        Throw(SQLITE_NOMEM);
    }
    Execute("CREATE TEMP TABLE files(schema TEXT, path TEXT)");
    Execute("CREATE TEMP TABLE described(sql TEXT)");
}

void Session::AddFile(const std::string& path, bool ofSeveral) {
    const std::shared_ptr<OpenedFile> file = files_->Open(path);
    kept_.push_back(file);
    std::string schema = "main";
    if (ofSeveral) {
        schema = FreeSchema(jet::PathOf(path).stem().string());
        schemas_.insert(InLowerCase(schema));
        Execute("ATTACH ':memory:' AS " + Quoted(schema));
    }
    Execute("INSERT INTO files VALUES (" + Literal(schema) + ", " + Literal(path) + ")");
    for (const std::string& table : file->Data().TableNames()) {
        const std::string name = (ofSeveral ? Quoted(schema) + '.' : std::string()) + Quoted(table);
        Execute("CREATE VIRTUAL TABLE " + name + " USING jet(" + Literal(path) + ", " +
                Literal(table) + ")");
        Execute("INSERT INTO described VALUES (" +
                Literal(Declaration(file->Data().Describe(table), name, true)) + ")");
    }
}

std::string Session::FreeSchema(const std::string& title) const {
    std::string schema = title;
    for (int number = 2; schemas_.contains(InLowerCase(schema)); ++number) {
        schema = title + '_' + std::to_string(number);
    }
    return schema;
}

void Session::Run(const std::string& query, RowPrinter& printer) {
    Execute("PRAGMA query_only = ON");
    if (query == ".tables") {
        RunStatements(kTables, printer);
    } else if (query == ".schema") {
        RunStatements(kSchema, printer);
    } else {
        RunStatements(query, printer);
    }
}

void Session::RunStatements(const std::string& query, RowPrinter& printer) {
    const char* rest = query.c_str();
    while (*rest != '\0') {
        sqlite3_stmt* prepared = nullptr;
        int code = sqlite3_prepare_v2(connection_.get(), rest, -1, &prepared, &rest);
        const Statement statement(prepared);
        if (code != SQLITE_OK) Throw(code);
        if (!statement) continue;  // blanks or a comment
        const bool hasRows = sqlite3_column_count(prepared) > 0;
        if (hasRows) printer.Begin(Headings(prepared));
        while ((code = sqlite3_step(prepared)) == SQLITE_ROW) printer.Row(prepared);
        if (hasRows) printer.End();
        if (code != SQLITE_DONE) Throw(code);
    }
}

void Session::Execute(const std::string& statement) const {
    const int code = sqlite3_exec(connection_.get(), statement.c_str(), nullptr, nullptr, nullptr);
    if (code != SQLITE_OK) Throw(code);
}

void Session::Throw(int code) const {
    throw QueryError(connection_ ? sqlite3_errmsg(connection_.get()) : sqlite3_errstr(code),
                     IsOfFile(code));
}

}  // namespace jetsql
