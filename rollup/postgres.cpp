#include "rollup/postgres.h"

#include "rollup/destination.h"
#include "season/text.h"

namespace rollup {

namespace {

// The server's words end in a line end.
std::string Sentence(const char* words) {
    return "PostgreSQL reports: " + season::WellFormed(season::Trimmed(words));
}

// What is wrong with values and rules, and not with the server.
bool IsAboutRows(std::string_view state) {
    return state.starts_with("22") || state.starts_with("23") || state.starts_with("44") ||
           state.starts_with("P0");
}

std::vector<const char*> Pointers(const PostgresParameters& parameters) {
    std::vector<const char*> pointers;
    for (const auto& parameter : parameters) {
        pointers.push_back(parameter ? parameter->c_str() : nullptr);
    }
    return pointers;
}

}  // namespace

std::optional<std::string> PostgresResult::Field(int row, int column) const {
    if (PQgetisnull(result_.get(), row, column) != 0) {
        return std::nullopt;
    }
    return std::string(PQgetvalue(result_.get(), row, column),
                       static_cast<std::size_t>(PQgetlength(result_.get(), row, column)));
}

PostgresConnection::PostgresConnection(const std::string& connection)
    : connection_(PQconnectdb(connection.c_str())) {
    if (PQstatus(connection_.get()) != CONNECTION_OK) {
        ThrowLost();
    }
    PQsetClientEncoding(connection_.get(), "UTF8");
    PQsetNoticeProcessor(
        connection_.get(), [](void*, const char*) {}, nullptr);
}

void PostgresConnection::ThrowLost() const {
    throw DestinationError(Sentence(PQerrorMessage(connection_.get())));
}

void PostgresConnection::Require(const PostgresResult& result) const {
    const ExecStatusType status = PQresultStatus(result.Get());
    if (status != PGRES_FATAL_ERROR && status != PGRES_BAD_RESPONSE) {
        return;
    }
    const char* const state = PQresultErrorField(result.Get(), PG_DIAG_SQLSTATE);
    const char* const words = PQresultErrorField(result.Get(), PG_DIAG_MESSAGE_PRIMARY);
    if (state == nullptr || words == nullptr) {
        ThrowLost();
    }
    if (IsAboutRows(state)) {
        throw FileNotTaken("The destination refuses its rows. " + Sentence(words) + ".");
    }
    throw DestinationError(Sentence(words) + ".");
}

PostgresResult PostgresConnection::Execute(const std::string& sql) {
    PostgresResult result(PQexec(connection_.get(), sql.c_str()));
    Require(result);
    return result;
}

PostgresResult PostgresConnection::Execute(const std::string& sql,
                                           const PostgresParameters& parameters) {
    const auto pointers = Pointers(parameters);
    PostgresResult result(PQexecParams(connection_.get(), sql.c_str(),
                                       static_cast<int>(pointers.size()), nullptr, pointers.data(),
                                       nullptr, nullptr, 0));
    Require(result);
    return result;
}

void PostgresConnection::EachRow(const std::string& sql, const PostgresParameters& parameters,
                                 const TakeRow& take) {
    const auto pointers = Pointers(parameters);
    if (PQsendQueryParams(connection_.get(), sql.c_str(), static_cast<int>(pointers.size()),
                          nullptr, pointers.data(), nullptr, nullptr, 0) == 0) {
        ThrowLost();
    }
    PQsetSingleRowMode(connection_.get());
    while (PGresult* const next = PQgetResult(connection_.get())) {
        const PostgresResult result(next);
        Require(result);
        if (result.Rows() > 0) {
            take(result);
        }
    }
}

void PostgresConnection::Copy(const std::string& sql, std::string_view data) {
    constexpr std::size_t kPart = std::size_t{1} << 16;
    Execute(sql);
    for (std::size_t at = 0; at < data.size(); at += kPart) {
        const std::string_view part = data.substr(at, kPart);
        if (PQputCopyData(connection_.get(), part.data(), static_cast<int>(part.size())) != 1) {
            break;  // the result says why
        }
    }
    if (PQputCopyEnd(connection_.get(), nullptr) != 1) {
        ThrowLost();
    }
    std::vector<PostgresResult> results;
    while (PGresult* const next = PQgetResult(connection_.get())) {
        results.emplace_back(next);
    }
    for (const PostgresResult& result : results) {
        Require(result);
    }
}

bool PostgresConnection::IsInTransaction() const {
    const PGTransactionStatusType status = PQtransactionStatus(connection_.get());
    return status == PQTRANS_INTRANS || status == PQTRANS_INERROR;
}

std::string PostgresConnection::Quoted(std::string_view name) const {
    struct Free {
        void operator()(char* memory) const { PQfreemem(memory); }
    };
    const std::unique_ptr<char, Free> quoted(
        PQescapeIdentifier(connection_.get(), name.data(), name.size()));
    if (!quoted) {
        ThrowLost();
    }
    return quoted.get();
}

}  // namespace rollup
