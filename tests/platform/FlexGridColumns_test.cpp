// The grid's widths with large fonts and long figures.
#include <QHeaderView>
#include <QHelpEvent>
#include <QToolTip>

#include "FlexGridFixture.h"
#include "platform/controls/FontScale.h"

namespace {

class FlexGridSizes : public FlexGridTest {
protected:
    void SetUp() override {
        FlexGridTest::SetUp();
        FillList();
        grid_->SetColDataType(2, vsFlexGrid::DataType::kCurrency);
        grid_->SetColWidth(2, 960);
    }
    void SetPoints(double points) {
        QFont font = grid_->font();
        font.setPointSizeF(points);
        grid_->setFont(font);
    }
    [[nodiscard]] QImage CellPicture(int row, int col) {
        const QRect rect = grid_->CellRect(row, col);
        return grid_->viewport()->grab(rect).toImage();
    }
};

TEST_F(FlexGridSizes, Widths_HoldForStandardFontsAndGrowWithLargerOnes) {
    for (const double points : {6.0, 9.0, 10.0}) {
        SetPoints(points);
        EXPECT_EQ(grid_->columnWidth(0), 240);
    }
    SetPoints(18);
    const double scale = platform::FontScale(grid_->font());
    EXPECT_GT(scale, 1.5);
    EXPECT_NEAR(grid_->columnWidth(0), 240 * scale, 1);
    EXPECT_EQ(grid_->ColWidth(0), 3600);
    // What the user sets is taken in twips, too.
    grid_->horizontalHeader()->resizeSection(0, 300);
    EXPECT_NEAR(grid_->ColWidth(0), 300 * 15 / scale, 1);
    SetPoints(9);
    EXPECT_NEAR(grid_->columnWidth(0), 300 / scale, 1);
}

TEST_F(FlexGridSizes, LongFigure_GetsAWiderColumn) {
    EXPECT_EQ(grid_->columnWidth(2), 64);
    grid_->SetTextMatrix(2, 2, "-100000053");
    const int needed = grid_->fontMetrics().horizontalAdvance("-$100,000,053");
    EXPECT_GT(grid_->columnWidth(2), needed);
    EXPECT_EQ(grid_->ColWidth(2), 960);
}

TEST_F(FlexGridSizes, RoomForATotal_WidensTheColumn) {
    grid_->SetColRoom(2, 110);
    EXPECT_EQ(grid_->columnWidth(2), 110);
    grid_->SetColRoom(2, 20);
    EXPECT_EQ(grid_->columnWidth(2), 110);
    EXPECT_EQ(grid_->ColWidth(2), 960);
}

TEST_F(FlexGridSizes, FigureInAColumnMadeNarrow_ShowsAsSignsWithATip) {
    Show();
    grid_->SetTextMatrix(2, 2, "-100000053");
    grid_->SetTextMatrix(3, 2, "-100000054");
    grid_->horizontalHeader()->resizeSection(2, 60);
    EXPECT_EQ(grid_->columnWidth(2), 60);
    // Whatever the figure, what shows is the same.
    EXPECT_EQ(CellPicture(2, 2), CellPicture(3, 2));
    const QPoint place = grid_->CellRect(2, 2).center();
    QHelpEvent help(QEvent::ToolTip, place, grid_->viewport()->mapToGlobal(place));
    QApplication::sendEvent(grid_->viewport(), &help);
    EXPECT_EQ(QToolTip::text(), "-$100,000,053");
    QToolTip::hideText();
    QTRY_VERIFY(!QToolTip::isVisible());
    // A double click on the edge of the heading fits the column.
    const int edge = grid_->columnViewportPosition(2) + grid_->columnWidth(2) - 1;
    const QPoint atEdge(edge, grid_->horizontalHeader()->height() / 2);
    const QPoint inWindow = grid_->horizontalHeader()->viewport()->mapTo(&window_, atEdge);
    QTest::mouseMove(window_.windowHandle(), inWindow);
    QTest::mouseDClick(window_.windowHandle(), Qt::LeftButton, {}, inWindow);
    EXPECT_GT(grid_->columnWidth(2), grid_->fontMetrics().horizontalAdvance("-$100,000,053"));
    EXPECT_NE(CellPicture(2, 2), CellPicture(3, 2));
}

TEST_F(FlexGridSizes, ColumnFitToItsFigures_ShowsThemWhole) {
    Show();
    const QString figures = QStringLiteral("29384756102");
    for (qsizetype length = 1; length <= figures.size(); ++length) {
        const QString figure = figures.left(length);
        grid_->SetTextMatrix(2, 2, figure + u'1');
        grid_->SetTextMatrix(3, 2, figure + u'2');
        grid_->resizeColumnToContents(2);
        EXPECT_NE(CellPicture(2, 2), CellPicture(3, 2)) << figure.toStdString();
    }
}

TEST_F(FlexGridSizes, WidthsByUser_ComeBackInANewGrid) {
    EXPECT_TRUE(grid_->WidthsByUser().empty());
    grid_->horizontalHeader()->resizeSection(0, 300);
    const std::map<int, int> widths = grid_->WidthsByUser();
    EXPECT_EQ(widths, (std::map<int, int>{{0, 4500}}));
    FillList();
    EXPECT_EQ(grid_->columnWidth(0), 240);
    grid_->SetWidthsByUser(widths);
    EXPECT_EQ(grid_->columnWidth(0), 300);
}

TEST_F(FlexGridSizes, CurrentCell_IsFramedWithoutColors) {
    Listen();
    Show();
    grid_->Select(2, 1);
    grid_->setFocus();
    const QColor text = grid_->palette().color(QPalette::Text);
    const QImage current = CellPicture(2, 1);
    EXPECT_EQ(current.pixelColor(0, 5), text);
    EXPECT_EQ(current.pixelColor(1, 5), text);
    EXPECT_NE(CellPicture(1, 1).pixelColor(0, 5), text);
    // Within it a line of the ground: where the selection has the text's color, that tells it.
    EXPECT_EQ(current.pixelColor(2, 5), grid_->palette().color(QPalette::Base));
}

// Where the column cannot grow, the box in which a number is typed does.
TEST_F(FlexGridSizes, LongNumber_ShowsWholeWhileItIsTyped) {
    EditOnEntering();
    Show();
    grid_->horizontalHeader()->resizeSection(2, 40);
    ClickCell(2, 2);
    Type("-1234567.5");
    const auto* editor = grid_->findChild<QLineEdit*>("txtCellEditor");
    EXPECT_GT(editor->width(), editor->fontMetrics().horizontalAdvance("-1234567.5"));
    EXPECT_EQ(editor->geometry().right(), grid_->CellRect(2, 2).right() - 1);
    // A click beside the cell is meant for what lies below the box.
    const QPoint beside = grid_->CellRect(2, 2).center() - QPoint(30, 0);
    EXPECT_TRUE(editor->geometry().contains(beside));
    QTest::mouseClick(window_.windowHandle(), Qt::LeftButton, {},
                      grid_->viewport()->mapTo(&window_, beside));
    EXPECT_EQ(Current(), Cell(2, 1));
    EXPECT_EQ(grid_->TextMatrix(2, 2), "-1234567.5");
    Type("7");
    EXPECT_EQ(grid_->EditText(), "7");
}

TEST_F(FlexGridSizes, LongText_ShowsWholeWhileItIsTyped) {
    EditOnEntering();
    Show();
    grid_->horizontalHeader()->resizeSection(0, 60);
    ClickCell(2, 0);
    Type("Timber and pasture");
    const auto* editor = grid_->findChild<QLineEdit*>("txtCellEditor");
    EXPECT_EQ(editor->geometry().left(), grid_->CellRect(2, 0).left());
    EXPECT_GT(editor->width(), editor->fontMetrics().horizontalAdvance("Timber and pasture"));
}

TEST_F(FlexGridSizes, CutText_EndsInAnEllipsisAndIsNoFigure) {
    Show();
    grid_->SetTextMatrix(1, 0, "ABC");
    grid_->SetTextMatrix(3, 0, "XYZ");
    grid_->horizontalHeader()->resizeSection(0, 22);
    EXPECT_NE(CellPicture(1, 0), CellPicture(3, 0));
}

}  // namespace
