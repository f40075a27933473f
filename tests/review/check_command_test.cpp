// fcdtool check, as a script calls it.
#include <fstream>

#include "review/planted_file.h"
#include "support/command.h"

namespace {

using tarn_test::CommandResult;
using tarn_test::Quoted;
using tarn_test::RunCommand;
using testing::HasSubstr;
using testing::StartsWith;

class CheckCommand : public testing::Test {
protected:
    CheckCommand() {
        season::WriteNew(tarn_test::SoundSeason(), Sound());
        tarn_test::PlantedFile(Faulty(), [](season::Season& season) {
            season.zones[0].name = "";
            season.goals.clear();
        });
    }
    static CommandResult Check(const std::string& words) {
        return RunCommand(Quoted(tarn_test::BuiltProgram("fcdtool")) + " check " + words);
    }
    [[nodiscard]] std::filesystem::path Sound() const { return folder_ / "UMFOR26.fcd"; }
    [[nodiscard]] std::filesystem::path Faulty() const { return folder_ / "UMFWA26.fcd"; }

    tarn_test::TempFolder folder_;
};

TEST_F(CheckCommand, OfASoundFile_SaysNothing) {
    const CommandResult result = Check(Quoted(Sound()));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "");
}

TEST_F(CheckCommand, OfAFaultyFile_SaysALineForEachFinding) {
    const CommandResult result = Check(Quoted(Sound()) + " " + Quoted(Faulty()));
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.output, StartsWith(Faulty().string() + ": error: zone-blank-name: "));
    EXPECT_THAT(result.output,
                HasSubstr("\n" + Faulty().string() + ": warning: goals-none: The file has no "));
    EXPECT_EQ(std::count(result.output.begin(), result.output.end(), '\n'), 2);
}

TEST_F(CheckCommand, WithIgnoredRules_LeavesThemOut) {
    EXPECT_EQ(Check(Quoted(Faulty()) + " --ignore zone-blank-name,goals-none").status, 0);
    const CommandResult unknown = Check(Quoted(Faulty()) + " --ignore zone-blank");
    EXPECT_EQ(unknown.status, 2);
    EXPECT_THAT(unknown.output, HasSubstr("There is no rule zone-blank."));
}

TEST_F(CheckCommand, OfARefusedFileAmongOthers_GoesOnAndSaysWhy) {
    std::ofstream(folder_ / "text.fcd") << "no database";
    const std::string text = Quoted(folder_ / "text.fcd");
    const CommandResult among = Check(text + " " + Quoted(Sound()));
    EXPECT_EQ(among.status, 1);
    EXPECT_THAT(among.output, HasSubstr("text.fcd: The file does not appear to be a TARN Prep"));
    EXPECT_EQ(Check(text).status, 2);
    EXPECT_EQ(Check(Quoted(Sound()) + " --previous " + text).status, 2);
}

TEST_F(CheckCommand, OfAFolder_SaysThatItIsOne) {
    const auto folder = folder_ / "some folder";
    std::filesystem::create_directory(folder);
    const CommandResult result = Check(Quoted(folder));
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.output, folder.string() + ": \"some folder\" is a folder, not a file.\n");
}

TEST_F(CheckCommand, OfWordsThatMeanNothing_SaysHowItIsUsed) {
    for (const char* const words : {"", "--jsn", "--previous", "--json=1"}) {
        const CommandResult result = Check(words);
        EXPECT_EQ(result.status, 2) << words;
        EXPECT_THAT(result.output, HasSubstr("usage: fcdtool check FILE...")) << words;
    }
    EXPECT_EQ(Check("--help").status, 0);
}

TEST_F(CheckCommand, WithPrevious_NamesUnchangedZones) {
    const CommandResult result = Check(Quoted(Sound()) + " --json --previous=" + Quoted(Sound()));
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.output, HasSubstr(R"("rule":"unchanged-zone","severity":"note",)"));
}

}  // namespace
