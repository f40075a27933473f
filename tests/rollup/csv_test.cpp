// fcdtool rollup into a folder of CSV files.
#include <algorithm>
#include <sstream>

#include "rollup/roll_up.h"

namespace {

using namespace tarn_test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class CsvRollUp : public RollUp {
protected:
    [[nodiscard]] std::filesystem::path Csv() const { return folder_ / "out"; }
    [[nodiscard]] CommandResult Roll(const std::string& options = {}) const {
        return RunCommand(Quoted(BuiltProgram("fcdtool")) + " rollup " + Quoted(Files()) +
                          " --to " + Quoted("csv:" + Csv().string()) + " " + options);
    }
    // "TABLE/year=YYYY" of each file with rows.
    [[nodiscard]] std::vector<std::string> Folders() const {
        std::vector<std::string> folders;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(Csv())) {
            if (entry.path().filename().string().ends_with(".csv.gz")) {
                folders.push_back(
                    std::filesystem::relative(entry.path().parent_path(), Csv()).string());
            }
        }
        std::sort(folders.begin(), folders.end());
        return folders;
    }
    // The lines of all files of a table and year, headings included.
    [[nodiscard]] std::string Text(const std::string& folder) const {
        return RunCommand("gzip -dc " + Quoted(Csv() / folder) + "/*.csv.gz").output;
    }
    [[nodiscard]] std::filesystem::path OnlyFile(const std::string& folder) const {
        return std::filesystem::directory_iterator(Csv() / folder)->path();
    }
};

TEST_F(CsvRollUp, OfAFile_HasItsRowsByYear) {
    Make("UMFOR26.fcd", 7, [](season::Season& made) {
        made.goals[0] = {1, std::nullopt, ""};
        made.goals[1] = {2, "a, \"b\"", "two\nlines"};
        auto& values = made.zones[0].locations[0].rows[0].values;
        values[1] = std::nullopt;
        values[2] = 1e20F;
    });
    EXPECT_EQ(Roll().status, 0);
    EXPECT_THAT(Folders(),
                ElementsAre("costs/year=2026", "files/year=2026", "goals/year=2026",
                            "nvc/year=2026", "nvc_resources/year=2026", "properties/year=2026",
                            "resources/year=2026", "zones/year=2026"));
    const std::string id = OnlyFile("nvc/year=2026").filename().string().substr(0, 16);
    EXPECT_EQ(Text("goals/year=2026"), "file_id,number,area,explanation\n" + id + ",1,,\"\"\n" +
                                           id + ",2,\"a, \"\"b\"\"\",\"two\nlines\"\n");
    EXPECT_THAT(
        Text("nvc/year=2026"),
        HasSubstr("file_id,zone,location,resource,fil1,fil2,fil3,fil4,fil5,fil6,live\n" + id +
                  ",1,1,1,7.099999904632568,,100000002004087734272,-28,-43.75,-63,"
                  "true\n"));
    EXPECT_THAT(Text("files/year=2026"),
                HasSubstr("file_id,path,sha256,bytes,format,jet,unit,state,unit_name,status,reason"
                          "\n" +
                          id + ","));
    EXPECT_TRUE(std::filesystem::exists(Csv() / "load.sql"));
    EXPECT_FALSE(std::filesystem::exists(Csv() / ".unfinished"));
    EXPECT_FALSE(std::filesystem::exists(Csv() / ".lock"));
}

TEST_F(CsvRollUp, RunAgain_ReplacesWhatChangedAndKeepsTheRest) {
    Make("UMFOR26.fcd", 1);
    Make("UMFWA25.fcd", 2);
    EXPECT_EQ(Roll().status, 0);
    Make("UMFOR26.fcd", 3);
    EXPECT_THAT(Roll().output, HasSubstr("2 files: 1 read (98 rows), 1 unchanged"));
    EXPECT_THAT(Text("nvc/year=2026"), HasSubstr(",1,1,1,3.0999999046325684,"));
    EXPECT_EQ(Folders().size(), 16U);
}

TEST_F(CsvRollUp, WithoutAYear_LiesUnderUnknown) {
    std::ofstream(File("none.fcd")) << "no database";
    EXPECT_EQ(Roll().status, 1);
    EXPECT_THAT(Text("files/year=unknown"), HasSubstr(",refused,The file does not appear"));
    EXPECT_EQ(Text("nvc/year=unknown"),
              "file_id,zone,location,resource,fil1,fil2,fil3,fil4,fil5,fil6,live\n")
        << "a table without rows has its heading";
    std::filesystem::remove(File("none.fcd"));
    Make("UMFOR26.fcd", 1);
    EXPECT_EQ(Roll("--prune").status, 0);
    EXPECT_THAT(Folders(), testing::Each(HasSubstr("year=2026")));
}

TEST_F(CsvRollUp, OfDuplicates_MovesTheirRowsWhenTheFirstGoes) {
    Make("UMFOR25.fcd", 1);
    std::filesystem::copy_file(File("UMFOR25.fcd"), File("UMFOR26.fcd"));
    EXPECT_EQ(Roll().status, 0);
    EXPECT_THAT(Text("files/year=2026"), HasSubstr(",duplicate,The contents are those of "));
    std::filesystem::remove(File("UMFOR25.fcd"));
    EXPECT_EQ(Roll("--prune").status, 0);
    EXPECT_THAT(Folders(), testing::Each(HasSubstr("year=2026")));
    EXPECT_EQ(Folders().size(), 8U);
    EXPECT_THAT(Roll().output, HasSubstr("1 unchanged"));
}

TEST_F(CsvRollUp, AfterAKilledRun_ClearsWhatNothingNames) {
    Make("UMFOR26.fcd", 1);
    EXPECT_EQ(Roll().status, 0);
    const std::vector<std::string> before = Folders();
    std::filesystem::create_directories(Csv() / ".unfinished");
    std::ofstream(Csv() / ".unfinished" / "7") << "half";
    std::ofstream(Csv() / "nvc" / "year=2026" / "0123456789abcdef.csv.gz") << "half";
    std::ofstream(Csv() / "nvc" / "year=2026" / "kept by a person.txt") << "note";
    EXPECT_THAT(Roll().output, HasSubstr("1 unchanged"));
    EXPECT_EQ(Folders(), before);
    EXPECT_TRUE(std::filesystem::exists(Csv() / "nvc" / "year=2026" / "kept by a person.txt"));
}

TEST_F(CsvRollUp, WhenTheNamingRowIsLost_ReadsTheFileAnew) {
    Make("UMFOR26.fcd", 1);
    EXPECT_EQ(Roll().status, 0);
    std::filesystem::resize_file(OnlyFile("files/year=2026"), 30);
    EXPECT_THAT(Roll().output, HasSubstr("1 read (98 rows)"));
    EXPECT_EQ(Folders().size(), 8U);
}

TEST_F(CsvRollUp, WhereNoFolderCanBe_SaysSo) {
    Make("UMFOR26.fcd", 1);
    std::ofstream(folder_ / "out") << "a file";
    const CommandResult result = Roll();
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.output, HasSubstr("The folder cannot be made"));
}

}  // namespace
