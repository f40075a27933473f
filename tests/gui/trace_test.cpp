// Every procedure of the shell, the data file and the import writes its entry: a session in which
// each of them runs, and the list of their names.

#include <QFileDialog>

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
    for (const QString& procedure : kProcedures) {
        EXPECT_TRUE(std::any_of(trace.begin(), trace.end(), [&procedure](const QString& entry) {
            return entry.startsWith(procedure);
        })) << procedure.toStdString();
    }
}

}  // namespace
