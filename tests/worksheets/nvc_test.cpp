// The table of net value change and its worksheet.
#include <cmath>
#include <random>

#include "datafile/FieldReaders.h"
#include "platform/RuntimeError.h"
#include "platform/controls/SSPanel.h"
#include "worksheet_fixture.h"
#include "worksheets/nvc/NVCResourceNames.h"
#include "worksheets/nvc/c34NVCTable.h"
#include "worksheets/nvc/frm5NVCTable.h"
#include "worksheets/zones/ZoneRecords.h"

#include <QLabel>

using PrepDatatables::tblNVCPerAcre;
using PrepDatatables::tblNVCResources;

namespace {

class NVCTest : public WorksheetTest {
protected:
    void SetUp() override {
        WorksheetTest::SetUp();
        first_ = ZoneRecords::Create(QStringLiteral("North"), 2);
        second_ = ZoneRecords::Create(QStringLiteral("South"), 1);
    }
    static float Stored(int fmzRLKey, int resource, int level) {
        tblNVCPerAcre->Seek("=", {fmzRLKey, resource});
        return FieldReaders::SingleField(*tblNVCPerAcre, QStringLiteral("Fil%1").arg(level));
    }
    static bool IsNull(int fmzRLKey, int resource) {
        tblNVCPerAcre->Seek("=", {fmzRLKey, resource});
        return tblNVCPerAcre->IsNull(QStringLiteral("FIL1"));
    }
    QString Total(int level) {
        return Find<SSPanel>(QStringLiteral("pnlAcreImpact_%1").arg(level).toLatin1().constData())
            .Caption();
    }

    int first_ = 0;
    int second_ = 0;
};

TEST_F(NVCTest, TotalsInALargerFont_TakeMoreRoom) {
    Load<frm5NVCTable>();
    const auto& totals = Find<QWidget>("pnlTotals");
    const int before = totals.height();
    QFont larger = manager_.frame.font();
    larger.setPointSizeF(2 * larger.pointSizeF());
    manager_.frame.setFont(larger);
    EXPECT_TRUE(QTest::qWaitFor([&] { return totals.height() > before; }));
}

TEST_F(NVCTest, IndexOutside_IsASubscriptError) {
    c34NVCTable table;
    table.Initialize(first_, 1);
    for (const auto& [resource, level] :
         {std::pair(15, 1), std::pair(1, 7), std::pair(0, 1), std::pair(1, 0)}) {
        try {
            (void)table.NVCCellValue(resource, level);
            ADD_FAILURE() << resource << ", " << level;
        } catch (const platform::RuntimeError& error) {
            EXPECT_EQ(error.Number(), 9);
        }
    }
    EXPECT_THROW(table.NVCCellValue(15, 1, 0), platform::RuntimeError);
    EXPECT_THROW((void)table.FilTotal(7), platform::RuntimeError);
}

TEST_F(NVCTest, KeyBeyond32Bits_Overflows) {
    c34NVCTable table;
    EXPECT_THROW(table.Initialize(30000000, 1), platform::RuntimeError);
}

TEST_F(NVCTest, FilTotal_RoundsToThreeDigits) {
    c34NVCTable table;
    table.Initialize(first_, 1);
    EXPECT_EQ(table.FilTotal(1), 0);
    table.NVCCellValue(1, 1, 1000.4F);
    table.NVCCellValue(2, 1, 2000.4F);
    EXPECT_EQ(table.FilTotal(1), 3000);
    table.NVCCellValue(3, 2, -0.0004F);
    EXPECT_EQ(table.FilTotal(2), 0);
    EXPECT_TRUE(std::signbit(table.FilTotal(2)));
}

TEST_F(NVCTest, ReadOnlyTable_IsNeverWritten) {
    c34NVCTable table;
    table.Initialize(first_, 1);
    table.SaveChanges();
    EXPECT_TRUE(IsNull(first_ * 100 + 1, 1));
    table.NVCCellValue(1, 1, 0);
    table.SaveChanges();
    EXPECT_FALSE(IsNull(first_ * 100 + 1, 1)) << "setting the same value marks it all the same";
}

TEST_F(NVCTest, LoadSaveLoad_IsTheIdentityForAnyFiniteSingle) {
    std::mt19937 random(3);
    std::vector<float> values;
    while (values.size() < 14 * 6) {
        const auto bits = static_cast<std::uint32_t>(random());
        float value = 0;
        std::memcpy(&value, &bits, sizeof value);
        if (std::isfinite(value)) {
            values.push_back(value);
        }
    }
    c34NVCTable table;
    table.Initialize(first_, 2);
    for (std::size_t i = 0; i < values.size(); ++i) {
        table.NVCCellValue(static_cast<int>(i / 6) + 1, static_cast<int>(i % 6) + 1, values[i]);
    }
    table.SaveChanges();
    c34NVCTable again;
    again.Initialize(first_, 2);
    for (std::size_t i = 0; i < values.size(); ++i) {
        EXPECT_EQ(again.NVCCellValue(static_cast<int>(i / 6) + 1, static_cast<int>(i % 6) + 1),
                  values[i]);
    }
}

TEST_F(NVCTest, MissingRow_ReadsAsZeroAndRefusesOnlyItself) {
    tblNVCPerAcre->Seek("=", {first_ * 100 + 1, 5});
    tblNVCPerAcre->Delete();
    c34NVCTable table;
    table.Initialize(first_, 1);
    EXPECT_EQ(table.NVCCellValue(5, 1), 0);
    table.NVCCellValue(4, 1, 4);
    table.NVCCellValue(6, 1, 6);
    EXPECT_THROW(table.SaveChanges(), platform::RuntimeError);
    EXPECT_EQ(Stored(first_ * 100 + 1, 4, 1), 4);
    EXPECT_EQ(Stored(first_ * 100 + 1, 6, 1), 6);
}

TEST_F(NVCTest, ResourceNames_AreReadAndOnlyChangedOnesWritten) {
    NVCResourceNames names;
    names.Load();
    EXPECT_EQ(names.Name(1), QStringLiteral("Timber - Sawtimber"));
    EXPECT_EQ(names.Name(14), QStringLiteral("Improvements"));
    names.SetName(14, QStringLiteral("Cabins"));
    names.Save();
    names.Save();
    for (const int resource : {0, 15}) {
        EXPECT_THROW((void)names.Name(resource), platform::RuntimeError);
    }
    NVCResourceNames again;
    again.Load();
    EXPECT_EQ(again.Name(14), QStringLiteral("Cabins"));
}

TEST_F(NVCTest, Setup_ShowsTheFirstLocationOfTheFirstZone) {
    Load<frm5NVCTable>();
    EXPECT_EQ(manager_.checked, 5);
    EXPECT_EQ(manager_.worksheetID, QStringLiteral("NVC"));
    EXPECT_EQ(Find<QComboBox>("cboFMZs").currentText(), QStringLiteral("North"));
    EXPECT_EQ(Find<QComboBox>("cboRepLocs").count(), 2);
    vsFlexGrid& grid = Grid("grdNVC");
    EXPECT_EQ(grid.Rows(), 15);
    EXPECT_EQ(grid.Cols(), 7);
    EXPECT_EQ(grid.TextMatrix(0, 6), QStringLiteral("FIL 6"));
    EXPECT_EQ(grid.TextMatrix(4, 0), QStringLiteral("Forage"));
    EXPECT_EQ(grid.ColWidth(0), 2640);
    EXPECT_EQ(grid.ColWidth(3), 1020);
    EXPECT_EQ(Total(3), QStringLiteral("$0"));
    EXPECT_EQ(grid.CellName(4, 3), QStringLiteral("FIL 3, Forage"));
    const QStringList trace = folder_.Trace();
    EXPECT_EQ(Count(trace, QStringLiteral("frm5NVCTable.Setup")), 1);
    EXPECT_EQ(Count(trace, QStringLiteral("cboFMZs_Click North")), 1);
    EXPECT_EQ(Count(trace, QStringLiteral("cboRepLocs_Click 1")), 1);
    EXPECT_EQ(Count(trace, QStringLiteral("ShowNVCTable")), 1);
    EXPECT_EQ(Count(trace, QStringLiteral("frm5NVCTable.SaveChanges")), 0);
}

TEST_F(NVCTest, TypedValue_IsStoredAndTheTotalFollowsAtOnce) {
    Load<frm5NVCTable>();
    ClickCell(Grid("grdNVC"), 4, 3);
    Type(QStringLiteral("-1234.4"));
    EXPECT_EQ(Total(3), QStringLiteral("-$1,234"));
    Leave();
    EXPECT_EQ(Stored(first_ * 100 + 1, 4, 3), -1234.4F);
    Load<frm5NVCTable>();
    EXPECT_EQ(Total(3), QStringLiteral("-$1,234"));
    EXPECT_EQ(Grid("grdNVC").DisplayText(4, 3), QStringLiteral("-1234.40"));
}

TEST_F(NVCTest, Letters_CountAsZeroAndStayOnTheScreen) {
    Load<frm5NVCTable>();
    vsFlexGrid& grid = Grid("grdNVC");
    Enter(grid, 1, 1, QStringLiteral("12"));
    Enter(grid, 1, 1, QStringLiteral("abc"));
    EXPECT_EQ(grid.TextMatrix(1, 1), QStringLiteral("abc"));
    EXPECT_EQ(Total(1), QStringLiteral("$0"));
    Leave();
    EXPECT_EQ(Stored(first_ * 100 + 1, 1, 1), 0);
}

TEST_F(NVCTest, RowsThatACutOffImportLeftOut_AreThereOnceSomethingIsTyped) {
    for (const int resource : {4, 14}) {
        tblNVCPerAcre->Seek("=", {first_ * 100 + 1, resource});
        tblNVCPerAcre->Delete();
    }
    Load<frm5NVCTable>();
    Enter(Grid("grdNVC"), 4, 3, QStringLiteral("17"));
    Enter(Grid("grdNVC"), 5, 3, QStringLiteral("18"));
    Choose("cboRepLocs", 1);
    EXPECT_TRUE(errors_.empty());
    EXPECT_EQ(Stored(first_ * 100 + 1, 4, 3), 17);
    EXPECT_EQ(Stored(first_ * 100 + 1, 5, 3), 18);
    EXPECT_EQ(tblNVCPerAcre->RecordCount(), 42);
}

TEST_F(NVCTest, AnotherLocation_SavesTheOneThatIsLeft) {
    Load<frm5NVCTable>();
    Enter(Grid("grdNVC"), 2, 2, QStringLiteral("17"));
    Choose("cboRepLocs", 1);
    EXPECT_EQ(Stored(first_ * 100 + 1, 2, 2), 17);
    EXPECT_EQ(Grid("grdNVC").ValueMatrix(2, 2), 0);
    Choose("cboRepLocs", 0);
    EXPECT_EQ(Grid("grdNVC").ValueMatrix(2, 2), 17);
    EXPECT_TRUE(IsNull(first_ * 100 + 2, 2)) << "a table that was only read is not written";
}

TEST_F(NVCTest, AnotherZoneWithTheEditorOpen_KeepsTheValueInItsOwnZone) {
    Load<frm5NVCTable>();
    ClickCell(Grid("grdNVC"), 2, 2);
    Type(QStringLiteral("55"));
    Choose("cboFMZs", 1);
    Leave();
    EXPECT_EQ(Stored(first_ * 100 + 1, 2, 2), 55);
    EXPECT_EQ(Stored(second_ * 100 + 1, 2, 2), 0);
}

TEST_F(NVCTest, ZoneWithoutLocations_LeavesTheBoxEmptyAndTakesNoTyping) {
    PrepDatatables::tblFMZList->Seek("=", {second_});
    PrepDatatables::tblFMZList->Edit();
    PrepDatatables::tblFMZList->SetField(QStringLiteral("RLCount"), 0);
    PrepDatatables::tblFMZList->Update();
    Load<frm5NVCTable>();
    vsFlexGrid& grid = Grid("grdNVC");
    Enter(grid, 1, 1, QStringLiteral("9"));
    Choose("cboFMZs", 1);
    EXPECT_EQ(Find<QComboBox>("cboRepLocs").count(), 0);
    EXPECT_EQ(grid.TextMatrix(1, 1), QStringLiteral("9")) << "the table shown before stays";
    Enter(grid, 1, 1, QStringLiteral("77"));
    EXPECT_FALSE(grid.Editing());
    Leave();
    EXPECT_EQ(Stored(first_ * 100 + 1, 1, 1), 9);
    EXPECT_TRUE(errors_.empty());
}

TEST_F(NVCTest, Esc_PutsTheStoredValueBack) {
    Load<frm5NVCTable>();
    vsFlexGrid& grid = Grid("grdNVC");
    Enter(grid, 1, 1, QStringLiteral("10"));
    ClickCell(grid, 1, 1);
    Type(QStringLiteral("999"));
    EXPECT_EQ(Total(1), QStringLiteral("$999"));
    Press(Qt::Key_Escape);
    EXPECT_EQ(Total(1), QStringLiteral("$10"));
    Leave();
    EXPECT_EQ(Stored(first_ * 100 + 1, 1, 1), 10);
}

TEST_F(NVCTest, KeyStillDownWhenTheEditEnds_IsStored) {
    Load<frm5NVCTable>();
    ClickCell(Grid("grdNVC"), 1, 1);
    QTest::keyPress(manager_.frame.windowHandle(), Qt::Key_7);
    QTest::keyPress(manager_.frame.windowHandle(), Qt::Key_Tab);
    QTest::keyRelease(manager_.frame.windowHandle(), Qt::Key_7);
    QTest::keyRelease(manager_.frame.windowHandle(), Qt::Key_Tab);
    EXPECT_EQ(Total(1), QStringLiteral("$7"));
    Leave();
    EXPECT_EQ(Stored(first_ * 100 + 1, 1, 1), 7);
}

TEST_F(NVCTest, PastedText_CountsAsTyping) {
    Load<frm5NVCTable>();
    vsFlexGrid& grid = Grid("grdNVC");
    ClickCell(grid, 1, 1);
    grid.SetEditSelText(QStringLiteral("-42"));
    EXPECT_EQ(Total(1), QStringLiteral("-$42"));
    Leave();
    EXPECT_EQ(Stored(first_ * 100 + 1, 1, 1), -42);
}

TEST_F(NVCTest, NumberBeyondTheSingles_IsToldAndTheCellShowsWhatIsStored) {
    Load<frm5NVCTable>();
    vsFlexGrid& grid = Grid("grdNVC");
    Enter(grid, 1, 1, QStringLiteral("5e99"));
    ASSERT_EQ(errors_.size(), 1U);
    EXPECT_EQ(errors_[0].number, 6);
    const QString shown = grid.TextMatrix(1, 1);
    Leave();
    EXPECT_EQ(static_cast<double>(Stored(first_ * 100 + 1, 1, 1)), shown.toDouble());
}

TEST_F(NVCTest, Reminder_ShowsForANumberWithoutMinusUntilOneWasTyped) {
    Load<frm5NVCTable>();
    auto& lblMinus = Find<QLabel>("lblMinus");
    vsFlexGrid& grid = Grid("grdNVC");
    EXPECT_FALSE(lblMinus.isVisible());
    ClickCell(grid, 1, 1);
    Type(QStringLiteral("5"));
    EXPECT_TRUE(lblMinus.isVisible());
    EXPECT_EQ(lblMinus.text(), QStringLiteral("Be sure to include a minus sign (-) for losses."));
    ClickCell(grid, 2, 1);
    Type(QStringLiteral("-"));
    EXPECT_FALSE(lblMinus.isVisible());
    EXPECT_EQ(lblMinus.property("Tag").toString(), QStringLiteral("minus"));
    ClickCell(grid, 3, 1);
    Type(QStringLiteral("5"));
    EXPECT_FALSE(lblMinus.isVisible());
}

TEST_F(NVCTest, TypedResourceName_IsInTheFileForEveryTable) {
    Load<frm5NVCTable>();
    vsFlexGrid& grid = Grid("grdNVC");
    ClickCell(grid, 14, 0);
    Type(QStringLiteral("Cabins & barns"));
    Leave();
    tblNVCResources->Seek("=", {14});
    EXPECT_EQ(FieldReaders::TextField(*tblNVCResources, QStringLiteral("ResourceName")),
              QStringLiteral("Cabins & barns"));
}

TEST_F(NVCTest, Totals_StandUnderTheirColumnsWhenResizedAndScrolled) {
    Load<frm5NVCTable>();
    vsFlexGrid& grid = Grid("grdNVC");
    const auto underItsColumn = [&](int level) {
        auto& panel =
            Find<SSPanel>(QStringLiteral("pnlAcreImpact_%1").arg(level).toLatin1().constData());
        const int left = grid.viewport()->mapTo(&manager_.frame, QPoint(0, 0)).x() +
                         grid.columnViewportPosition(level);
        return panel.mapTo(&manager_.frame, QPoint(0, 0)).x() == left &&
               panel.width() == grid.columnWidth(level);
    };
    EXPECT_TRUE(underItsColumn(1));
    EXPECT_TRUE(underItsColumn(6));
    grid.setColumnWidth(2, 300);
    grid.setColumnWidth(3, 200);
    EXPECT_TRUE(underItsColumn(6));
    grid.CellRect(1, 6);
    EXPECT_TRUE(underItsColumn(3));
    EXPECT_TRUE(underItsColumn(6));
}

TEST_F(NVCTest, Wheel_LeavesAClosedComboBoxAlone) {
    Load<frm5NVCTable>();
    auto& box = Find<QComboBox>("cboFMZs");
    QWheelEvent wheel(QPointF(5, 5), box.mapToGlobal(QPointF(5, 5)), {}, QPoint(0, -120),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&box, &wheel);
    EXPECT_EQ(box.currentIndex(), 0);
    EXPECT_FALSE(wheel.isAccepted());
}

}  // namespace
