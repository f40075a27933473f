// The disk fails under the running program: it fills up, becomes read-only, goes away or loses
// single calls. The user reads it in plain words, what was typed stays on the screen, the file
// stays whole, and the same thing works when the cause is gone.
//
// The program's own calls of the operating system fail (tests/faults), each in turn: the n-th
// write, flush, resizing, opening, renaming or removal of a file that belongs to the data file, for
// n from 1 until an action passes untouched. TARN_CUTS sets how many n are tried for each action,
// spread evenly; 0 tries all.
#ifdef TARN_HAS_FAULTS

#include <QComboBox>

#include <algorithm>
#include <array>
#include <cerrno>
#include <iostream>
#include <span>
#include <vector>

#include "RunningProgram.h"
#include "datafile/PrepDatatables.h"
#include "faults/faults.h"
#include "jet/check.h"
#include "jet/error.h"
#include "jet/file.h"
#include "platform/controls/vsFlexGrid.h"
#include "platform/dao/Database.h"
#include "platform/dao/Recordset.h"
#include "worksheets/resources/ResourceRecords.h"

using worksheets::Resource;

namespace {

using tarn_faults::Mode;

struct Failure {
    const char* name;
    Mode mode;
    std::int32_t calls;
    int error;
};

constexpr Failure kFailures[] = {
    {"FullDisk", Mode::kForGood, tarn_faults::kAllChanges, ENOSPC},
    {"FullDiskAfterHalf", Mode::kShort, tarn_faults::kWrite | tarn_faults::kResize, ENOSPC},
    {"OneCallLost", Mode::kOnce, tarn_faults::kAllChanges, EIO},
    {"FlushFails", Mode::kOnce, tarn_faults::kFlush, EIO},
    {"ReadOnly", Mode::kForGood, tarn_faults::kAllChanges, EROFS},
    {"MediumGone", Mode::kForGood,
     tarn_faults::kAllChanges | tarn_faults::kOpenAny | tarn_faults::kRead, EIO},
};

void SwitchOff() {
    TarnFaults()->mode = Mode::kOff;
}

// Calls on files whose path contains the pattern fail, from the n-th on.
void SwitchOn(const char* pattern, const Failure& failure, int nth = 1) {
    SwitchOff();
    tarn_faults::Switchboard& board = *TarnFaults();
    qstrncpy(board.pattern, pattern, sizeof board.pattern);
    board.calls = failure.calls;
    board.error = failure.error;
    board.nth = nth;
    board.seen = 0;
    board.happened = 0;
    board.mode = failure.mode;
}

int Cuts() {
    bool set = false;
    const int cuts = qEnvironmentVariableIntValue("TARN_CUTS", &set);
    return set ? cuts : 8;
}

class FailingDisk : public RunningProgram, public testing::WithParamInterface<Failure> {
protected:
    ~FailingDisk() override { SwitchOff(); }

    static void SwitchOn(int nth, Mode mode) {
        Failure failure = GetParam();
        failure.mode = mode;
        ::SwitchOn(".fcd", failure, nth);
    }

    // A data file with a zone or two of the sample assessment, open in the program.
    void OpenFile(bool withZones) {
        const QString name = QStringLiteral("Unit %1.fcd").arg(++files_);
        path_ = NewFile(name);
        if (!frame_) {
            Run(path_);
        } else {
            Do([this] {
                answers_->Then([this](QWidget& dialog) { ChooseFile(dialog, path_); });
                Choose(QStringLiteral("mnuFile_2"));
            });
            EXPECT_EQ(Text(said_), "");
        }
        ClickTab(4);
        if (withZones) {
            Do([this] { Import(); });
            EXPECT_EQ(Text(said_), "");
        }
    }

    // What the user does, and what the program says to it.
    void Do(const std::function<void()>& action) {
        answers_ = std::make_unique<support::Answers>();
        action();
        QCoreApplication::processEvents();
        said_ = answers_->Texts();
        answers_.reset();
    }
    void Import() {
        const QString source = folder_.CostsPath(QStringLiteral("source.mdb"));
        if (!QFile::exists(source)) {
            support::Copy(support::BuiltFolder() + QStringLiteral("/Costs/BRAM0000.mdb"), source);
        }
        answers_->Then([source](QWidget& dialog) { ChooseFile(dialog, source); });
        Click(QStringLiteral("cmdImport"));
    }

    // Lets each of the action's calls fail in turn. `prepare` comes before each attempt, `kept`
    // must hold while the action has not succeeded, `done` when it has.
    struct Action {
        std::function<void()> prepare;
        std::function<void()> act;
        std::function<void()> kept;
        std::function<void()> done;
    };
    void FailEachCall(const Action& action) {
        action.prepare();
        SwitchOn(0, Mode::kCount);
        Do(action.act);
        SwitchOff();
        EXPECT_EQ(Text(said_), "");
        const int calls = TarnFaults()->seen;
        EXPECT_GT(calls, 0);
        const int step = Cuts() == 0 ? 1 : std::max(1, calls / Cuts());
        int tried = 0;
        for (int nth = 1; nth <= calls; nth += step, ++tried) {
            SCOPED_TRACE("call " + std::to_string(nth) + " of " + std::to_string(calls));
            FailCall(nth, action);
            if (HasFailure()) {
                return;
            }
        }
        RecordProperty("cuts", tried);
        std::cout << tried << " of " << calls << " calls failed in turn\n";
    }

    void FailCall(int nth, const Action& action) {
        action.prepare();
        SwitchOn(nth, GetParam().mode);
        Do(action.act);
        const bool failed = !said_.isEmpty();
        SwitchOff();
        if (TarnFaults()->happened == 0) {
            // Not every run needs the same number of reads; this one was over before.
            EXPECT_EQ(Text(said_), "");
            return;
        }
        EXPECT_FALSE(ShownForm().isEmpty());
        for (const QString& text : said_) {
            EXPECT_FALSE(text.contains(QStringLiteral("nternal"))) << text.toStdString();
        }
        EXPECT_EQ(failed, NewTrace().contains(QStringLiteral("* * * ERROR * * *"))) << Text(said_);
        EXPECT_EQ(Text(PrepDatatables::dbDatafile->Damage()), "");
        if (failed) {
            action.kept();
            Do(action.act);
            EXPECT_EQ(Text(said_), "");
        }
        action.done();
        ExpectWhole();
    }

    // The open database, and the file as somebody would copy it while nothing waits to be written.
    void ExpectWhole() {
        EXPECT_EQ(Text(PrepDatatables::dbDatafile->Damage()), "");
        const QString copy = folder_.Path(QStringLiteral("copy.mdb"));
        QFile::remove(copy);
        support::Copy(path_, copy);
        const jet::CheckReport report = jet::CheckFile(copy.toStdString());
        EXPECT_TRUE(report.IsSound()) << report.Text();
    }

    static int Rows(const char* table) {
        return PrepDatatables::dbDatafile->OpenTable(QString::fromLatin1(table))->RecordCount();
    }
    static bool HasZone(const QString& name) {
        const auto zones = PrepDatatables::dbDatafile->OpenTable(QStringLiteral("FMZList"));
        for (; !zones->EndOfFile(); zones->MoveNext()) {
            if (zones->Text(QStringLiteral("Name")) == name) {
                return true;
            }
        }
        return false;
    }

    vsFlexGrid& Grid(const char* name) const { return Get<vsFlexGrid>(QLatin1String(name)); }
    // Types into a cell as the keyboard would.
    void Type(const char* grid, int row, int column, const QString& text) {
        vsFlexGrid& cells = Grid(grid);
        cells.setFocus();
        cells.SetRow(row);
        cells.SetCol(column);
        QTest::keyClicks(&cells, text);
        Press(Qt::Key_Return);
    }

    QString path_;
    QStringList said_;
    std::unique_ptr<support::Answers> answers_;
    int files_ = 0;
};

INSTANTIATE_TEST_SUITE_P(Kinds, FailingDisk, testing::ValuesIn(kFailures),
                         [](const auto& kind) { return std::string(kind.param.name); });

TEST_P(FailingDisk, Import_AnyCallFailing_FileIsWholeAndTheNextImportPasses) {
    int before = 0;
    FailEachCall({.prepare =
                      [&] {
                          OpenFile(false);
                          before = 0;
                      },
                  .act = [this] { Import(); },
                  .kept = [&] { before = Rows("FMZList"); },
                  .done =
                      [&] {
                          EXPECT_EQ(Rows("FMZList"), before + 3);
                          EXPECT_EQ(Grid("grdFMZs").Rows(), 1 + before + 3);
                      }});
}

TEST_P(FailingDisk, LeaveZones_AnyCallFailing_KeepsWhatWasTyped) {
    FailEachCall({.prepare =
                      [this] {
                          OpenFile(true);
                          Type("grdFMZs", 1, 0, QStringLiteral("Typed"));
                      },
                  .act = [this] { ClickTab(ShownForm() == QStringLiteral("frm4FMZs") ? 5 : 4); },
                  .kept =
                      [this] {
                          if (ShownForm() == QStringLiteral("frm4FMZs")) {
                              EXPECT_EQ(Grid("grdFMZs").TextMatrix(1, 0), QStringLiteral("Typed"));
                          }
                      },
                  .done = [] { EXPECT_TRUE(HasZone(QStringLiteral("Typed"))); }});
}

TEST_P(FailingDisk, AddZone_AnyCallFailing_AddsItWholeOrNotAtAll) {
    int rows = 0;
    int costs = 0;
    int values = 0;
    FailEachCall({.prepare =
                      [&] {
                          OpenFile(true);
                          rows = Rows("FMZList");
                          costs = Rows("SuppressionPerAcreCost");
                          values = Rows("NVCPerAcre");
                      },
                  .act =
                      [&] {
                          if (Grid("grdFMZs").Rows() == 1 + rows) {
                              Click(QStringLiteral("cmdAdd"));
                          }
                      },
                  .kept =
                      [&] {
                          ClickTab(1);
                          ClickTab(4);
                          EXPECT_EQ(Grid("grdFMZs").Rows(), 1 + Rows("FMZList"));
                      },
                  .done =
                      [&] {
                          EXPECT_EQ(Rows("FMZList"), rows + 1);
                          EXPECT_EQ(Grid("grdFMZs").Rows(), 1 + rows + 1);
                          EXPECT_EQ(Rows("SuppressionPerAcreCost"), costs + 9);
                          EXPECT_EQ(Rows("NVCPerAcre"), values + 14);
                      }});
}

// The costs are stored at every key; a failure shows at the latest when the worksheet is left.
TEST_P(FailingDisk, TypeCost_AnyCallFailing_KeepsWhatWasTyped) {
    FailEachCall(
        {.prepare =
             [this] {
                 OpenFile(true);
                 ClickTab(6);
             },
         .act =
             [this] {
                 if (ShownForm() == QStringLiteral("frm6SuppressAcre")) {
                     Type("grdCosts", 3, 2, QStringLiteral("7777"));
                     ClickTab(4);
                 }
             },
         .kept =
             [this] {
                 if (ShownForm() == QStringLiteral("frm6SuppressAcre")) {
                     EXPECT_TRUE(Grid("grdCosts").TextMatrix(3, 2).contains(QStringLiteral("777")))
                         << Grid("grdCosts").TextMatrix(3, 2).toStdString();
                 }
             },
         .done =
             [this] {
                 ClickTab(6);
                 EXPECT_EQ(Grid("grdCosts").TextMatrix(3, 2).remove(u','), QStringLiteral("7777"));
             }});
}

TEST_P(FailingDisk, LeaveTable_AnyCallFailing_StoresAllItsRowsOrNone) {
    static constexpr std::array kRows{1, 7, 14};
    const auto stored = [] {
        const auto zones = PrepDatatables::dbDatafile->OpenTable(QStringLiteral("FMZList"));
        const auto values = PrepDatatables::dbDatafile->OpenTable(QStringLiteral("NVCPerAcre"));
        values->SetIndex(QStringLiteral("PrimaryKey"));
        int rows = 0;
        for (const int row : kRows) {
            values->Seek("=", {zones->Long(QStringLiteral("Key")) * 100 + 1, row});
            rows += values->Single(QStringLiteral("FIL2")) == 7777 ? 1 : 0;
        }
        return rows;
    };
    FailEachCall({.prepare =
                      [this] {
                          OpenFile(true);
                          ClickTab(5);
                          for (const int row : kRows) {
                              Type("grdNVC", row, 2, QStringLiteral("7777"));
                          }
                      },
                  .act = [this] { ClickTab(4); },
                  .kept =
                      [&] {
                          const int rows = stored();
                          EXPECT_TRUE(rows == 0 || rows == 3) << rows;
                      },
                  .done = [&] { EXPECT_EQ(stored(), 3); }});
}

// Whatever the engine writes with has to be among the calls that fail here.
TEST_F(RunningProgram, WriteOfSeveralPieces_IsACallThatFails) {
    const auto file = jet::HostFileSystem().Open(
        folder_.CostsPath(QStringLiteral("Pieces.fcd")).toStdString(), jet::OpenMode::kCreateNew);
    const std::vector<std::byte> page(4096);
    const std::vector<std::span<const std::byte>> pieces(3, page);
    SwitchOn("Pieces.fcd", {"FullDiskAfterHalf", Mode::kShort, tarn_faults::kWrite, ENOSPC});
    EXPECT_THROW(file->WriteAll(0, pieces), jet::Error);
    SwitchOff();
    EXPECT_EQ(file->Size(), pieces.size() * page.size() / 2);
}

// Flushes are what makes a slow disk felt.
TEST_F(RunningProgram, UserActions_EachFlushAtMostTwice) {
    const QString path = folder_.CostsPath(QStringLiteral("Named.fcd"));
    support::Copy(support::BuiltFolder() + QStringLiteral("/Costs/UMFOR25.FCD"), path);
    Run(path);
    tarn_faults::Switchboard& board = *TarnFaults();
    qstrncpy(board.pattern, "", sizeof board.pattern);  // of whatever files
    board.calls = tarn_faults::kFlush;
    const auto flushes = [&](const std::function<void()>& action) {
        board.seen = 0;
        board.mode = Mode::kCount;
        action();
        QCoreApplication::processEvents();
        board.mode = Mode::kOff;
        return board.seen;
    };
    EXPECT_EQ(flushes([this] { ClickTab(4); }), 1);
    EXPECT_EQ(flushes([this] { ClickTab(3); }), 0);
    EXPECT_EQ(flushes([this] { ClickTab(4); }), 0);
    EXPECT_EQ(flushes([this] { Click(QStringLiteral("cmdAdd")); }), 2);
    const QString source = folder_.CostsPath(QStringLiteral("source.mdb"));
    support::Copy(support::BuiltFolder() + QStringLiteral("/Costs/BRAM0000.mdb"), source);
    support::Answers answers;
    answers.Then([source](QWidget& dialog) { ChooseFile(dialog, source); });
    EXPECT_EQ(flushes([this] { Click(QStringLiteral("cmdImport")); }), 2);
    QTest::keyClicks(&Get(QStringLiteral("grdFMZs")), QStringLiteral("Typed"));
    EXPECT_LE(flushes([this] { ClickTab(6); }), 2);
    EXPECT_EQ(flushes([this] { ClickTab(1); }), 0);
}

TEST_F(RunningProgram, ResourceThatCannotBeDeleted_StaysOnTheScreenAsInTheFile) {
    RunWithFile();
    for (const char* name : {"Engine", "Dozer"}) {
        Resource resource;
        resource.longName = QString::fromLatin1(name);
        resource.sequence = PrepDatatables::tblSRMasterList->RecordCount() + 1;
        ResourceRecords::Add(resource);
    }
    ClickTab(3);
    auto& grid = Get<vsFlexGrid>(QStringLiteral("grdMasterList"));
    ASSERT_EQ(grid.Rows(), 3);
    grid.Select(1, 1);
    SwitchOn("Unit.fcd", {"FullDisk", Mode::kForGood, tarn_faults::kAllChanges, ENOSPC});
    support::Answers answers({QMessageBox::Yes, QMessageBox::Ok});
    Click(QStringLiteral("cmdDelete"));
    SwitchOff();
    EXPECT_GE(answers.Texts().size(), 2) << "the question, and that it failed";
    EXPECT_EQ(grid.Rows(), 3);
    EXPECT_EQ(grid.TextMatrix(1, 1), QStringLiteral("Engine"));
    EXPECT_EQ(grid.TextMatrix(2, 1), QStringLiteral("Dozer"));
    EXPECT_EQ(PrepDatatables::tblSRMasterList->RecordCount(), 2);
}

// It is tried again after every event, but a user who cannot mend it must be able to go on.
TEST_F(RunningProgram, FlushThatGoesOnFailing_IsReportedOnceForEachThingStored) {
    RunWithFile();
    ClickTab(4);
    SwitchOn(".fcd", {"FlushFails", Mode::kForGood, tarn_faults::kFlush, EIO});
    support::Answers answers;
    Click(QStringLiteral("cmdAdd"));
    QTest::keyClicks(&Get(QStringLiteral("grdFMZs")), QStringLiteral("North"));
    Press(Qt::Key_Return);
    EXPECT_EQ(answers.Texts().size(), 1) << Text(answers.Texts());
    EXPECT_TRUE(answers.Texts().first().contains(QStringLiteral("is kept in a log")));
    ClickTab(1);
    EXPECT_EQ(answers.Texts().size(), 2) << Text(answers.Texts());
    SwitchOff();
    ClickTab(4);
    EXPECT_EQ(PrepDatatables::dbDatafile->PendingOperations(), 0U);
    EXPECT_EQ(Get<vsFlexGrid>(QStringLiteral("grdFMZs")).TextMatrix(1, 0), QStringLiteral("North"));
}

TEST_F(RunningProgram, FileRemovedOrRenamedUnderTheProgram_IsReportedOnceAndNothingIsLost) {
    const QString path = NewFile();
    Run(path);
    ClickTab(4);
    support::Answers answers;
    QFile::remove(path);
    Click(QStringLiteral("cmdAdd"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return answers.Texts().size() == 1; }));
    EXPECT_TRUE(answers.Texts().last().contains(QStringLiteral("has been written anew")));
    Click(QStringLiteral("cmdAdd"));
    QCoreApplication::processEvents();
    EXPECT_EQ(answers.Texts().size(), 1);
    const QString alone = folder_.CostsPath(QStringLiteral("Alone.fcd"));
    support::Copy(path, alone);
    EXPECT_TRUE(jet::CheckFile(alone.toStdString()).IsSound());
    const QString moved = folder_.CostsPath(QStringLiteral("Moved.fcd"));
    ASSERT_TRUE(QFile::rename(path, moved));
    Click(QStringLiteral("cmdAdd"));
    Click(QStringLiteral("cmdAdd"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return answers.Texts().size() == 2; }));
    QCoreApplication::processEvents();
    EXPECT_EQ(answers.Texts().size(), 2);
    EXPECT_TRUE(answers.Texts().last().contains(QStringLiteral("moved or renamed")));
    PrepDatafile::CloseDatafile();
    EXPECT_FALSE(QFile::exists(path));
    const auto database = dao::Database::Open(moved, dao::OpenMode::kExclusive);
    EXPECT_EQ(database->OpenTable(QStringLiteral("FMZList"))->RecordCount(), 4);
}

TEST_F(RunningProgram, FileDialogWaits_WhatWasTypedIsInTheFileAlone) {
    RunWithFile();
    ClickTab(4);
    Click(QStringLiteral("cmdAdd"));
    QTest::keyClicks(&Get(QStringLiteral("grdFMZs")), QStringLiteral("North"));
    std::uint64_t pending = 99;
    support::Answers answers;
    answers.Then([&pending](QWidget& dialog) {
        pending = PrepDatatables::dbDatafile->PendingOperations();
        dialog.close();
    });
    Choose(QStringLiteral("mnuFile_2"));
    EXPECT_EQ(pending, 0U);
    const auto zones = PrepDatatables::dbDatafile->OpenTable(QStringLiteral("FMZList"));
    EXPECT_EQ(zones->Text(QStringLiteral("Name")), QStringLiteral("North"));
}

// A log that cannot be written is reported once and never stands in the way.
TEST_F(RunningProgram, LogCannotBeWritten_EverythingElseGoesOn) {
    SwitchOn(".LOG", {"LogFull", Mode::kForGood, tarn_faults::kAllChanges, ENOSPC});
    QStringList said;
    {
        support::Answers answers;
        RunWithFile();
        for (const int tab : {2, 3, 4, 1}) {
            ClickTab(tab);
        }
        Choose(QStringLiteral("mnuStep_4"));
        Click(QStringLiteral("cmdAdd"));
        ClickTab(1);
        ASSERT_TRUE(QTest::qWaitFor([&] { return !answers.Messages().empty(); }));
        said = answers.Texts();
    }
    SwitchOff();
    EXPECT_EQ(said.size(), 1) << Text(said);
    EXPECT_EQ(ShownForm(), QStringLiteral("frm1Intro"));
    const auto zones = PrepDatatables::dbDatafile->OpenTable(QStringLiteral("FMZList"));
    EXPECT_EQ(zones->RecordCount(), 1);
}

// Somebody whose disk is full has another file on another one.
TEST_F(RunningProgram, WorksheetThatCannotBeSaved_CanBeLeftForAnotherFileAfterAQuestion) {
    const QString other = NewFile(QStringLiteral("Other.mdb"));
    RunWithFile();
    ClickTab(4);
    Click(QStringLiteral("cmdAdd"));
    QTest::keyClicks(&Get(QStringLiteral("grdFMZs")), QStringLiteral("North"));
    SwitchOn("Unit.fcd", {"FullDisk", Mode::kForGood, tarn_faults::kAllChanges, ENOSPC});
    {
        const support::Answers no;
        Choose(QStringLiteral("mnuFile_2"));
        ASSERT_GE(no.Texts().size(), 1);
        EXPECT_TRUE(
            no.Texts().front().startsWith(QStringLiteral("The worksheet could not be "
                                                         "saved.")));
        EXPECT_TRUE(no.Texts().front().endsWith(QStringLiteral("go on without saving it?")));
        EXPECT_EQ(no.Messages().front().defaultButton, QMessageBox::No);
        EXPECT_EQ(ShownForm(), QStringLiteral("frm4FMZs"));
        EXPECT_TRUE(PrepDatafile::IsDatafileOpen());
    }
    support::Answers yes({QMessageBox::Yes, QMessageBox::Ok, QMessageBox::Ok, QMessageBox::Ok});
    yes.Then([other](QWidget& dialog) { ChooseFile(dialog, other); });
    Choose(QStringLiteral("mnuFile_2"));
    SwitchOff();
    EXPECT_EQ(PrepDatafile::CurrentFileName(), QStringLiteral("Other.mdb")) << Text(yes.Texts());
    EXPECT_EQ(ShownForm(), QStringLiteral("frm1Intro"));
}

}  // namespace

#endif
