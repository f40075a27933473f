// What the figures of a chart say, and where its axes end. No window.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "plots/Figures.h"
#include "plots/Scale.h"
#include "review/report_charts.h"
#include "support/made_season.h"

using plots::ChartContent;
using plots::ChartSpot;

namespace {

using plots::Figure;
using testing::ElementsAre;

std::vector<std::string> Words(const ChartContent& content, const QString& place) {
    std::vector<std::string> words;
    for (const Figure& figure : plots::FiguresOf(content, place)) {
        words.push_back(figure.words.toStdString());
    }
    return words;
}

season::Zone ZoneWithCosts(const std::vector<std::pair<float, float>>& classes) {
    season::Zone zone;
    int number = 0;
    for (const auto& [size, cost] : classes) {
        zone.classes.push_back({++number, size, cost});
    }
    return zone;
}

review::TotalsChart Totals(std::array<double, 6> totals) {
    review::TotalsChart chart;
    chart.panels.push_back({"Location 2", totals});
    return chart;
}

TEST(Figures, OfCostSteps_NameTheSizes) {
    const auto chart = review::CostChartOf(ZoneWithCosts({{0.25F, 4200}, {10, 2650}, {0, 210}}));
    EXPECT_THAT(Words(chart, "Wet Prairie"),
                ElementsAre("Wet Prairie, fires up to 0.25 acres: $4,200 per acre",
                            "Wet Prairie, fires of 0.25 to 10.00 acres: $2,650 per acre",
                            "Wet Prairie, fires above 10.00 acres: $210 per acre"));
}

TEST(Figures, OfTotals_NamePlaceAndLevel) {
    const auto words = Words(Totals({1, -2, -3, -1250.4, 0, -6}), "Wet Prairie");
    ASSERT_EQ(words.size(), 6U);
    EXPECT_EQ(words[3], "Wet Prairie, location 2, FIL 4: -$1,250 per acre");
}

TEST(Figures, OfAHeatMap_GiveTheValueAsTyped) {
    const season::Season season = tarn_test::SoundSeason(1, 1);
    const auto map = review::HeatMapOf(season, season.zones[0], 1, 100);
    const auto figures = plots::FiguresOf(map, "Zone 1, location 1");
    ASSERT_EQ(figures.size(), 84U);
    const auto& third = figures[8];  // the second resource at FIL 3
    EXPECT_EQ(third.spot, (ChartSpot{1, 2}));
    EXPECT_EQ(third.words.toStdString(), "Zone 1, location 1, Value 2, FIL 3: " +
                                             plots::Value(map.values[1][2]).toStdString() +
                                             " dollars per acre");
}

TEST(Figures, OfNothing_AreNone) {
    EXPECT_TRUE(plots::FiguresOf(std::monostate(), "Zone").empty());
    EXPECT_TRUE(plots::FiguresOf(review::TotalsChart(), "Zone").empty());
}

TEST(Describe, WithoutSteps_SaysThatNoClassIsInUse) {
    EXPECT_EQ(plots::Describe(review::CostChartOf(ZoneWithCosts({{0, 0}}))).toStdString(),
              "No class of fire size with a cost is in use.");
}

TEST(Describe, OfAHeatMap_NamesTheExtremes) {
    review::HeatMap map;
    map.rows = {"Forage", "Timber"};
    map.values = {{0, 0, 0, 2.5, 0, 0}, {0, 0, -1250, 0, 0, -7}};
    EXPECT_EQ(plots::Describe(map).toStdString(),
              "The values of 2 resources at FIL 1 to 6, in dollars per acre. The largest loss is "
              "-1250.00 (Timber, FIL 3). The largest gain is 2.50 (Forage, FIL 4).");
}

TEST(ShortDollars, KeepSignAndSize) {
    EXPECT_EQ(plots::ShortDollars(-1250).toStdString(), "-1.3k");
    EXPECT_EQ(plots::ShortDollars(45600).toStdString(), "46k");
    EXPECT_EQ(plots::ShortDollars(-3).toStdString(), "-3");
    EXPECT_EQ(plots::ShortDollars(-0.2).toStdString(), "0");
    EXPECT_EQ(plots::ShortDollars(2.5e6).toStdString(), "2.5M");
}

TEST(Scale, OfTotals_HoldsAllLocationsAndZero) {
    review::TotalsChart chart = Totals({1, 2, 3, -40, -5, 0});
    chart.panels.push_back({"Location 3", {0, 0, 0, 0, 0, -1250}});
    const plots::Scale scale = plots::ScaleOf(chart);
    EXPECT_EQ(scale.least, -2000);
    EXPECT_EQ(scale.most, 5);
}

TEST(Scale, OfWhatIsNoNumber_IsStillAScale) {
    constexpr double kInfinite = std::numeric_limits<double>::infinity();
    const plots::Scale scale =
        plots::ScaleOf(Totals({kInfinite, -kInfinite, std::nan(""), 0, 0, 0}));
    EXPECT_EQ(scale.least, 0);
    EXPECT_EQ(scale.most, 1);
}

TEST(Scale, OfCosts_EndsAtPowersOfTen) {
    const auto chart = review::CostChartOf(ZoneWithCosts({{0.25F, 4200}, {300, 385}, {0, 210}}));
    EXPECT_DOUBLE_EQ(plots::AcresOf(chart).least, 0.1);
    EXPECT_DOUBLE_EQ(plots::AcresOf(chart).most, 10000);
    EXPECT_DOUBLE_EQ(plots::CostsOf(chart).least, 100);
    EXPECT_DOUBLE_EQ(plots::CostsOf(chart).most, 10000);
    EXPECT_DOUBLE_EQ(plots::CostsOf(review::CostChart()).most, 10);
}

}  // namespace
