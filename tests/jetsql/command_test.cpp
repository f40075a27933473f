// The command jetsql, and what the virtual table does beside answering.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <limits>
#include <string>

#include "jet/database.h"
#include "jet/recordset.h"
#include "jetsql/Connection.h"
#include "support/command.h"
#include "support/paths.h"
#include "support/temp_folder.h"

namespace {

using tarn_test::CommandResult;
using tarn_test::Connection;
using tarn_test::SqlRow;

class JetSql : public ::testing::Test {
protected:
    // Ten zones, and one record with a value of every kind.
    void MakeFile(const std::string& name) {
        const auto data = jet::Database::Create(folder_ / name, jet::Version::kJet4);
        jet::TableSchema zones;
        zones.name = "Zones";
        zones.columns = {{.name = "Zone"},
                         {.name = "Name", .type = jet::ColumnType::kText, .length = 50}};
        zones.indexes = {{.name = "PrimaryKey", .columns = {{"Zone"}}, .primary = true},
                         {.name = "ByName", .columns = {{"Name"}}}};
        data->CreateTable(zones);
        const auto records = data->OpenTable("Zones");
        for (int zone = 1; zone <= 10; ++zone) {
            records->AddNew();
            records->Set("Zone", zone);
            records->Set("Name", u"North, \"" + std::u16string(1, char16_t(u'a' + zone)) + u"\"");
            records->Update();
        }
        jet::TableSchema kinds;
        kinds.name = "Kinds";
        kinds.columns = {{.name = "yes", .type = jet::ColumnType::kBoolean},
                         {.name = "money", .type = jet::ColumnType::kCurrency},
                         {.name = "single", .type = jet::ColumnType::kSingle},
                         {.name = "day", .type = jet::ColumnType::kDate},
                         {.name = "guid", .type = jet::ColumnType::kGuid},
                         {.name = "bytes", .type = jet::ColumnType::kBinary, .length = 4},
                         {.name = "memo", .type = jet::ColumnType::kMemo},
                         {.name = "none", .type = jet::ColumnType::kDouble}};
        data->CreateTable(kinds);
        const auto kind = data->OpenTable("Kinds");
        kind->AddNew();
        kind->Set("yes", true);
        kind->Set("money", jet::Currency{12345});
        kind->Set("single", 0.5F);
        kind->Set("day", jet::Date{36526.75});
        kind->Set("guid", jet::Guid{{std::byte{0x33}, std::byte{0x22}, std::byte{0x11},
                                     std::byte{0x00}, std::byte{0x55}, std::byte{0x44}}});
        kind->Set("bytes", jet::Binary{std::byte{1}, std::byte{255}});
        kind->Set("memo", std::u16string(u"two\nlines \u00e9"));
        kind->Update();
        data->Close();
    }

    [[nodiscard]] CommandResult Run(const std::string& words) const {
        return tarn_test::RunCommand("cd " + tarn_test::Quoted(folder_.Path()) + " && " +
                                     tarn_test::Quoted(tarn_test::BuiltProgram("jetsql")) + ' ' +
                                     words);
    }

    // A connection with the table "zones" over the file.
    void Load(Connection& connection, const std::string& name) {
        connection.LoadExtension((support::BuildFolder() / "bin/libjetsql").string());
        ASSERT_EQ(connection.Execute("CREATE VIRTUAL TABLE zones USING jet('" +
                                     (folder_ / name).string() + "', 'Zones')"),
                  SQLITE_OK)
            << connection.Message();
    }

    tarn_test::TempFolder folder_;
};

TEST_F(JetSql, ValuesOfEveryKind_ComeAsSqlKnowsThem) {
    MakeFile("a.mdb");
    const CommandResult result = Run("--json a.mdb 'SELECT * FROM Kinds'");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(
        result.output,
        "[\n{\"yes\": 1, \"money\": 1.2345, \"single\": 0.5, \"day\": \"2000-01-01 18:00:00\", "
        "\"guid\": \"{00112233-4455-0000-0000-000000000000}\", \"bytes\": \"01ff\", "
        "\"memo\": \"two\\u000alines \u00e9\", \"none\": null}\n]\n");
}

TEST_F(JetSql, Csv_QuotesWhatNeedsItAndDistinguishesNullFromEmpty) {
    MakeFile("a.mdb");
    const CommandResult result =
        Run("--csv a.mdb \"SELECT Zone, Name, NULL AS n, '' AS e FROM Zones WHERE Zone = 2\"");
    EXPECT_EQ(result.output, "Zone,Name,n,e\r\n2,\"North, \"\"c\"\"\",,\"\"\r\n");
}

TEST_F(JetSql, Table_AlignsItsColumns) {
    MakeFile("a.mdb");
    EXPECT_EQ(Run("a.mdb 'SELECT Zone, Name FROM Zones WHERE Zone > 8 ORDER BY Zone'").output,
              "Zone  Name\n"
              "----  ----------\n"
              "   9  North, \"j\"\n"
              "  10  North, \"k\"\n");
}

TEST_F(JetSql, SeveralFiles_AreSchemasNamedByTheirTitles) {
    MakeFile("a.mdb");
    MakeFile("b.mdb");
    std::filesystem::create_directory(folder_ / "old");
    std::filesystem::copy_file(folder_ / "a.mdb", folder_ / "old/a.mdb");
    const CommandResult result =
        Run("--csv a.mdb b.mdb old/a.mdb 'SELECT count(*) FROM a.Zones JOIN b.Zones USING (Zone) "
            "JOIN a_2.Zones USING (Zone)'");
    EXPECT_EQ(result.output, "count(*)\r\n10\r\n");
}

TEST_F(JetSql, TablesAndSchema_NameWhatThereIs) {
    MakeFile("a.mdb");
    EXPECT_EQ(Run("--csv a.mdb .tables").output,
              "table,columns,records\r\nKinds,8,1\r\nZones,2,10\r\n");
    const std::string schema = Run("--csv a.mdb .schema").output;
    EXPECT_NE(schema.find(R"(""Zone"" INTEGER, ""Name"" TEXT, PRIMARY KEY (""Zone""))"),
              std::string::npos)
        << schema;
}

TEST_F(JetSql, Status_DistinguishesAQueryFromAFile) {
    MakeFile("a.mdb");
    std::ofstream(folder_ / "text.mdb") << "no database";
    EXPECT_EQ(Run("a.mdb 'SELECT 1'").status, 0);
    EXPECT_EQ(Run("a.mdb 'SELECT nothing'").status, 1);
    EXPECT_EQ(Run("a.mdb 'DELETE FROM Zones'").status, 1);
    EXPECT_EQ(Run("absent.mdb 'SELECT 1'").status, 2);
    EXPECT_EQ(Run("a.mdb text.mdb 'SELECT 1'").status, 2);
    EXPECT_NE(Run("a.mdb text.mdb 'SELECT 1'").output.find("text.mdb: "), std::string::npos);
}

TEST_F(JetSql, ConditionsOnAnIndex_AreSeeks) {
    MakeFile("a.mdb");
    Connection connection;
    Load(connection, "a.mdb");
    const auto plan = [&](const std::string& query) {
        const std::vector<SqlRow> rows =
            connection.Query("EXPLAIN QUERY PLAN SELECT * FROM zones " + query);
        return rows.size() == 1 ? rows[0].back() : "several steps";
    };
    EXPECT_NE(plan("WHERE Zone = 3").find("seek PrimaryKey (Zone=?)"), std::string::npos);
    EXPECT_NE(plan("WHERE Zone > 3 AND Zone <= 5").find("(Zone>? AND Zone<?)"), std::string::npos);
    EXPECT_NE(plan("WHERE Name = 'x'").find("seek ByName (Name=?)"), std::string::npos);
    // A text's order is that of a language: its range is no range of the index.
    EXPECT_NE(plan("WHERE Name > 'x'").find("scan"), std::string::npos);
    EXPECT_NE(plan("ORDER BY Zone DESC").find("walk PrimaryKey backwards"), std::string::npos);
    EXPECT_EQ(plan("ORDER BY Name"), "several steps");
}

TEST_F(JetSql, PartsOfAnOr_AreSeeksWhoseRowsAllCount) {
    {
        const auto data = jet::Database::Create(folder_ / "p.mdb", jet::Version::kJet4);
        jet::TableSchema places;
        places.name = "Zones";
        places.columns = {{.name = "Place", .type = jet::ColumnType::kLong}};
        places.indexes = {{.name = "PrimaryKey", .columns = {{"Place"}}, .primary = true}};
        data->CreateTable(places);
        const auto records = data->OpenTable("Zones");
        for (int place = 1; place <= 300; ++place) {
            records->AddNew();
            records->Set("Place", place);
            records->Update();
        }
        data->Close();
    }
    Connection connection;
    Load(connection, "p.mdb");
    const std::string query =
        "SELECT Place FROM zones WHERE Place = 7 OR Place BETWEEN 7 AND 9 OR "
        "Place BETWEEN 200 AND 201";
    std::vector<SqlRow> rows = connection.Query(query);
    std::ranges::sort(rows);
    EXPECT_EQ(rows, (std::vector<SqlRow>{{"1:200"}, {"1:201"}, {"1:7"}, {"1:8"}, {"1:9"}}));
    std::string plan;
    for (const SqlRow& row : connection.Query("EXPLAIN QUERY PLAN " + query)) plan += row.back();
    EXPECT_NE(plan.find("MULTI-INDEX OR"), std::string::npos) << plan;
    EXPECT_EQ(plan.find("scan"), std::string::npos) << plan;
}

TEST_F(JetSql, EqualityOnADate_IsASeekThatFindsEachRowOfThatSecond) {
    {
        const auto data = jet::Database::Create(folder_ / "d.mdb", jet::Version::kJet4);
        jet::TableSchema days;
        days.name = "Days";
        days.columns = {{.name = "Day", .type = jet::ColumnType::kDate},
                        {.name = "Place", .type = jet::ColumnType::kLong}};
        days.indexes = {{.name = "ByDay", .columns = {{"Day"}, {"Place"}}}};
        data->CreateTable(days);
        const auto records = data->OpenTable("Days");
        int place = 0;
        for (const double day :
             {-1.25, 0.0, 0.99999999, 36525.9, 36526.75, 36526.7500001, 36527.1}) {
            records->AddNew();
            records->Set("Day", jet::Date{day});
            records->Set("Place", ++place);
            records->Update();
        }
        data->Close();
    }
    Connection connection;
    connection.LoadExtension((support::BuildFolder() / "bin/libjetsql").string());
    ASSERT_EQ(connection.Execute("CREATE VIRTUAL TABLE days USING jet('" +
                                 (folder_ / "d.mdb").string() + "', 'Days')"),
              SQLITE_OK);
    const auto places = [&connection](const std::string& condition) {
        std::string found;
        for (const auto& row : connection.Query("SELECT Place FROM days WHERE " + condition)) {
            found += row.front() + ";";
        }
        return found;
    };
    for (const std::string day : {"2000-01-01 18:00:00", "1899-12-31 00:00:00",
                                  "1899-12-29 06:00:00", "2000-01-01", "no day"}) {
        const std::string condition = "Day = '" + day + "'";
        EXPECT_EQ(places(condition), places("+" + condition)) << day;
        EXPECT_EQ(places(condition + " AND Place > 5"), places("+" + condition + " AND Place > 5"));
    }
    EXPECT_NE(places("Day = '2000-01-01 18:00:00'"), "");
    const auto plan =
        connection.Query("EXPLAIN QUERY PLAN SELECT * FROM days WHERE Day = '2000-01-01'");
    ASSERT_EQ(plan.size(), 1U);
    EXPECT_NE(plan[0].back().find("seek ByDay (Day=?)"), std::string::npos);
}

TEST_F(JetSql, FileThatChangesMeanwhile_IsAnError) {
    MakeFile("a.mdb");
    Connection connection;
    Load(connection, "a.mdb");
    EXPECT_EQ(connection.Query("SELECT * FROM zones").size(), 10U);
    std::filesystem::resize_file(folder_ / "a.mdb",
                                 std::filesystem::file_size(folder_ / "a.mdb") + 4096);
    EXPECT_TRUE(connection.Query("SELECT * FROM zones").empty());
    EXPECT_NE(connection.code, SQLITE_DONE);
    EXPECT_NE(connection.Message().find("changed"), std::string::npos) << connection.Message();
}

TEST_F(JetSql, TablesFunction_ListsAFile) {
    MakeFile("a.mdb");
    Connection connection;
    Load(connection, "a.mdb");
    const std::string list =
        "SELECT name, records FROM jet_tables('" + (folder_ / "a.mdb").string();
    EXPECT_EQ(connection.Query(list + "') ORDER BY name"),
              (std::vector<SqlRow>{{"3:Kinds", "1:1"}, {"3:Zones", "1:10"}}));
    EXPECT_TRUE(connection.Query(list + "x')").empty());
    EXPECT_EQ(connection.code & 0xFF, SQLITE_CANTOPEN);
}

TEST_F(JetSql, AskedFile_IsLeftByteForByte) {
    MakeFile("a.mdb");
    const auto written = std::filesystem::last_write_time(folder_ / "a.mdb");
    EXPECT_EQ(Run("a.mdb 'SELECT * FROM Zones'").status, 0);
    EXPECT_EQ(std::filesystem::last_write_time(folder_ / "a.mdb"), written);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_.Path()), {}), 1);
}

}  // namespace
