// What DuckDB reads in CSV files are the rows that SQLite has.
#include "rollup/duckdb.h"
#include "rollup/roll_up.h"
#include "rollup/tables.h"

namespace {

using namespace tarn_test;

class SameRows : public RollUp {
protected:
    void SetUp() override {
        const CommandResult made = RunCommand(Quoted(BuiltProgram("rollup_files")) + " " +
                                              Quoted(Files() / "nation") + " 60 --small");
        ASSERT_EQ(made.status, 0) << made.output;
        EXPECT_EQ(RunAll().status, 1) << "two files are damaged";
        EXPECT_THAT(Ask("SELECT status, COUNT(*) FROM files GROUP BY status ORDER BY status"),
                    testing::ElementsAre("duplicate|1", "read|57", "refused|2"));
    }
    void RollTo(const std::string& to) const {
        EXPECT_EQ(RunCommand(Quoted(BuiltProgram("fcdtool")) + " rollup " + Quoted(Files()) +
                             " --jobs 3 --to \"" + to + "\"")
                      .status,
                  1);
    }
    template <typename AskOther>
    void ExpectRows(const AskOther& ask) const {
        // Nine tell singles apart, and SQLite writes fifteen.
        constexpr int kDigits = 11;
        for (const rollup::Table& table : rollup::Tables()) {
            std::string columns;
            for (const rollup::Column& column : table.columns) {
                columns += (columns.empty() ? "" : ", ") + std::string(column.name);
            }
            const std::string query = "SELECT " + columns + " FROM " + std::string(table.name);
            Answer wanted = Normal(Ask(query), kDigits);
            Answer rows = Normal(ask(query), kDigits);
            std::sort(wanted.begin(), wanted.end());
            std::sort(rows.begin(), rows.end());
            EXPECT_GE(rows.size(), 57U) << table.name;
            EXPECT_EQ(rows, wanted) << table.name;
        }
    }
};

TEST_F(SameRows, InCsvFilesAsDuckDbReadsThem_AreThoseInSqlite) {
    if (!DuckDbRuns()) GTEST_SKIP() << kNoDuckDb;
    const auto folder = folder_ / "it";
    RollTo("csv:" + folder.string());
    ExpectRows(
        [&folder](const std::string& query) { return AskDuckDb({folder / "load.sql"}, query); });
    const std::string parquet = (folder_ / "nvc").string();
    EXPECT_EQ(AskDuckDb({folder / "load.sql"}, "COPY (SELECT * FROM nvc) TO '" + parquet +
                                                   "' (FORMAT parquet, PARTITION_BY (year))"),
              Ask("SELECT COUNT(*) FROM nvc"))
        << "the command of the documentation";
    EXPECT_EQ(AskDuckDb({}, "SELECT COUNT(*), COUNT(DISTINCT year) FROM read_parquet('" + parquet +
                                "/*/*.parquet', hive_partitioning = true)"),
              Ask("SELECT COUNT(*), COUNT(DISTINCT year) FROM nvc"));
}

}  // namespace
