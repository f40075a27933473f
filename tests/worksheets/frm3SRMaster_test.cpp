// The list of suppression resources and the dialog that adds one.
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>

#include <random>

#include "datafile/FieldReaders.h"
#include "datafile/PrepProperties.h"
#include "platform/RuntimeError.h"
#include "platform/system/Clipboard.h"
#include "worksheet_fixture.h"
#include "worksheets/resources/ResourceRecords.h"
#include "worksheets/resources/SRDataSource.h"
#include "worksheets/resources/frm3SRMaster.h"
#include "worksheets/resources/frm3SRMasterAdd.h"

using PrepDatatables::tblSRMasterList;
using worksheets::Resource;

namespace {

class ResourcesTest : public WorksheetTest {
protected:
    // Resources "R1", "R2", ... in this order.
    void AddResources(int count) {
        for (int i = 1; i <= count; ++i) {
            Resource resource;
            resource.longName = QStringLiteral("R%1").arg(i);
            resource.shortName = QStringLiteral("S%1").arg(i);
            resource.units = QStringLiteral("days");
            resource.cost = static_cast<float>(i * 100);
            resource.unitType = QStringLiteral("time");
            resource.key = ResourceRecords::Add(resource);
            resource.sequence = i;
            ResourceRecords::Save(resource);
        }
    }
    QStringList ShownNames() {
        QStringList names;
        for (int row = 1; row < Grid("grdMasterList").Rows(); ++row) {
            EXPECT_EQ(Grid("grdMasterList").TextMatrix(row, 0), QString::number(row));
            names << Grid("grdMasterList").TextMatrix(row, 1);
        }
        return names;
    }
    static QStringList StoredNames() {
        QStringList names;
        if (tblSRMasterList->RecordCount() == 0) {
            return names;
        }
        tblSRMasterList->SetIndex(QStringLiteral("Sequence"));
        for (tblSRMasterList->MoveFirst(); !tblSRMasterList->EndOfFile();
             tblSRMasterList->MoveNext()) {
            names << tblSRMasterList->Text(QStringLiteral("LongName"));
            EXPECT_EQ(tblSRMasterList->Long(QStringLiteral("Sequence")), names.size());
        }
        tblSRMasterList->SetIndex(QStringLiteral("PrimaryKey"));
        return names;
    }
    // Opens the add dialog with the button and runs the steps in it.
    void InDialog(const std::function<void(QWidget&)>& steps) {
        support::Answers answers;
        answers.Then([&](QWidget& dialog) {
            ASSERT_EQ(dialog.objectName(), QStringLiteral("frm3SRMasterAdd"));
            steps(dialog);
            if (dialog.isVisible()) {
                QTest::keyClick(&dialog, Qt::Key_Escape);
            }
        });
        ClickButton("cmdAdd");
    }
    static QLineEdit& Box(QWidget& dialog, const char* name) {
        return *dialog.findChild<QLineEdit*>(QString::fromLatin1(name));
    }
    static QAbstractButton& Button(QWidget& dialog, const char* name) {
        return *dialog.findChild<QAbstractButton*>(QString::fromLatin1(name));
    }
    static void FillDialog(QWidget& dialog, const QString& name) {
        QTest::keyClicks(&Box(dialog, "txtResourceName"), name);
        QTest::keyClicks(&Box(dialog, "txtShortName"), QStringLiteral("short"));
        QTest::keyClicks(&Box(dialog, "txtUnits"), QStringLiteral("loads"));
        QTest::keyClicks(&Box(dialog, "txtCost"), QStringLiteral("00250"));
    }
    static void SetPlace(QWidget& dialog, const QString& place) {
        Box(dialog, "txtPosition").clear();
        QTest::keyClicks(&Box(dialog, "txtPosition"), place);
    }
};

TEST_F(ResourcesTest, Setup_ShowsTheResourcesInTheirOrder) {
    AddResources(3);
    Load<frm3SRMaster>();
    EXPECT_EQ(manager_.worksheetID, QStringLiteral("SRM"));
    vsFlexGrid& grid = Grid("grdMasterList");
    EXPECT_EQ(ShownNames(), (QStringList{"R1", "R2", "R3"}));
    EXPECT_EQ(grid.TextMatrix(0, 2), QStringLiteral("Short Name"));
    EXPECT_EQ(grid.DisplayText(3, 4), QStringLiteral("$300"));
    EXPECT_TRUE(grid.ColHidden(5));
    const std::vector<int> widths{480, 3600, 1500, 900, 1320};
    for (int col = 0; col < 5; ++col) {
        EXPECT_EQ(grid.ColWidth(col), widths[static_cast<std::size_t>(col)]);
    }
    EXPECT_EQ(Count(folder_.Trace(), QStringLiteral("Setup")), 1);
    EXPECT_EQ(tblSRMasterList->Index(), QStringLiteral("PrimaryKey"));
}

TEST_F(ResourcesTest, TypedNumber_MovesTheRow) {
    AddResources(5);
    Load<frm3SRMaster>();
    Enter(Grid("grdMasterList"), 4, 0, QStringLiteral("2"));
    EXPECT_EQ(ShownNames(), (QStringList{"R1", "R4", "R2", "R3", "R5"}));
    Enter(Grid("grdMasterList"), 1, 0, QStringLiteral("0"));
    Enter(Grid("grdMasterList"), 1, 0, QStringLiteral("99"));
    EXPECT_EQ(ShownNames(), (QStringList{"R4", "R2", "R3", "R5", "R1"}));
    Enter(Grid("grdMasterList"), 3, 0, QStringLiteral("-7"));
    EXPECT_EQ(ShownNames(), (QStringList{"R3", "R4", "R2", "R5", "R1"}));
    EXPECT_EQ(Count(folder_.Trace(), QStringLiteral("MoveRow")), 3);
    Leave();
    EXPECT_EQ(StoredNames(), (QStringList{"R3", "R4", "R2", "R5", "R1"}));
}

TEST_F(ResourcesTest, OwnNumberOrNoNumber_ChangesNothing) {
    AddResources(3);
    Load<frm3SRMaster>();
    Enter(Grid("grdMasterList"), 2, 0, QStringLiteral("2"));
    Enter(Grid("grdMasterList"), 2, 0, QStringLiteral("x"));
    EXPECT_EQ(ShownNames(), (QStringList{"R1", "R2", "R3"}));
    EXPECT_EQ(Count(folder_.Trace(), QStringLiteral("MoveRow")), 0);
}

TEST_F(ResourcesTest, HalfNumber_GoesToTheEvenNeighbor) {
    AddResources(5);
    Load<frm3SRMaster>();
    Enter(Grid("grdMasterList"), 1, 0, QStringLiteral("2.5"));
    EXPECT_EQ(ShownNames(), (QStringList{"R2", "R1", "R3", "R4", "R5"}));
    Enter(Grid("grdMasterList"), 1, 0, QStringLiteral("3.5"));
    EXPECT_EQ(ShownNames(), (QStringList{"R1", "R3", "R4", "R2", "R5"}));
}

TEST_F(ResourcesTest, MoveWithTheEditorOpen_IsSavedWhenLeaving) {
    AddResources(3);
    Load<frm3SRMaster>();
    ClickCell(Grid("grdMasterList"), 3, 0);
    Type(QStringLiteral("1"));
    Leave();
    EXPECT_EQ(StoredNames(), (QStringList{"R3", "R1", "R2"}));
}

TEST_F(ResourcesTest, EditedCells_AreStoredWhenLeaving) {
    AddResources(2);
    Load<frm3SRMaster>();
    vsFlexGrid& grid = Grid("grdMasterList");
    Enter(grid, 2, 1, QStringLiteral("Helicopter"));
    Enter(grid, 2, 3, QStringLiteral("hours"));
    ClickCell(grid, 2, 4);
    Type(QStringLiteral("1250678"));
    EXPECT_EQ(grid.EditText(), QStringLiteral("12506")) << "at most five characters";
    Leave();
    tblSRMasterList->Seek("=", {2});
    EXPECT_EQ(tblSRMasterList->Text(QStringLiteral("LongName")), QStringLiteral("Helicopter"));
    EXPECT_EQ(tblSRMasterList->Text(QStringLiteral("Units")), QStringLiteral("hours"));
    EXPECT_EQ(tblSRMasterList->Single(QStringLiteral("Cost")), 12506);
    EXPECT_EQ(tblSRMasterList->Text(QStringLiteral("UnitType")), QStringLiteral("time"));
}

TEST_F(ResourcesTest, UnchangedRecord_IsNotRewritten) {
    AddResources(1);
    Resource resource = ResourceRecords::All().front();
    EXPECT_FALSE(ResourceRecords::Save(resource));
    resource.longName = QStringLiteral("r1");
    EXPECT_TRUE(ResourceRecords::Save(resource)) << "letter case counts";
    resource.cost = 100.5F;
    EXPECT_TRUE(ResourceRecords::Save(resource));
    EXPECT_FALSE(ResourceRecords::Save(resource));
    resource.key = 99;
    EXPECT_THROW(ResourceRecords::Save(resource), platform::RuntimeError);
}

TEST_F(ResourcesTest, DeleteConfirmed_RemovesTheRecordAndRenumbers) {
    AddResources(3);
    Load<frm3SRMaster>();
    ClickCell(Grid("grdMasterList"), 2, 1);
    support::Answers answers({QMessageBox::Yes});
    ClickButton("cmdDelete");
    EXPECT_EQ(answers.Texts(), QStringList{"Do you really want to delete R2"});
    EXPECT_EQ(answers.Messages().at(0).title, QStringLiteral("Delete"));
    EXPECT_EQ(tblSRMasterList->RecordCount(), 2) << "at once";
    EXPECT_EQ(ShownNames(), (QStringList{"R1", "R3"}));
    Leave();
    EXPECT_EQ(StoredNames(), (QStringList{"R1", "R3"}));
}

TEST_F(ResourcesTest, DeleteDeclined_ChangesNothing) {
    AddResources(2);
    Load<frm3SRMaster>();
    support::Answers answers({QMessageBox::No});
    ClickButton("cmdDelete");
    EXPECT_EQ(answers.Messages().size(), 1U);
    EXPECT_EQ(tblSRMasterList->RecordCount(), 2);
}

TEST_F(ResourcesTest, DeletingTheOnlyResource_LeavesTheHeaderOnlyAndNothingToDelete) {
    AddResources(1);
    Load<frm3SRMaster>();
    support::Answers answers({QMessageBox::Yes});
    ClickButton("cmdDelete");
    EXPECT_EQ(Grid("grdMasterList").Rows(), 1);
    EXPECT_FALSE(Find<QAbstractButton>("cmdDelete").isEnabled());
    ClickButton("cmdDelete");
    EXPECT_EQ(answers.Messages().size(), 1U) << "nothing left to ask about";
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(Find<QAbstractButton>("cmdDelete").isEnabled());
    EXPECT_EQ(ShownNames(), QStringList{"R1"});
    EXPECT_EQ(StoredNames(), QStringList{"R1"});
    Leave();
    EXPECT_TRUE(errors_.empty());
}

TEST_F(ResourcesTest, DeletePressedWithATypedNumberOpen_AsksAboutThatRow) {
    AddResources(4);
    Load<frm3SRMaster>();
    ClickCell(Grid("grdMasterList"), 3, 0);
    Type(QStringLiteral("1"));
    support::Answers answers({QMessageBox::Yes});
    ClickButton("cmdDelete");
    EXPECT_EQ(answers.Texts(), QStringList{"Do you really want to delete R3"});
    EXPECT_EQ(ShownNames(), (QStringList{"R1", "R2", "R4"}));
}

TEST_F(ResourcesTest, MovedRow_StaysCurrent) {
    AddResources(5);
    Load<frm3SRMaster>();
    vsFlexGrid& grid = Grid("grdMasterList");
    ClickCell(grid, 4, 0);
    Type(QStringLiteral("2"));
    grid.FinishEdit();
    EXPECT_EQ(grid.Row(), 2);
    EXPECT_EQ(grid.TextMatrix(2, 1), QStringLiteral("R4"));
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(ShownNames(), (QStringList{"R1", "R2", "R3", "R4", "R5"}));
    Press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(ShownNames(), (QStringList{"R1", "R4", "R2", "R3", "R5"}));
    EXPECT_EQ(StoredNames(), ShownNames());
}

TEST_F(ResourcesTest, CostReadAsAnotherNumber_ShowsTheStoredOneAndIsReported) {
    AddResources(1);
    Load<frm3SRMaster>();
    Enter(Grid("grdMasterList"), 1, 4, QStringLiteral("1,450"));
    EXPECT_EQ(Grid("grdMasterList").DisplayText(1, 4), QStringLiteral("$1"));
    EXPECT_EQ(Find<QLabel>("lblNote").text(),
              QStringLiteral("R1, Cost: '1,450' was read as 1. Type 1450."));
    EXPECT_TRUE(Find<QLabel>("lblNote").isVisible());
}

TEST_F(ResourcesTest, CostWithCents_IsShownRoundedUpAtTheHalf) {
    AddResources(1);
    Resource resource = ResourceRecords::All().front();
    resource.cost = 2.5F;
    ResourceRecords::Save(resource);
    Load<frm3SRMaster>();
    EXPECT_EQ(Grid("grdMasterList").DisplayText(1, 4), QStringLiteral("$3"));
    EXPECT_EQ(Grid("grdMasterList").TextMatrix(1, 4), QStringLiteral("2.5"));
}

TEST_F(ResourcesTest, SourceOfData_IsTakenBackVisitByVisit) {
    Load<frm3SRMaster>();
    Find<QLineEdit>("txtSource").setFocus();
    Type(QStringLiteral("Budget"));
    Grid("grdMasterList").setFocus();
    Find<QLineEdit>("txtSource").setFocus();
    Press(Qt::Key_End);
    Type(QStringLiteral(" office"));
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Find<QLineEdit>("txtSource").text(), QStringLiteral("Budget"));
    EXPECT_EQ(PrepProperties::GetProperty(QStringLiteral("SRDataSource")),
              QStringLiteral("Budget"));
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Find<QLineEdit>("txtSource").text(), QString());
    Press(Qt::Key_Y, Qt::ControlModifier);
    EXPECT_EQ(Find<QLineEdit>("txtSource").text(), QStringLiteral("Budget"));
}

TEST_F(ResourcesTest, DeletingARowThatIsGone_OnlyWarns) {
    AddResources(2);
    Load<frm3SRMaster>();
    ResourceRecords::Delete(1);
    support::Answers answers({QMessageBox::Yes});
    ClickButton("cmdDelete");
    EXPECT_EQ(Grid("grdMasterList").Rows(), 3);
    EXPECT_TRUE(folder_.Trace().contains(QStringLiteral("  Warning! tblSRMasterList.NoMatch 1")));
}

TEST_F(ResourcesTest, SaveThatFailsAtUnload_IsPassedOnBehindItsEntry) {
    AddResources(2);
    Load<frm3SRMaster>();
    Enter(Grid("grdMasterList"), 1, 1, QStringLiteral("Dozer"));
    PrepDatatables::tblSRMasterList.Close();
    EXPECT_THROW(form_->Unload(), platform::RuntimeError);
    EXPECT_EQ(folder_.Trace().last(), QStringLiteral("   Unloaded frm3SRMaster"));
}

TEST_F(ResourcesTest, SaveThatFails_IsPassedOnAndTheNoteIsStoredAllTheSame) {
    AddResources(2);
    Load<frm3SRMaster>();
    Find<QLineEdit>("txtSource").setFocus();
    Type(QStringLiteral("Budget"));
    Enter(Grid("grdMasterList"), 1, 1, QStringLiteral("Dozer"));
    PrepDatatables::tblSRMasterList.Close();
    EXPECT_THROW(form_->Save(), platform::RuntimeError);
    EXPECT_EQ(PrepProperties::GetProperty(QStringLiteral("SRDataSource")),
              QStringLiteral("Budget"));
}

TEST_F(ResourcesTest, SourceOfData_IsWrittenOnceAndOnlyWhenChanged) {
    Load<frm3SRMaster>();
    form_->Save();
    EXPECT_EQ(PrepProperties::GetProperty(QStringLiteral("SRDataSource")), QString());
    Find<QLineEdit>("txtSource").setFocus();
    Type(QStringLiteral("Budget office"));
    form_->Save();
    EXPECT_EQ(PrepProperties::GetProperty(QStringLiteral("SRDataSource")),
              QStringLiteral("Budget office"));
    PrepProperties::SetProperty(QStringLiteral("SRDataSource"), QStringLiteral("other"));
    form_->Save();
    EXPECT_EQ(PrepProperties::GetProperty(QStringLiteral("SRDataSource")), QStringLiteral("other"))
        << "nothing was changed since";
    Leave();
    Load<frm3SRMaster>();
    EXPECT_EQ(Find<QLineEdit>("txtSource").text(), QStringLiteral("other"));
}

TEST_F(ResourcesTest, SourceOfData_IsReadOnce) {
    const QString name = QStringLiteral("SRDataSource");
    PrepProperties::SetProperty(name, QStringLiteral("Region 6"));
    SRDataSource source;
    EXPECT_EQ(source.Get(), QStringLiteral("Region 6"));
    PrepProperties::SetProperty(name, QStringLiteral("other"));
    EXPECT_EQ(source.Get(), QStringLiteral("Region 6"));
    source.Let(QString());
    EXPECT_EQ(source.Get(), QString()) << "emptied is not unread";
}

TEST_F(ResourcesTest, SourceOfDataEmptied_IsStoredEmpty) {
    PrepProperties::SetProperty(QStringLiteral("SRDataSource"), QStringLiteral("old"));
    Load<frm3SRMaster>();
    auto& box = Find<QLineEdit>("txtSource");
    box.setFocus();
    box.selectAll();
    Press(Qt::Key_Delete);
    Leave();
    EXPECT_EQ(PrepProperties::GetProperty(QStringLiteral("SRDataSource")), QString());
}

TEST_F(ResourcesTest, Dialog_EnablesOKOnlyWhenAllFourTextsAreThere) {
    Load<frm3SRMaster>();
    InDialog([](QWidget& dialog) {
        QAbstractButton& ok = Button(dialog, "cmdOK");
        EXPECT_FALSE(ok.isEnabled());
        EXPECT_TRUE(Button(dialog, "optTime").isChecked());
        FillDialog(dialog, QStringLiteral(" "));
        EXPECT_TRUE(ok.isEnabled()) << "a blank is a text";
        for (const char* name : {"txtResourceName", "txtShortName", "txtUnits", "txtCost"}) {
            const QString text = Box(dialog, name).text();
            Box(dialog, name).clear();
            EXPECT_FALSE(ok.isEnabled()) << name;
            Box(dialog, name).setText(text);
            EXPECT_TRUE(ok.isEnabled());
        }
        Box(dialog, "txtPosition").clear();
        EXPECT_TRUE(ok.isEnabled());
    });
}

TEST_F(ResourcesTest, Dialog_TakesOnlyDigitsForCostAndPosition) {
    Load<frm3SRMaster>();
    InDialog([](QWidget& dialog) {
        QTest::keyClicks(&Box(dialog, "txtCost"), QStringLiteral("-1a2.,3 $4"));
        EXPECT_EQ(Box(dialog, "txtCost").text(), QStringLiteral("1234"));
        QTest::keyClick(&Box(dialog, "txtCost"), Qt::Key_Backspace);
        EXPECT_EQ(Box(dialog, "txtCost").text(), QStringLiteral("123"));
        SetPlace(dialog, QStringLiteral("x1y2"));
        EXPECT_EQ(Box(dialog, "txtPosition").text(), QStringLiteral("12"));
        EXPECT_EQ(Box(dialog, "txtResourceName").maxLength(), 50);
        EXPECT_EQ(Box(dialog, "txtShortName").maxLength(), 20);
        EXPECT_EQ(Box(dialog, "txtUnits").maxLength(), 10);
        EXPECT_EQ(Box(dialog, "txtCost").maxLength(), 5);
        EXPECT_EQ(Box(dialog, "txtPosition").maxLength(), 4);
    });
}

TEST_F(ResourcesTest, Dialog_ReportsAKeyThatItDiscards) {
    Load<frm3SRMaster>();
    InDialog([](QWidget& dialog) {
        auto* cue = dialog.findChild<QLabel*>(QStringLiteral("lblCostCue"));
        ASSERT_NE(cue, nullptr);
        QTest::keyClicks(&Box(dialog, "txtCost"), QStringLiteral("1450"));
        EXPECT_FALSE(cue->isVisible());
        QTest::keyClicks(&Box(dialog, "txtCost"), QStringLiteral("."));
        EXPECT_TRUE(cue->isVisible());
        EXPECT_EQ(cue->text(), QStringLiteral("whole dollars, digits only"));
        EXPECT_EQ(Box(dialog, "txtCost").accessibleDescription(), cue->text());
        EXPECT_EQ(Box(dialog, "txtCost").text(), QStringLiteral("1450"));
    });
    const QStringList trace = folder_.Trace();
    EXPECT_EQ(Count(trace, QStringLiteral("frm3SRMasterAdd.txtCost_KeyPress")), 5);
    EXPECT_GE(Count(trace, QStringLiteral("frm3SRMasterAdd.EnableOK")), 4);
}

TEST_F(ResourcesTest, Dialog_PastedNumbers_ArriveAsTheyWereMeantOrNotAtAll) {
    Load<frm3SRMaster>();
    InDialog([](QWidget& dialog) {
        auto* cue = dialog.findChild<QLabel*>(QStringLiteral("lblCostCue"));
        QLineEdit& cost = Box(dialog, "txtCost");
        const auto pasted = [&cost](const QString& text) {
            platform::SetClipboardText(text);
            cost.selectAll();
            QTest::keySequence(&cost, QKeySequence::Paste);
            return cost.text();
        };
        EXPECT_EQ(pasted(QStringLiteral("$1,450")), QStringLiteral("1450"));
        EXPECT_EQ(pasted(QStringLiteral("1,300.00\r\n")), QStringLiteral("1300"));
        EXPECT_FALSE(cue->isVisible());
        EXPECT_EQ(pasted(QStringLiteral("1450.75")), QStringLiteral("1300"));
        EXPECT_TRUE(cue->isVisible()) << "a part of it would be another number";
        EXPECT_EQ(pasted(QStringLiteral("12.75")), QStringLiteral("12.75"));
    });
}

TEST_F(ResourcesTest, AddedResource_IsTakenBackAndRepeated) {
    AddResources(2);
    Load<frm3SRMaster>();
    InDialog([](QWidget& dialog) {
        FillDialog(dialog, QStringLiteral("New"));
        Button(dialog, "cmdOK").click();
    });
    EXPECT_EQ(ShownNames(), (QStringList{"R1", "New", "R2"}));
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(ShownNames(), (QStringList{"R1", "R2"}));
    EXPECT_EQ(StoredNames(), ShownNames());
    Press(Qt::Key_Y, Qt::ControlModifier);
    EXPECT_EQ(ShownNames(), (QStringList{"R1", "New", "R2"}));
    EXPECT_EQ(StoredNames(), ShownNames());
}

TEST_F(ResourcesTest, DialogOK_AddsTheRecordBelowTheSelectedRow) {
    AddResources(3);
    Load<frm3SRMaster>();
    ClickCell(Grid("grdMasterList"), 2, 1);
    InDialog([](QWidget& dialog) {
        EXPECT_EQ(Box(dialog, "txtPosition").text(), QStringLiteral("3"));
        FillDialog(dialog, QStringLiteral("New"));
        Button(dialog, "optItem").click();
        Button(dialog, "cmdOK").click();
        EXPECT_FALSE(dialog.isVisible());
    });
    vsFlexGrid& grid = Grid("grdMasterList");
    EXPECT_EQ(ShownNames(), (QStringList{"R1", "R2", "New", "R3"}));
    EXPECT_EQ(grid.Row(), 3);
    EXPECT_EQ(grid.Col(), 1);
    tblSRMasterList->MoveLast();
    EXPECT_EQ(tblSRMasterList->Text(QStringLiteral("LongName")), QStringLiteral("New"));
    EXPECT_EQ(tblSRMasterList->Text(QStringLiteral("UnitType")), QStringLiteral("item"));
    EXPECT_EQ(tblSRMasterList->Single(QStringLiteral("Cost")), 250);
    EXPECT_EQ(tblSRMasterList->Long(QStringLiteral("Sequence")), 3) << "with the record";
    Leave();
    EXPECT_EQ(StoredNames(), (QStringList{"R1", "R2", "New", "R3"}));
}

TEST_F(ResourcesTest, DialogPositions_AreHeldWithinTheList) {
    AddResources(2);
    Load<frm3SRMaster>();
    const std::vector<std::pair<const char*, const char*>> cases{
        {"0", "first"}, {"", "second"}, {"999", "last"}};
    for (const auto& [place, name] : cases) {
        InDialog([place = place, name = name](QWidget& dialog) {
            FillDialog(dialog, QString::fromLatin1(name));
            SetPlace(dialog, QString::fromLatin1(place));
            Button(dialog, "cmdOK").click();
        });
    }
    EXPECT_EQ(ShownNames(), (QStringList{"second", "first", "R1", "R2", "last"}));
}

TEST_F(ResourcesTest, DialogInAnEmptyList_AddsTheFirstRow) {
    Load<frm3SRMaster>();
    InDialog([](QWidget& dialog) {
        EXPECT_EQ(Box(dialog, "txtPosition").text(), QStringLiteral("1"));
        FillDialog(dialog, QStringLiteral("Only"));
        Button(dialog, "cmdOK").click();
    });
    EXPECT_EQ(ShownNames(), QStringList{"Only"});
    Leave();
    EXPECT_EQ(StoredNames(), QStringList{"Only"});
}

TEST_F(ResourcesTest, NameWithATab_KeepsItsRowWhole) {
    Load<frm3SRMaster>();
    InDialog([](QWidget& dialog) {
        FillDialog(dialog, QStringLiteral("x"));
        Box(dialog, "txtResourceName").setText(QStringLiteral("a\tb"));
        Button(dialog, "cmdOK").click();
    });
    EXPECT_EQ(Grid("grdMasterList").TextMatrix(1, 5), QStringLiteral("1"));
    Unload();
    EXPECT_TRUE(errors_.empty());
}

TEST_F(ResourcesTest, DialogCancelled_ChangesNothing) {
    AddResources(1);
    Load<frm3SRMaster>();
    InDialog([](QWidget& dialog) {
        FillDialog(dialog, QStringLiteral("New"));
        Button(dialog, "cmdCancel").click();
    });
    EXPECT_EQ(tblSRMasterList->RecordCount(), 1);
    EXPECT_EQ(Grid("grdMasterList").Rows(), 2);
    const QStringList trace = folder_.Trace();
    EXPECT_EQ(Count(trace, QStringLiteral("cmdAdd_Click")), 1);
    EXPECT_EQ(Count(trace, QStringLiteral("cmdCancel_Click")), 1);
    EXPECT_TRUE(trace.contains(QStringLiteral("   Load frm3SRMasterAdd")));
    EXPECT_EQ(trace.last(), QStringLiteral("   Unloaded frm3SRMasterAdd"));
}

TEST_F(ResourcesTest, PastedCostThatIsNoNumber_KeepsTheDialogOpen) {
    Load<frm3SRMaster>();
    support::Answers answers;
    answers.Then([](QWidget& dialog) {
        FillDialog(dialog, QStringLiteral("New"));
        // Later, so that the message boxes that come up can be answered meanwhile.
        QTimer::singleShot(0, &dialog, [&dialog] {
            for (const char* text : {"abc", "12,5"}) {
                Box(dialog, "txtCost").setText(QString::fromLatin1(text));
                Button(dialog, "cmdOK").click();
                EXPECT_TRUE(dialog.isVisible());
            }
            EXPECT_EQ(Box(dialog, "txtResourceName").text(), QStringLiteral("New"));
            Button(dialog, "cmdCancel").click();
        });
    });
    ClickButton("cmdAdd");
    const QString refused = QStringLiteral("The cost must be a number.");
    EXPECT_EQ(answers.Texts(), QStringList({refused, refused}));
    EXPECT_EQ(tblSRMasterList->RecordCount(), 0);
}

TEST_F(ResourcesTest, RandomMovesAddsAndDeletes_LeaveOneToNInTheFileAsOnTheScreen) {
    AddResources(6);
    Load<frm3SRMaster>();
    std::mt19937 random(17);
    QStringList expected = ShownNames();
    for (int step = 0; step < 40; ++step) {
        const int count = static_cast<int>(expected.size());
        const int row = static_cast<int>(random() % static_cast<unsigned>(count)) + 1;
        const int place = static_cast<int>(random() % static_cast<unsigned>(count)) + 1;
        vsFlexGrid& grid = Grid("grdMasterList");
        switch (random() % 3) {
            case 0:
                Enter(grid, row, 0, QString::number(place));
                expected.move(row - 1, place - 1);
                break;
            case 1: {
                const QString name = QStringLiteral("N%1").arg(step);
                InDialog([&](QWidget& dialog) {
                    FillDialog(dialog, name);
                    SetPlace(dialog, QString::number(place));
                    Button(dialog, "cmdOK").click();
                });
                expected.insert(place - 1, name);
                break;
            }
            default:
                if (count > 1) {
                    ClickCell(grid, row, 1);
                    support::Answers answers({QMessageBox::Yes});
                    ClickButton("cmdDelete");
                    expected.removeAt(row - 1);
                }
        }
        ASSERT_EQ(ShownNames(), expected) << step;
    }
    Leave();
    EXPECT_EQ(StoredNames(), expected);
    EXPECT_TRUE(errors_.empty());
}

TEST_F(ResourcesTest, WidthsSetByHand_StayWhileTheFileIsOpen) {
    Load<frm3SRMaster>();
    Grid("grdMasterList").horizontalHeader()->resizeSection(1, 300);
    Leave();
    Load<frm3SRMaster>();
    EXPECT_EQ(Grid("grdMasterList").columnWidth(1), 300);
    EXPECT_EQ(Grid("grdMasterList").columnWidth(2), 100);
    Leave();
    PrepDatafile::CloseDatafile();
    OpenFile(NewFile(QStringLiteral("OTHER.FCD")));
    Load<frm3SRMaster>();
    EXPECT_EQ(Grid("grdMasterList").columnWidth(1), 240);
}

}  // namespace
