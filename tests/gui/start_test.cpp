// Starting and ending: the start screen, the command line, the title, the logs.

#include <QLabel>
#include <QScreen>
#include <QSignalSpy>
#include <QWindow>

#include <algorithm>

#include "MadeFiles.h"
#include "RunningProgram.h"
#include "base/u91Trace.h"
#include "datafile/PrepDatatables.h"
#include "datafile/PrepProperties.h"
#include "platform/controls/FLabel.h"
#include "platform/system/ProgramFolder.h"
#include "shell/ProgramTexts.h"
#include "support/Keyboard.h"
#include "support/system.h"

namespace {

class Start : public RunningProgram {};

TEST_F(Start, NoCommandLine_FillsTheFrameWithTheStartScreen) {
    Run();
    EXPECT_EQ(frame_->windowTitle(), QStringLiteral("TARN Prep"));
    EXPECT_EQ(frame_->size(), QSize(808, 608));
    EXPECT_EQ(frame_->pos(), QPoint(0, 0));
    EXPECT_EQ(Get(QStringLiteral("frm0Start")).geometry(),
              QRect(QPoint(0, 0), frame_->ClientSize()));
    EXPECT_TRUE(StartScreenShows());
    EXPECT_TRUE(a3PrepForms::WorksheetID().isEmpty());
    EXPECT_FALSE(MenuEnabled(2));
    EXPECT_FALSE(MenuEnabled(3));
    EXPECT_TRUE(MenuEnabled(1));
    EXPECT_TRUE(MenuEnabled(9));
}

TEST_F(Start, NoCommandLine_LogsItsStepsInOrder) {
    Run();
    const QStringList trace = NewTrace();
    EXPECT_EQ(trace[0], QStringLiteral("* * * * * Program Start * * * * *"));
    EXPECT_EQ(Text(trace.mid(2)),
              Text(QStringList({"App.Path = " + platform::ProgramFolder(), "Screen: 15360 x 11520",
                                " Start TARN Prep 05.1", "   a1Prep.DisplayCheck",
                                "   frm0_Prep_Resize 12120 x 9120", "   Load frm0Start",
                                "   frm0_Prep.HelpFilePath", "   a1Prep.StartWithoutFile",
                                " Finished Loading TARN Prep"})));
}

TEST_F(Start, StartScreen_Captions_AreTheTextsWithTheirMarks) {
    Run();
    EXPECT_EQ(Get<FLabel>(QStringLiteral("flbOverview")).Caption(),
              QStringLiteral(
                  "|BEFORE:90|This program is used to collect and store data for later use during "
                  "a Tactical Assessment of Response Needs (TARN).|CR|Information that can be "
                  "collected and stored includes:|BEFORE:15||CR|   Management Objectives,|CR|   "
                  "Suppression Resource Costs,|CR|   Net Value Change (NVC Table), and|CR|   "
                  "Suppression Cost per Acre.|BEFORE:90||CR|NVC and Suppression Cost per Acre data "
                  "can be copied from an BRAM file, or entered by hand."));
    EXPECT_EQ(
        Get<FLabel>(QStringLiteral("flbStart")).Caption(),
        QStringLiteral("To create a new data file,|CR|click the New button.|BEFORE:180||CR|To "
                       "review or update an existing data file,|BEFORE:0||CR|click the Open "
                       "button."));
    EXPECT_EQ(Get<QLabel>(QStringLiteral("lblTitle")).text(), QStringLiteral("TARN Prep"));
    EXPECT_EQ(Get<QLabel>(QStringLiteral("lblCopyright")).text(), ProgramTexts::NoticeOfRights());
    EXPECT_TRUE(ProgramTexts::NoticeOfRights().startsWith(QStringLiteral("Copyright")));
    EXPECT_EQ(Get<QPushButton>(QStringLiteral("cmdOpen")).text(), QStringLiteral("&Open"));
    EXPECT_EQ(Get<QPushButton>(QStringLiteral("cmdNew")).text(), QStringLiteral("&New"));
    EXPECT_EQ(Get<QPushButton>(QStringLiteral("cmdExit")).text(), QStringLiteral("E&xit"));
}

TEST_F(Start, CommandLineFile_ShowsTheIntroduction) {
    Run(NewFile(QStringLiteral("My unit.fcd")));
    EXPECT_EQ(frame_->windowTitle(), QStringLiteral("TARN Prep:  [My unit.fcd]  No Name"));
    EXPECT_EQ(ShownForm(), QStringLiteral("frm1Intro"));
    EXPECT_EQ(a3PrepForms::WorksheetID(), QStringLiteral("INT"));
    EXPECT_EQ(CheckedSteps(), QList<int>{1});
    EXPECT_EQ(Tab().CurrTab(), 1);
    EXPECT_FALSE(Tab().isTabVisible(0));
    EXPECT_FALSE(StartScreenShows());
    EXPECT_TRUE(MenuEnabled(2));
    EXPECT_TRUE(MenuEnabled(3));
}

TEST_F(Start, CommandLineFile_LogsItsStepsInOrder) {
    const QString path = NewFile();
    Run(path);
    const QStringList trace = NewTrace();
    EXPECT_EQ(Text(trace.mid(trace.indexOf(QStringLiteral("   a1Prep.StartWithFile ") + path))),
              Text(QStringList(
                  {"   a1Prep.StartWithFile " + path, "   PrepDatafile.OpenDatatables " + path,
                   "   PrepDatafile.FileTitleFromPath", "   OpenRecordsets",
                   " Start a1Prep.LoadFromFile", "   frm0Start.SetBackground",
                   "   frm0_Prep.SetTitleBar", "   PrepProperties.GetPropertyWithDefault UnitName",
                   "   Load frmTabs", "   frmTabs.Form_Resize", "   Load frm1Intro",
                   "   frm1Intro.Setup", "   PositionWorksheet", "   frm0_Prep.StepMenu_Check",
                   " Finished a1Prep.LoadFromFile", " Finished Loading TARN Prep"})));
}

TEST_F(Start, CommandLineInQuotes_FailsToOpenWithItsQuotes) {
    support::Answers answers;
    const QString quoted = u'"' + NewFile() + u'"';
    Run(quoted);
    EXPECT_EQ(answers.Texts().value(0), QStringLiteral("The file does not appear to be a TARN Prep "
                                                       "file.  It cannot be opened."));
    EXPECT_TRUE(NewTrace().contains(QStringLiteral("   a1Prep.StartWithFile ") + quoted));
    EXPECT_TRUE(StartScreenShows());
    EXPECT_FALSE(MenuEnabled(2));
    EXPECT_EQ(frame_->windowTitle(), QStringLiteral("TARN Prep"));
}

TEST_F(Start, ErrorInAStep_EveryOtherStepRunsAndTheNumberIsLogged) {
    const QString path = folder_.CostsPath(QStringLiteral("full.fcd"));
    MakeFileWithFullProperties(path);
    const support::Answers answers;
    Run(path);
    const QStringList trace = NewTrace();
    const qsizetype error = trace.indexOf(QStringLiteral("* * * ERROR * * *"));
    ASSERT_GT(error, 0);
    EXPECT_TRUE(trace[error + 1].startsWith(QStringLiteral("   Error during startup 3")));
    EXPECT_EQ(trace.last(), QStringLiteral(" Finished Loading TARN Prep"));
    EXPECT_TRUE(support::Bytes(folder_.Path(QStringLiteral("ERROR.LOG")))
                    .contains("Error during startup 3"));
    EXPECT_TRUE(frame_->isVisible());
    ASSERT_EQ(answers.Texts(),
              QStringList(QStringLiteral("The file was opened, but it cannot be shown.")));
    EXPECT_FALSE(answers.Messages().front().informative.isEmpty());
    EXPECT_TRUE(NoFileState());
}

TEST_F(Start, TraceCannotBeWritten_TheErrorLogHasTheNumber) {
    // A folder of that name: nothing can be written into it.
    ASSERT_TRUE(QDir(folder_.Path(QString())).mkdir(QStringLiteral("TARN.LOG")));
    const support::Answers answers;
    Run();
    EXPECT_TRUE(support::Bytes(folder_.Path(QStringLiteral("ERROR.LOG")))
                    .contains("Error during startup 75\r\n"));
    EXPECT_EQ(answers.Texts().size(), 1) << "one warning that there is no log";
    EXPECT_TRUE(NoFileState());
}

TEST_F(Start, HelpFile_IsFoundWhateverTheCaseOfItsName) {
    if (!support::kNamesDifferByCase) {
        GTEST_SKIP() << "the system itself finds files without regard to case";
    }
    support::WriteBytes(folder_.Path(QStringLiteral("tarnplus.HLP")), "x");
    EXPECT_EQ(frm0_Prep::HelpFilePath(), folder_.Path(QStringLiteral("tarnplus.HLP")));
    support::WriteBytes(folder_.Path(QStringLiteral("TARNPlus.hlp")), "x");
    EXPECT_EQ(frm0_Prep::HelpFilePath(), folder_.Path(QStringLiteral("TARNPlus.hlp")));
}

TEST_F(Start, IntroductionTexts_AreShownWithTheirMarks) {
    RunWithFile();
    QWidget* intro = a3PrepForms::CurrentForm();
    EXPECT_EQ(intro->findChild<QLabel*>(QStringLiteral("lblTitle"))->text(),
              QStringLiteral("Instructions for creating a TARN Prep file"));
    const QString body = intro->findChild<FLabel*>(QStringLiteral("flbDescription"))->Caption();
    EXPECT_EQ(
        body.toStdString(),
        "The TARN Prep process involves collecting information in a single file so that it is "
        "easily accessible when needed for a Tactical Assessment of Response Needs (TARN).  "
        "|CR||BEFORE:180|Worksheet 1: Introduction.  This page.|CR||BEFORE:90|Worksheet 2: "
        "Management Goals.  Management goals, objectives and guidelines can be entered to help "
        "ensure that suppression objectives in the TARN are consistent with resource management "
        "objectives for the area.|CR|Worksheet 3: Suppression Resources.  You will select "
        "suppression resources from this list when describing alternatives in the TARN.|CR|"
        "Worksheet 4: FMZs.  Import data from an BRAM file.|CR|Worksheet 5: NVC Table.  The NVC "
        "Table will be used to compute impacts on natural resources in the TARN.|CR|Worksheet 6: "
        "Suppression Cost / Acre.  This table will be used to estimate suppression costs based on "
        "historic cost per acre.");
}

TEST_F(Start, ExitButton_EndsTheProgramWithEveryFormUnloaded) {
    Run();
    NewTrace();
    Click(QStringLiteral("cmdExit"));
    EXPECT_TRUE(frame_->IsUnloaded());
    EXPECT_EQ(Text(NewTrace()),
              Text(QStringList({" Start frm0Start.cmdExit_Click", "   frm0_Prep.MDIForm_Unload",
                                "   Unloaded frm0Start", " TARN Prep",
                                "* * * * * Program End * * * * *"})));
}

TEST_F(Start, ReturnKey_PressesTheButtonThatHasTheKeyboard) {
    Run();
    Get(QStringLiteral("cmdExit")).setFocus();
    Press(Qt::Key_Return);
    EXPECT_TRUE(frame_->IsUnloaded());
}

TEST_F(Start, ExitItem_FileOpen_SavesTwiceAndCloses) {
    RunWithFile();
    NewTrace();
    Choose(QStringLiteral("mnuExit"));
    EXPECT_TRUE(frame_->IsUnloaded());
    EXPECT_FALSE(PrepDatafile::IsDatafileOpen());
    EXPECT_EQ(Text(NewTrace()),
              Text(QStringList(
                  {" Start mnuExit_Click", "   a3PrepForms.UpdateCurrentWorksheet INT",
                   "   frm0_Prep.MDIForm_Unload", "   a3PrepForms.UpdateCurrentWorksheet INT",
                   "   PrepDatafile.CloseDatafile", "   Unloaded frm1Intro", "   Unloaded frmTabs",
                   "   Unloaded frm0Start", " TARN Prep", "* * * * * Program End * * * * *"})));
}

TEST_F(Start, WindowClosed_FileOpen_SavesOnce) {
    RunWithFile();
    NewTrace();
    frame_->close();
    EXPECT_EQ(NewTrace().count(QStringLiteral("   a3PrepForms.UpdateCurrentWorksheet INT")), 1);
    EXPECT_FALSE(PrepDatafile::IsDatafileOpen());
}

TEST_F(Start, WindowClosed_WorksheetCannotBeSaved_StaysUnlessTheUserLeavesIt) {
    RunWithFile();
    ClickTab(2);
    Click(QStringLiteral("cmdAdd"));
    QTest::keyClicks(&Get<QLineEdit>(QStringLiteral("txtHeading")), QStringLiteral("Ridge"));
    PrepDatatables::tblManagementGoals.Close();
    QSignalSpy unloaded(frame_.get(), &frm0_Prep::Unloaded);
    {
        const support::Answers no;
        frame_->close();
        ASSERT_EQ(no.Messages().size(), 1U);
        EXPECT_EQ(no.Messages().front().defaultButton, QMessageBox::No);
    }
    EXPECT_TRUE(frame_->isVisible());
    EXPECT_FALSE(frame_->IsUnloaded());
    EXPECT_EQ(unloaded.size(), 0);
    EXPECT_EQ(ShownForm(), QStringLiteral("frm2RMAs"));
    const support::Answers yes({QMessageBox::Yes});
    frame_->close();
    EXPECT_FALSE(frame_->isVisible());
    EXPECT_TRUE(frame_->IsUnloaded());
    EXPECT_EQ(unloaded.size(), 1);
}

TEST_F(Start, LogsCannotBeWritten_RunsAndReportsItOnce) {
    platform::SetProgramFolder(folder_.Path(QStringLiteral("not there")));
    support::Answers answers;
    Run();
    EXPECT_TRUE(StartScreenShows());
    ASSERT_EQ(answers.Texts().size(), 1);
    EXPECT_EQ(answers.Texts()[0],
              QStringLiteral("The program's logs cannot be written; the program works without "
                             "them."));
    EXPECT_FALSE(answers.Messages()[0].informative.isEmpty()) << "the reason";
    frame_->resize(900, 700);
    frame_->ShowLogFailure();
    EXPECT_EQ(answers.Texts().size(), 1);
}

TEST_F(Start, LogsStopBeingWritten_WhileRunning_IsReportedOnce) {
    Run();
    platform::SetProgramFolder(folder_.Path(QStringLiteral("not there")));
    support::Answers answers;
    frame_->resize(900, 700);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !answers.Texts().isEmpty(); }));
    frame_->resize(800, 600);
    frame_->resize(900, 700);
    QApplication::processEvents();
    EXPECT_EQ(answers.Texts().size(), 1);
}

TEST_F(Start, EndAtOnce_FileOpen_SavesAndEndsWithoutAsking) {
    RunWithFile();
    NewTrace();
    frame_->EndAtOnce();
    EXPECT_TRUE(frame_->IsUnloaded());
    EXPECT_FALSE(PrepDatafile::IsDatafileOpen());
    const QStringList trace = NewTrace();
    EXPECT_EQ(trace.count(QStringLiteral("   a3PrepForms.UpdateCurrentWorksheet INT")), 1);
    EXPECT_EQ(trace.last(), QStringLiteral("* * * * * Program End * * * * *"));
}

TEST_F(Start, EndAtOnce_DialogOpen_ClosesItFirst) {
    Run();
    support::Answers answers;
    answers.Then([this](QWidget&) { frame_->EndAtOnce(); });
    Click(QStringLiteral("cmdNew"));
    EXPECT_TRUE(QTest::qWaitFor([this] { return frame_->IsUnloaded(); }));
    EXPECT_EQ(NewTrace().last(), QStringLiteral("* * * * * Program End * * * * *"));
}

TEST_F(Start, AboutItem_ShowsTitleEditionAndRights) {
    Run();
    support::Answers answers;
    Choose(QStringLiteral("mnuHelp_9"));
    ASSERT_EQ(answers.Messages().size(), 1U);
    EXPECT_TRUE(answers.Texts()[0].startsWith(
        QStringLiteral("TARN Prep 05.1\r\nPreseason TARN Preparation, 2005 Edition, Version "
                       "1\r\n\r\nCopyright")));
    EXPECT_EQ(answers.Messages()[0].title, QStringLiteral("TARN Prep"));
    EXPECT_EQ(NewTrace().last(), QStringLiteral("   mnuHelp_Click 9"));
}

TEST_F(Start, UnitNameWithThePlaceholder_ShowsAsItIsInTheTitle) {
    const QString path = NewFile();
    Run(path);
    PrepProperties::SetProperty(QStringLiteral("UnitName"), QStringLiteral("Ridge [*] [*][*]"));
    frame_->SetTitleBar(QStringLiteral("Unit.fcd"));
    EXPECT_EQ(frame_->windowHandle()->title().toStdString(),
              "TARN Prep:  [Unit.fcd]  Ridge [*] [*][*]");
}

// A letter for each control, none of them twice, nor one that opens a menu.
void ExpectUnique(QString letters) {
    std::sort(letters.begin(), letters.end());
    EXPECT_EQ(std::adjacent_find(letters.begin(), letters.end()), letters.end())
        << letters.toStdString();
}

TEST_F(Start, StartScreen_ByKeyboard_InReadingOrderWithUniqueLetters) {
    Run();
    QWidget& screen = Get(QStringLiteral("frm0Start"));
    EXPECT_EQ(Text(support::AgainstReadingOrder(screen)), "");
    EXPECT_EQ(support::Mnemonics(screen).size(), 3);
    ExpectUnique(support::Mnemonics(screen) + QStringLiteral("FWEH"));
}

TEST_F(Start, Introduction_ByKeyboard_StartsWithTheTextAndGoesOnToTheTabs) {
    RunWithFile();
    QWidget* text = Find(QStringLiteral("descriptionArea"));
    text->setFocus();
    Press(Qt::Key_Tab);
    EXPECT_TRUE(Tab().hasFocus());
    Press(Qt::Key_Tab);
    EXPECT_TRUE(text->hasFocus());
}

TEST_F(Start, Menus_EachOfThem_HasUniqueLetters) {
    RunWithFile();
    for (const int top : {1, 2, 3, 9}) {
        QString letters;
        for (const QAction* item :
             Get<QAction>(QStringLiteral("mnuTop_%1").arg(top)).menu()->actions()) {
            if (!item->isSeparator()) {
                const qsizetype mark = item->text().indexOf(u'&');
                ASSERT_GE(mark, 0) << item->text().toStdString();
                letters += item->text().mid(mark + 1, 1).toUpper();
            }
        }
        ExpectUnique(letters);
    }
}

TEST_F(Start, NamingDialog_ByKeyboard_InReadingOrderWithUniqueLetters) {
    Run();
    support::Answers answers;
    answers.Then([](QWidget& dialog) {
        EXPECT_EQ(Text(support::AgainstReadingOrder(dialog)), "");
        EXPECT_GE(support::Mnemonics(dialog).size(), 5);
        ExpectUnique(support::Mnemonics(dialog));
        dialog.close();
    });
    Click(QStringLiteral("cmdNew"));
}

class StartInFont : public Start, public testing::WithParamInterface<int> {
protected:
    StartInFont() : usual_(QApplication::font()) {
        QFont font = usual_;
        font.setPointSize(GetParam());
        QApplication::setFont(font);
    }
    ~StartInFont() override { QApplication::setFont(usual_); }

    // No label has less room than its text takes at the label's width.
    static void ExpectWholeTexts(const QWidget& form) {
        for (const auto* label : form.findChildren<QLabel*>()) {
            if (!label->isVisible()) {
                continue;
            }
            const QSize needed = label->wordWrap() ? QSize(0, label->heightForWidth(label->width()))
                                                   : label->sizeHint();
            EXPECT_GE(label->height(), needed.height()) << label->objectName().toStdString();
            EXPECT_GE(label->width(), needed.width()) << label->objectName().toStdString();
        }
        for (const auto* button : form.findChildren<QPushButton*>()) {
            EXPECT_GE(button->width(), button->minimumSizeHint().width());
            EXPECT_GE(button->height(), button->fontMetrics().height());
        }
    }

private:
    QFont usual_;
};

TEST_P(StartInFont, StartScreen_OnASmallScreen_CutsNoText) {
    Run();
    for (const QSize size : {QSize(800, 600), QSize(960, 540), QSize(1024, 700)}) {
        SCOPED_TRACE(size.width());
        frame_->resize(size);
        QApplication::processEvents();
        ExpectWholeTexts(Get(QStringLiteral("frm0Start")));
    }
}

TEST_P(StartInFont, NamingDialog_FitsTheScreenAndCutsNoText) {
    Run();
    support::Answers answers;
    answers.Then([](QWidget& dialog) {
        EXPECT_LE(dialog.width(), dialog.screen()->availableSize().width());
        EXPECT_LE(dialog.height(), dialog.screen()->availableSize().height());
        ExpectWholeTexts(dialog);
        dialog.close();
    });
    Click(QStringLiteral("cmdNew"));
}

INSTANTIATE_TEST_SUITE_P(Fonts, StartInFont, testing::Values(8, 9, 11, 14, 18));

TEST_F(Start, Controls_AllOfThem_HaveObjectAndAccessibleNames) {
    RunWithFile();
    EXPECT_EQ(frame_->accessibleName(), QStringLiteral("TARN Prep"));
    for (const QWidget* control : frame_->findChildren<QWidget*>()) {
        if (!control->isVisible() || control->objectName().startsWith(QStringLiteral("qt_")) ||
            control->inherits("QToolButton") || control->inherits("QScrollBar")) {
            continue;
        }
        EXPECT_FALSE(control->objectName().isEmpty()) << control->metaObject()->className();
    }
}

}  // namespace
