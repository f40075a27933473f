// A PostgreSQL server of a test's own, on a socket in its own folder.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "support/temp_folder.h"

namespace tarn_test {

// Empty where the server is not installed or cannot be run by this user; else the folder of its
// programs.
std::filesystem::path PostgresPrograms();
inline constexpr const char* kNoPostgres =
    "PostgreSQL 15 is not installed, or there is no user postgres to run it.";

class PostgresServer {
public:
    // Makes a new one and waits until it answers.
    PostgresServer();
    PostgresServer(const PostgresServer&) = delete;
    PostgresServer& operator=(const PostgresServer&) = delete;
    ~PostgresServer();

    // As libpq takes it.
    [[nodiscard]] std::string Connection() const;
    [[nodiscard]] std::filesystem::path Socket() const { return folder_ / "server"; }
    // The rows of a statement: "one|two", a null as "-".
    std::vector<std::string> Ask(const std::string& sql) const;

private:
    TempFolder folder_;
};

}  // namespace tarn_test
