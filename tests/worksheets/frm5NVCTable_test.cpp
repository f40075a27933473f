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
using worksheets::NVCResourceNames;

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

    // What the line under the grid says.
    QString Note() {
        const auto& line = Find<QLabel>("lblNote");
        EXPECT_EQ(line.isVisible(), !line.text().isEmpty());
        return line.text();
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

TEST_F(NVCTest, FilTotal_OfEachLevel_AddsItsOwnValues) {
    c34NVCTable table;
    table.Initialize(first_, 1);
    for (int resource = 1; resource <= 14; ++resource) {
        for (int level = 1; level <= 6; ++level) {
            table.NVCCellValue(resource, level, static_cast<float>(2 * resource + 100 * level));
        }
    }
    for (int level = 1; level <= 6; ++level) {
        EXPECT_EQ(table.FilTotal(level), static_cast<float>(210 + 1400 * level));
    }
}

TEST_F(NVCTest, SavedTwice_WritesOnce) {
    Load<frm5NVCTable>();
    Enter(Grid("grdNVC"), 1, 0, QStringLiteral("Mushrooms"));
    Enter(Grid("grdNVC"), 4, 3, QStringLiteral("-12.5"));
    form_->Save();
    EXPECT_EQ(Stored(first_ * 100 + 1, 4, 3), -12.5F);
    // What a second save would overwrite.
    tblNVCPerAcre->Edit();
    tblNVCPerAcre->SetField(QStringLiteral("Fil3"), 7);
    tblNVCPerAcre->Update();
    tblNVCResources->Seek("=", {1});
    tblNVCResources->Edit();
    tblNVCResources->SetField(QStringLiteral("ResourceName"), QStringLiteral("Berries"));
    tblNVCResources->Update();
    form_->Save();
    EXPECT_EQ(Stored(first_ * 100 + 1, 4, 3), 7);
    tblNVCResources->Seek("=", {1});
    EXPECT_EQ(tblNVCResources->Text(QStringLiteral("ResourceName")), QStringLiteral("Berries"));
    EXPECT_TRUE(errors_.empty());
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
    EXPECT_NO_THROW(table.SaveChanges()) << "what can be saved is saved";
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

TEST_F(NVCTest, LoadedTable_ItsTotalsAddAllResources) {
    c34NVCTable table;
    table.Initialize(first_, 1);
    for (int resource = 1; resource <= 14; ++resource) {
        for (int level = 1; level <= 6; ++level) {
            table.NVCCellValue(resource, level, static_cast<float>(resource + 100 * level));
        }
    }
    table.SaveChanges();
    Load<frm5NVCTable>();
    const std::vector<const char*> totals{"$1,505", "$2,905", "$4,305",
                                          "$5,705", "$7,105", "$8,505"};
    for (int level = 1; level <= 6; ++level) {
        EXPECT_EQ(Total(level).toStdString(), totals[static_cast<std::size_t>(level) - 1]);
    }
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

TEST_F(NVCTest, TypedValues_OfTheFirstAndTheLastResource_BothCountInTheTotal) {
    Load<frm5NVCTable>();
    Enter(Grid("grdNVC"), 1, 6, QStringLiteral("30"));
    EXPECT_EQ(Total(6), QStringLiteral("$30"));
    Enter(Grid("grdNVC"), 14, 6, QStringLiteral("4"));
    EXPECT_EQ(Total(6), QStringLiteral("$34"));
    EXPECT_EQ(Total(5), QStringLiteral("$0"));
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

TEST_F(NVCTest, MissingRows_AreReportedAndNeverAddedAndLeavingStaysPossible) {
    for (const int resource : {4, 14}) {
        tblNVCPerAcre->Seek("=", {first_ * 100 + 1, resource});
        tblNVCPerAcre->Delete();
    }
    Load<frm5NVCTable>();
    Enter(Grid("grdNVC"), 4, 3, QStringLiteral("17"));
    Enter(Grid("grdNVC"), 5, 3, QStringLiteral("18"));
    Choose("cboRepLocs", 1);
    ASSERT_EQ(errors_.size(), 1U);
    EXPECT_EQ(errors_[0].number, 3021);
    EXPECT_TRUE(errors_[0].description.contains(QStringLiteral("4, 14")));
    EXPECT_EQ(errors_[0].subject, QStringLiteral("North, location 1"));
    EXPECT_EQ(Find<QComboBox>("cboRepLocs").currentIndex(), 1);
    EXPECT_EQ(Stored(first_ * 100 + 1, 4, 3), 0);
    EXPECT_EQ(Stored(first_ * 100 + 1, 5, 3), 18);
    EXPECT_EQ(tblNVCPerAcre->RecordCount(), 40);
    Leave();
    EXPECT_EQ(errors_.size(), 1U) << "reported once";
}

TEST_F(NVCTest, MissingName_IsReportedAndTheOthersAreStored) {
    tblNVCResources->Seek("=", {2});
    tblNVCResources->Delete();
    Load<frm5NVCTable>();
    vsFlexGrid& grid = Grid("grdNVC");
    for (const int row : {2, 3}) {
        ClickCell(grid, row, 0);
        Type(QStringLiteral("Moss"));
    }
    Leave();
    ASSERT_EQ(errors_.size(), 1U);
    EXPECT_EQ(errors_[0].number, 3021);
    tblNVCResources->Seek("=", {3});
    EXPECT_EQ(FieldReaders::TextField(*tblNVCResources, QStringLiteral("ResourceName")),
              QStringLiteral("Moss"));
    EXPECT_EQ(tblNVCResources->RecordCount(), 13);
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

TEST_F(NVCTest, FiguresPastedOverTheWholeTable_LeaveTheNames) {
    Load<frm5NVCTable>();
    vsFlexGrid& grid = Grid("grdNVC");
    QString block;
    for (int row = 1; row <= 14; ++row) {
        for (int level = 1; level <= 6; ++level) {
            block +=
                QStringLiteral("-%1").arg(100 * row + level) + QLatin1Char(level < 6 ? '\t' : '\n');
        }
    }
    grid.setFocus();
    grid.FinishEdit();
    grid.selectAll();
    const QString name = grid.TextMatrix(14, 0);
    grid.SetEditSelText(block);
    EXPECT_EQ(grid.TextMatrix(14, 0), name);
    Leave();
    EXPECT_EQ(Stored(first_ * 100 + 1, 1, 1), -101);
    EXPECT_EQ(Stored(first_ * 100 + 1, 14, 6), -1406);
}

TEST_F(NVCTest, NumberBeyondTheSingles_IsReportedAndTheCellIsAsBefore) {
    Load<frm5NVCTable>();
    vsFlexGrid& grid = Grid("grdNVC");
    Enter(grid, 4, 1, QStringLiteral("7"));
    Enter(grid, 4, 1, QStringLiteral("5e99"));
    EXPECT_EQ(Note(), QStringLiteral("Forage, FIL 1: The number \"5e99\" is too large."));
    EXPECT_EQ(grid.TextMatrix(4, 1), QStringLiteral("7"));
    EXPECT_EQ(Total(1), QStringLiteral("$7"));
    Leave();
    EXPECT_EQ(Stored(first_ * 100 + 1, 4, 1), 7);
}

TEST_F(NVCTest, TextThatIsNoPlainNumber_IsMarkedUntilTheTableIsShownAgain) {
    Load<frm5NVCTable>();
    vsFlexGrid& grid = Grid("grdNVC");
    EXPECT_EQ(Note(), QString());
    Enter(grid, 4, 3, QStringLiteral("-1,250"));
    EXPECT_EQ(grid.TextMatrix(4, 3), QStringLiteral("-1,250"));
    EXPECT_EQ(grid.CellNote(4, 3), QStringLiteral("Stored as -1"));
    for (const char* part : {"Forage", "FIL 3", "-1,250", " -1.", "-1250"}) {
        EXPECT_TRUE(Note().contains(QString::fromLatin1(part))) << part << Note().toStdString();
    }
    EXPECT_EQ(Total(3), QStringLiteral("-$1"));
    Choose("cboRepLocs", 1);
    EXPECT_EQ(Note(), QString());
    Choose("cboRepLocs", 0);
    EXPECT_EQ(grid.TextMatrix(4, 3), QStringLiteral("-1"));
    EXPECT_EQ(grid.CellNote(4, 3), QString());
}

TEST_F(NVCTest, CurrencySign_IsNoPartOfANumber) {
    Load<frm5NVCTable>();
    vsFlexGrid& grid = Grid("grdNVC");
    Enter(grid, 4, 3, QStringLiteral("$1,250"));
    EXPECT_EQ(grid.TextMatrix(4, 3), QStringLiteral("$1,250"));
    EXPECT_EQ(grid.CellNote(4, 3), QStringLiteral("Stored as 0"));
    EXPECT_EQ(Total(3), QStringLiteral("$0"));
    Leave();
    EXPECT_EQ(Stored(first_ * 100 + 1, 4, 3), 0);
}

TEST_F(NVCTest, TypedKey_StoresAlsoTheValueThatWasThere) {
    Load<frm5NVCTable>();
    ClickCell(Grid("grdNVC"), 2, 2);
    Press(Qt::Key_Down);
    Press(Qt::Key_Right);
    form_->Save();
    EXPECT_TRUE(IsNull(first_ * 100 + 1, 1)) << "keys that only move are no typing";
    const auto shown = Count(folder_.Trace(), QStringLiteral("ShowTotals"));
    ClickCell(Grid("grdNVC"), 2, 2);
    Type(QStringLiteral("0"));
    EXPECT_GT(Count(folder_.Trace(), QStringLiteral("ShowTotals")), shown);
    form_->Save();
    EXPECT_FALSE(IsNull(first_ * 100 + 1, 1));
}

TEST_F(NVCTest, EachEdit_IsTakenBackAndRepeatedOnScreenAndInTheFile) {
    Load<frm5NVCTable>();
    vsFlexGrid& grid = Grid("grdNVC");
    Enter(grid, 1, 1, QStringLiteral("10"));
    Enter(grid, 1, 1, QStringLiteral("12abc"));
    ClickCell(grid, 14, 0);
    Type(QStringLiteral("Cabins"));
    form_->Save();
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(grid.TextMatrix(14, 0), QStringLiteral("Improvements"));
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(grid.TextMatrix(1, 1), QStringLiteral("10"));
    EXPECT_EQ(Total(1), QStringLiteral("$10"));
    form_->Save();
    EXPECT_EQ(Stored(first_ * 100 + 1, 1, 1), 10);
    Press(Qt::Key_Y, Qt::ControlModifier);
    EXPECT_EQ(grid.TextMatrix(1, 1), QStringLiteral("12abc"));
    EXPECT_EQ(grid.CellNote(1, 1), QStringLiteral("Stored as 12"));
    Press(Qt::Key_Z, Qt::ControlModifier);
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(grid.TextMatrix(1, 1), QStringLiteral("0"));
    Leave();
    EXPECT_EQ(Stored(first_ * 100 + 1, 1, 1), 0);
    tblNVCResources->Seek("=", {14});
    EXPECT_EQ(FieldReaders::TextField(*tblNVCResources, QStringLiteral("ResourceName")),
              QStringLiteral("Improvements"));
    EXPECT_TRUE(errors_.empty());
}

TEST_F(NVCTest, OpenEdit_IsTakenBackFirst) {
    Load<frm5NVCTable>();
    vsFlexGrid& grid = Grid("grdNVC");
    Enter(grid, 1, 1, QStringLiteral("10"));
    ClickCell(grid, 2, 1);
    Type(QStringLiteral("55"));
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(grid.TextMatrix(2, 1), QStringLiteral("0"));
    EXPECT_EQ(grid.TextMatrix(1, 1), QStringLiteral("10"));
    EXPECT_EQ(Total(1), QStringLiteral("$10"));
}

// Typing that ends where it began is all that is taken back, not the action before it as well.
TEST_F(NVCTest, OpenEditThatChangesNothing_IsTakenBackAlone) {
    Load<frm5NVCTable>();
    vsFlexGrid& grid = Grid("grdNVC");
    Enter(grid, 1, 1, QStringLiteral("10"));
    ClickCell(grid, 2, 1);
    Type(QStringLiteral("0"));
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_FALSE(grid.Editing());
    EXPECT_EQ(grid.TextMatrix(1, 1), QStringLiteral("10"));
    // An editor into which nothing was typed is in nobody's way.
    ClickCell(grid, 3, 1);
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(grid.TextMatrix(1, 1), QStringLiteral("0"));
}

TEST_F(NVCTest, ActionOfAnotherLocation_IsShownWhenItIsTakenBack) {
    Load<frm5NVCTable>();
    vsFlexGrid& grid = Grid("grdNVC");
    Choose("cboRepLocs", 1);
    Enter(grid, 3, 3, QStringLiteral("33"));
    Choose("cboFMZs", 1);
    Enter(grid, 4, 4, QStringLiteral("44"));
    Leave();
    Load<frm5NVCTable>();
    vsFlexGrid& again = Grid("grdNVC");
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Find<QComboBox>("cboFMZs").currentIndex(), 1);
    EXPECT_EQ(again.TextMatrix(4, 4), QStringLiteral("0"));
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Find<QComboBox>("cboFMZs").currentIndex(), 0);
    EXPECT_EQ(Find<QComboBox>("cboRepLocs").currentIndex(), 1);
    EXPECT_EQ(again.TextMatrix(3, 3), QStringLiteral("0"));
    EXPECT_EQ(again.Row(), 3);
    EXPECT_EQ(again.Col(), 3);
    EXPECT_EQ(Stored(second_ * 100 + 1, 4, 4), 0) << "the zone that was left is saved";
    Leave();
    EXPECT_EQ(Stored(first_ * 100 + 2, 3, 3), 0);
}

TEST_F(NVCTest, ActionOfALocationThatIsGone_IsReportedAndPassedOver) {
    Load<frm5NVCTable>();
    vsFlexGrid& grid = Grid("grdNVC");
    Enter(grid, 1, 1, QStringLiteral("11"));
    Choose("cboRepLocs", 1);
    Enter(grid, 2, 2, QStringLiteral("22"));
    Leave();
    PrepDatatables::tblFMZList->Seek("=", {first_});
    PrepDatatables::tblFMZList->Edit();
    PrepDatatables::tblFMZList->SetField(QStringLiteral("RLCount"), 1);
    PrepDatatables::tblFMZList->Update();
    Load<frm5NVCTable>();
    Press(Qt::Key_Z, Qt::ControlModifier);
    ASSERT_EQ(errors_.size(), 1U);
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(errors_.size(), 1U);
    EXPECT_EQ(Grid("grdNVC").TextMatrix(1, 1), QStringLiteral("0"));
}

TEST_F(NVCTest, AltArrows_WalkThroughLocationsAndZones) {
    Load<frm5NVCTable>();
    auto& zones = Find<QComboBox>("cboFMZs");
    auto& locations = Find<QComboBox>("cboRepLocs");
    ClickCell(Grid("grdNVC"), 2, 2);
    Type(QStringLiteral("9"));
    Press(Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(locations.currentIndex(), 1);
    EXPECT_EQ(Stored(first_ * 100 + 1, 2, 2), 9);
    Press(Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(locations.currentIndex(), 1);
    Press(Qt::Key_Up, Qt::AltModifier);
    EXPECT_EQ(locations.currentIndex(), 0);
    Press(Qt::Key_PageDown, Qt::AltModifier);
    EXPECT_EQ(zones.currentIndex(), 1);
    Press(Qt::Key_PageUp, Qt::AltModifier);
    EXPECT_EQ(zones.currentIndex(), 0);
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
        auto& panel = Find<SSPanel>(
            level == 0 ? "pnlLabel"
                       : QStringLiteral("pnlAcreImpact_%1").arg(level).toLatin1().constData());
        const int left = grid.viewport()->mapTo(&manager_.frame, QPoint(0, 0)).x() +
                         grid.columnViewportPosition(level);
        return panel.mapTo(&manager_.frame, QPoint(0, 0)).x() == left &&
               panel.width() == grid.columnWidth(level);
    };
    EXPECT_TRUE(underItsColumn(0));
    EXPECT_EQ(Find<SSPanel>("pnlLabel").Caption(), QStringLiteral("Gain or loss per acre"));
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
