#include <fstream>

#include "jet/database.h"
#include "review/difference.h"
#include "review/next_year.h"
#include "review/planted_file.h"
#include "support/command.h"
#include "support/jet_files.h"

namespace {

using season::Season;
using tarn_test::Quoted;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class NewYear : public testing::Test {
protected:
    tarn_test::CommandResult Run(const std::string& words) const {
        return tarn_test::RunCommand(Quoted(tarn_test::BuiltProgram("fcdtool")) + " newyear " +
                                     words);
    }
    [[nodiscard]] std::string Words() const {
        return Quoted(Old()) + " --year 27 --to " + Quoted(New());
    }
    [[nodiscard]] std::vector<std::string> FilesOfFolder() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder_.Path())) {
            names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }
    [[nodiscard]] std::filesystem::path Old() const { return folder_ / "UMFOR26.fcd"; }
    [[nodiscard]] std::filesystem::path New() const { return folder_ / "UMFOR27.fcd"; }

    tarn_test::TempFolder folder_;
};

void PlantAll(Season& season) {
    season.properties[0].value = "3.92.00";
    season.goals = {{4, "Wilderness", "A\nB"}, {9, std::nullopt, ""}};
    season.resources[0].sequence = 3;
    season.resources[2].sequence = 1;
    season.zones = {tarn_test::SoundZone(-5, 2), tarn_test::SoundZone(3, 3),
                    tarn_test::SoundZone(70, 1)};
    season.zones[1].rlCount = 1;
    season.zones[1].locations[0].rows[2].values[1] = std::nullopt;
    season.strayNvc = {{9901, {1, {1.0F}}}};
    season.strayCosts = {{99, {1, 1.0F, 1.0F}}};
}

TEST_F(NewYear, OfAFile_HoldsTheSameUnderNewKeys) {
    const Season old = tarn_test::PlantedFile(Old(), PlantAll);
    const auto result = Run(Words());
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_EQ(result.output, "");
    tarn_test::ExpectSound(New());
    const Season made = season::Read(New());
    EXPECT_EQ(made.version, jet::Version::kJet4);
    EXPECT_EQ(made.format, "4.01.01");
    EXPECT_EQ(made.PropertyText("UnitName"), "Umatilla National Forest '27");
    ASSERT_EQ(made.zones.size(), 3U);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(made.zones[i].key, static_cast<std::int32_t>(i) + 1);
        EXPECT_EQ(made.zones[i].name, old.zones[i].name);
        EXPECT_EQ(made.resources[i].key, static_cast<std::int32_t>(i) + 1);
        EXPECT_EQ(made.resources[i].longName, old.resources[i].longName);
    }
    EXPECT_EQ(made.resources[0].longName, "Retardant") << "it has the number 1";
    EXPECT_EQ(made.zones[1].locations.size(), 1U);
    EXPECT_EQ(made.zones[1].locations[0].rows[2].values[1], std::nullopt);
    EXPECT_EQ(made.goals[1].area, std::nullopt);
    EXPECT_EQ(made.goals[1].explanation, "");
    EXPECT_TRUE(made.strayNvc.empty());
    EXPECT_TRUE(made.strayCosts.empty());
    std::vector<std::string> lines;
    for (const auto& difference : review::Compare(old, made)) {
        lines.push_back(review::LineOf(difference));
    }
    EXPECT_THAT(lines, ElementsAre("changed\tproperty\tUnitName\tUmatilla National Forest '26\t"
                                   "Umatilla National Forest '27"));
    EXPECT_THAT(FilesOfFolder(), ElementsAre("UMFOR26.fcd", "UMFOR27.fcd"));
}

TEST_F(NewYear, WithDroppedZones_LeavesOutAllOfThatName) {
    tarn_test::PlantedFile(Old(), [](Season& season) {
        season.zones.push_back(tarn_test::SoundZone(8, 1));
        season.zones[3].name = "ZONE 1";
    });
    EXPECT_EQ(
        Run(Words() + " --drop-zone 'zone 1' --drop-zone 'Zone 3' --drop-zone ' ZONE 3'").status,
        0);
    const Season made = season::Read(New());
    ASSERT_EQ(made.zones.size(), 1U);
    EXPECT_EQ(made.zones[0].name, "Zone 2");
    EXPECT_EQ(made.zones[0].key, 1);
}

TEST_F(NewYear, OfWhatCannotBeDone_LeavesNoFile) {
    tarn_test::PlantedFile(Old(), [](Season&) {});
    const auto unknown = Run(Words() + " --drop-zone Elsewhere");
    EXPECT_EQ(unknown.status, 2);
    EXPECT_THAT(unknown.output, HasSubstr("There is no zone \"Elsewhere\"."));
    EXPECT_EQ(Run(Quoted(Old()) + " --year 2027 --to " + Quoted(New())).status, 2);
    EXPECT_EQ(Run(Quoted(Old()) + " --to " + Quoted(New())).status, 2);
    EXPECT_EQ(Run(Quoted(folder_ / "none.fcd") + " --year 27 --to " + Quoted(New())).status, 2);
    const auto nowhere =
        Run(Quoted(Old()) + " --year 27 --to " + Quoted(folder_ / "none" / "NEW.fcd"));
    EXPECT_EQ(nowhere.status, 2);
    EXPECT_THAT(nowhere.output, HasSubstr("NEW.fcd: The folder cannot be found.\n"));
    EXPECT_THAT(FilesOfFolder(), ElementsAre("UMFOR26.fcd"));
}

TEST_F(NewYear, OfAFileThatIsThere_LeavesItAlone) {
    tarn_test::PlantedFile(Old(), [](Season&) {});
    std::ofstream(New()) << "a user's file";
    const auto result = Run(Words());
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.output, HasSubstr("UMFOR27.fcd: The file exists already."));
    EXPECT_EQ(std::filesystem::file_size(New()), 13U);
    EXPECT_EQ(Run(Quoted(Old()) + " --year 27 --to " + Quoted(Old())).status, 2);
    EXPECT_THAT(FilesOfFolder(), ElementsAre("UMFOR26.fcd", "UMFOR27.fcd"));
}

TEST_F(NewYear, AfterAKilledRun_ClearsWhatThatLeft) {
    tarn_test::PlantedFile(Old(), [](Season&) {});
    std::ofstream(folder_ / "UMFOR27.fcd.part") << "half a file";
    EXPECT_EQ(Run(Words()).status, 0);
    EXPECT_THAT(FilesOfFolder(), ElementsAre("UMFOR26.fcd", "UMFOR27.fcd"));
}

TEST_F(NewYear, OfAFileInUse_SaysSo) {
    tarn_test::PlantedFile(Old(), [](Season&) {});
    const auto holder = jet::Database::Open(Old());
    const auto result = Run(Words());
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.output, HasSubstr("in use"));
}

TEST(NextYear, OfAUnitWithoutAYear_GivesItOne) {
    Season season = tarn_test::SoundSeason();
    season.properties[2].value = "Coeur d'Alene";
    EXPECT_EQ(review::NextYear(season, 5, {}).PropertyText("UnitName"), "Coeur d'Alene '05");
    EXPECT_THAT(review::Compare(season, season), IsEmpty());
}

}  // namespace
