// fcdtool rollup into PostgreSQL.
#include "rollup/postgres_server.h"
#include "rollup/roll_up.h"

namespace {

using namespace tarn_test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class PostgresRollUp : public RollUp {
protected:
    void SetUp() override {
        if (PostgresPrograms().empty()) GTEST_SKIP() << kNoPostgres;
        server_ = std::make_unique<PostgresServer>();
    }
    [[nodiscard]] CommandResult Roll(const std::string& options = {}) const {
        return RunCommand(Quoted(BuiltProgram("fcdtool")) + " rollup " + Quoted(Files()) +
                          " --to \"postgresql:" + server_->Connection() + "\" " + options);
    }
    Answer AskServer(const std::string& sql) const { return server_->Ask(sql); }
    [[nodiscard]] Answer Statuses() const {
        return AskServer("SELECT replace(path, '" + Files().string() +
                         "/', ''), status, year FROM files ORDER BY path");
    }

    std::unique_ptr<PostgresServer> server_;
};

TEST_F(PostgresRollUp, OfManyRuns_HoldsWhatTheFilesHold) {
    Make("UMFOR26.fcd", 7, [](season::Season& made) {
        made.goals[0] = {1, std::nullopt, ""};
        made.goals[1] = {2, "tab\tand \\", "two\nlines \xE2\x82\xAC"};
        made.zones[0].locations[0].rows[0].values[1] = std::nullopt;
        made.zones[1].rlCount = 1;
        made.strayNvc.push_back({9901, {1, {1.0F}}});
    });
    Make("UMFWA25.fcd", 8);
    std::filesystem::copy_file(File("UMFWA25.fcd"), File("UMFWA27.fcd"));
    std::ofstream(File("none.fcd")) << "no database";
    EXPECT_EQ(Roll().status, 1);
    EXPECT_THAT(Statuses(), ElementsAre("UMFOR26.fcd|read|2026", "UMFWA25.fcd|read|2025",
                                        "UMFWA27.fcd|duplicate|2027", "none.fcd|refused|-"));
    EXPECT_THAT(
        AskServer("SELECT number, area, explanation FROM goals WHERE year = 2026 ORDER BY 1"),
        ElementsAre("1|-|", "2|tab\tand \\|two\nlines \xE2\x82\xAC"));
    EXPECT_THAT(AskServer("SELECT fil1, fil2, live FROM nvc WHERE year = 2026 AND zone = 1 AND "
                          "location = 1 AND resource = 1"),
                ElementsAre("7.099999904632568|-|t"));
    EXPECT_THAT(AskServer("SELECT live, count(*) FROM nvc WHERE year = 2026 GROUP BY 1 ORDER BY 1"),
                ElementsAre("f|15", "t|42"));
    EXPECT_THAT(AskServer("SELECT relname FROM pg_class WHERE relkind = 'r' AND relname ~ "
                          "'^nvc_[0-9u]' ORDER BY 1"),
                ElementsAre("nvc_2025", "nvc_2026", "nvc_2027", "nvc_unknown"));
    EXPECT_THAT(AskServer("SELECT count(*) FROM nvc_totals"), ElementsAre("42"));

    EXPECT_THAT(Roll().output, HasSubstr("4 files: 0 read (0 rows), 3 unchanged, 1 refused"));
    std::filesystem::remove(File("none.fcd"));
    std::filesystem::remove(File("UMFWA25.fcd"));
    Make("UMFOR26.fcd", 9);
    EXPECT_EQ(Roll("--prune").status, 0);
    EXPECT_THAT(Statuses(), ElementsAre("UMFOR26.fcd|read|2026", "UMFWA27.fcd|read|2027"));
    EXPECT_THAT(AskServer("SELECT year, count(*) FROM nvc GROUP BY 1 ORDER BY 1"),
                ElementsAre("2026|56", "2027|56"));
    EXPECT_THAT(
        AskServer("SELECT fil1 FROM nvc WHERE year = 2026 AND zone = 1 AND location = 1 AND "
                  "resource = 1"),
        ElementsAre("9.100000381469727"));
}

TEST_F(PostgresRollUp, IntoTablesThatAreThere_UsesThemAsTheyAre) {
    EXPECT_THAT(
        AskServer(
            "CREATE TABLE nvc (note text NOT NULL DEFAULT 'new', live boolean, fil1 real, fil2 "
            "numeric, fil3 real, fil4 real, fil5 real, fil6 real, resource smallint, location "
            "integer, zone bigint, year smallint, file_id varchar(16)) PARTITION BY LIST (year);"
            "CREATE TABLE mine PARTITION OF nvc FOR VALUES IN (2026);"
            "CREATE TABLE goals (file_id text, year int, number int, area text, explanation "
            "text)"),
        IsEmpty());
    Make("UMFOR25.fcd", 1);
    Make("UMFOR26.fcd", 2);
    const CommandResult result = Roll();
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.output, HasSubstr("UMFOR25.fcd: The destination refuses its rows."));
    EXPECT_THAT(Statuses(), ElementsAre("UMFOR25.fcd|refused|2025", "UMFOR26.fcd|read|2026"));
    EXPECT_THAT(AskServer("SELECT note, fil1, fil2, live FROM mine WHERE zone = 1 AND location = 1 "
                          "AND resource = 1"),
                ElementsAre("new|2.1|-7|t"));
    EXPECT_THAT(AskServer("SELECT year, count(*) FROM goals GROUP BY 1"), ElementsAre("2026|2"));
    AskServer("CREATE TABLE more PARTITION OF nvc FOR VALUES IN (2025)");
    EXPECT_EQ(Roll().status, 0);
    EXPECT_THAT(AskServer("SELECT year, count(*) FROM nvc GROUP BY 1 ORDER BY 1"),
                ElementsAre("2025|56", "2026|56"));

    AskServer("DROP TABLE goals; CREATE TABLE goals (file_id text, year int)");
    const CommandResult lacking = Roll();
    EXPECT_EQ(lacking.status, 2);
    EXPECT_THAT(lacking.output, HasSubstr("The table goals of the destination lacks the column"));
    EXPECT_EQ(RunCommand(Quoted(BuiltProgram("fcdtool")) + " rollup " + Quoted(Files()) +
                         " --to postgresql:host=/nowhere")
                  .status,
              2);
    const CommandResult homeless = RunCommand(
        Quoted(BuiltProgram("fcdtool")) + " rollup " + Quoted(Files()) +
        " --to \"postgresql:" + server_->Connection() + " options=-csearch_path=nowhere\"");
    EXPECT_EQ(homeless.status, 2);
    EXPECT_THAT(homeless.output, HasSubstr("no schema has been selected"));
}

TEST_F(PostgresRollUp, OnTablesOfFurtherServers_PutsEachYearOnItsOwn) {
    const PostgresServer first;
    const PostgresServer second;
    const std::string columns =
        "(file_id text, year int, zone bigint, location int, resource int, fil1 float8, fil2 "
        "float8, "
        "fil3 float8, fil4 float8, fil5 float8, fil6 float8, live boolean)";
    EXPECT_THAT(first.Ask("CREATE TABLE nvc_here " + columns), IsEmpty());
    EXPECT_THAT(second.Ask("CREATE TABLE nvc_here " + columns), IsEmpty());
    std::string set =
        "CREATE EXTENSION postgres_fdw; CREATE TABLE nvc " + columns + " PARTITION BY LIST (year);";
    int year = 2025;
    for (const PostgresServer* const server : {&first, &second}) {
        const std::string number = std::to_string(year++);
        set += "CREATE SERVER s" + number + " FOREIGN DATA WRAPPER postgres_fdw OPTIONS (host '" +
               server->Socket().string() +
               "', dbname 'postgres');CREATE USER MAPPING FOR tester "
               "SERVER s" +
               number +
               " OPTIONS (user 'tester', password_required 'false');"
               "CREATE FOREIGN TABLE nvc" +
               number + " PARTITION OF nvc FOR VALUES IN (" + number + ") SERVER s" + number +
               " OPTIONS (table_name 'nvc_here');";
    }
    EXPECT_THAT(AskServer(set), IsEmpty());
    Make("UMFOR25.fcd", 1);
    std::filesystem::copy_file(File("UMFOR25.fcd"), File("UMFOR26.fcd"));
    Make("UMFWA26.fcd", 2);
    EXPECT_EQ(Roll().status, 0);
    EXPECT_THAT(first.Ask("SELECT count(*) FROM nvc_here"), ElementsAre("56"));
    EXPECT_THAT(second.Ask("SELECT count(*) FROM nvc_here"), ElementsAre("56"));
    Make("UMFWA26.fcd", 3);
    std::filesystem::remove(File("UMFOR25.fcd"));
    EXPECT_EQ(Roll("--prune").status, 0);
    EXPECT_THAT(first.Ask("SELECT count(*) FROM nvc_here"), ElementsAre("0"));
    EXPECT_THAT(second.Ask("SELECT count(*), count(DISTINCT file_id) FROM nvc_here"),
                ElementsAre("112|2"));
    EXPECT_THAT(AskServer("SELECT count(*) FROM nvc"), ElementsAre("112"));
}

}  // namespace
