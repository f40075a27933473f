// The list of zones and the rows that depend on it.
#include <QLabel>

#include "datafile/FieldReaders.h"
#include "platform/RuntimeError.h"
#include "worksheet_fixture.h"
#include "worksheets/zones/ZoneRecords.h"
#include "worksheets/zones/frm4FMZs.h"
#include "worksheets/zones/mFMZs.h"

using PrepDatatables::tblFMZList;
using PrepDatatables::tblNVCPerAcre;
using PrepDatatables::tblSuppressionPerAcreCost;

namespace {

const QString kFil1 = QStringLiteral("FIL1");

class ZonesTest : public WorksheetTest {
protected:
    static int Locations(int key) {
        tblFMZList->Seek("=", {key});
        return FieldReaders::LongField(*tblFMZList, QStringLiteral("RLCount"));
    }
    static QString Name(int key) {
        tblFMZList->Seek("=", {key});
        return FieldReaders::TextField(*tblFMZList, QStringLiteral("Name"));
    }
    static bool HasRow(int fmzRLKey, int resource) {
        tblNVCPerAcre->Seek("=", {fmzRLKey, resource});
        return !tblNVCPerAcre->NoMatch();
    }
    static void SetValue(int fmzRLKey, int resource, float value) {
        tblNVCPerAcre->Seek("=", {fmzRLKey, resource});
        tblNVCPerAcre->Edit();
        tblNVCPerAcre->SetField(kFil1, value);
        tblNVCPerAcre->Update();
    }
    static float Value(int fmzRLKey, int resource) {
        tblNVCPerAcre->Seek("=", {fmzRLKey, resource});
        return FieldReaders::SingleField(*tblNVCPerAcre, kFil1);
    }
    int Warnings() const {
        return static_cast<int>(
            folder_.Trace().filter(QStringLiteral("Warning! New RLCount is smaller")).size());
    }
};

TEST_F(ZonesTest, Setup_MakesItTheCurrentWorksheet) {
    Load<frm4FMZs>();
    EXPECT_EQ(manager_.worksheetID, QStringLiteral("FMZ"));
    EXPECT_EQ(form_->Form().windowTitle(), QStringLiteral("Fire Management Zones"));
    vsFlexGrid& grid = Grid("grdFMZs");
    EXPECT_EQ(grid.Rows(), 1) << "an empty list shows the header row only";
    EXPECT_EQ(grid.TextMatrix(0, 0), QStringLiteral("Fire Management Zone"));
    EXPECT_EQ(grid.TextMatrix(0, 1), QStringLiteral("# RLs"));
    EXPECT_EQ(grid.ColWidth(0), 3600);
    EXPECT_EQ(grid.ColWidth(1), 720);
}

TEST_F(ZonesTest, Trace_NamesEachStep) {
    Load<frm4FMZs>();
    ClickButton("cmdAdd");
    Leave();
    const QStringList trace = folder_.Trace();
    EXPECT_TRUE(trace.contains(QStringLiteral("   Load frm4FMZs")));
    EXPECT_EQ(Count(trace, QStringLiteral("frm4FMZs.Setup")), 1);
    EXPECT_EQ(Count(trace, QStringLiteral("FMZ_CreateRecord 1")), 1);
    EXPECT_EQ(Count(trace, QStringLiteral("FMZ_Update")), 2) << "left and unloaded";
    EXPECT_EQ(Count(trace, QStringLiteral("FMZ_UpdateRecord 1")), 2);
    EXPECT_EQ(trace.last(), QStringLiteral("   Unloaded frm4FMZs"));
}

TEST_F(ZonesTest, AddItem_PutsTheZoneAndItsRowsIntoTheFileAtOnce) {
    Load<frm4FMZs>();
    ClickButton("cmdAdd");
    EXPECT_EQ(tblFMZList->RecordCount(), 1);
    EXPECT_EQ(tblSuppressionPerAcreCost->RecordCount(), 9);
    EXPECT_EQ(tblNVCPerAcre->RecordCount(), 14);
    const int key = Grid("grdFMZs").RowData(1);
    EXPECT_TRUE(HasRow(key * 100 + 1, 1));
    EXPECT_TRUE(HasRow(key * 100 + 1, 14));
    EXPECT_TRUE(tblNVCPerAcre->IsNull(kFil1));
    EXPECT_TRUE(errors_.empty());
}

TEST_F(ZonesTest, AddItem_WaitsForTheNameInTheCellEditor) {
    Load<frm4FMZs>();
    ClickButton("cmdAdd");
    Type(QStringLiteral("A1-North"));
    EXPECT_TRUE(Grid("grdFMZs").Editing());
    Leave();
    EXPECT_EQ(Name(1), QStringLiteral("A1-North"));
}

TEST_F(ZonesTest, AddItemTwice_MakesTwoZonesWithoutNames) {
    Load<frm4FMZs>();
    ClickButton("cmdAdd");
    ClickButton("cmdAdd");
    EXPECT_EQ(tblFMZList->RecordCount(), 2);
    EXPECT_EQ(Name(1), QString());
    EXPECT_EQ(Name(2), QString());
    EXPECT_EQ(tblNVCPerAcre->RecordCount(), 28);
}

TEST_F(ZonesTest, TypedNamesAndCounts_AreThereWhenOpenedAgain) {
    Load<frm4FMZs>();
    ClickButton("cmdAdd");
    Type(QStringLiteral("North"));
    Press(Qt::Key_Tab);
    Type(QStringLiteral("3"));
    ClickButton("cmdAdd");
    Type(QStringLiteral("South"));
    Leave();
    Load<frm4FMZs>();
    vsFlexGrid& grid = Grid("grdFMZs");
    ASSERT_EQ(grid.Rows(), 3);
    EXPECT_EQ(grid.TextMatrix(1, 0), QStringLiteral("North"));
    EXPECT_EQ(grid.TextMatrix(1, 1), QStringLiteral("3"));
    EXPECT_EQ(grid.TextMatrix(2, 0), QStringLiteral("South"));
    EXPECT_EQ(grid.TextMatrix(2, 1), QStringLiteral("1"));
    EXPECT_EQ(tblNVCPerAcre->RecordCount(), 4 * 14);
}

TEST_F(ZonesTest, Editor_TakesAtMost46And3Characters) {
    Load<frm4FMZs>();
    ClickButton("cmdAdd");
    Type(QString(60, u'x'));
    EXPECT_EQ(Grid("grdFMZs").EditText().size(), 46);
    Press(Qt::Key_Tab);
    Type(QStringLiteral("12345"));
    EXPECT_EQ(Grid("grdFMZs").EditText(), QStringLiteral("123"));
}

TEST_F(ZonesTest, CountOfZero_StoresOneAndKeepsTheRows) {
    const int key = ZoneRecords::Create(QStringLiteral("A"), 2);
    Load<frm4FMZs>();
    Enter(Grid("grdFMZs"), 1, 1, QStringLiteral("0"));
    Leave();
    EXPECT_EQ(Locations(key), 1);
    EXPECT_TRUE(HasRow(key * 100 + 2, 1));
    EXPECT_EQ(Warnings(), 1);
    EXPECT_TRUE(
        folder_.Trace().contains(QStringLiteral("  Warning! New RLCount is smaller for FMZ A")));
}

TEST_F(ZonesTest, CountRaisedFromTwoToFour_AddsTheRowsOfTheNewLocations) {
    const int key = ZoneRecords::Create(QStringLiteral("A"), 2);
    Load<frm4FMZs>();
    const int before = tblNVCPerAcre->RecordCount();
    Enter(Grid("grdFMZs"), 1, 1, QStringLiteral("4"));
    Leave();
    EXPECT_EQ(tblNVCPerAcre->RecordCount(), before + 28);
    EXPECT_TRUE(HasRow(key * 100 + 4, 14));
    EXPECT_FALSE(HasRow(key * 100 + 5, 1));
}

TEST_F(ZonesTest, SavedTwice_ChangesNothingMore) {
    ZoneRecords::Create(QStringLiteral("A"), 2);
    Load<frm4FMZs>();
    Enter(Grid("grdFMZs"), 1, 1, QStringLiteral("5"));
    form_->Save();
    const int rows = tblNVCPerAcre->RecordCount();
    form_->Save();
    Leave();
    EXPECT_EQ(tblNVCPerAcre->RecordCount(), rows);
    EXPECT_EQ(Warnings(), 0);
}

TEST_F(ZonesTest, SaveThatFailsAtUnload_IsPassedOnBehindItsEntry) {
    Load<frm4FMZs>();
    ClickButton("cmdAdd");
    Type(QStringLiteral("North"));
    PrepDatatables::tblFMZList.Close();
    EXPECT_THROW(form_->Unload(), platform::RuntimeError);
    EXPECT_EQ(folder_.Trace().last(), QStringLiteral("   Unloaded frm4FMZs"));
}

TEST_F(ZonesTest, HugeCount_IsRefusedWhenItIsTyped) {
    const int key = ZoneRecords::Create(QStringLiteral("A"), 1);
    Load<frm4FMZs>();
    Enter(Grid("grdFMZs"), 1, 1, QStringLiteral("9e8"));
    EXPECT_EQ(Grid("grdFMZs").TextMatrix(1, 1), QStringLiteral("1"));
    EXPECT_TRUE(Find<QLabel>("lblNote").isVisible());
    EXPECT_TRUE(Find<QLabel>("lblNote").text().contains(
        QStringLiteral("A cannot have 900000000 representative locations")));
    Leave();
    EXPECT_EQ(Locations(key), 1);
    EXPECT_EQ(tblNVCPerAcre->RecordCount(), 14);
}

TEST_F(ZonesTest, CountReadAsAnotherNumber_ShowsTheStoredOneAndIsReported) {
    const int key = ZoneRecords::Create(QStringLiteral("A"), 1);
    Load<frm4FMZs>();
    EXPECT_FALSE(Find<QLabel>("lblNote").isVisible());
    Enter(Grid("grdFMZs"), 1, 1, QStringLiteral("2,5"));
    EXPECT_EQ(Grid("grdFMZs").TextMatrix(1, 1), QStringLiteral("2"));
    EXPECT_TRUE(Find<QLabel>("lblNote").text().startsWith(
        QStringLiteral("A, # RLs: '2,5' was read as 2.")));
    Leave();
    EXPECT_EQ(Locations(key), 2);
}

TEST_F(ZonesTest, RefusedRow_DoesNotKeepTheOthersFromBeingSaved) {
    const int first = ZoneRecords::Create(QStringLiteral("A"), 1);
    const int second = ZoneRecords::Create(QStringLiteral("B"), 1);
    Load<frm4FMZs>();
    vsFlexGrid& grid = Grid("grdFMZs");
    Enter(grid, 1, 1, QStringLiteral("150"));
    Enter(grid, 2, 0, QStringLiteral("Renamed"));
    EXPECT_THROW(form_->Save(), platform::RuntimeError);
    EXPECT_EQ(Locations(first), 1) << "its locations would lie among those of B";
    EXPECT_EQ(Name(second), QStringLiteral("Renamed"));
    EXPECT_EQ(tblNVCPerAcre->RecordCount(), 28);
}

TEST_F(ZonesTest, NewZoneBehindALargeOne_GetsTheNextFreeKey) {
    const int key = ZoneRecords::Create(QStringLiteral("A"), 1);
    ZoneRecords::Change({.key = key, .name = QStringLiteral("A"), .locations = 120});
    Load<frm4FMZs>();
    ClickButton("cmdAdd");
    EXPECT_TRUE(errors_.empty());
    EXPECT_EQ(Grid("grdFMZs").RowData(2), key + 2);
    EXPECT_EQ(tblNVCPerAcre->RecordCount(), 121 * 14);
}

TEST_F(ZonesTest, AddingAndNaming_AreTakenBackOneAfterTheOther) {
    Load<frm4FMZs>();
    ClickButton("cmdAdd");
    Type(QStringLiteral("North"));
    Press(Qt::Key_Tab);
    Type(QStringLiteral("3"));
    vsFlexGrid& grid = Grid("grdFMZs");
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(grid.TextMatrix(1, 1), QStringLiteral("1"));
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(grid.TextMatrix(1, 0), QString());
    EXPECT_EQ(tblFMZList->RecordCount(), 1);
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(grid.Rows(), 1);
    EXPECT_EQ(tblFMZList->RecordCount(), 0);
    EXPECT_EQ(tblNVCPerAcre->RecordCount(), 0);
    EXPECT_EQ(tblSuppressionPerAcreCost->RecordCount(), 0);
    for (int step = 0; step < 3; ++step) {
        Press(Qt::Key_Y, Qt::ControlModifier);
    }
    EXPECT_EQ(Name(1), QStringLiteral("North"));
    EXPECT_EQ(Locations(1), 3);
    EXPECT_EQ(tblNVCPerAcre->RecordCount(), 42);
    EXPECT_TRUE(errors_.empty());
}

TEST_F(ZonesTest, Undo_ReachesWhatWasDoneBeforeAnotherWorksheetShowed) {
    ZoneRecords::Create(QStringLiteral("North"), 2);
    Load<frm4FMZs>();
    Enter(Grid("grdFMZs"), 1, 0, QStringLiteral("West"));
    Leave();
    EXPECT_EQ(Name(1), QStringLiteral("West"));
    Load<frm4FMZs>();
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Grid("grdFMZs").TextMatrix(1, 0), QStringLiteral("North"));
    EXPECT_EQ(Name(1), QStringLiteral("North"));
}

TEST_F(ZonesTest, Undo_MakesTheRowCurrentThatChanged) {
    for (const char* name : {"North", "East", "South"}) {
        ZoneRecords::Create(QString::fromLatin1(name), 1);
    }
    Load<frm4FMZs>();
    vsFlexGrid& grid = Grid("grdFMZs");
    Enter(grid, 2, 0, QStringLiteral("West"));
    ClickCell(grid, 1, 0);
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(grid.TextMatrix(2, 0), QStringLiteral("East"));
    EXPECT_EQ(grid.Row(), 2);
}

TEST_F(ZonesTest, AllClearedByKeys_ComesBackWithOneUndo) {
    ZoneRecords::Create(QStringLiteral("North"), 2);
    ZoneRecords::Create(QStringLiteral("South"), 3);
    Load<frm4FMZs>();
    vsFlexGrid& grid = Grid("grdFMZs");
    ClickCell(grid, 1, 0);
    Press(Qt::Key_Escape);
    Press(Qt::Key_A, Qt::ControlModifier);
    Press(Qt::Key_Delete);
    form_->Save();
    EXPECT_EQ(Name(2), QString());
    EXPECT_EQ(Locations(2), 1);
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Name(1), QStringLiteral("North"));
    EXPECT_EQ(Locations(1), 2);
    EXPECT_EQ(Name(2), QStringLiteral("South"));
    EXPECT_EQ(Locations(2), 3);
}

TEST_F(ZonesTest, Fillers_ListZonesWithTheirKeysAndLocations) {
    const int first = ZoneRecords::Create(QStringLiteral("A && B"), 3);
    const int second = ZoneRecords::Create(QString(), 1);
    QComboBox zones;
    mFMZs::LoadFMZs(zones);
    ASSERT_EQ(zones.count(), 2);
    EXPECT_EQ(zones.itemText(0), QStringLiteral("A && B"));
    EXPECT_EQ(zones.itemData(0).toInt(), first);
    EXPECT_EQ(zones.itemData(1).toInt(), second);
    QComboBox locations;
    mFMZs::LoadRepLocs(locations, first);
    ASSERT_EQ(locations.count(), 3);
    EXPECT_EQ(locations.itemText(2), QStringLiteral("3"));
    mFMZs::LoadRepLocs(locations, 999);
    EXPECT_EQ(locations.count(), 0) << "a zone that is not there has none";
}

TEST_F(ZonesTest, EscInACell_PutsTheTextBack) {
    ZoneRecords::Create(QStringLiteral("North"), 1);
    Load<frm4FMZs>();
    ClickCell(Grid("grdFMZs"), 1, 0);
    Type(QStringLiteral("abc"));
    Press(Qt::Key_Escape);
    Leave();
    EXPECT_EQ(Name(1), QStringLiteral("North"));
}

TEST_F(ZonesTest, EverythingTyped_LeavesAFileThatTheJudgePasses) {
    Load<frm4FMZs>();
    for (int zone = 0; zone < 5; ++zone) {
        ClickButton("cmdAdd");
        Type(QStringLiteral("Zone %1").arg(zone));
        Press(Qt::Key_Tab);
        Type(QString::number(zone + 1));
    }
    Leave();
    const QString path = PrepDatafile::CurrentPath();
    PrepDatafile::CloseDatafile();
    EXPECT_EQ(support::Complaints(path), QString());
}

TEST_F(ZonesTest, ImportWhileANameIsNotStored_AsksFirst) {
    ZoneRecords::Create(QStringLiteral("North"), 1);
    Load<frm4FMZs>();
    Enter(Grid("grdFMZs"), 1, 0, QStringLiteral("West"));
    support::Answers answers({QMessageBox::No});
    ClickButton("cmdImport");
    ASSERT_EQ(answers.Texts().size(), 1);
    EXPECT_TRUE(answers.Texts().first().contains(QStringLiteral("(West)")));
    EXPECT_EQ(answers.Messages()[0].defaultButton, QMessageBox::No);
    EXPECT_EQ(Count(folder_.Trace(), QStringLiteral("mImport.BRAM_CopyFMZs")), 0);
    EXPECT_EQ(Grid("grdFMZs").TextMatrix(1, 0), QStringLiteral("West"));
}

TEST_F(ZonesTest, Location_ThatALaterZoneOwns_IsRefusedWithBothNamesWhenItIsSaved) {
    ZoneRecords::Create(QStringLiteral("North"), 1);
    ZoneRecords::Create(QStringLiteral("South"), 1);
    Load<frm4FMZs>();
    Enter(Grid("grdFMZs"), 1, 1, QStringLiteral("150"));
    try {
        form_->Save();
        ADD_FAILURE() << "saved";
    } catch (const platform::RuntimeError& error) {
        EXPECT_EQ(error.Number(), platform::kDuplicateKey);
        EXPECT_TRUE(error.Description().contains(QStringLiteral("North has no room")));
        EXPECT_TRUE(error.Description().contains(QStringLiteral("those of South")));
    }
    EXPECT_EQ(Grid("grdFMZs").TextMatrix(1, 1), QStringLiteral("150")) << "for correction";
    Press(Qt::Key_Z, Qt::ControlModifier);
    form_->Save();
    EXPECT_EQ(Locations(1), 1);
}

TEST_F(ZonesTest, LoadFMZs_WithoutZones_EmptiesTheBox) {
    QComboBox zones;
    zones.addItem(QStringLiteral("left over"));
    mFMZs::LoadFMZs(zones);
    EXPECT_EQ(zones.count(), 0);
}

}  // namespace
