// New and Open from the running program: what stays, what goes, and what the log says.

#include <QFileDialog>

#include "MadeFiles.h"
#include "RunningProgram.h"
#include "platform/dao/Database.h"
#include "platform/dao/Recordset.h"

namespace {

class Files : public RunningProgram {
protected:
    static void Cancel(QWidget& dialog) { static_cast<QDialog&>(dialog).reject(); }
    // Fills the naming dialog for a unit that is found by its identifier.
    static void NameUnit(QWidget& dialog) {
        QTest::keyClicks(dialog.findChild<QLineEdit*>(QStringLiteral("txtUnitID")),
                         QStringLiteral("gpf"));
        QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("cmdOK")), Qt::LeftButton);
    }

    // A data file of the current format whose other tables are missing.
    static void MakeFileWithoutTables(const QString& path) {
        jet::Database::Create(path.toStdU16String(), jet::Version::kJet4)->Close();
        const auto file = dao::Database::Open(path, dao::OpenMode::kExclusive);
        dao::TableDefinition properties;
        properties.name = QStringLiteral("Properties");
        properties.fields = {{QStringLiteral("Property"), dao::FieldType::kText, 50},
                             {QStringLiteral("Value"), dao::FieldType::kText, 255}};
        properties.indexes = {
            {QStringLiteral("PrimaryKey"), {QStringLiteral("Property")}, true, true}};
        file->AppendTable(properties);
        const auto rows = file->OpenTable(properties.name);
        rows->AddNew();
        rows->SetField(QStringLiteral("Property"), QStringLiteral("DataFormatID"));
        rows->SetField(QStringLiteral("Value"), QStringLiteral("4.01.01"));
        rows->Update();
        rows->Close();
        file->Close();
    }

    void Open(const QString& path) {
        support::Answers answers;
        answers.Then([path](QWidget& dialog) { ChooseFile(dialog, path); });
        Choose(QStringLiteral("mnuFile_2"));
        messages_ = answers.Texts();
    }
    void New() {
        support::Answers answers;
        answers.Then(NameUnit);
        Choose(QStringLiteral("mnuFile_1"));
        messages_ = answers.Texts();
    }

    QStringList messages_;
};

TEST_F(Files, Cancel_NewOrOpen_ChangesNothing) {
    Run();
    NewTrace();
    support::Answers answers;
    answers.Then(Cancel);
    answers.Then(Cancel);
    Click(QStringLiteral("cmdNew"));
    Click(QStringLiteral("cmdOpen"));
    EXPECT_TRUE(StartScreenShows());
    EXPECT_EQ(frame_->windowTitle(), QStringLiteral("TARN Prep"));
    EXPECT_FALSE(PrepDatafile::IsDatafileOpen());
    const QStringList trace = NewTrace();
    EXPECT_TRUE(trace.contains(QStringLiteral("   frm0Start.cmdNew_Click")));
    EXPECT_TRUE(trace.contains(QStringLiteral("   frm0Start.cmdOpen_Click")));
    EXPECT_TRUE(trace.filter(QStringLiteral("Warning!")).isEmpty());
    EXPECT_TRUE(trace.filter(QStringLiteral("Start ")).isEmpty());
}

TEST_F(Files, Cancel_OpenWhileAFileIsOpen_KeepsItsWorksheet) {
    RunWithFile();
    ClickTab(4);
    support::Answers answers;
    answers.Then(Cancel);
    Choose(QStringLiteral("mnuFile_2"));
    EXPECT_EQ(ShownForm(), QStringLiteral("frm4FMZs"));
    EXPECT_TRUE(PrepDatafile::IsDatafileOpen());
}

TEST_F(Files, New_UnitChosen_ShowsNewInBracketsAndTheUnit) {
    Run();
    New();
    EXPECT_EQ(Text(messages_), Text(QStringList()));
    EXPECT_TRUE(frame_->windowTitle().startsWith(QStringLiteral("TARN Prep:  [New]  Gifford")));
    EXPECT_EQ(ShownForm(), QStringLiteral("frm1Intro"));
    EXPECT_TRUE(MenuEnabled(2));
    EXPECT_TRUE(PrepDatafile::CurrentFileName().startsWith(QStringLiteral("GPFWA")));
}

TEST_F(Files, Open_SecondFile_UnloadsTheWorksheetJustBeforeClosing) {
    RunWithFile();
    ClickTab(4);
    const QString second = NewFile(QStringLiteral("Second.fcd"));
    NewTrace();
    Open(second);
    EXPECT_EQ(Text(messages_), Text(QStringList()));
    EXPECT_EQ(PrepDatafile::CurrentFileName(), QStringLiteral("Second.fcd"));
    EXPECT_EQ(ShownForm(), QStringLiteral("frm1Intro"));
    EXPECT_EQ(Tab().CurrTab(), 1);
    const QStringList trace = NewTrace();
    const auto at = [&trace](const char* entry) { return trace.indexOf(QLatin1String(entry)); };
    EXPECT_EQ(at(" Start mnuFile_Click 2"), 0);
    EXPECT_GT(at("   a3PrepForms.UpdateCurrentWorksheet FMZ"), 0);
    EXPECT_GT(at("   PrepDatafile.QueryOpenDatafile"),
              at("   a3PrepForms.UpdateCurrentWorksheet FMZ"));
    EXPECT_GT(at("   Unloaded frm4FMZs"), at("   PrepDatafile.QueryOpenDatafile"));
    EXPECT_GT(at("   PrepDatafile.CloseDatafile"), at("   Unloaded frm4FMZs"));
    EXPECT_GT(trace.indexOf(QStringLiteral("   PrepDatafile.OpenDatatables ") + second),
              at("   PrepDatafile.CloseDatafile"));
}

TEST_F(Files, Open_NotADataFile_GoesBackToTheStartScreen) {
    RunWithFile();
    ClickTab(3);
    const QString text = folder_.CostsPath(QStringLiteral("text.fcd"));
    support::WriteBytes(text, "no database");
    NewTrace();
    Open(text);
    EXPECT_EQ(messages_.value(0), QStringLiteral("The file does not appear to be a TARN Prep file. "
                                                 " It cannot be opened."));
    EXPECT_TRUE(StartScreenShows());
    EXPECT_EQ(frame_->windowTitle(), QStringLiteral("TARN Prep"));
    EXPECT_EQ(Find(QStringLiteral("frmTabs")), nullptr);
    EXPECT_EQ(ShownForm(), QString());
    EXPECT_FALSE(MenuEnabled(2));
    EXPECT_FALSE(MenuEnabled(3));
    EXPECT_FALSE(PrepDatafile::IsDatafileOpen());
    EXPECT_TRUE(NewTrace().contains(QStringLiteral("   FCD_Restart")));
    Open(NewFile(QStringLiteral("Next.fcd")));
    EXPECT_EQ(ShownForm(), QStringLiteral("frm1Intro"));
}

TEST_F(Files, Open_TablesMissing_IsReportedAndGoesBackToTheStartScreen) {
    RunWithFile();
    const QString path = folder_.CostsPath(QStringLiteral("part.fcd"));
    MakeFileWithoutTables(path);
    Open(path);
    EXPECT_EQ(messages_.value(0), QStringLiteral("The file does not appear to be a TARN Prep file. "
                                                 " It cannot be opened."));
    EXPECT_TRUE(StartScreenShows());
    EXPECT_FALSE(PrepDatafile::IsDatafileOpen());
    EXPECT_FALSE(MenuEnabled(2));
    EXPECT_EQ(Find(QStringLiteral("frmTabs")), nullptr);
}

TEST_F(Files, New_TemplateWithoutTables_OnlyLetsGoOfTheWorksheet) {
    RunWithFile();
    ASSERT_TRUE(QFile::remove(folder_.Path(QStringLiteral("FCD.new"))));
    MakeFileWithoutTables(folder_.Path(QStringLiteral("FCD.new")));
    New();
    EXPECT_FALSE(messages_.isEmpty());
    EXPECT_FALSE(PrepDatafile::IsDatafileOpen());
    EXPECT_EQ(ShownForm(), QString());
    EXPECT_TRUE(MenuEnabled(2));
    EXPECT_NE(Find(QStringLiteral("frmTabs")), nullptr);
}

TEST_F(Files, CommandLine_TablesMissing_StaysAtTheStartScreen) {
    const QString path = folder_.CostsPath(QStringLiteral("part.fcd"));
    MakeFileWithoutTables(path);
    support::Answers answers;
    Run(path);
    EXPECT_FALSE(answers.Texts().isEmpty());
    EXPECT_TRUE(StartScreenShows());
    EXPECT_EQ(frame_->windowTitle(), QStringLiteral("TARN Prep"));
}

TEST_F(Files, Open_TheFileThatIsOpen_OpensItAgain) {
    const QString path = NewFile();
    Run(path);
    ClickTab(2);
    Open(path);
    EXPECT_EQ(messages_, QStringList());
    EXPECT_TRUE(PrepDatafile::IsDatafileOpen());
    EXPECT_EQ(ShownForm(), QStringLiteral("frm1Intro"));
}

TEST_F(Files, New_TemplateMissing_OnlyLetsGoOfTheWorksheet) {
    RunWithFile();
    ClickTab(4);
    const QString title = frame_->windowTitle();
    ASSERT_TRUE(QFile::remove(folder_.Path(QStringLiteral("FCD.new"))));
    NewTrace();
    New();
    EXPECT_EQ(Text(messages_),
              Text(QStringList("Unable to create new TARN Prep file.\r\nSource file FCD.new "
                               "is missing.")));
    EXPECT_FALSE(PrepDatafile::IsDatafileOpen());
    EXPECT_EQ(ShownForm(), QString());
    EXPECT_NE(Find(QStringLiteral("frmTabs")), nullptr);
    EXPECT_FALSE(StartScreenShows());
    EXPECT_TRUE(MenuEnabled(2));
    EXPECT_TRUE(MenuEnabled(3));
    EXPECT_EQ(frame_->windowTitle(), title);
    EXPECT_FALSE(NewTrace().contains(QStringLiteral("   FCD_Restart")));
}

TEST_F(Files, New_Failed_EveryTabAndMenuItemStillAnswers) {
    RunWithFile();
    const QString next = NewFile(QStringLiteral("Next.fcd"));
    ASSERT_TRUE(QFile::remove(folder_.Path(QStringLiteral("FCD.new"))));
    New();
    support::Answers answers;
    for (int round = 0; round < 2; ++round) {
        for (const int index : {2, 3, 4, 5, 6, 1}) {
            ClickTab(index);
            Choose(QStringLiteral("mnuStep_%1").arg(index));
            Choose(QStringLiteral("mnuEdit_%1").arg(2 + index % 3));
        }
    }
    EXPECT_FALSE(answers.Texts().isEmpty());
    EXPECT_EQ(ShownForm(), QStringLiteral("frm1Intro"));
    Open(next);
    EXPECT_TRUE(PrepDatafile::IsDatafileOpen());
    EXPECT_EQ(ShownForm(), QStringLiteral("frm1Intro"));
}

TEST_F(Files, HiddenButtons_SpaceAfterNew_DoNotFire) {
    Run();
    support::Answers answers;
    answers.Then(NameUnit);
    Get(QStringLiteral("cmdNew")).setFocus();
    Press(Qt::Key_Space);
    ASSERT_TRUE(PrepDatafile::IsDatafileOpen());
    NewTrace();
    Press(Qt::Key_Space);
    EXPECT_EQ(Text(NewTrace()), Text(QStringList()));
}

// Its title needs the unit's name, which cannot be added to it.
TEST_F(Files, Open_FileThatCannotBeShown_IsClosedAndTheStartScreenIsBack) {
    RunWithFile();
    ClickTab(4);
    const QString full = folder_.CostsPath(QStringLiteral("full.fcd"));
    MakeFileWithFullProperties(full);
    Open(full);
    EXPECT_EQ(messages_.size(), 1) << Text(messages_);
    EXPECT_TRUE(NoFileState());
    const QString next = NewFile(QStringLiteral("Next.fcd"));
    Open(next);
    EXPECT_EQ(ShownForm(), QStringLiteral("frm1Intro"));
}

TEST_F(Files, New_UnitNameCannotBeStored_LeavesTheStartScreen) {
    RunWithFile();
    ClickTab(4);
    ASSERT_TRUE(QFile::remove(folder_.Path(QStringLiteral("FCD.new"))));
    MakeFileWithFullProperties(folder_.Path(QStringLiteral("FCD.new")));
    New();
    EXPECT_EQ(messages_.size(), 1) << Text(messages_);
    EXPECT_TRUE(NoFileState());
}

TEST_F(Files, New_Failed_TheCurrentTabAnswersToo) {
    RunWithFile();
    ClickTab(4);
    ASSERT_TRUE(QFile::remove(folder_.Path(QStringLiteral("FCD.new"))));
    New();
    ASSERT_EQ(ShownForm(), QString());
    ASSERT_EQ(Tab().CurrTab(), 4);
    {
        const support::Answers answers;
        ClickTab(4);
        ASSERT_EQ(answers.Texts().size(), 1);
        EXPECT_TRUE(answers.Texts().front().startsWith(QStringLiteral("No data file is open.")));
    }
    {
        const support::Answers answers;
        Tab().setFocus();
        QTest::keyClick(&Tab(), Qt::Key_Space);
        EXPECT_EQ(answers.Texts().size(), 1);
    }
    ClickTab(1);
    EXPECT_EQ(ShownForm(), QStringLiteral("frm1Intro"));
    NewTrace();
    ClickTab(1);
    EXPECT_EQ(Text(NewTrace()), "") << "a worksheet that shows is not set up anew";
}

}  // namespace
