// The charts beside the worksheets: there where the frame is wide, and following what is typed.
#include "RunningProgram.h"
#include "platform/controls/vsFlexGrid.h"
#include "support/made_season.h"

namespace {

class Plots : public RunningProgram {
protected:
    // The worksheet of this tab, in a frame of this width.
    void ShowWorksheet(int width, int tab) {
        const QString path = folder_.CostsPath(QStringLiteral("Unit.fcd"));
        season::WriteNew(tarn_test::SoundSeason(), path.toStdString());
        Run(path);
        frame_->resize(width, 700);
        ClickTab(tab);
    }
    // What a chart says to those who do not see it, once it has come.
    QString Said(const QString& chart) {
        EXPECT_TRUE(QTest::qWaitFor([&] {
            const QWidget* found = Find(chart);
            return found != nullptr && found->isVisible();
        })) << chart.toStdString();
        return Get(chart).accessibleDescription();
    }
};

TEST_F(Plots, NVCTotals_FollowEachKeystroke) {
    ShowWorksheet(1100, 5);
    const QString before = Said(QStringLiteral("pltNVC"));
    EXPECT_TRUE(before.startsWith(QStringLiteral("Totals from FIL 1 to 6: -$")))
        << before.toStdString();
    auto& grid = Get<vsFlexGrid>(QStringLiteral("grdNVC"));
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, grid.CellRect(1, 1).center());
    Press(Qt::Key_9);
    const QString one = Get(QStringLiteral("pltNVC")).accessibleDescription();
    EXPECT_NE(one, before);
    Press(Qt::Key_9);
    EXPECT_NE(Get(QStringLiteral("pltNVC")).accessibleDescription(), one);
    Press(Qt::Key_Escape);
    EXPECT_EQ(Get(QStringLiteral("pltNVC")).accessibleDescription(), before);
}

TEST_F(Plots, CostSteps_FollowEachKeystroke) {
    ShowWorksheet(1100, 6);
    const QString before = Said(QStringLiteral("pltCost"));
    EXPECT_TRUE(before.startsWith(QStringLiteral("Cost per acre by fire size: up to 0.25 acres")))
        << before.toStdString();
    auto& grid = Get<vsFlexGrid>(QStringLiteral("grdCosts"));
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, grid.CellRect(2, 2).center());
    Press(Qt::Key_7);
    EXPECT_TRUE(
        Get(QStringLiteral("pltCost"))
            .accessibleDescription()
            .startsWith(QStringLiteral("Cost per acre by fire size: up to 0.25 acres $7;")));
    Press(Qt::Key_Escape);
    EXPECT_EQ(Get(QStringLiteral("pltCost")).accessibleDescription(), before);
}

TEST_F(Plots, ANarrowFrame_HasNone) {
    ShowWorksheet(990, 5);
    // It is asked for only where it has room.
    QCoreApplication::processEvents();
    EXPECT_EQ(Find(QStringLiteral("pltNVC")), nullptr);
    frame_->resize(1100, 700);
    Said(QStringLiteral("pltNVC"));
    frame_->resize(900, 700);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !Get(QStringLiteral("pltNVC")).isVisible(); }));
}

}  // namespace
