// New, open, conversion, refusal and close.
#include <gtest/gtest.h>

#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include <filesystem>
#include <memory>

#include "data_file_fixture.h"
#include "datafile/PrepProperties.h"
#include "datafile/frmFCDName.h"
#include "platform/system/NativePath.h"
#include "support/Answers.h"
#include "support/Corpus.h"
#include "support/system.h"

using PrepDatatables::tblFMZList;
using PrepDatatables::tblManagementGoals;
using PrepDatatables::tblNVCPerAcre;
using PrepDatatables::tblNVCResources;
using PrepDatatables::tblProperties;

namespace {

const QString kNotPrepFile =
    QStringLiteral("The file does not appear to be a TARN Prep file.  It cannot be opened.");
const QString kIncompatible = QStringLiteral(
    "This file uses an incompatible format and cannot be opened using TARN Prep 03.");

class LifeTest : public DataFileTest {
protected:
    QString CopyOfMade(const QString& name) {
        const QString path = folder_.CostsPath(PrepDatafile::FileTitleFromPath(name));
        support::Copy(support::MadeFile(name), path);
        return path;
    }
    void ExpectRefused(const QString& path, const QString& text) {
        SCOPED_TRACE(path.toStdString());
        const QByteArray before = support::Bytes(path);
        const support::Answers answers;
        EXPECT_FALSE(PrepDatafile::OpenDatatables(path) && PrepDatatables::OpenRecordsets());
        ASSERT_FALSE(answers.Messages().empty());
        EXPECT_EQ(answers.Messages().front().text, text);
        EXPECT_EQ(answers.Messages().front().buttons, QMessageBox::Ok);
        EXPECT_FALSE(PrepDatafile::IsDatafileOpen());
        EXPECT_FALSE(PrepDatatables::dbDatafile);
        EXPECT_FALSE(tblProperties);
        EXPECT_EQ(support::Bytes(path), before);
        EXPECT_FALSE(QFile::exists(folder_.Path(QStringLiteral("ERROR.LOG"))))
            << "nothing is wrong with the machine";
        EXPECT_EQ(QDir(QFileInfo(path).path()).entryList({QStringLiteral("*-log")}), QStringList());
    }
    // Plays the naming dialog: the unit's identifier is typed, then OK is pressed.
    static void NameUnit(QWidget& dialog, const QString& id) {
        QTest::keyClicks(dialog.findChild<QLineEdit*>(QStringLiteral("txtUnitID")), id);
        QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("cmdOK")), Qt::LeftButton);
    }
    static void Choose(QWidget& dialog, const QString& path) {
        auto* files = qobject_cast<QFileDialog*>(&dialog);
        ASSERT_NE(files, nullptr);
        files->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(path);
        QMetaObject::invokeMethod(files, "accept");
    }
};

TEST_F(LifeTest, FileTitleFromPath_AnyPath_IsWhatFollowsTheLastSeparator) {
    EXPECT_EQ(PrepDatafile::FileTitleFromPath(QString()), QString());
    EXPECT_EQ(PrepDatafile::FileTitleFromPath(QStringLiteral("A.FCD")), QStringLiteral("A.FCD"));
    EXPECT_EQ(PrepDatafile::FileTitleFromPath(QStringLiteral("C:\\Costs\\A.FCD")),
              QStringLiteral("A.FCD"));
    EXPECT_EQ(PrepDatafile::FileTitleFromPath(QStringLiteral("/x/y z/A.FCD")),
              QStringLiteral("A.FCD"));
    EXPECT_EQ(PrepDatafile::FileTitleFromPath(QStringLiteral("Costs\\")), QString());
}

TEST_F(LifeTest, OpenDatatables_TheTemplate_HasSevenTablesAndFourteenNames) {
    OpenNewFile();
    EXPECT_TRUE(PrepDatafile::IsDatafileOpen());
    EXPECT_EQ(PrepDatafile::CurrentFileName(), QStringLiteral("GPFWA26.FCD"));
    EXPECT_EQ(PrepDatafile::CurrentPath(), folder_.CostsPath(QStringLiteral("GPFWA26.FCD")));
    EXPECT_EQ(PrepProperties::GetProperty(QStringLiteral("DataFormatID")),
              QStringLiteral("4.01.01"));
    EXPECT_EQ(tblNVCResources->RecordCount(), 14);
    tblNVCResources->Seek("=", {14});
    EXPECT_EQ(tblNVCResources->Text(QStringLiteral("ResourceName")),
              QStringLiteral("Improvements"));
    EXPECT_EQ(tblFMZList->RecordCount(), 0);
    EXPECT_EQ(tblManagementGoals->RecordCount(), 0);
}

TEST_F(LifeTest, OpenAndClose_WithoutAChange_LeavesTheFileByteForByte) {
    const QString path = NewFile();
    const QByteArray before = support::Bytes(path);
    OpenFile(path);
    PrepDatafile::CloseDatafile();
    EXPECT_EQ(support::Bytes(path), before);
}

TEST_F(LifeTest, OpenAndClose_Trace_ReadsToTheLetter) {
    const QString path = NewFile();
    OpenFile(path);
    PrepDatafile::CloseDatafile();
    EXPECT_EQ(folder_.Trace(),
              QStringList({QStringLiteral("   PrepDatafile.OpenDatatables ") + path,
                           QStringLiteral("   PrepDatafile.FileTitleFromPath"),
                           QStringLiteral("   OpenRecordsets"),
                           QStringLiteral("   PrepDatafile.CloseDatafile")}));
}

TEST_F(LifeTest, TablesOfNoFile_AreAnErrorNotACrash) {
    EXPECT_THROW((void)tblFMZList->RecordCount(), platform::RuntimeError);
    EXPECT_THROW(PrepProperties::SetProperty(QStringLiteral("a"), QStringLiteral("b")),
                 platform::RuntimeError);
    EXPECT_THROW(PrepDatatables::OpenRecordsets(), platform::RuntimeError);
    PrepDatafile::MakeDurable();
}

TEST_F(LifeTest, OpenDatatables_NoDatabase_IsRefusedUntouched) {
    const QString text = folder_.CostsPath(QStringLiteral("notes.fcd"));
    support::WriteBytes(text, "just some notes\r\n");
    ExpectRefused(text, kNotPrepFile);
    const QString empty = folder_.CostsPath(QStringLiteral("empty.fcd"));
    support::WriteBytes(empty, {});
    ExpectRefused(empty, kNotPrepFile);
    const QString cut = folder_.CostsPath(QStringLiteral("cut.fcd"));
    support::WriteBytes(cut, support::Bytes(folder_.Path(QStringLiteral("FCD.new"))).left(10000));
    ExpectRefused(cut, kNotPrepFile);
    EXPECT_TRUE(folder_.Trace().contains(
        QStringLiteral("  Warning! PrepDatafile.OpenDatafile: Unsuccessful - unable to open")));
}

TEST_F(LifeTest, OpenDatatables_MissingFile_IsRefused) {
    const support::Answers answers;
    EXPECT_FALSE(PrepDatafile::OpenDatatables(QStringLiteral("\"/no such folder/in quotes.fcd\"")));
    EXPECT_EQ(answers.Texts(), QStringList(kNotPrepFile));
}

TEST_F(LifeTest, OpenDatatables_FileInUse_IsRefused) {
    const QString path = NewFile();
    const auto other = dao::Database::Open(path, dao::OpenMode::kExclusive);
    const support::Answers answers;
    EXPECT_FALSE(PrepDatafile::OpenDatatables(path));
    EXPECT_EQ(answers.Texts(), QStringList(kNotPrepFile));
    EXPECT_TRUE(answers.Messages().front().informative.contains(QStringLiteral("in use")));
    other->Close();
    EXPECT_TRUE(PrepDatafile::OpenDatatables(path));
}

TEST_F(LifeTest, OpenDatatables_FormatsOfOtherOrigin_AreTakenConvertedOrRefused) {
    if (!support::HasCorpus()) {
        GTEST_SKIP() << tarn_test::kNoCorpus;
    }
    ExpectRefused(CopyOfMade(QStringLiteral("data-5.02.00.fcd")), kIncompatible);
    ExpectRefused(CopyOfMade(QStringLiteral("data-noformat.fcd")), kIncompatible);
    for (const char* name : {"data-4.01.01.fcd", "data-empty.fcd"}) {
        const QString path = CopyOfMade(QString::fromLatin1(name));
        const QByteArray before = support::Bytes(path);
        OpenFile(path);
        PrepDatafile::CloseDatafile();
        EXPECT_EQ(support::Bytes(path), before) << name;
    }
    for (const char* name : {"data-4.00.00.fcd", "data-3.92.00.fcd", "data-3.00.00.fcd"}) {
        SCOPED_TRACE(name);
        const QString path = CopyOfMade(QString::fromLatin1(name));
        OpenFile(path);
        EXPECT_EQ(PrepProperties::GetProperty(QStringLiteral("DataFormatID")),
                  QStringLiteral("4.01.01"));
        PrepDatafile::CloseDatafile();
        EXPECT_EQ(support::Complaints(path, false), QString());
        const QByteArray converted = support::Bytes(path);
        OpenFile(path);
        PrepDatafile::CloseDatafile();
        EXPECT_EQ(support::Bytes(path), converted) << "opening it again changes nothing";
    }
}

TEST_F(LifeTest, OpenDatatables_EachPageSpoilt_IsOpenOrRefusedUntouched) {
    constexpr int kPage = 4096;
    const QString path = NewFile();
    const QByteArray whole = support::Bytes(path);
    int damaged = 0;
    for (qsizetype page = 1; page < whole.size() / kPage; ++page) {
        SCOPED_TRACE(page);
        QByteArray bytes = whole;
        bytes.replace(page * kPage + 16, 64, QByteArray(64, 'U'));
        support::WriteBytes(path, bytes);
        const support::Answers answers;
        const bool isOpen = PrepDatafile::OpenDatatables(path);
        EXPECT_EQ(PrepDatafile::IsDatafileOpen(), isOpen);
        if (isOpen) {
            PrepDatafile::CloseDatafile();
            continue;
        }
        EXPECT_EQ(support::Bytes(path), bytes);
        ASSERT_EQ(answers.Texts(), QStringList(kNotPrepFile));
        const QString reason = answers.Messages().front().informative;
        damaged += reason.startsWith(QStringLiteral("The file is damaged: ")) ? 1 : 0;
    }
    EXPECT_GT(damaged, 0);
}

TEST_F(LifeTest, OpenDatatables_DamagedFile_IsRefusedUntouchedAndSaysWhatToDo) {
    if (!support::HasCorpus()) {
        GTEST_SKIP() << tarn_test::kNoCorpus;
    }
    const QString path = CopyOfMade(QStringLiteral("damaged/memochain.fcd"));
    const QByteArray before = support::Bytes(path);
    const support::Answers answers;
    EXPECT_FALSE(PrepDatafile::OpenDatatables(path));
    ASSERT_EQ(answers.Texts(), QStringList(kNotPrepFile));
    const QString reason = answers.Messages().front().informative;
    EXPECT_TRUE(reason.startsWith(QStringLiteral("The file is damaged: ")));
    EXPECT_TRUE(reason.contains(QStringLiteral("jetdoctor FILE --repair NEWFILE")));
    EXPECT_FALSE(PrepDatafile::IsDatafileOpen());
    EXPECT_EQ(support::Bytes(path), before);
}

TEST_F(LifeTest, Convert3to4_AddsGoalsWithCounterTextMemoAndKey) {
    if (!support::HasCorpus()) {
        GTEST_SKIP() << tarn_test::kNoCorpus;
    }
    OpenFile(CopyOfMade(QStringLiteral("data-3.00.00.fcd")));
    tblManagementGoals->AddNew();
    tblManagementGoals->SetField(QStringLiteral("ManagementArea"), QString(100, u'x'));
    tblManagementGoals->SetField(QStringLiteral("Explanation"), QString(5000, u'y'));
    tblManagementGoals->Update();
    tblManagementGoals->Seek("=", {1});
    ASSERT_FALSE(tblManagementGoals->NoMatch());
    EXPECT_EQ(tblManagementGoals->Text(QStringLiteral("Explanation")).size(), 5000);
    tblManagementGoals->AddNew();
    EXPECT_THROW(tblManagementGoals->SetField(QStringLiteral("ManagementArea"), QString(101, u'x')),
                 platform::RuntimeError);
    tblManagementGoals->CancelUpdate();
}

// A database of that format that has none of a data file's tables but the first.
void MakePartialFile(const support::ProgramFolder& folder, const QString& path,
                     const QString& format) {
    support::Copy(folder.Path(QStringLiteral("fcdname.dat")), path);
    const auto units = dao::Database::Open(path, dao::OpenMode::kExclusive);
    const auto properties = units->OpenTable(QStringLiteral("Properties"));
    properties->AddNew();
    properties->SetField(QStringLiteral("Property"), QStringLiteral("DataFormatID"));
    properties->SetField(QStringLiteral("Value"), format);
    properties->Update();
    units->Close();
}

// A file that opening would have changed before it found a table missing.
TEST_F(LifeTest, OpenDatatables_OlderFileWithoutATable_IsRefusedUntouched) {
    const QString path = folder_.CostsPath(QStringLiteral("partial.fcd"));
    MakePartialFile(folder_, path, QStringLiteral("4.00.00"));
    ExpectRefused(path, kNotPrepFile);
}

TEST_F(LifeTest, OpenRecordsets_TableMissing_IsReportedAndCloses) {
    const QString path = folder_.CostsPath(QStringLiteral("partial.fcd"));
    MakePartialFile(folder_, path, QStringLiteral("4.01.01"));
    ExpectRefused(path, kNotPrepFile);
}

TEST_F(LifeTest, QueryNewDatafile_UnitChosen_MakesOpensAndNamesTheFile) {
    support::Answers answers;
    answers.Then([](QWidget& dialog) { NameUnit(dialog, QStringLiteral("gpf")); });
    ASSERT_EQ(PrepDatafile::QueryNewDatafile(), PrepDatafile::kOpened);
    const QString year = QDate::currentDate().toString(QStringLiteral("yy"));
    EXPECT_EQ(PrepDatafile::CurrentFileName(), QStringLiteral("GPFWA") + year + ".FCD");
    EXPECT_EQ(PrepProperties::GetProperty(QStringLiteral("UnitName")),
              QStringLiteral("Gifford Pinchot National Forest '") + year);
    EXPECT_TRUE(QFile::exists(folder_.CostsPath(PrepDatafile::CurrentFileName())));
    EXPECT_EQ(host_.releases, 0) << "no file was open before";
    PrepDatafile::CloseDatafile();
    EXPECT_EQ(support::Complaints(PrepDatafile::CurrentPath()), QString());
}

TEST_F(LifeTest, QueryNewDatafile_Cancelled_ChangesNothingAndWritesProcedureLinesOnly) {
    OpenNewFile();
    folder_.ForgetTrace();
    support::Answers answers;
    answers.Then([](QWidget& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    EXPECT_EQ(PrepDatafile::QueryNewDatafile(), PrepDatafile::kCancelled);
    EXPECT_TRUE(PrepDatafile::IsDatafileOpen());
    EXPECT_EQ(host_.releases, 0);
    for (const QString& line : folder_.Trace()) {
        EXPECT_FALSE(line.contains(QStringLiteral("Warning"))) << line.toStdString();
    }
}

TEST_F(LifeTest, QueryNewDatafile_TemplateMissing_IsReportedAfterTheFormerFileIsClosed) {
    OpenNewFile();
    QFile::remove(folder_.Path(QStringLiteral("FCD.new")));
    support::Answers answers({QMessageBox::Yes});
    answers.Then([](QWidget& dialog) { NameUnit(dialog, QStringLiteral("GPF")); });
    EXPECT_EQ(PrepDatafile::QueryNewDatafile(), PrepDatafile::kFailed);
    EXPECT_EQ(answers.Texts().last(),
              QStringLiteral("Unable to create new TARN Prep file.\r\nSource file FCD.new is "
                             "missing."));
    EXPECT_FALSE(PrepDatafile::IsDatafileOpen());
    EXPECT_EQ(host_.releases, 1);
    EXPECT_TRUE(host_.wasOpenAtRelease) << "the worksheet is let go before its file is closed";
    EXPECT_EQ(host_.restarts, 0);
}

TEST_F(LifeTest, QueryNewDatafile_TargetInUseElsewhere_IsRefusedAndTheOtherKeepsItsFile) {
    const QString year = QDate::currentDate().toString(QStringLiteral("yy"));
    const QString path = NewFile(QStringLiteral("GPFWA%1.FCD").arg(year));
    const auto other = dao::Database::Open(path, dao::OpenMode::kExclusive);
    support::Answers answers({QMessageBox::Yes});
    answers.Then([](QWidget& dialog) { NameUnit(dialog, QStringLiteral("GPF")); });
    EXPECT_EQ(PrepDatafile::QueryNewDatafile(), PrepDatafile::kFailed);
    EXPECT_EQ(answers.Texts().last(), QStringLiteral("Unable to create new TARN Prep file."));
    EXPECT_TRUE(answers.Messages().back().informative.contains(QStringLiteral("in use")));
    other->Close();
    EXPECT_EQ(support::Bytes(path), support::Bytes(folder_.Path(QStringLiteral("FCD.new"))));
}

TEST_F(LifeTest, QueryOpenDatafile_AFile_ClosesTheFormerOneAfterTheChoice) {
    OpenNewFile();
    const QString second = NewFile(QStringLiteral("UMFOR26.FCD"));
    support::Answers answers;
    answers.Then([this, second](QWidget& dialog) {
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Open TARN Prep file"));
        EXPECT_EQ(dialog.objectName(), QStringLiteral("CMDialog1"));
        const auto& files = dynamic_cast<QFileDialog&>(dialog);
        EXPECT_EQ(QDir::toNativeSeparators(files.directory().path()),
                  folder_.Path(QStringLiteral("Costs")));
        EXPECT_EQ(files.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->text(), QString());
        EXPECT_EQ(files.nameFilters(), QStringList({"TARN Prep files (*.fcd)", "All Files (*.*)"}));
        EXPECT_EQ(files.selectedNameFilter(), QStringLiteral("TARN Prep files (*.fcd)"));
        EXPECT_EQ(files.fileMode(), QFileDialog::ExistingFile);
        EXPECT_TRUE(PrepDatafile::IsDatafileOpen());
        Choose(dialog, second);
    });
    EXPECT_EQ(PrepDatafile::QueryOpenDatafile(), PrepDatafile::kOpened);
    EXPECT_EQ(PrepDatafile::CurrentFileName(), QStringLiteral("UMFOR26.FCD"));
    EXPECT_EQ(host_.releases, 1);
    EXPECT_TRUE(host_.wasOpenAtRelease);
}

TEST_F(LifeTest, QueryOpenDatafile_Refused_ReturnsToTheStartScreen) {
    OpenNewFile();
    const QString text = folder_.CostsPath(QStringLiteral("notes.fcd"));
    support::WriteBytes(text, "notes");
    support::Answers answers;
    answers.Then([text](QWidget& dialog) { Choose(dialog, text); });
    EXPECT_EQ(PrepDatafile::QueryOpenDatafile(), PrepDatafile::kFailed);
    EXPECT_EQ(host_.restarts, 1);
    EXPECT_FALSE(PrepDatafile::IsDatafileOpen()) << "a failure never returns to the former file";
}

TEST_F(LifeTest, QueryOpenDatafile_Cancelled_LeavesTheOpenFile) {
    OpenNewFile();
    support::Answers answers;
    answers.Then([](QWidget& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    EXPECT_EQ(PrepDatafile::QueryOpenDatafile(), PrepDatafile::kCancelled);
    EXPECT_TRUE(PrepDatafile::IsDatafileOpen());
    EXPECT_EQ(host_.releases, 0);
}

TEST_F(LifeTest, OpenDatatables_ConversionThatWasCutOff_IsFinished) {
    const QString path = NewFile();
    OpenFile(path);
    tblManagementGoals->AddNew();
    tblManagementGoals->SetField(QStringLiteral("ManagementArea"), QStringLiteral("Watershed"));
    tblManagementGoals->Update();
    PrepProperties::SetProperty(QStringLiteral("DataFormatID"), QStringLiteral("3.00.00"));
    PrepDatafile::CloseDatafile();
    OpenFile(path);
    EXPECT_EQ(PrepProperties::GetProperty(QStringLiteral("DataFormatID")),
              QStringLiteral("4.01.01"));
    EXPECT_EQ(tblManagementGoals->RecordCount(), 1);
}

TEST_F(LifeTest, OpenDatatables_AfterARunThatEndedEarly_BringsItsChangesInAndSaysSo) {
    if (!support::kOthersReachHeldFiles) {
        GTEST_SKIP() << "what is in a file that is held cannot be read there";
    }
    OpenNewFile();
    tblFMZList->AddNew();
    tblFMZList->SetField(QStringLiteral("Name"), QStringLiteral("North"));
    tblFMZList->Update();
    // What a process that ends here leaves: the file and its log.
    const QString left = folder_.CostsPath(QStringLiteral("LEFT26.FCD"));
    support::Copy(PrepDatafile::CurrentPath(), left);
    support::Copy(PrepDatafile::CurrentPath() + QStringLiteral("-log"),
                  left + QStringLiteral("-log"));
    const QString readElsewhere = folder_.CostsPath(QStringLiteral("READ26.FCD"));
    support::Copy(left, readElsewhere);
    support::Copy(left + QStringLiteral("-log"), readElsewhere + QStringLiteral("-log"));
    PrepDatafile::CloseDatafile();
    folder_.ForgetTrace();
    OpenFile(left);
    EXPECT_EQ(tblFMZList->RecordCount(), 1);
    EXPECT_EQ(folder_.Trace().filter(QStringLiteral("1 changes of an interrupted run")).size(), 1);
    // A reader recovers them as well.
    const auto reader = dao::Database::Open(readElsewhere, dao::OpenMode::kReading);
    EXPECT_EQ(reader->RecoveredOperations(), 1);
    EXPECT_EQ(reader->OpenTable(QStringLiteral("FMZList"))->RecordCount(), 1);
    reader->Close();
}

TEST_F(LifeTest, OpenDatatables_OfAZoneThatLacksRows_AddsNone) {
    if (!support::kOthersReachHeldFiles) {
        GTEST_SKIP() << "what is in a file that is held cannot be read there";
    }
    OpenNewFile();
    tblFMZList->AddNew();
    tblFMZList->SetField(QStringLiteral("Name"), QStringLiteral("North"));
    tblFMZList->SetField(QStringLiteral("RLCount"), 2);
    tblFMZList->Update();
    const QString left = folder_.CostsPath(QStringLiteral("LEFT26.FCD"));
    support::Copy(PrepDatafile::CurrentPath(), left);
    support::Copy(PrepDatafile::CurrentPath() + QStringLiteral("-log"),
                  left + QStringLiteral("-log"));
    PrepDatafile::CloseDatafile();
    OpenFile(left);
    EXPECT_EQ(tblFMZList->RecordCount(), 1);
    EXPECT_EQ(tblNVCPerAcre->RecordCount(), 0);
    EXPECT_EQ(PrepDatatables::tblSuppressionPerAcreCost->RecordCount(), 0);
}

TEST_F(LifeTest, QueryNewDatafile_OverAFileWithWaitingChanges_DoesNotGetThem) {
    const QString year = QDate::currentDate().toString(QStringLiteral("yy"));
    const QString path = NewFile(QStringLiteral("GPFWA%1.FCD").arg(year));
    OpenFile(path);
    tblFMZList->AddNew();
    tblFMZList->SetField(QStringLiteral("Name"), QStringLiteral("North"));
    tblFMZList->Update();
    const QString log = path + QStringLiteral("-log");
    const QString waiting = folder_.Path(QStringLiteral("waiting"));
    support::Copy(log, waiting);
    PrepDatafile::CloseDatafile();
    support::Copy(waiting, log);
    support::Answers answers({QMessageBox::Yes});
    answers.Then([](QWidget& dialog) { NameUnit(dialog, QStringLiteral("GPF")); });
    EXPECT_EQ(PrepDatafile::QueryNewDatafile(), PrepDatafile::kOpened);
    ASSERT_TRUE(PrepDatatables::OpenRecordsets());
    EXPECT_EQ(PrepDatafile::CurrentPath(), path);
    EXPECT_EQ(tblFMZList->RecordCount(), 0);
}

TEST_F(LifeTest, OpenDatatables_OlderCopyBesideALog_SaysThatTheLogIsKept) {
    if (!support::kOthersReachHeldFiles) {
        GTEST_SKIP() << "what is in a file that is held cannot be read there";
    }
    OpenNewFile();
    const QString left = folder_.CostsPath(QStringLiteral("LEFT26.FCD"));
    support::Copy(PrepDatafile::CurrentPath(), left);
    PrepProperties::SetProperty(QStringLiteral("UnitName"), QStringLiteral("North"));
    PrepDatafile::MakeDurable();
    PrepProperties::SetProperty(QStringLiteral("UnitName"), QStringLiteral("South"));
    support::Copy(PrepDatafile::CurrentPath() + QStringLiteral("-log"),
                  left + QStringLiteral("-log"));
    PrepDatafile::CloseDatafile();
    const support::Answers answers;
    OpenFile(left);
    ASSERT_EQ(answers.Texts().size(), 1);
    EXPECT_TRUE(answers.Texts().front().contains(QStringLiteral("\"LEFT26.FCD-log-old\"")));
    EXPECT_EQ(PrepProperties::GetProperty(QStringLiteral("UnitName")), QString());
}

TEST_F(LifeTest, QueryNewDatafile_TemplateThatIsNone_IsRefused) {
    QFile::remove(folder_.Path(QStringLiteral("FCD.new")));
    support::WriteBytes(folder_.Path(QStringLiteral("FCD.new")), "no database");
    support::Answers answers;
    answers.Then([](QWidget& dialog) { NameUnit(dialog, QStringLiteral("gpf")); });
    EXPECT_EQ(PrepDatafile::QueryNewDatafile(), PrepDatafile::kFailed);
    EXPECT_EQ(answers.Texts(), QStringList{kNotPrepFile});
    EXPECT_FALSE(PrepDatafile::IsDatafileOpen());
}

TEST_F(LifeTest, WithoutAShell_FilesAreOpenedAndRefusedAllTheSame) {
    OpenNewFile();
    PrepDatafile::SetHost(nullptr);
    const QString text = folder_.CostsPath(QStringLiteral("notes.fcd"));
    support::WriteBytes(text, "notes");
    support::Answers answers;
    answers.Then([text](QWidget& dialog) { Choose(dialog, text); });
    EXPECT_EQ(PrepDatafile::QueryOpenDatafile(), PrepDatafile::kFailed);
    EXPECT_FALSE(PrepDatafile::IsDatafileOpen());
    EXPECT_EQ(host_.restarts + host_.releases, 0);
}

TEST_F(LifeTest, FileThatWasDeletedOrMoved_IsNewsThatIsReportedOnceAndNoError) {
    if (!support::kOthersReachHeldFiles) {
        GTEST_SKIP() << "nobody can remove a file that is held there";
    }
    OpenNewFile();
    const QString path = PrepDatafile::CurrentPath();
    PrepProperties::SetProperty(QStringLiteral("UnitName"), QStringLiteral("One"));
    PrepDatafile::MakeDurable();
    EXPECT_FALSE(PrepDatafile::HasNews());
    ASSERT_TRUE(QFile::remove(path));
    PrepProperties::SetProperty(QStringLiteral("UnitName"), QStringLiteral("Two"));
    EXPECT_NO_THROW(PrepDatafile::MakeDurable());
    EXPECT_TRUE(PrepDatafile::HasNews());
    const support::Answers answers;
    PrepDatafile::ShowNews();
    EXPECT_FALSE(PrepDatafile::HasNews());
    PrepDatafile::ShowNews();
    ASSERT_EQ(answers.Texts().size(), 1);
    EXPECT_TRUE(answers.Texts().last().contains(QStringLiteral("has been written anew")));
    ASSERT_TRUE(QFile::rename(path, path + QStringLiteral(".moved")));
    PrepProperties::SetProperty(QStringLiteral("UnitName"), QStringLiteral("Three"));
    EXPECT_NO_THROW(PrepDatafile::MakeDurable());
    PrepDatafile::ShowNews();
    PrepDatafile::ShowNews();
    ASSERT_EQ(answers.Texts().size(), 2);
    EXPECT_TRUE(answers.Texts().last().contains(QStringLiteral("moved or renamed")));
    EXPECT_EQ(folder_.Trace().filter(QStringLiteral("Warning! PrepDatafile.ShowNews")).size(), 2);
    EXPECT_FALSE(folder_.Trace().join(u'\n').contains(QStringLiteral("ERROR")));
}

TEST_F(LifeTest, MakeDurable_OnceTheTablesAreClosed_DoesNothing) {
    OpenNewFile();
    PrepDatatables::CloseDatafile();
    PrepDatafile::MakeDurable();
    EXPECT_FALSE(PrepDatatables::dbDatafile);
}

// Its reason stands in the box that says that it cannot be opened; there is no second one.
TEST_F(LifeTest, OpenDatatables_ReadOnlyFile_IsRefusedInOneBox) {
    const QString path = NewFile();
    QFile::setPermissions(path, QFile::ReadOwner);
    if (QFile(path).open(QIODevice::ReadWrite)) {
        GTEST_SKIP() << "This user may write into every file.";
    }
    const support::Answers answers;
    EXPECT_FALSE(PrepDatafile::OpenDatatables(path));
    EXPECT_EQ(answers.Texts(), QStringList(kNotPrepFile));
    EXPECT_FALSE(answers.Messages().front().informative.isEmpty());
}

TEST_F(LifeTest, QueryNewDatafile_YesToAFileOfOtherCase_ReplacesThatFile) {
    const QString year = QDate::currentDate().toString(QStringLiteral("yy"));
    const QString found = QStringLiteral("gpfwa%1.fcd").arg(year);
    OpenFile(NewFile(found));
    PrepProperties::SetProperty(QStringLiteral("SRDataSource"), QStringLiteral("former"));
    PrepDatafile::CloseDatafile();
    support::Answers answers({QMessageBox::Yes});
    answers.Then([](QWidget& dialog) { NameUnit(dialog, QStringLiteral("GPF")); });
    ASSERT_EQ(PrepDatafile::QueryNewDatafile(), PrepDatafile::kOpened);
    EXPECT_EQ(answers.Messages().front().title, QStringLiteral("Replace file?"));
    EXPECT_EQ(PrepDatafile::CurrentPath(), folder_.CostsPath(found));
    EXPECT_EQ(PrepProperties::GetProperty(QStringLiteral("SRDataSource")), QString());
    PrepDatafile::CloseDatafile();
    EXPECT_EQ(QDir(folder_.Path(QStringLiteral("Costs"))).entryList(QDir::Files),
              QStringList(found))
        << "there is no second file beside it";
}

TEST_F(LifeTest, OpenDatatables_NameThatIsNoUtf8_IsOpenedAndShown) {
    const QString path =
        platform::FromNativePath(platform::ToNativePath(folder_.CostsPath("Monta")) +=
                                 "\xF1"
                                 "a.fcd");
    std::filesystem::copy_file(platform::ToNativePath(folder_.Path(QStringLiteral("FCD.new"))),
                               platform::ToNativePath(path));
    OpenFile(path);
    PrepProperties::SetProperty(QStringLiteral("UnitName"), QStringLiteral("North"));
    EXPECT_EQ(PrepDatafile::CurrentFileName(), QStringLiteral("Montaña.fcd"));
    PrepDatafile::CloseDatafile();
    OpenFile(path);
    EXPECT_EQ(PrepProperties::GetProperty(QStringLiteral("UnitName")), QStringLiteral("North"));
}

TEST_F(LifeTest, Begin_WithoutAFile_IsRefused) {
    try {
        (void)PrepDatatables::Begin();
        FAIL() << "there is no file";
    } catch (const platform::RuntimeError& error) {
        EXPECT_EQ(error.Number(), platform::kObjectNotSet);
    }
}

TEST_F(LifeTest, MakeDurable_InsideATransaction_WaitsForItsEnd) {
    OpenNewFile();
    {
        dao::Transaction action = PrepDatatables::Begin();
        PrepProperties::SetProperty(QStringLiteral("UnitName"), QStringLiteral("North"));
        PrepDatafile::MakeDurable();
        EXPECT_TRUE(PrepDatatables::dbDatafile->InTransaction());
    }
    EXPECT_EQ(PrepProperties::GetProperty(QStringLiteral("UnitName")), QString());
    dao::Transaction action = PrepDatatables::Begin();
    PrepProperties::SetProperty(QStringLiteral("UnitName"), QStringLiteral("South"));
    action.Commit();
    PrepDatafile::MakeDurable();
    EXPECT_EQ(PrepDatatables::dbDatafile->PendingOperations(), 0U);
    EXPECT_EQ(PrepProperties::GetProperty(QStringLiteral("UnitName")), QStringLiteral("South"));
}

}  // namespace
