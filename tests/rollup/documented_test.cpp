// The queries of the documentation give the answers that it shows, in every engine.
#include <array>
#include <cstdio>
#include <cstdlib>

#include "rollup/duckdb.h"
#include "rollup/postgres_server.h"
#include "rollup/roll_up.h"
#include "support/paths.h"

namespace {

using namespace tarn_test;

struct Documented {
    std::string query;
    Answer answer;
};

// Six digits of each number: engines write them in several ways, and add in several orders.
std::string Normal(const std::string& row) {
    std::string normal;
    for (std::size_t begin = 0; begin <= row.size();) {
        const std::size_t end = std::min(row.find('|', begin), row.size());
        const std::string field = row.substr(begin, end - begin);
        char* rest = nullptr;
        const double number = std::strtod(field.c_str(), &rest);
        std::array<char, 32> digits{};
        std::snprintf(digits.data(), digits.size(), "%.6g", number);
        const bool isNumber = !field.empty() && *rest == '\0';
        normal += (begin > 0 ? "|" : "") + (isNumber ? std::string(digits.data()) : field);
        begin = end + 1;
    }
    return normal;
}

Answer Normal(const Answer& rows) {
    Answer normal;
    for (const std::string& row : rows) normal.push_back(Normal(row));
    return normal;
}

// Each query stands in a block "sql", its answer in a block "text" behind it.
std::vector<Documented> DocumentedQueries() {
    std::ifstream page(support::SourceFolder() / "rollup" / "README.md");
    std::vector<Documented> found;
    std::string block;
    for (std::string line; std::getline(page, line);) {
        if (line.starts_with("```")) {
            block = line.substr(3);
            if (block == "sql") found.emplace_back();
        } else if (block == "sql") {
            found.back().query += line + "\n";
        } else if (block == "text" && !found.empty()) {
            found.back().answer.push_back(line);
        }
    }
    return found;
}

class DocumentedQuery : public testing::Test {
protected:
    [[nodiscard]] static CommandResult RollSamples(const std::string& to) {
        return RunCommand("cd " + Quoted(support::BuildFolder() / "TARNPrep") + " && " +
                          Quoted(BuiltProgram("fcdtool")) + " rollup Costs --to \"" + to + "\"");
    }
    template <typename Ask>
    static void ExpectAnswers(const Ask& ask) {
        const std::vector<Documented> documented = DocumentedQueries();
        EXPECT_GE(documented.size(), 5U);
        for (const Documented& each : documented) {
            EXPECT_EQ(Normal(ask(each.query)), Normal(each.answer)) << each.query;
        }
    }

    TempFolder folder_;
};

TEST_F(DocumentedQuery, InSqlite_GivesTheAnswerShown) {
    const auto file = folder_ / "it.sqlite";
    ASSERT_EQ(RollSamples("sqlite:" + file.string()).status, 0);
    ExpectAnswers([&file](const std::string& query) { return AskSqlite(file, query); });
}

TEST_F(DocumentedQuery, InDuckDb_GivesTheAnswerShown) {
    if (!DuckDbRuns()) GTEST_SKIP() << kNoDuckDb;
    ASSERT_EQ(RollSamples("csv:" + (folder_ / "it").string()).status, 0);
    ExpectAnswers([this](const std::string& query) {
        return AskDuckDb({folder_ / "it" / "load.sql"}, query);
    });
}

TEST_F(DocumentedQuery, InPostgres_GivesTheAnswerShown) {
    if (PostgresPrograms().empty()) GTEST_SKIP() << kNoPostgres;
    const PostgresServer server;
    ASSERT_EQ(RollSamples("postgresql:" + server.Connection()).status, 0);
    ExpectAnswers([&server](const std::string& query) { return server.Ask(query); });
}

}  // namespace
