#include "review/difference.h"

#include <fstream>
#include <limits>

#include "review/planted_file.h"
#include "support/command.h"

namespace {

using review::Compare;
using season::Season;
using tarn_test::SoundSeason;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::vector<std::string> Lines(const Season& older, const Season& newer,
                               double tolerance = review::kUsualTolerance) {
    std::vector<std::string> lines;
    for (const auto& difference : Compare(older, newer, tolerance)) {
        lines.push_back(review::LineOf(difference));
    }
    return lines;
}

TEST(Differences, Compare_OfASeasonWithItself_FindsNone) {
    EXPECT_THAT(Lines(SoundSeason(), SoundSeason()), IsEmpty());
}

TEST(Differences, Compare_WhatIsNoDifference_FindsNone) {
    const Season older = SoundSeason();
    Season newer = SoundSeason();
    for (season::Zone& zone : newer.zones) zone.key += 40;
    std::swap(newer.zones[0], newer.zones[2]);
    std::swap(newer.resources[0], newer.resources[1]);
    for (season::Resource& resource : newer.resources) resource.sequence = 9;
    std::swap(newer.goals[0], newer.goals[1]);
    newer.properties[0].value = "4.00.00";
    newer.zones[0].classes[8].cost = 0.0F;
    newer.zones[1].classes[0].cost = *newer.zones[1].classes[0].cost * (1 + 5e-7F);
    newer.properties.push_back({"Draft", std::nullopt});
    EXPECT_THAT(Lines(older, newer), IsEmpty());
}

TEST(Differences, Compare_ChangedFiguresAndTexts_NamesEach) {
    const Season older = SoundSeason();
    Season newer = SoundSeason();
    newer.zones[1].classes[2].topSize = 250.5F;
    newer.zones[1].locations[0].rows[3].values[2] = -1100.0F;
    newer.resources[0].cost = 1300.0F;
    newer.resources[1].shortName = "Crew\t20";
    newer.goals[1].explanation = "Keep\nfires\\small.";
    newer.properties[1].value = "Other";
    newer.nvcResources[3].name = "Forage";
    EXPECT_THAT(Lines(older, newer),
                ElementsAre("changed\tproperty\tSRDataSource\tRate sheets of the spring\tOther",
                            "changed\tgoal\tInterface, Explanation\tKeep fires small.\t"
                            "Keep\\nfires\\\\small.",
                            "changed\tresource\tEngine, type 6, Cost\t1280\t1300",
                            "changed\tresource\tHand crew, ShortName\tCrew\tCrew\\t20",
                            "changed\tname\tForage, ResourceName\tValue 4\tForage",
                            "changed\tcost\tZone 2, class 3, TopSize\t100\t250.5",
                            "changed\tnvc\tZone 2, location 1, Forage, FIL 3\t-45\t-1100"));
}

TEST(Differences, Compare_AddedAndRemoved_TakesOneLineEach) {
    Season older = SoundSeason(2, 2);
    Season newer = SoundSeason(2, 2);
    older.goals.pop_back();
    older.resources[2].longName = "Foam";
    older.zones[0] = tarn_test::SoundZone(1, 4);
    newer.zones[1] = tarn_test::SoundZone(55, 1);
    EXPECT_THAT(
        Lines(older, newer),
        ElementsAre("added\tgoal\tInterface\t\tInterface",
                    "added\tresource\tRetardant\t\tRetardant", "removed\tresource\tFoam\tFoam\t",
                    "removed\tlocation\tZone 1, location 3\t\t",
                    "removed\tlocation\tZone 1, location 4\t\t", "added\tzone\tZone 55\t\tZone 55",
                    "removed\tzone\tZone 2\tZone 2\t"));
}

TEST(Differences, Compare_Names_DistinguishesCaseFromRenaming) {
    const Season older = SoundSeason();
    Season newer = SoundSeason();
    newer.zones[0].name = "ZONE 1";
    newer.zones[1].name = "Wet Prairie";
    newer.zones[1].classes[0].cost = 1.0F;
    newer.resources[1].longName = "Hand Crew";
    newer.goals[0].area = "WILDERNESS";
    EXPECT_THAT(Lines(older, newer),
                ElementsAre("changed\tname\tWILDERNESS, ManagementArea\tWilderness\tWILDERNESS",
                            "changed\tname\tHand Crew, LongName\tHand crew\tHand Crew",
                            "changed\tname\tZONE 1, Name\tZone 1\tZONE 1",
                            "renamed\tzone\tWet Prairie\tZone 2\tWet Prairie",
                            "changed\tcost\tWet Prairie, class 1, Cost\t4002\t1"));
}

TEST(Differences, Compare_LessThanNineTenthsAlike_IsAnotherZone) {
    const Season older = SoundSeason(1, 1);
    Season newer = SoundSeason(1, 1);
    newer.zones[0].name = "Wet Prairie";
    // 84 values and 18 figures of costs: 10 changes leave more than nine tenths, 11 less.
    for (std::size_t i = 0; i < 10; ++i) newer.zones[0].locations[0].rows[i].values[0] = 1.0F;
    EXPECT_EQ(Lines(older, newer)[0], "renamed\tzone\tWet Prairie\tZone 1\tWet Prairie");
    newer.zones[0].locations[0].rows[10].values[0] = 1.0F;
    EXPECT_THAT(Lines(older, newer), ElementsAre("added\tzone\tWet Prairie\t\tWet Prairie",
                                                 "removed\tzone\tZone 1\tZone 1\t"));
}

TEST(Differences, Compare_EqualNames_PairsInFileOrder) {
    Season older = SoundSeason(2, 1);
    older.zones[1].name = "zone 1";
    Season newer = older;
    newer.zones[1].classes[0].cost = 7.0F;
    EXPECT_THAT(Lines(older, newer), ElementsAre("changed\tcost\tzone 1, class 1, Cost\t4002\t7"));
}

TEST(Differences, Compare_RowsOfDroppedLocations_AreLeftOut) {
    Season older = SoundSeason(1, 3);
    older.zones[0].rlCount = 1;
    Season newer = older;
    newer.zones[0].locations[2].rows[0].values[0] = 5.0F;
    EXPECT_THAT(Lines(older, newer), IsEmpty());
    newer.zones[0].locations[0].rows.pop_back();
    EXPECT_THAT(Lines(older, newer), ElementsAre("removed\tnvc\tZone 1, location 1, Value 14\t\t"));
}

TEST(Differences, Compare_WithATolerance_LetsFiguresDifferThatMuch) {
    const Season older = SoundSeason(1, 1);
    Season newer = SoundSeason(1, 1);
    newer.zones[0].classes[0].cost = 4041.0F;
    newer.zones[0].classes[1].cost = std::numeric_limits<float>::infinity();
    EXPECT_EQ(Lines(older, newer).size(), 2U);
    EXPECT_EQ(Lines(older, newer, 0.01).size(), 1U);
}

TEST(Differences, JsonOf_HasOneKeyForEachPartOfThePlace) {
    const Season older = SoundSeason(1, 1);
    Season newer = SoundSeason(1, 1);
    newer.zones[0].locations[0].rows[3].values[2] = -1100.25F;
    EXPECT_EQ(review::JsonOf(Compare(older, newer)[0]),
              R"({"kind":"changed","what":"nvc","goal":null,"zone":"Zone 1","location":1,)"
              R"("resource":"Value 4","fil":3,"class":null,"field":"FIL3","old":-42.75,)"
              R"("new":-1100.25})");
}

class DiffCommand : public testing::Test {
protected:
    DiffCommand() {
        season::WriteNew(SoundSeason(), Old());
        tarn_test::PlantedFile(New(), [](Season& season) {
            season.zones[0].locations[1].rows[5].values[5] = -7.25F;
            season.zones[0].name = "<Zone> & 1";
            season.zones.push_back(tarn_test::SoundZone(50, 1));
        });
    }
    tarn_test::CommandResult Diff(const std::string& words) const {
        return tarn_test::RunCommand(tarn_test::Quoted(tarn_test::BuiltProgram("fcdtool")) +
                                     " diff " + tarn_test::Quoted(Old()) + " " + words);
    }
    [[nodiscard]] std::filesystem::path Old() const { return folder_ / "UMFOR25.fcd"; }
    [[nodiscard]] std::filesystem::path New() const { return folder_ / "UMFOR26.fcd"; }

    tarn_test::TempFolder folder_;
};

TEST_F(DiffCommand, OfEqualFiles_SaysNothing) {
    const auto result = Diff(tarn_test::Quoted(Old()));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "");
}

TEST_F(DiffCommand, OfOthers_SaysLinesOrNumbers) {
    const std::string newer = tarn_test::Quoted(New());
    const auto lines = Diff(newer);
    EXPECT_EQ(lines.status, 1);
    EXPECT_THAT(lines.output, HasSubstr("\nadded\tzone\tZone 50\t\tZone 50\n"));
    EXPECT_EQ(Diff(newer + " --summary").output,
              "renamed\tzone\t1\nchanged\tnvc\t1\nadded\tzone\t1\n");
    EXPECT_THAT(Diff(newer + " --json --summary").output,
                HasSubstr(R"({"kind":"added","what":"zone","number":1})"));
    EXPECT_EQ(Diff(newer + " --tolerance much").status, 2);
    EXPECT_EQ(Diff("").status, 2);
}

TEST_F(DiffCommand, WithHtml_MarksWhatChangedAndFoldsTheRest) {
    const std::filesystem::path page = folder_ / "page.html";
    EXPECT_EQ(Diff(tarn_test::Quoted(New()) + " --html " + tarn_test::Quoted(page)).status, 1);
    std::ifstream file(page);
    const std::string html{std::istreambuf_iterator<char>(file), {}};
    EXPECT_THAT(html, HasSubstr("<del>-261.00</del>"));
    EXPECT_THAT(html, HasSubstr("<ins>-7.25</ins>"));
    EXPECT_THAT(html, HasSubstr("&lt;Zone&gt; &amp; 1 (formerly Zone 1)</h2>"));
    EXPECT_THAT(html, HasSubstr("<summary>Zone 2 - unchanged</summary>"));
    EXPECT_THAT(html, testing::Not(HasSubstr("<script")));
    EXPECT_THAT(html, testing::Not(HasSubstr("http://www.w3.org/1999")));
}

TEST_F(DiffCommand, WithTheSourceAsTarget_LeavesItAlone) {
    const auto before = std::filesystem::file_size(Old());
    EXPECT_EQ(Diff(tarn_test::Quoted(New()) + " --html " + tarn_test::Quoted(Old())).status, 2);
    EXPECT_EQ(std::filesystem::file_size(Old()), before);
}

}  // namespace
