// DuckDB, asked through its package for Node.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "support/command.h"
#include "support/paths.h"

namespace tarn_test {

inline constexpr const char* kNoDuckDb =
    "Node and its package @duckdb/node-api are not installed; tools/setup.sh test does it.";

// A command line that begins with the script which asks it.
inline std::string DuckDbLine() {
    const char* const home = std::getenv("HOME");
    const std::filesystem::path modules =
        std::filesystem::path(home == nullptr ? "/" : home) / ".cache/tarnprep/node/node_modules";
    return "NODE_PATH=" + Quoted(modules) + " node " +
           Quoted(support::SourceFolder() / "tests" / "rollup" / "duckdb.cjs") + " ";
}

inline bool DuckDbRuns() {
    static const bool runs = RunCommand(DuckDbLine() + "'SELECT 1'").output == "1\n";
    return runs;
}

// The rows of a statement after the scripts: "one|two", a null as "-".
inline std::vector<std::string> AskDuckDb(const std::vector<std::filesystem::path>& scripts,
                                          const std::string& statement) {
    std::string line = DuckDbLine();
    for (const auto& script : scripts) line += Quoted(script) + " ";
    std::string quoted = "'";
    for (const char c : statement) quoted += c == '\'' ? "'\\''" : std::string(1, c);
    std::istringstream output(RunCommand(line + quoted + "'").output);
    std::vector<std::string> rows;
    for (std::string row; std::getline(output, row);) rows.push_back(row);
    return rows;
}

}  // namespace tarn_test
