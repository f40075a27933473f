// The boxes in which zones and locations are chosen, and how they stand in a page.
#include <QAbstractItemView>
#include <QLabel>
#include <QScrollBar>

#include "platform/controls/LegibleStyle.h"
#include "platform/controls/ScrolledPage.h"
#include "worksheet_fixture.h"
#include "worksheets/ChoiceBox.h"
#include "worksheets/ChoicesRow.h"
#include "worksheets/nvc/frm5NVCTable.h"
#include "worksheets/zones/ZoneRecords.h"

using platform::LegibleStyle;
using platform::ScrolledPage;
using worksheets::ChoiceBox;

namespace {

class ChoicesTest : public WorksheetTest {
protected:
    static int TopOf(const QWidget& widget) { return widget.mapToGlobal(QPoint(0, 0)).y(); }
};

TEST_F(ChoicesTest, ManyZones_ShowTwentyRowsAndAScrollBar) {
    ChoiceBox box(10, nullptr);
    LegibleStyle style;
    box.setStyle(&style);
    for (int i = 0; i < 300; ++i) {
        box.addItem(QStringLiteral("Zone %1").arg(i));
    }
    box.addItem(QStringLiteral("A name that is far longer than what the box has room for"));
    box.show();
    box.showPopup();
    QAbstractItemView& list = *box.view();
    EXPECT_LE(list.viewport()->height() / list.sizeHintForRow(0), 21);
    EXPECT_GE(list.viewport()->height() / list.sizeHintForRow(0), 15);
    EXPECT_GT(list.verticalScrollBar()->maximum(), 0);
    EXPECT_GE(list.viewport()->width(), list.sizeHintForColumn(0)) << "no name is cut there";
    box.hidePopup();
}

TEST_F(ChoicesTest, Box_KeepsItsWidthWhateverItHolds) {
    ChoiceBox box(10, nullptr);
    const int empty = box.sizeHint().width();
    box.addItem(QStringLiteral("A name that is far longer than what the box has room for"));
    EXPECT_EQ(box.sizeHint().width(), empty);
    EXPECT_EQ(box.toolTip(), box.currentText());
}

TEST_F(ChoicesTest, NarrowPage_HasNarrowerBoxesInsteadOfScrolling) {
    ZoneRecords::Create(QStringLiteral("North"), 1);
    const QFont before = QApplication::font();
    QFont large = before;
    large.setPointSize(18);
    QApplication::setFont(large);
    auto& form = Load<frm5NVCTable>();
    form.resize(800, 530);
    QApplication::processEvents();
    const auto* page = form.findChild<ScrolledPage*>();
    ASSERT_NE(page, nullptr);
    EXPECT_EQ(page->horizontalScrollBar()->maximum(), 0);
    const auto& zones = Find<QComboBox>("cboFMZs");
    EXPECT_LT(zones.width(), zones.sizeHint().width());
    EXPECT_GE(zones.width(), zones.minimumSizeHint().width());
    form.resize(1366, 700);
    QApplication::processEvents();
    EXPECT_EQ(zones.width(), zones.sizeHint().width());
    QApplication::setFont(before);
}

TEST_F(ChoicesTest, UnnamedZone_ShowsThatItHasNoNameAndKeepsItsText) {
    ZoneRecords::Create(QString(), 1);
    Load<frm5NVCTable>();
    auto& box = Find<QComboBox>("cboFMZs");
    EXPECT_EQ(box.currentText(), QString());
    EXPECT_EQ(box.itemText(0), QString());
    const QImage unnamed = box.grab().toImage();
    box.setItemText(0, QStringLiteral("(no name)"));
    EXPECT_EQ(box.grab().toImage(), unnamed);
    box.setItemText(0, QStringLiteral("other"));
    EXPECT_NE(box.grab().toImage(), unnamed);
}

TEST_F(ChoicesTest, WidePage_HasZoneAndLocationInOneLine) {
    ZoneRecords::Create(QStringLiteral("North"), 1);
    auto& form = Load<frm5NVCTable>();
    auto& zones = Find<QComboBox>("cboFMZs");
    auto& locations = Find<QComboBox>("cboRepLocs");
    const auto resized = [&](int width) {
        form.resize(width, form.height());
        QApplication::processEvents();
        return TopOf(locations) - TopOf(zones);
    };
    EXPECT_EQ(resized(1366), 0);
    EXPECT_EQ(resized(808), 0);
    EXPECT_GE(resized(500), zones.height());
    EXPECT_EQ(zones.mapToGlobal(QPoint(0, 0)).x(), locations.mapToGlobal(QPoint(0, 0)).x());
    EXPECT_EQ(resized(1366), 0);
}

TEST_F(ChoicesTest, Step_ChoosesTheNextOneAsAPersonDoes) {
    ChoiceBox box(10, nullptr);
    box.addItems({QStringLiteral("a"), QStringLiteral("b")});
    int chosen = -1;
    QObject::connect(&box, &QComboBox::activated, &box, [&chosen](int index) { chosen = index; });
    box.Step(-1);
    EXPECT_EQ(chosen, -1);
    box.Step(1);
    EXPECT_EQ(chosen, 1);
    box.Step(1);
    EXPECT_EQ(box.currentIndex(), 1);
}

}  // namespace
