// The charts in a window: every figure is found where it is drawn, told with its place, and reached
// with the keys.
#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QTest>

#include <cmath>

#include "plots/Chart.h"
#include "plots/LivePlots.h"
#include "review/report_charts.h"
#include "support/made_season.h"

using platform::LivePlot;
using plots::ChartContent;
using plots::ChartSpot;

namespace {

class ChartTest : public testing::Test {
protected:
    void Show(const ChartContent& content, const QString& place) {
        chart_.resize(900, 700);
        chart_.SetListener([this](const QString& words) { told_ = words; });
        chart_.Show(content, QStringLiteral("A title"), place);
        chart_.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&chart_));
        chart_.replot();
    }
    // Every figure that any point of the chart tells.
    QStringList Pointed() {
        QStringList all;
        for (int y = 0; y < chart_.height(); y += 3) {
            for (int x = 0; x < chart_.width(); x += 3) {
                const plots::Figure* const figure = chart_.FigureAt(QPointF(x, y));
                if (figure != nullptr && !all.contains(figure->words)) {
                    all += figure->words;
                }
            }
        }
        return all;
    }
    void ExpectAllAreFound(const ChartContent& content, const QString& place) {
        Show(content, place);
        QStringList expected;
        for (const plots::Figure& figure : plots::FiguresOf(content, place)) {
            expected += figure.words;
        }
        QStringList found = Pointed();
        expected.sort();
        found.sort();
        EXPECT_EQ(found.join('\n').toStdString(), expected.join('\n').toStdString());
    }

    const season::Season season_ = tarn_test::SoundSeason(2, 5);
    plots::Chart chart_{nullptr};
    QString told_;
};

TEST_F(ChartTest, Totals_ShowEveryFigureUnderThePointer) {
    ExpectAllAreFound(review::TotalsChartOf(season_.zones[0]), "Zone 1");
}

TEST_F(ChartTest, HeatMap_ShowsEveryFigureUnderThePointer) {
    ExpectAllAreFound(review::HeatMapOf(season_, season_.zones[0], 2, 100), "Zone 1, location 2");
}

TEST_F(ChartTest, CostSteps_ShowEveryFigureUnderThePointer) {
    ExpectAllAreFound(review::CostChartOf(season_.zones[0]), "Zone 1");
}

TEST_F(ChartTest, Bars_ShowEveryFigureUnderThePointer) {
    review::BarChart bars;
    bars.bars = {{"Dozer", 2350, "$2,350"}, {"Loss", -20, "-$20"}, {"Nothing", 0, "$0"}};
    ExpectAllAreFound(bars, {});
}

TEST_F(ChartTest, ThePointer_ShowsTheFigureAndItsEnd) {
    Show(review::HeatMapOf(season_, season_.zones[0], 2, 100), "Zone 1, location 2");
    QTest::mouseMove(&chart_, QPoint(chart_.width() / 2, chart_.height() / 2));
    QTRY_VERIFY_WITH_TIMEOUT(told_.startsWith("Zone 1, location 2, Value "), 5000);
    EXPECT_TRUE(told_.endsWith(" dollars per acre"));
    QTest::mouseMove(&chart_, QPoint(1, 1));
    QTRY_VERIFY_WITH_TIMEOUT(told_.isEmpty(), 5000);
}

TEST_F(ChartTest, Keys_GoThroughTheFigures) {
    Show(review::HeatMapOf(season_, season_.zones[0], 2, 100), "Z");
    chart_.activateWindow();
    chart_.setFocus();
    QTest::keyClick(&chart_, Qt::Key_Right);
    EXPECT_TRUE(told_.startsWith("Z, Value 1, FIL 1: "));
    QTest::keyClick(&chart_, Qt::Key_Right);
    QTest::keyClick(&chart_, Qt::Key_Down);
    EXPECT_TRUE(told_.startsWith("Z, Value 2, FIL 2: "));
    EXPECT_EQ(chart_.accessibleDescription(), told_);
    QTest::keyClick(&chart_, Qt::Key_Up);
    QTest::keyClick(&chart_, Qt::Key_Up);
    EXPECT_TRUE(told_.startsWith("Z, Value 1, FIL 2: ")) << "the first row has none above it";
}

TEST_F(ChartTest, AMark_ChangesThePicture) {
    Show(review::HeatMapOf(season_, season_.zones[0], 2, 100), "Z");
    const QImage before = chart_.grab().toImage();
    chart_.Mark(ChartSpot{3, 2});
    chart_.replot();
    EXPECT_NE(chart_.grab().toImage(), before);
    chart_.Mark(std::nullopt);
    chart_.replot();
    EXPECT_EQ(chart_.grab().toImage(), before);
}

// A chart is drawn anew at every keystroke; nothing of the former picture stays behind.
TEST_F(ChartTest, DrawnAgain_KeepsNothingOfTheFormerPicture) {
    const auto content = review::TotalsChartOf(season_.zones[0]);
    Show(content, "Zone 1");
    const auto before = chart_.findChildren<QObject*>().size();
    for (int i = 0; i < 20; ++i) {
        chart_.Show(content, QStringLiteral("A title"), "Zone 1");
        chart_.replot();
    }
    EXPECT_EQ(chart_.findChildren<QObject*>().size(), before);
}

// Where two colors would be one gray, the hatching still tells losses from gains.
TEST_F(ChartTest, LossAndGain_DifferWithoutColors) {
    EXPECT_NE(chart_.Fill(-1).style(), chart_.Fill(1).style());
}

TEST_F(ChartTest, AmountsBesideBars_HaveNothingBeforeThem) {
    review::BarChart bars;
    bars.bars = {{"Dozer", 2350, "$2,350"}, {"Engine", 1100, "$1,100"}};
    Show(bars, {});
    const auto* const axes = qobject_cast<QCPAxisRect*>(chart_.Body().element(0, 0));
    ASSERT_NE(axes, nullptr);
    const QImage picture = chart_.grab().toImage();
    for (int y = axes->top(); y < axes->bottom(); ++y) {
        EXPECT_EQ(picture.pixelColor(axes->right() + 1, y), picture.pixelColor(2, 2)) << y;
    }
}

TEST_F(ChartTest, ADarkPalette_TurnsTheGroundDark) {
    Show(review::CostChartOf(season_.zones[0]), "Z");
    QPalette dark;
    dark.setColor(QPalette::Base, QColor(20, 20, 20));
    dark.setColor(QPalette::Text, Qt::white);
    chart_.setPalette(dark);
    chart_.replot();
    EXPECT_EQ(chart_.grab().toImage().pixelColor(2, 2), QColor(20, 20, 20));
    EXPECT_GT(chart_.Colors().loss.lightness(), 100);
}

TEST_F(ChartTest, IsNamedAndDescribed) {
    const auto content = review::TotalsChartOf(season_.zones[0]);
    Show(content, "Zone 1");
    EXPECT_EQ(chart_.accessibleName(), "A title");
    EXPECT_EQ(chart_.accessibleDescription().toStdString(), content.words.alternative);
}

TEST_F(ChartTest, OfNumbersWithoutEnd_IsDrawnAllTheSame) {
    constexpr double kInfinite = std::numeric_limits<double>::infinity();
    review::HeatMap map;
    map.rows = {"Forage"};
    map.values = {{kInfinite, -kInfinite, std::nan(""), 3e38, -3e38, 0}};
    map.largest = 3e38;
    ExpectAllAreFound(map, "Z");
    review::TotalsChart totals;
    totals.panels.push_back({"Location 1", {kInfinite, -kInfinite, std::nan(""), 3e38, 0, -1}});
    ExpectAllAreFound(totals, "Z");
    review::BarChart bars;
    bars.bars = {{"Endless", kInfinite, "infinite"}, {"None", std::nan(""), "no number"}};
    ExpectAllAreFound(bars, "Z");
}

TEST(LivePlot, FollowsWhatItIsShown) {
    QWidget parent;
    LivePlot& plot = plots::MakeLivePlot(parent);
    plot.ShowTotals("Wet Prairie, location 2", {1, 2, 3, 4, 5, -6});
    EXPECT_EQ(plot.Widget().accessibleDescription().toStdString(),
              "Totals from FIL 1 to 6: $1, $2, $3, $4, $5, -$6.");
    plot.ShowCosts("Wet Prairie", {{10, 100}, {0, 50}, {0, 0}});
    EXPECT_EQ(plot.Widget().accessibleDescription().toStdString(),
              "Cost per acre by fire size: up to 10.00 acres $100; above 10.00 acres $50.");
    plot.ShowNothing();
    EXPECT_EQ(plot.Widget().accessibleDescription(), QString());
}

// Beside a worksheet in a large font little room is left: the bars stay, and so do their places.
TEST_F(ChartTest, TotalsWithLittleRoom_KeepBarsAndHeading) {
    plots::Chart chart{nullptr};
    QFont large = chart.font();
    large.setPointSize(18);
    chart.setFont(large);
    review::TotalsChart content;
    content.panels.push_back({{}, {2, 2, -5, -26, -54, -75}});
    chart.Show(content, QStringLiteral("Total per acre by FIL"), {});
    const int digit = QFontMetrics(large).horizontalAdvance(QStringLiteral("8"));
    EXPECT_LE(chart.minimumSizeHint().width(), 16 * digit);
    chart.resize(chart.minimumSizeHint().width(), 400);
    chart.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&chart));
    chart.replot();
    auto* const heading = qobject_cast<QCPTextElement*>(chart.plotLayout()->element(0, 0));
    ASSERT_NE(heading, nullptr);
    EXPECT_TRUE(heading->text().contains(u'\n'));
    EXPECT_EQ(heading->text().simplified(), "Total per acre by FIL");
    EXPECT_GE(chart.Body().element(0, 0)->rect().width(), 6 * digit);
}

// Nine classes beside a worksheet in a large font: what is written can be read.
TEST_F(ChartTest, CostsOfNarrowSteps_AreNotWrittenOnEachOther) {
    review::CostChart content;
    content.steps = {{0, 0.25, 7208},        {0.25, 1, 6751},         {1, 3.25, 3780},
                     {3.25, 24.75, 1607},    {24.75, 206, 1472},      {206, 1976.75, 808},
                     {1976.75, 8551.5, 730}, {8551.5, 46661.25, 437}, {46661.25, 0, 343}};
    for (const int size : {9, 18}) {
        plots::Chart chart{nullptr};
        QFont font = chart.font();
        font.setPointSize(size);
        chart.setFont(font);
        chart.Show(content, QStringLiteral("Cost per acre"), {});
        const int digits = QFontMetrics(font).horizontalAdvance(QStringLiteral("00"));
        EXPECT_LE(chart.minimumSizeHint().width(), 17 * digits / 2 + 40);
        chart.resize(chart.minimumSizeHint());
        chart.replot();
        std::vector<QRectF> written;
        for (int i = 0; i < chart.itemCount(); ++i) {
            if (const auto* const text = qobject_cast<QCPItemText*>(chart.item(i))) {
                const QPointF middle = text->position->pixelPosition();
                const QSizeF wide(QFontMetrics(font).horizontalAdvance(text->text()),
                                  QFontMetrics(font).ascent() - 2);
                const QRectF area(middle - QPointF(wide.width() / 2, wide.height() / 2), wide);
                for (const QRectF& other : written) {
                    EXPECT_FALSE(area.intersects(other)) << text->text().toStdString();
                }
                written.push_back(area);
            }
        }
        EXPECT_GE(written.size(), 3U);
    }
}

}  // namespace
