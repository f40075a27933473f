// The interface of PostgreSQL's library as objects that close themselves.
#pragma once

#include <libpq-fe.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace rollup {

// Null is nothing.
using PostgresParameters = std::vector<std::optional<std::string>>;

// Rows and columns are counted from 0.
class PostgresResult {
public:
    explicit PostgresResult(PGresult* result) : result_(result) {}
    [[nodiscard]] PGresult* Get() const { return result_.get(); }
    [[nodiscard]] int Rows() const { return PQntuples(result_.get()); }
    [[nodiscard]] std::optional<std::string> Field(int row, int column) const;
    [[nodiscard]] std::string Text(int row, int column) const {
        return Field(row, column).value_or("");
    }

private:
    struct Clear {
        void operator()(PGresult* result) const { PQclear(result); }
    };
    std::unique_ptr<PGresult, Clear> result_;
};

class PostgresConnection {
public:
    // `connection` is what libpq takes: words, a URI, or nothing. Everything here throws
    // DestinationError, and FileNotTaken where the server refuses the rows that it was given.
    explicit PostgresConnection(const std::string& connection);

    PostgresResult Execute(const std::string& sql);
    PostgresResult Execute(const std::string& sql, const PostgresParameters& parameters);
    // Takes the rows of a query one by one.
    using TakeRow = std::function<void(const PostgresResult& row)>;
    void EachRow(const std::string& sql, const PostgresParameters& parameters, const TakeRow& take);
    // Sends the data of a COPY.
    void Copy(const std::string& sql, std::string_view data);
    [[nodiscard]] bool IsInTransaction() const;
    // A name as it stands in a statement.
    [[nodiscard]] std::string Quoted(std::string_view name) const;

private:
    void Require(const PostgresResult& result) const;
    [[noreturn]] void ThrowLost() const;

    struct Finish {
        void operator()(PGconn* connection) const { PQfinish(connection); }
    };
    std::unique_ptr<PGconn, Finish> connection_;
};

}  // namespace rollup
