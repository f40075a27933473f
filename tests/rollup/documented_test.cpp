// The queries of the documentation give the answers that it shows, in every engine.
#include "rollup/duckdb.h"
#include "rollup/postgres_server.h"
#include "rollup/roll_up.h"
#include "support/paths.h"

namespace {

using namespace tarn_test;

// Engines add in several orders.
constexpr int kDigits = 6;

struct Documented {
    std::string query;
    Answer answer;
};

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
            EXPECT_EQ(Normal(ask(each.query), kDigits), Normal(each.answer, kDigits)) << each.query;
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
