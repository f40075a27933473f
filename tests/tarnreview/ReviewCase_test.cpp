// What is looked at, without a window.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "plots/Figures.h"
#include "review/check.h"
#include "season/data_file.h"
#include "support/made_season.h"
#include "support/temp_folder.h"
#include "tarnreview/PlaceView.h"
#include "tarnreview/ReviewCase.h"
#include "tarnreview/SaveAs.h"

using plots::ChartSpot;
using tarnreview::LastYearsFile;
using tarnreview::PlaceOfFinding;
using tarnreview::PlaceView;
using tarnreview::ResourceCosts;
using tarnreview::ReviewCase;

namespace {

namespace fs = std::filesystem;

class CaseTest : public testing::Test {
protected:
    void Write(const std::string& name, const season::Season& season) const {
        season::WriteNew(season, folder_ / name);
    }
    tarn_test::TempFolder folder_;
    ReviewCase case_;
};

TEST_F(CaseTest, LastYearsFile_IsFoundByItsNameInAnyCase) {
    Write("umfor25.FCD", tarn_test::SoundSeason());
    EXPECT_EQ(LastYearsFile(folder_ / "UMFOR26.fcd"), folder_ / "umfor25.FCD");
    EXPECT_EQ(LastYearsFile(folder_ / "UMFOR27.fcd"), std::nullopt);
    EXPECT_EQ(LastYearsFile(folder_ / "season.fcd"), std::nullopt);
}

TEST_F(CaseTest, LastYearsFile_OfTheCenturysFirstYear) {
    Write("UMFOR99.fcd", tarn_test::SoundSeason());
    EXPECT_EQ(LastYearsFile(folder_ / "UMFOR00.fcd"), folder_ / "UMFOR99.fcd");
}

TEST_F(CaseTest, ARefusedFile_LeavesWhatWasThere) {
    Write("UMFOR26.fcd", tarn_test::SoundSeason());
    case_.Open(folder_ / "UMFOR26.fcd");
    std::ofstream(folder_ / "text.fcd") << "no database";
    EXPECT_THROW(case_.Open(folder_ / "text.fcd"), season::Refused);
    EXPECT_THROW(case_.Open(folder_ / "absent.fcd"), season::Refused);
    EXPECT_THROW(case_.OpenPrevious(folder_ / "text.fcd"), season::Refused);
    ASSERT_NE(case_.Season(), nullptr);
    EXPECT_EQ(case_.Season()->path, folder_ / "UMFOR26.fcd");
    EXPECT_EQ(case_.Previous(), nullptr);
}

TEST_F(CaseTest, SavingWhereNoFileCanBe_SaysWhyForEachKind) {
    Write("UMFOR26.fcd", tarn_test::SoundSeason());
    case_.Open(folder_ / "UMFOR26.fcd");
    const auto failure = [this](const fs::path& target) -> std::string {
        try {
            SaveAs::Save(case_, SaveAs::What::kReport, target);
        } catch (const std::exception& error) {
            return error.what();
        }
        return "saved";
    };
    fs::create_directory(folder_ / "taken.pdf");
    for (const char* const ending : {"pdf", "html", "xlsx", "json"}) {
        const std::string name = std::string("figures.") + ending;
        EXPECT_EQ(failure(folder_ / "none" / name), "The folder cannot be found.") << ending;
        EXPECT_EQ(failure(folder_ / name), "saved");
    }
    EXPECT_EQ(failure(folder_ / "taken.pdf"), "The file cannot be written.");
    EXPECT_FALSE(fs::exists(folder_ / "taken.pdf.part"));
}

TEST_F(CaseTest, AChangeOnTheDisk_IsNoticedUntilItIsReadOrAccepted) {
    Write("UMFOR26.fcd", tarn_test::SoundSeason());
    case_.Open(folder_ / "UMFOR26.fcd");
    EXPECT_FALSE(case_.HasChanged());
    fs::remove(folder_ / "UMFOR26.fcd");
    EXPECT_TRUE(case_.HasChanged());
    case_.AcceptChange();
    EXPECT_FALSE(case_.HasChanged());
    Write("UMFOR26.fcd", tarn_test::SoundSeason(9));
    EXPECT_TRUE(case_.HasChanged());
    case_.OpenAgain();
    EXPECT_FALSE(case_.HasChanged());
    EXPECT_EQ(case_.Season()->zones.size(), 9U);
    std::ofstream(folder_ / "UMFOR26.fcd-log") << "operations that wait";
    EXPECT_TRUE(case_.HasChanged());
}

TEST_F(CaseTest, WithLastYear_HasDifferencesAndKeepsThemWhenReadAgain) {
    season::Season newer = tarn_test::SoundSeason();
    newer.zones[1].locations[0].rows[2].values[3] = -4.0F;
    Write("UMFOR25.fcd", tarn_test::SoundSeason());
    Write("UMFOR26.fcd", newer);
    case_.Open(folder_ / "UMFOR26.fcd");
    case_.OpenPrevious(folder_ / "UMFOR25.fcd");
    ASSERT_EQ(case_.Differences().size(), 1U);
    case_.OpenAgain();
    EXPECT_EQ(case_.Differences().size(), 1U);
}

// The marked cell and the marked figure of a finding.
TEST(PlaceView, OfAValue_MarksItsCellAndItsBar) {
    season::Season season = tarn_test::SoundSeason();
    season.zones[1].locations[1].rows[4].values[2] = -0.01F;
    const auto findings = review::Check({season, nullptr, nullptr});
    const auto slip = std::find_if(findings.begin(), findings.end(), [](const auto& finding) {
        return finding.rule == "nvc-slip" && finding.place.fil == 3;
    });
    ASSERT_NE(slip, findings.end());
    const PlaceView view = PlaceOfFinding(season, *slip);
    EXPECT_EQ(view.title, "Zone 2, location 2, Value 5, FIL 3");
    ASSERT_EQ(view.row, 4);
    ASSERT_EQ(view.column, 3);
    EXPECT_EQ(view.table.rows[4][3].text, "-0.01");
    EXPECT_EQ(view.spot, (ChartSpot{0, 2}));
    EXPECT_EQ(plots::FiguresOf(view.chart, view.chartPlace)[2].words,
              "Zone 2, location 2, Value 5, FIL 3: -0.01");
}

TEST(PlaceView, OfACost_MarksItsClassAndItsStep) {
    season::Season season = tarn_test::SoundSeason();
    season.zones[0].classes[2].cost = 9000.0F;
    const auto findings = review::Check({season, nullptr, nullptr});
    ASSERT_FALSE(findings.empty());
    ASSERT_EQ(findings[0].rule, "cost-rises");
    const PlaceView view = PlaceOfFinding(season, findings[0]);
    ASSERT_EQ(view.row, 2);
    EXPECT_EQ(view.table.rows[2][static_cast<std::size_t>(view.column)].text, "$9,000");
    EXPECT_EQ(view.spot, (ChartSpot{0, 2}));
    EXPECT_EQ(plots::FiguresOf(view.chart, view.chartPlace)[2].words,
              "Zone 1, fires of 10.00 to 100.00 acres: $9,000 per acre");
}

// Every rule's finding has a place with a table, and what it marks is there.
TEST(PlaceView, OfEveryFinding_HasATableAndMarksWhatIsThere) {
    season::Season season = tarn_test::SoundSeason(4, 3);
    season.properties[1].value = "";
    season.properties[2].value = "";
    season.goals[0].explanation = "";
    season.goals.push_back({3, "", ""});
    season.resources[0].longName = "";
    season.resources[1].cost = 0.0F;
    season.resources[2].unitType = "hour";
    season.zones[0].name = "";
    season.zones[1].rlCount = 0;
    season.zones[2].classes[1].cost = -5.0F;
    season.zones[2].classes.pop_back();
    season.zones[3].locations[0].rows.pop_back();
    season.zones[3].locations[1].rows[0].values = {1, -1, 1, -1, 1, 9000};
    season.zones[3].locations[2].rows.clear();
    const auto findings = review::Check({season, nullptr, nullptr});
    EXPECT_GE(findings.size(), 14U);
    for (const review::Finding& finding : findings) {
        const PlaceView view = PlaceOfFinding(season, finding);
        EXPECT_FALSE(view.table.head.empty()) << finding.text;
        const auto rows = view.table.rows.size() + view.table.totals.size();
        EXPECT_LT(view.row, static_cast<int>(rows)) << finding.text;
        EXPECT_LT(view.column, static_cast<int>(view.table.head.size())) << finding.text;
    }
}

TEST(ResourceCosts, AreSortedTheDearestFirst) {
    const auto chart = ResourceCosts(tarn_test::SoundSeason());
    ASSERT_EQ(chart.bars.size(), 3U);
    EXPECT_EQ(chart.bars[0].label, "Hand crew");
    EXPECT_EQ(chart.bars[0].text, "$7,400 per day");
    EXPECT_EQ(chart.bars[2].label, "Engine, type 6");
}

}  // namespace
