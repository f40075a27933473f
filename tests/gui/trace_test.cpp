// Every procedure writes its entry: sessions in which each of them runs, and the lists of their
// names.

#include <QFileDialog>
#include <QRadioButton>

#include <algorithm>
#include <utility>

#include "MadeFiles.h"
#include "RunningProgram.h"
#include "datafile/PrepProperties.h"
#include "platform/controls/vsFlexGrid.h"

namespace {

// As the entries begin, without the time.
const QStringList kProcedures{
    // start and end
    " Start TARN Prep 05.1", "   frm0_Prep_Resize ", "   frm0_Prep.HelpFilePath",
    "   a1Prep.StartWithoutFile", "   a1Prep.StartWithFile ", "   a1Prep.NewDatafile",
    "   a1Prep.OpenDatafile", " Start a1Prep.LoadFromFile", " Finished a1Prep.LoadFromFile",
    "   FCD_Restart", " Finished Loading TARN Prep", "   frm0_Prep.MDIForm_Unload",
    // frame, start screen, tabs
    "   frm0_Prep.SetTitleBar", "   frm0_Prep.StepMenu_Check", " Start mnuFile_Click ",
    " Start mnuExit_Click", "   mnuStep_Click ", "   mnuEdit_Click ", "   mnuHelp_Click ",
    "   Load frm0Start", "   frm0Start.SetBackground", "   frm0Start.cmdNew_Click",
    "   frm0Start.cmdOpen_Click", "   Unloaded frm0Start", "   Load frm1Intro",
    "   frm1Intro.Setup", "   Unloaded frm1Intro", "   Load frmTabs", "   frmTabs.Form_Resize",
    " Start switch to section ", "   frmTabs.vsTab1_Click", " Finished switching sections",
    "   Unloaded frmTabs", "   DisplayWorksheet ", "   PositionWorksheet",
    "   a3PrepForms.UpdateCurrentWorksheet ",
    "   a3PrepForms.UnloadCurrentWorksheet; WorksheetID = ", "   u13Folders.CostsPath",
    // data file
    "   PrepDatafile.QueryNewDatafile", "   PrepDatafile.NewFileDialog",
    "   PrepDatafile.QueryOpenDatafile", "   PrepDatafile.OpenDatatables ",
    "   PrepDatafile.Convert3to4", "   PrepDatafile.CloseDatafile",
    "   PrepDatafile.FileTitleFromPath", "   OpenRecordsets",
    "   PrepProperties.GetPropertyWithDefault ", "   PrepProperties.SetProperty ",
    "  Warning! PrepDatafile.OpenDatafile: Unsuccessful - unable to open",
    // naming dialog
    "   Load frmFCDName", "   frmFCDName.SetupGrid", "   frmFCDName.OpenNameTables",
    "   frmFCDName.GetMatchingIDs ", "   frmFCDName.GetMatchingNames ", "   frmFCDName.GetUnit ",
    "   frmFCDName.GetUnitState ", "   frmFCDName.CreateFileTitle ",
    "   frmFCDName.txtUnitID_Change", "   frmFCDName.txtUnitName_Change",
    "   frmFCDName.txtState_Change", "   frmFCDName.txtYear_Change", "   grdUnits_Click",
    "   frmFCDName.cmdCancel_Click", "   frmFCDName.cmdOK_Click", "   frmFCDName.CloseNameTables",
    "   Unloaded frmFCDName",
    // import
    "   mImport.BRAM_CopyFMZs", "   mImport.OpenFileDialog", "   GetBRAMPath",
    " Start mImport.OpenBRAMTables ", "    Copy FMZ ", "   mImport.BRAM_CopyAAC",
    "   mImport.BRAM_CopyNVC", "   BRAM_BlankNVCRecords", "   BRAM_Close"};

// The same for the worksheets.
const QStringList kWorksheetProcedures{
    // management goals
    "   Load frm2RMAs", "   frm2RMAs.Setup", "   frm2RMAs.LoadList", "   frm2RMAs.ShowItem",
    "   Update ", "   lstRMAs_Click ", "   frm2RMAs.txtHeading_GotFocus",
    "   frm2RMAs.txtHeading_Change", "   frm2RMAs.txtBody_Change", "   cmdAdd_Click",
    "   cmdDelete_Click", "   u92Utilities.ConfirmDelete", "   Unloaded frm2RMAs",
    // suppression resources
    "   Load frm3SRMaster", "   Setup", "   frm3SRMaster.FormatGrid", "   frm3SRMaster.LoadGrid",
    "   frm3SRMaster.grdMasterList_EnterCell", "   frm3SRMaster.grdMasterList_BeforeEdit",
    "   frm3SRMaster.grdMasterList_AfterEdit", "   MoveRow", "   frm3SRMaster.txtSource_Change",
    "   frm3SRMaster.SRDataSource Get", "   frm3SRMaster.SRDataSource Let",
    "   frm3SRMaster.SRDataSource Save", "   frm3SRMaster.SaveChanges", "   UpdateTable",
    "   frm3SRMaster.SaveRow", "   Unloaded frm3SRMaster",
    // its dialog
    "   Load frm3SRMasterAdd", "   frm3SRMasterAdd.txtResourceName_GotFocus",
    "   frm3SRMasterAdd.txtResourceName_Change", "   frm3SRMasterAdd.txtShortName_GotFocus",
    "   frm3SRMasterAdd.txtShortName_Change", "   frm3SRMasterAdd.optTime_Click",
    "   frm3SRMasterAdd.optItem_Click", "   frm3SRMasterAdd.txtUnits_GotFocus",
    "   frm3SRMasterAdd.txtUnits_Change", "   frm3SRMasterAdd.txtCost_GotFocus",
    "   frm3SRMasterAdd.txtCost_KeyPress", "   frm3SRMasterAdd.txtCost_Change",
    "   frm3SRMasterAdd.txtPosition_GotFocus", "   frm3SRMasterAdd.txtPosition_KeyPress",
    "   frm3SRMasterAdd.EnableOK", "   cmdOK_Click", "   cmdCancel_Click",
    "   Unloaded frm3SRMasterAdd",
    // zones
    "   Load frm4FMZs", "   frm4FMZs.Setup", "   frm4FMZs.SetupGrid", "   frm4FMZs.FMZ_LoadGrid",
    "   frm4FMZs.cmdAdd_Click", "   FMZ_CreateRecord 1", "   FMZ_Update", "   FMZ_UpdateRecord 1",
    "   frm4FMZs.grdFMZs_EnterCell", "   frm4FMZs.grdFMZs_BeforeEdit",
    "   frm4FMZs.cmdImport_Click", "   Unloaded frm4FMZs",
    // net value change
    "   Load frm5NVCTable", "   frm5NVCTable.Setup", "   frm5NVCTable.SetupGrid", "   LoadFMZs",
    "   LoadRepLocs", "   cboFMZs_Click North", "   cboRepLocs_Click 2",
    "   c34NVCTable.Initialize", "   c34NVCTable.NVCCellValue", "   c34NVCTable.SaveChanges",
    "   ShowNVCTable", "   ShowTotals", "   frm5NVCTable.grdNVC_EnterCell",
    "   frm5NVCTable.grdNVC_BeforeEdit", "   frm5NVCTable.grdNVC_KeyPressEdit",
    "   frm5NVCTable.grdNVC_KeyUpEdit", "   frm5NVCTable.SaveChanges", "   Unloaded frm5NVCTable",
    // cost per acre
    "   Load frmSuppressAcre", "   frmSuppressAcre.Setup", "   frmSuppressAcre.FormatCostGrid",
    "   frmCostPerAcre.cboFMZs_Click", "   frmSuppressAcre.DisplayData",
    "   frmSuppressAcre.ShowNextLowerBound", "   frmSuppressAcre.grdCosts_EnterCell",
    "   frmSuppressAcre.grdCosts_BeforeEdit", "   frmSuppressAcre.grdCosts_ChangeEdit",
    "   frmSuppressAcre.grdCosts_AfterEdit 2, 1", "   frmSuppressAcre.SaveChanges",
    "   c35AACTable.Initialize ", "   c35AACTable.TopSize", "   c35AACTable.Cost",
    "   c35AACTable.SaveChanges", "   Unloaded frm6SuppressAcre"};

void ExpectEach(const QStringList& procedures, const QStringList& trace) {
    for (const QString& procedure : procedures) {
        EXPECT_TRUE(std::any_of(trace.begin(), trace.end(), [&procedure](const QString& entry) {
            return entry.startsWith(procedure);
        })) << procedure.toStdString();
    }
}

class Trace : public RunningProgram {
protected:
    static void Type(QWidget& dialog, const char* box, const char* text) {
        auto* line = dialog.findChild<QLineEdit*>(QLatin1String(box));
        line->selectAll();
        QTest::keyClicks(line, QLatin1String(text));
    }
    static void Press(QWidget& dialog, const char* button) {
        QTest::mouseClick(dialog.findChild<QPushButton*>(QLatin1String(button)), Qt::LeftButton);
    }
    static void NameUnit(QWidget& dialog) {
        Type(dialog, "txtUnitID", "gp");
        Type(dialog, "txtUnitName", "giff");
        auto* grid = dialog.findChild<vsFlexGrid*>(QStringLiteral("grdUnits"));
        QRect cell;
        QMetaObject::invokeMethod(grid, "CellRect", Q_RETURN_ARG(QRect, cell), Q_ARG(int, 2),
                                  Q_ARG(int, 0));
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, cell.center());
        Type(dialog, "txtUnitID", "gpf");
        Type(dialog, "txtYear", "26");
        Press(dialog, "cmdOK");
    }
    // Through the File menu or the start screen.
    void Open(const QString& path) {
        support::Answers answers;
        answers.Then([path](QWidget& dialog) { ChooseFile(dialog, path); });
        if (StartScreenShows()) {
            Click(QStringLiteral("cmdOpen"));
        } else {
            Choose(QStringLiteral("mnuFile_2"));
        }
    }
    void Import(const QString& path) {
        ClickTab(4);
        support::Answers answers;
        answers.Then([path](QWidget& dialog) { ChooseFile(dialog, path); });
        Click(QStringLiteral("cmdImport"));
        EXPECT_EQ(Text(answers.Texts()), "");
    }
    // Into what has the keyboard.
    void Keys(const char* text) {
        for (const char* key = text; *key != 0; ++key) {
            QTest::keyClick(frame_->windowHandle(), *key);
        }
    }
    void StepKey(const char* control, Qt::Key key) {
        Get(QLatin1String(control)).setFocus();
        RunningProgram::Press(key);
    }
    void EditZones() {
        ClickTab(4);
        Click(QStringLiteral("cmdAdd"));
        Keys("North");
        RunningProgram::Press(Qt::Key_Tab);
        Keys("2");
        Click(QStringLiteral("cmdAdd"));
        Keys("South");
        support::Answers answers({QMessageBox::Yes});
        answers.Then([](QWidget& dialog) { QMetaObject::invokeMethod(&dialog, "reject"); });
        Click(QStringLiteral("cmdImport"));
    }
    void EditGoals() {
        ClickTab(2);
        Click(QStringLiteral("cmdAdd"));
        Keys("Ridge");
        RunningProgram::Press(Qt::Key_Tab);
        Keys("Keep");
        Click(QStringLiteral("cmdAdd"));
        const support::Answers answers({QMessageBox::Yes});
        Click(QStringLiteral("cmdDelete"));
    }
    static void FillIn(QWidget& dialog) {
        Type(dialog, "txtResourceName", "Engine");
        dialog.findChild<QRadioButton*>("optItem")->click();
        dialog.findChild<QRadioButton*>("optTime")->click();
        for (const auto& [box, text] :
             {std::pair("txtShortName", "E"), std::pair("txtUnits", "day"),
              std::pair("txtCost", "5"), std::pair("txtPosition", "1")}) {
            dialog.findChild<QWidget*>(QLatin1String(box))->setFocus();
            Type(dialog, box, text);
        }
        Press(dialog, "cmdOK");
    }
    void EditResources() {
        ClickTab(3);
        support::Answers answers({QMessageBox::Yes});
        for (int added = 0; added < 2; ++added) {
            answers.Then(FillIn);
            Click(QStringLiteral("cmdAdd"));
        }
        answers.Then([](QWidget& dialog) { Press(dialog, "cmdCancel"); });
        Click(QStringLiteral("cmdAdd"));
        Get<vsFlexGrid>(QStringLiteral("grdMasterList")).setFocus();
        RunningProgram::Press(Qt::Key_Home);
        Keys("2");
        RunningProgram::Press(Qt::Key_Return);
        Get(QStringLiteral("txtSource")).setFocus();
        Keys("2026");
        Click(QStringLiteral("cmdDelete"));
    }
    void EditValues() {
        ClickTab(5);
        StepKey("cboRepLocs", Qt::Key_Down);
        Get<vsFlexGrid>(QStringLiteral("grdNVC")).setFocus();
        RunningProgram::Press(Qt::Key_Right);
        Keys("-1");
        StepKey("cboFMZs", Qt::Key_Down);
    }
    void EditCosts() {
        ClickTab(6);
        auto& grid = Get<vsFlexGrid>(QStringLiteral("grdCosts"));
        grid.setFocus();
        grid.Select(2, 1);
        Keys("10");
        RunningProgram::Press(Qt::Key_Return);
        grid.Select(2, 2);
        Keys("500");
        RunningProgram::Press(Qt::Key_Return);
    }
};

TEST_F(Trace, WholeSession_HasTheEntryOfEveryProcedure) {
    support::WriteBytes(folder_.CostsPath(QStringLiteral("notes.fcd")), "notes");
    const QString old = NewFile(QStringLiteral("Old.fcd"));
    ASSERT_TRUE(PrepDatafile::OpenDatatables(old));
    PrepProperties::SetProperty(QStringLiteral("DataFormatID"), QStringLiteral("3.00.00"));
    PrepDatafile::CloseDatafile();
    Run(old);
    const QStringList withFile = folder_.Trace();
    frame_.reset();

    Run();
    {
        support::Answers answers;
        answers.Then([](QWidget& dialog) { Press(dialog, "cmdCancel"); });
        Click(QStringLiteral("cmdNew"));
        answers.Then(NameUnit);
        Click(QStringLiteral("cmdNew"));
    }
    ASSERT_TRUE(PrepDatafile::IsDatafileOpen());
    Choose(QStringLiteral("mnuStep_4"));
    Choose(QStringLiteral("mnuEdit_3"));
    const QString source = folder_.CostsPath(QStringLiteral("source.mdb"));
    support::Copy(support::BuiltFolder() + QStringLiteral("/Costs/BRAM0000.mdb"), source);
    RemoveASetup(source);
    Import(source);
    Open(old);
    Open(folder_.CostsPath(QStringLiteral("notes.fcd")));
    Open(old);
    {
        const support::Answers answers;
        Choose(QStringLiteral("mnuHelp_9"));
    }
    Choose(QStringLiteral("mnuExit"));

    const QStringList trace = withFile + folder_.Trace();
    ExpectEach(kProcedures, trace);
}

TEST_F(Trace, EveryWorksheet_HasTheEntryOfEveryProcedure) {
    RunWithFile();
    EditZones();
    EditGoals();
    EditResources();
    EditValues();
    EditCosts();
    ClickTab(1);
    ExpectEach(kWorksheetProcedures, folder_.Trace());
}

}  // namespace
