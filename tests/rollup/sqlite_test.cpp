// fcdtool rollup into SQLite, as a script calls it.
#include <limits>

#include "jet/database.h"
#include "jet/recordset.h"
#include "rollup/roll_up.h"
#include "rollup/sha256.h"
#include "support/paths.h"

namespace {

using namespace tarn_test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

std::string HashOf(const std::vector<std::filesystem::path>& files) {
    rollup::Sha256 sha;
    for (const auto& file : files) {
        std::ifstream in(file, std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(in), {}};
        sha.Add(std::as_bytes(std::span(bytes)));
    }
    return sha.Finish();
}

TEST(Sha256, OfKnownTexts_GivesTheKnownDigests) {
    const auto digest = [](std::string_view text) {
        rollup::Sha256 sha;
        sha.Add(std::as_bytes(std::span(text)));
        return sha.Finish();
    };
    EXPECT_EQ(digest(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    EXPECT_EQ(digest("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

TEST_F(RollUp, OfAFile_HoldsEveryRowOfIt) {
    const season::Season made = SaltedSeason(7);
    season::WriteNew(made, File("UMFOR26.fcd"));
    const CommandResult result = RunAll();
    EXPECT_EQ(result.status, 0) << result.output;
    const std::string sha = HashOf({File("UMFOR26.fcd")});
    EXPECT_THAT(Ask("SELECT file_id, path, sha256, bytes, format, jet, unit, state, year, "
                    "unit_name, status, reason FROM files"),
                ElementsAre(sha.substr(0, 16) + "|" + File("UMFOR26.fcd").string() + "|" + sha +
                            "|" + std::to_string(std::filesystem::file_size(File("UMFOR26.fcd"))) +
                            "|4.01.01|4|UMF|OR|2026|Umatilla National Forest '26|read|-"));
    EXPECT_THAT(Ask("SELECT year, number, area, explanation FROM goals ORDER BY number"),
                ElementsAre("2026|1|Wilderness|Let natural processes play their part.",
                            "2026|2|Interface|Keep fires small."));
    EXPECT_THAT(Ask("SELECT sequence, long_name, short_name, units, unit_type, cost FROM resources "
                    "ORDER BY sequence LIMIT 1"),
                ElementsAre("1|Engine, type 6|Engine T6|day|time|1280.0"));
    EXPECT_THAT(Ask("SELECT zone, name, rl_count FROM zones ORDER BY zone"),
                ElementsAre("1|Zone 1|2", "2|Zone 2|2"));
    EXPECT_THAT(Ask("SELECT count(*), sum(top_size IS NULL) FROM costs"), ElementsAre("18|8"));
    EXPECT_THAT(Ask("SELECT resource, name FROM nvc_resources WHERE resource = 14"),
                ElementsAre("14|Value 14"));
    EXPECT_THAT(Ask("SELECT property, value FROM properties ORDER BY property LIMIT 1"),
                ElementsAre("DataFormatID|4.01.01"));
    EXPECT_THAT(Ask("SELECT count(*), min(live), max(year) FROM nvc"), ElementsAre("56|1|2026"));
    EXPECT_THAT(Ask("SELECT fil1 = 7.099999904632568 FROM nvc WHERE zone = 1 AND location = 1 AND "
                    "resource = 1"),
                ElementsAre("1"))
        << "a single keeps its exact value";
    ExpectConsistent();
}

TEST_F(RollUp, OfNullsAndOddNumbers_KeepsThem) {
    Make("UMFOR26.fcd", 1, [](season::Season& made) {
        made.goals[0] = {7, std::nullopt, ""};
        made.resources[1].sequence = std::nullopt;
        made.zones[0].name = std::nullopt;
        made.zones[1].rlCount = 1;
        auto& values = made.zones[0].locations[0].rows[3].values;
        values[0] = std::nullopt;
        values[1] = std::numeric_limits<float>::infinity();
        values[2] = std::numeric_limits<float>::quiet_NaN();
        values[3] = std::numeric_limits<float>::denorm_min();
        values[4] = -0.0F;
        made.strayCosts.push_back({99, {1, 10.0F, 20.0F}});
        made.strayNvc.push_back({9901, {1, {1.0F}}});
    });
    EXPECT_EQ(RunAll().status, 0);
    EXPECT_THAT(Ask("SELECT number, area, explanation FROM goals WHERE number = 7"),
                ElementsAre("7|-|"));
    EXPECT_THAT(Ask("SELECT count(*) FROM resources WHERE sequence IS NULL"), ElementsAre("1"));
    EXPECT_THAT(
        Ask("SELECT fil1, fil2, fil3, fil4 = 1.401298464324817e-45, fil5 = 0 FROM nvc WHERE "
            "zone = 1 AND location = 1 AND resource = 4"),
        ElementsAre("-|Inf|NaN|1|1"));
    EXPECT_THAT(Ask("SELECT live, count(*) FROM nvc WHERE zone = 2 GROUP BY live"),
                ElementsAre("0|14", "1|14"));
    EXPECT_THAT(Ask("SELECT location, resource, fil1, live FROM nvc WHERE zone = 99"),
                ElementsAre("1|1|1.0|0"));
    EXPECT_THAT(Ask("SELECT class, cost FROM costs WHERE zone = 99"), ElementsAre("1|20.0"));
}

TEST_F(RollUp, OfNames_FollowsTheirRules) {
    const auto unitName = [](const char* text) {
        return [text](season::Season& made) {
            for (auto& property : made.properties) {
                if (property.name == "UnitName") property.value = text;
            }
        };
    };
    Make("UMFOR69.fcd", 1);
    Make("umfor70.FCD", 2);
    Make("free name.Fcd", 3, unitName("The '90s: a forest '98"));
    Make("no year.fcd", 4, unitName("A forest"));
    Make("UMFOR1.fcd", 5, unitName("Forest '05"));
    Make("notes.txt", 6);
    EXPECT_EQ(RunAll().status, 0);
    EXPECT_THAT(Ask("SELECT unit, state, year FROM files ORDER BY year"),
                ElementsAre("-|-|-", "umf|or|1970", "-|-|1998", "-|-|2005", "UMF|OR|2069"));
    ExpectConsistent();
}

TEST_F(RollUp, RunAgain_ReadsOnlyWhatIsNew) {
    Make("UMFOR26.fcd", 1);
    EXPECT_EQ(RunAll().status, 0);
    Make("UMFWA26.fcd", 2);
    const CommandResult again = RunAll();
    EXPECT_EQ(again.status, 0);
    EXPECT_THAT(again.output, HasSubstr("2 files: 1 read (98 rows), 1 unchanged"));
    EXPECT_THAT(Ask("SELECT count(*) FROM nvc"), ElementsAre("112"));
    ExpectConsistent();
}

TEST_F(RollUp, OfAFileChangedUnderItsOldSizeAndTime_ReplacesItsRows) {
    const auto file = Make("UMFOR26.fcd", 1);
    EXPECT_EQ(RunAll().status, 0);
    const auto time = std::filesystem::last_write_time(file);
    const auto size = std::filesystem::file_size(file);
    Make("UMFOR26.fcd", 9);
    ASSERT_EQ(std::filesystem::file_size(file), size);
    std::filesystem::last_write_time(file, time);
    EXPECT_THAT(RunAll().output, HasSubstr("1 read"));
    EXPECT_THAT(Ask("SELECT round(fil1, 3) FROM nvc WHERE zone = 1 AND location = 1 AND resource = "
                    "1"),
                ElementsAre("9.1"));
    EXPECT_THAT(Ask("SELECT count(*) FROM files"), ElementsAre("1"));
    ExpectConsistent();
}

TEST_F(RollUp, OfOtherPathsToTheSameFiles_DoublesNothing) {
    Make("UMFOR26.fcd", 1);
    EXPECT_EQ(RunAll().status, 0);
    std::filesystem::create_symlink(Files(), folder_ / "link");
    std::filesystem::create_symlink(Files(), Files() / "round");
    const CommandResult again =
        Run("../link ./UMFOR26.fcd ../files/../link/UMFOR26.fcd " + Quoted(folder_ / "link"),
            "cd " + Quoted(Files()) + " && ");
    EXPECT_EQ(again.status, 0);
    EXPECT_THAT(again.output, HasSubstr("1 file: 0 read (0 rows), 1 unchanged"));
    ExpectConsistent();
}

TEST_F(RollUp, OfTheSameContentsTwice_NamesTheFirst) {
    std::filesystem::copy_file(Make("B.fcd", 1), File("C.fcd"));
    EXPECT_EQ(RunAll().status, 0);
    EXPECT_THAT(Statuses(), ElementsAre("B.fcd|read", "C.fcd|duplicate"));
    EXPECT_THAT(Ask("SELECT reason FROM files WHERE status = 'duplicate'"),
                ElementsAre(HasSubstr(File("B.fcd").string())));
    EXPECT_THAT(RunAll().output, HasSubstr("2 unchanged"));
    ExpectConsistent();
}

TEST_F(RollUp, WhenTheFirstOfSeveralChanges_TheNextTakesItsPlace) {
    Make("UMFOR25.fcd", 1);
    std::filesystem::copy_file(File("UMFOR25.fcd"), File("UMFOR26.fcd"));
    std::filesystem::copy_file(File("UMFOR25.fcd"), File("UMFOR27.fcd"));
    EXPECT_EQ(RunAll().status, 0);
    Make("UMFOR25.fcd", 2);
    EXPECT_EQ(RunAll().status, 0);
    EXPECT_THAT(Statuses(),
                ElementsAre("UMFOR25.fcd|read", "UMFOR26.fcd|read", "UMFOR27.fcd|duplicate"));
    EXPECT_THAT(Ask("SELECT reason FROM files WHERE status = 'duplicate'"),
                ElementsAre(HasSubstr("UMFOR26.fcd")));
    EXPECT_THAT(Ask("SELECT year, count(*) FROM nvc GROUP BY year"),
                ElementsAre("2025|56", "2026|56"));
    ExpectConsistent();
}

TEST_F(RollUp, OfRefusedFiles_GoesOnAndTriesThemAgain) {
    Make("UMFOR26.fcd", 1);
    std::ofstream(File("UMFWA26.fcd")) << "no database";
    const CommandResult first = RunAll();
    EXPECT_EQ(first.status, 1);
    EXPECT_THAT(first.output, HasSubstr(File("UMFWA26.fcd").string() + ": The file does not"));
    EXPECT_THAT(Ask("SELECT unit, year, sha256 IS NULL, format, reason IS NULL FROM files WHERE "
                    "status = 'refused'"),
                ElementsAre("UMF|2026|0|-|0"));
    EXPECT_EQ(RunAll().status, 1);
    Make("UMFWA26.fcd", 2);
    EXPECT_EQ(RunAll().status, 0);
    EXPECT_THAT(Statuses(), ElementsAre("UMFOR26.fcd|read", "UMFWA26.fcd|read"));
    ExpectConsistent();
}

TEST_F(RollUp, OfAFileInUse_HasNoHashAndNoRows) {
    const auto file = Make("UMFOR26.fcd", 1);
    EXPECT_EQ(RunAll().status, 0);
    {
        const auto holder = jet::Database::Open(file);
        EXPECT_EQ(RunAll().status, 1);
    }
    EXPECT_THAT(Ask("SELECT file_id, sha256, bytes, status FROM files"),
                ElementsAre("-|-|-|refused"));
    ExpectConsistent();
    EXPECT_EQ(RunAll().status, 0);
    ExpectConsistent();
}

TEST_F(RollUp, OfGoneFiles_KeepsTheirRowsUntilPruned) {
    Make("UMFOR26.fcd", 1);
    Make("UMFWA26.fcd", 2);
    std::filesystem::copy_file(File("UMFWA26.fcd"), File("UMFWA27.fcd"));
    EXPECT_EQ(RunAll().status, 0);
    std::filesystem::remove(File("UMFOR26.fcd"));
    std::filesystem::remove(File("UMFWA26.fcd"));
    EXPECT_EQ(RunAll().status, 0);
    EXPECT_THAT(Ask("SELECT count(*) FROM nvc"), ElementsAre("112"));
    EXPECT_THAT(RunAll("--prune").output, HasSubstr("2 removed"));
    EXPECT_THAT(Statuses(), ElementsAre("UMFWA27.fcd|read"));
    EXPECT_THAT(Ask("SELECT year, count(*) FROM nvc GROUP BY year"), ElementsAre("2027|56"));
    ExpectConsistent();
}

TEST_F(RollUp, OfAFileWithAWaitingLog_CountsAndHashesTheLog) {
    const auto file = Make("UMFOR26.fcd", 1);
    const auto kept = folder_ / "kept";
    std::filesystem::create_directory(kept);
    {
        const auto database = jet::Database::Open(file);
        const auto zones = database->OpenTable("FMZList");
        zones->Edit();
        zones->Set("Name", u"Renamed");
        zones->Update();
        std::filesystem::copy(file, kept / "UMFOR26.fcd");
        std::filesystem::copy(file.string() + "-log", kept / "UMFOR26.fcd-log");
    }
    EXPECT_EQ(Run(Quoted(kept)).status, 0);
    EXPECT_THAT(Ask("SELECT name FROM zones WHERE zone = 1"), ElementsAre("Renamed"));
    EXPECT_THAT(Ask("SELECT sha256 FROM files"),
                ElementsAre(HashOf({kept / "UMFOR26.fcd", kept / "UMFOR26.fcd-log"})));
    EXPECT_THAT(Run(Quoted(kept)).output, HasSubstr("1 unchanged"));
}

TEST_F(RollUp, OfOddNames_KeepsEachApart) {
    for (const char* const name : {"a\xFF.fcd", "a\xFE.fcd", "it's \"q\", \xC3\xA9\n.fcd"}) {
        Make(name, name[1]);
    }
    EXPECT_EQ(RunAll().status, 0);
    EXPECT_THAT(Ask("SELECT count(*) FROM files WHERE status = 'read'"), ElementsAre("3"));
    EXPECT_THAT(Ask("SELECT path FROM files WHERE path LIKE '%\\xFF.fcd'"),
                ElementsAre(Files().string() + "/a\\xFF.fcd"));
    EXPECT_THAT(RunAll("--prune").output, HasSubstr("3 unchanged\n"));
}

TEST_F(RollUp, OfPathsThatAreNot_NamesThem) {
    Make("UMFOR26.fcd", 1);
    const CommandResult some = Run(Quoted(Files()) + " " + Quoted(folder_ / "none"));
    EXPECT_EQ(some.status, 1);
    EXPECT_THAT(some.output,
                HasSubstr((folder_ / "none").string() + ": There is no such file or folder."));
    EXPECT_EQ(Run(Quoted(folder_ / "none")).status, 2);
    EXPECT_THAT(Statuses(), ElementsAre("UMFOR26.fcd|read"));
}

TEST_F(RollUp, OfWordsThatMeanNothing_SaysSo) {
    const std::string program = Quoted(BuiltProgram("fcdtool")) + " rollup ";
    for (const char* const words :
         {"--to sqlite:x", "a.fcd", "a.fcd --to sqlite:x --jobs 0", "a.fcd --to sqlite:x --jobs x",
          "a.fcd --to mysql:x", "a.fcd --to sqlite:"}) {
        const CommandResult result = RunCommand(program + words);
        EXPECT_EQ(result.status, 2) << words;
        EXPECT_THAT(result.output, Not(IsEmpty())) << words;
    }
}

TEST_F(RollUp, IntoWhatIsNoDatabase_LeavesItAlone) {
    Make("UMFOR26.fcd", 1);
    std::ofstream(Database()) << std::string(5000, 'x');
    const CommandResult result = RunAll();
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.output, HasSubstr("not a database"));
    EXPECT_EQ(std::filesystem::file_size(Database()), 5000U);
}

TEST_F(RollUp, IntoAFolderThatIsNotThere_SaysSo) {
    Make("UMFOR26.fcd", 1);
    const CommandResult result =
        RunCommand(Quoted(BuiltProgram("fcdtool")) + " rollup " + Quoted(Files()) + " --to " +
                   Quoted(folder_ / "none" / "it.sqlite"));
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.output,
                HasSubstr((folder_ / "none").string() + ": No file can be made in this folder."));
}

TEST_F(RollUp, IntoTablesThatAreThere_FitsByName) {
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open(Database().c_str(), &database), SQLITE_OK);
    sqlite3_exec(
        database,
        "CREATE TABLE zones (note TEXT DEFAULT 'new', rl_count, name, zone, year, file_id)",
        nullptr, nullptr, nullptr);
    sqlite3_close(database);
    Make("UMFOR26.fcd", 1);
    EXPECT_EQ(RunAll().status, 0);
    EXPECT_THAT(Ask("SELECT note, zone, name, rl_count, year FROM zones WHERE zone = 2"),
                ElementsAre("new|2|Zone 2|2|2026"));
}

TEST_F(RollUp, AfterARun_IsOneFile) {
    Make("UMFOR26.fcd", 1);
    EXPECT_EQ(RunAll().status, 0);
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.Path())) {
        names.push_back(entry.path().filename().string());
    }
    EXPECT_THAT(names, testing::UnorderedElementsAre("files", "nation.sqlite"));
}

}  // namespace
