#include "rollup/postgres_server.h"

#include <gtest/gtest.h>
#include <libpq-fe.h>

#include <fstream>

#include "support/command.h"

namespace tarn_test {

namespace {

// A server refuses to be run by the superuser.
std::string AsServer() {
    static const bool isRoot = RunCommand("id -u").output == "0\n";
    return isRoot ? "setpriv --reuid=postgres --regid=postgres --clear-groups " : "";
}

std::string Program(const char* name) {
    return AsServer() + Quoted(PostgresPrograms() / name) + " ";
}

}  // namespace

std::filesystem::path PostgresPrograms() {
    static const std::filesystem::path folder = [] {
        const std::filesystem::path programs = "/usr/lib/postgresql/15/bin";
        const bool runs = std::filesystem::exists(programs / "initdb") &&
                          RunCommand(AsServer() + "true").status == 0;
        return runs ? programs : std::filesystem::path();
    }();
    return folder;
}

PostgresServer::PostgresServer() {
    const std::string data = Quoted(Socket());
    std::filesystem::create_directory(Socket());
    if (!AsServer().empty()) {
        RunCommand("chown postgres: " + data);
    }
    CommandResult made = RunCommand("cd / && " + Program("initdb") + "-D " + data +
                                    " -A trust -U tester --no-sync -E UTF8 --locale C.UTF-8");
    EXPECT_EQ(made.status, 0) << made.output;
    std::ofstream(Socket() / "postgresql.conf", std::ios::app)
        << "listen_addresses = ''\nfsync = off\nunix_socket_directories = '" << Socket().string()
        << "'\n";
    made = RunCommand("cd / && " + Program("pg_ctl") + "-D " + data + " -w -l " +
                      Quoted(Socket() / "log") + " start");
    EXPECT_EQ(made.status, 0) << made.output;
}

PostgresServer::~PostgresServer() {
    RunCommand("cd / && " + Program("pg_ctl") + "-D " + Quoted(Socket()) + " -m immediate -w stop");
}

std::string PostgresServer::Connection() const {
    return "host='" + Socket().string() + "' user=tester dbname=postgres";
}

std::vector<std::string> PostgresServer::Ask(const std::string& sql) const {
    PGconn* const connection = PQconnectdb(Connection().c_str());
    PGresult* const result = PQexec(connection, sql.c_str());
    std::vector<std::string> rows;
    const ExecStatusType status = PQresultStatus(result);
    if (status != PGRES_TUPLES_OK && status != PGRES_COMMAND_OK) {
        rows.push_back(std::string("error: ") + PQerrorMessage(connection));
    }
    for (int row = 0; row < PQntuples(result); ++row) {
        std::string line;
        for (int column = 0; column < PQnfields(result); ++column) {
            line += column > 0 ? "|" : "";
            line += PQgetisnull(result, row, column) != 0 ? "-" : PQgetvalue(result, row, column);
        }
        rows.push_back(line);
    }
    PQclear(result);
    PQfinish(connection);
    return rows;
}

}  // namespace tarn_test
