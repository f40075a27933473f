// A connection of SQLite over Jet files, for one query.
#pragma once

#include <sqlite3.h>

#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "jetsql/OpenedFile.h"
#include "jetsql/command/Rows.h"

namespace jetsql {

// What SQLite, or a file while it was read, said against a query.
class QueryError : public std::runtime_error {
public:
    QueryError(const std::string& sentence, bool isOfFile)
        : std::runtime_error(sentence), isOfFile_(isOfFile) {}
    [[nodiscard]] bool IsOfFile() const { return isOfFile_; }

private:
    bool isOfFile_;
};

class Session {
public:
    // Throws QueryError when SQLite cannot be had.
    Session();

    // Makes the file's tables known: under their own names or, when it is one of several, in a
    // schema named by the file's title, with a number behind it where an earlier file has the same.
    // Throws jet::Error when the file cannot be read, QueryError when there are too many.
    void AddFile(const std::string& path, bool ofSeveral);

    // Runs one or more statements, or ".tables" or ".schema". Throws QueryError.
    void Run(const std::string& query, RowPrinter& printer);

private:
    struct Closer {
        void operator()(sqlite3* connection) const { sqlite3_close_v2(connection); }
    };

    [[noreturn]] void Throw(int code) const;
    void Execute(const std::string& statement) const;
    [[nodiscard]] std::string FreeSchema(const std::string& title) const;
    void RunStatements(const std::string& query, RowPrinter& printer);

    std::unique_ptr<sqlite3, Closer> connection_;
    std::shared_ptr<OpenedFiles> files_;
    std::set<std::string> schemas_;  // in lower case
    std::vector<std::shared_ptr<OpenedFile>> kept_;
};

}  // namespace jetsql
