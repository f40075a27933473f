// The worksheet manager: the switching protocol, its refusals, and the geometry of strip and form.

#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QMenuBar>

#include "RunningProgram.h"
#include "datafile/PrepDatatables.h"
#include "datafile/PrepProperties.h"
#include "platform/controls/vsFlexGrid.h"
#include "platform/system/Clipboard.h"
#include "shell/frmTabs.h"
#include "worksheets/zones/ZoneRecords.h"

namespace {

class Worksheets : public RunningProgram {
protected:
    // The frame with this client area, in pixels.
    void ResizeClientTo(int width, int height) {
        const QSize around = frame_->size() - frame_->ClientSize();
        frame_->resize(QSize(width, height) + around);
        ASSERT_EQ(frame_->ClientSize(), QSize(width, height));
    }
};

struct Page {
    int index;
    const char* id;
    const char* form;
};

constexpr Page kPages[] = {{1, "INT", "frm1Intro"},    {2, "RMA", "frm2RMAs"},
                           {3, "SRM", "frm3SRMaster"}, {4, "FMZ", "frm4FMZs"},
                           {5, "NVC", "frm5NVCTable"}, {6, "SCA", "frm6SuppressAcre"}};

TEST_F(Worksheets, Tabs_EachClicked_ShowsItsFormAlone) {
    RunWithFile();
    ZoneRecords::Create(QStringLiteral("North"), 1);
    for (const int index : {2, 3, 4, 5, 6, 1}) {
        const Page& page = kPages[index - 1];
        ClickTab(index);
        EXPECT_EQ(ShownForm(), QLatin1String(page.form));
        EXPECT_EQ(a3PrepForms::WorksheetID(), QLatin1String(page.id));
        EXPECT_EQ(CheckedSteps(), QList<int>{index});
        for (const Page& other : kPages) {
            EXPECT_EQ(Find(QLatin1String(other.form)) != nullptr, other.index == index);
        }
    }
}

TEST_F(Worksheets, MenuItems_EachChosen_SetTheTab) {
    RunWithFile();
    ZoneRecords::Create(QStringLiteral("North"), 1);
    for (const int index : {6, 5, 4, 3, 2, 1}) {
        Choose(QStringLiteral("mnuStep_%1").arg(index));
        EXPECT_EQ(Tab().CurrTab(), index);
        EXPECT_EQ(ShownForm(), QLatin1String(kPages[index - 1].form));
        EXPECT_EQ(CheckedSteps(), QList<int>{index});
    }
}

TEST_F(Worksheets, MenuItem_OfTheWorksheetShowing_ChangesNothing) {
    RunWithFile();
    NewTrace();
    Choose(QStringLiteral("mnuStep_1"));
    EXPECT_EQ(CheckedSteps(), QList<int>{1});
    EXPECT_EQ(Text(NewTrace()), Text(QStringList("   mnuStep_Click 1")));
}

TEST_F(Worksheets, Switch_ByMenu_LogsTheProtocolInOrder) {
    RunWithFile();
    NewTrace();
    Choose(QStringLiteral("mnuStep_2"));
    EXPECT_EQ(Text(NewTrace()),
              Text(QStringList({"   mnuStep_Click 2", " Start switch to section 2",
                                "   a3PrepForms.UpdateCurrentWorksheet INT",
                                "   a3PrepForms.UnloadCurrentWorksheet; WorksheetID = INT",
                                "   Unloaded frm1Intro", "   frmTabs.vsTab1_Click",
                                "   DisplayWorksheet 2", "   Load frm2RMAs", "   frm2RMAs.Setup",
                                "   PositionWorksheet", "   frm0_Prep.StepMenu_Check",
                                "   frm2RMAs.LoadList", " Finished switching sections"})));
}

TEST_F(Worksheets, SessionEndsWhileADialogWaits_TheFileAloneIsComplete) {
    RunWithFile();
    ClickTab(3);
    QTest::keyClicks(&Get<QLineEdit>(QStringLiteral("txtSource")), QStringLiteral("Budget"));
    std::uint64_t pending = 99;
    support::Answers answers;
    answers.Then([this, &pending](QWidget& dialog) {
        frame_->SaveForSessionEnd();
        pending = PrepDatatables::dbDatafile->PendingOperations();
        dialog.close();
    });
    Click(QStringLiteral("cmdAdd"));
    EXPECT_EQ(pending, 0U);
    EXPECT_EQ(PrepProperties::GetProperty(QStringLiteral("SRDataSource")),
              QStringLiteral("Budget"));
}

struct Refusal {
    int index;
    const char* message;
    const char* trace;
};

class WorksheetRefusals : public Worksheets, public testing::WithParamInterface<Refusal> {};

TEST_P(WorksheetRefusals, Switch_NoZones_KeepsTheWorksheetUnsaved) {
    RunWithFile();
    ClickTab(4);
    for (const bool byMenu : {false, true}) {
        NewTrace();
        support::Answers answers;
        if (byMenu) {
            Choose(QStringLiteral("mnuStep_%1").arg(GetParam().index));
        } else {
            ClickTab(GetParam().index);
        }
        EXPECT_EQ(Text(answers.Texts()), Text(QStringList(QLatin1String(GetParam().message))));
        QStringList expected{QStringLiteral(" Start switch to section %1").arg(GetParam().index),
                             QStringLiteral("   ") + QLatin1String(GetParam().trace)};
        if (byMenu) {
            expected.prepend(QStringLiteral("   mnuStep_Click %1").arg(GetParam().index));
        }
        EXPECT_EQ(Text(NewTrace()), Text(expected));
        EXPECT_EQ(ShownForm(), QStringLiteral("frm4FMZs"));
        EXPECT_EQ(Tab().CurrTab(), 4);
        EXPECT_EQ(CheckedSteps(), QList<int>{4});
    }
}

INSTANTIATE_TEST_SUITE_P(
    Tabs, WorksheetRefusals,
    testing::Values(Refusal{5, "Must have at least one FMZ to edit impacts.",
                            "Unable to switch to NVC without FMZ"},
                    Refusal{6, "Must have at least one FMZ to edit suppression cost per acre.",
                            "Unable to switch to SCA without FMZ"}));

TEST_F(Worksheets, DisplayWorksheet_IndexOutside_LeavesTheFrameAsItIs) {
    RunWithFile();
    for (const int index : {0, 7, -1}) {
        NewTrace();
        a3PrepForms::DisplayWorksheet(static_cast<std::int16_t>(index));
        EXPECT_EQ(ShownForm(), QStringLiteral("frm1Intro"));
        EXPECT_EQ(Text(NewTrace()),
                  Text(QStringList(QStringLiteral("   DisplayWorksheet %1").arg(index))));
    }
    a3PrepForms::UnloadCurrentWorksheet();
    a3PrepForms::DisplayWorksheet(0);
    EXPECT_EQ(ShownForm(), QString());
}

TEST_F(Worksheets, UnloadCurrentWorksheet_KeepsTheWorksheetID) {
    RunWithFile();
    a3PrepForms::UnloadCurrentWorksheet();
    EXPECT_EQ(ShownForm(), QString());
    EXPECT_EQ(a3PrepForms::WorksheetID(), QStringLiteral("INT"));
}

TEST_F(Worksheets, Resize_FileOpen_PlacesStartScreenStripAndForm) {
    RunWithFile();
    ResizeClientTo(900, 700);
    EXPECT_EQ(Get(QStringLiteral("frm0Start")).geometry(), QRect(0, 0, 900, 700));
    EXPECT_EQ(Get(QStringLiteral("frmTabs")).geometry(), QRect(0, 675, 900, 25));
    EXPECT_EQ(Tab().width(), 900);
    EXPECT_EQ(a3PrepForms::CurrentForm()->geometry(), QRect(0, 0, 900, 675));
}

TEST_F(Worksheets, Resize_LogsTheFrameInTwipsAndPositionsTheForm) {
    RunWithFile();
    NewTrace();
    frame_->resize(901, 700);
    EXPECT_EQ(Text(NewTrace()),
              Text(QStringList({"   frm0_Prep_Resize 13515 x 10500", "   frmTabs.Form_Resize",
                                "   PositionWorksheet"})));
}

TEST_F(Worksheets, Resize_ClientOnePixelAboveTheStrip_StillPlacesBoth) {
    RunWithFile();
    ResizeClientTo(600, 26);
    EXPECT_EQ(Get(QStringLiteral("frmTabs")).geometry(), QRect(0, 1, 600, 25));
    EXPECT_EQ(a3PrepForms::CurrentForm()->height(), 1);
}

TEST_F(Worksheets, Resize_ClientNoHigherThanTheStrip_FollowsInWidthOnly) {
    RunWithFile();
    ResizeClientTo(808, 500);
    ResizeClientTo(700, 25);
    EXPECT_EQ(Get(QStringLiteral("frmTabs")).geometry(), QRect(0, 475, 700, 25));
    EXPECT_EQ(a3PrepForms::CurrentForm()->geometry(), QRect(0, 0, 700, 475));
}

TEST_F(Worksheets, SetUpFails_FormIsGoneAndTheErrorIsShown) {
    RunWithFile();
    PrepDatatables::tblManagementGoals.Close();
    support::Answers answers;
    ClickTab(2);
    EXPECT_EQ(answers.Texts().size(), 1);
    EXPECT_EQ(ShownForm(), QString());
    EXPECT_TRUE(folder_.Trace().contains(QStringLiteral("   Unloaded frm2RMAs")));
    ClickTab(1);
    EXPECT_EQ(ShownForm(), QStringLiteral("frm1Intro"));
}

TEST_F(Worksheets, TypedHeading_AnyWayOut_IsInTheFile) {
    RunWithFile();
    ClickTab(2);
    Click(QStringLiteral("cmdAdd"));
    QTest::keyClicks(&Get<QLineEdit>(QStringLiteral("txtHeading")), QStringLiteral("Ridge"));
    frame_->SaveForSessionEnd();
    PrepDatatables::tblManagementGoals->MoveFirst();
    EXPECT_EQ(PrepDatatables::tblManagementGoals->Text(QStringLiteral("ManagementArea")),
              QStringLiteral("Ridge"));
    QTest::keyClicks(&Get<QLineEdit>(QStringLiteral("txtHeading")), QStringLiteral(" top"));
    ClickTab(1);
    PrepDatatables::tblManagementGoals->MoveFirst();
    EXPECT_EQ(PrepDatatables::tblManagementGoals->Text(QStringLiteral("ManagementArea")),
              QStringLiteral("Ridge top"));
}

TEST_F(Worksheets, EditKeys_InATextBox_GoThroughTheMenu) {
    RunWithFile();
    ClickTab(2);
    Click(QStringLiteral("cmdAdd"));
    auto& heading = Get<QLineEdit>(QStringLiteral("txtHeading"));
    heading.setFocus();
    QTest::keyClicks(&heading, QStringLiteral("Ridge"));
    heading.selectAll();
    NewTrace();
    Press(Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(heading.text(), QString());
    EXPECT_EQ(platform::ClipboardText(), QStringLiteral("Ridge"));
    Press(Qt::Key_V, Qt::ControlModifier);
    Press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(heading.text(), QStringLiteral("RidgeRidge"));
    heading.setSelection(0, 2);
    Press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(platform::ClipboardText(), QStringLiteral("Ri"));
    EXPECT_EQ(Text(NewTrace().filter(QStringLiteral("mnuEdit_Click"))),
              Text(QStringList({"   mnuEdit_Click RMA 2", "   mnuEdit_Click RMA 4",
                                "   mnuEdit_Click RMA 4", "   mnuEdit_Click RMA 3"})));
}

TEST_F(Worksheets, EditItem_ChosenWhileTheMenusHaveTheKeyboard_ServesTheBoxBefore) {
    RunWithFile();
    ClickTab(3);
    auto& source = Get<QLineEdit>(QStringLiteral("txtSource"));
    source.setFocus();
    QTest::keyClicks(&source, QStringLiteral("Budget"));
    source.selectAll();
    platform::SetClipboardText(QString());
    frame_->menuBar()->setFocus(Qt::MenuBarFocusReason);
    ASSERT_EQ(QApplication::focusWidget(), frame_->menuBar());
    Choose(QStringLiteral("mnuEdit_3"));
    EXPECT_EQ(platform::ClipboardText(), QStringLiteral("Budget"));
}

TEST_F(Worksheets, SaveFails_SwitchIsRefusedAndTheTypedTextStays) {
    RunWithFile();
    ClickTab(2);
    Click(QStringLiteral("cmdAdd"));
    QTest::keyClicks(&Get<QLineEdit>(QStringLiteral("txtHeading")), QStringLiteral("Ridge"));
    PrepDatatables::tblManagementGoals.Close();
    support::Answers answers;
    ClickTab(1);
    EXPECT_EQ(answers.Texts().size(), 1);
    EXPECT_EQ(ShownForm(), QStringLiteral("frm2RMAs"));
    EXPECT_EQ(Tab().CurrTab(), 2);
    EXPECT_EQ(Get<QLineEdit>(QStringLiteral("txtHeading")).text(), QStringLiteral("Ridge"));
    EXPECT_FALSE(support::Bytes(folder_.Path(QStringLiteral("ERROR.LOG"))).isEmpty());
}

TEST_F(Worksheets, SaveFailsAtExit_UserDecidesWhetherToLeave) {
    RunWithFile();
    ClickTab(2);
    Click(QStringLiteral("cmdAdd"));
    QTest::keyClicks(&Get<QLineEdit>(QStringLiteral("txtHeading")), QStringLiteral("Ridge"));
    PrepDatatables::tblManagementGoals.Close();
    {
        support::Answers stay({QMessageBox::No});
        Choose(QStringLiteral("mnuExit"));
        ASSERT_EQ(stay.Texts().size(), 1);
        EXPECT_FALSE(stay.Messages()[0].informative.isEmpty()) << "the reason";
        EXPECT_FALSE(frame_->IsUnloaded());
    }
    support::Answers leave({QMessageBox::Yes});
    Choose(QStringLiteral("mnuExit"));
    EXPECT_EQ(leave.Texts().size(), 1);
    EXPECT_TRUE(frame_->IsUnloaded());
    EXPECT_FALSE(PrepDatafile::IsDatafileOpen());
}

TEST_F(Worksheets, KeysAlongTheTabs_KeepTheKeyboardThereAndNeverReachTabZero) {
    RunWithFile();
    Tab().setFocus();
    Press(Qt::Key_Right);
    EXPECT_EQ(ShownForm(), QStringLiteral("frm2RMAs"));
    Press(Qt::Key_Left);
    Press(Qt::Key_Left);
    EXPECT_EQ(ShownForm(), QStringLiteral("frm1Intro"));
    EXPECT_EQ(Tab().CurrTab(), 1);
    EXPECT_TRUE(Tab().hasFocus());
}

TEST_F(Worksheets, ClickOnATab_GivesTheKeyboardToTheWorksheet) {
    RunWithFile();
    ZoneRecords::Create(QStringLiteral("North"), 1);
    for (const int tab : {2, 3, 4, 5, 6}) {
        ClickTab(tab);
        const QWidget* focus = QApplication::focusWidget();
        ASSERT_NE(focus, nullptr) << tab;
        EXPECT_TRUE(a3PrepForms::CurrentForm()->isAncestorOf(focus)) << tab;
        EXPECT_NE(focus->focusPolicy() & Qt::TabFocus, 0)
            << tab << ": " << focus->objectName().toStdString();
    }
}

TEST_F(Worksheets, StepKeys_FromATextBox_SaveAndSwitchAsAClickDoes) {
    RunWithFile();
    ClickTab(2);
    Click(QStringLiteral("cmdAdd"));
    QTest::keyClicks(&Get<QLineEdit>(QStringLiteral("txtHeading")), QStringLiteral("Ridge"));
    Press(Qt::Key_PageDown, Qt::ControlModifier);
    EXPECT_EQ(ShownForm(), QStringLiteral("frm3SRMaster"));
    EXPECT_EQ(Tab().CurrTab(), 3);
    PrepDatatables::tblManagementGoals->MoveFirst();
    EXPECT_EQ(PrepDatatables::tblManagementGoals->Text(QStringLiteral("ManagementArea")),
              QStringLiteral("Ridge"));
    Press(Qt::Key_PageUp, Qt::ControlModifier);
    EXPECT_EQ(ShownForm(), QStringLiteral("frm2RMAs"));
}

TEST_F(Worksheets, StepKeys_FromAnOpenCell_StoreItAndStopAtTheEnds) {
    RunWithFile();
    ZoneRecords::Create(QStringLiteral("North"), 1);
    ClickTab(5);
    for (const char* where : {"next", "beyond the last"}) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_PageDown, Qt::ControlModifier);
        EXPECT_EQ(ShownForm(), QStringLiteral("frm6SuppressAcre")) << where;
    }
    ClickTab(4);
    auto& grid = Get(QStringLiteral("grdFMZs"));
    QRect cell;
    QMetaObject::invokeMethod(&grid, "CellRect", Q_RETURN_ARG(QRect, cell), Q_ARG(int, 1),
                              Q_ARG(int, 0));
    QWidget* viewport = grid.findChild<QWidget*>(QStringLiteral("qt_scrollarea_viewport"));
    QTest::mouseClick(viewport, Qt::LeftButton, {}, cell.center());
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("Ridge"));
    Press(Qt::Key_PageUp, Qt::ControlModifier);
    EXPECT_EQ(ShownForm(), QStringLiteral("frm3SRMaster"));
    PrepDatatables::tblFMZList->MoveFirst();
    EXPECT_EQ(PrepDatatables::tblFMZList->Text(QStringLiteral("Name")), QStringLiteral("Ridge"));
}

TEST_F(Worksheets, StepKeys_TowardsAWorksheetThatNeedsAZone_AreRefused) {
    RunWithFile();
    ClickTab(4);
    const support::Answers answers;
    Press(Qt::Key_PageDown, Qt::ControlModifier);
    EXPECT_EQ(answers.Texts(), QStringList("Must have at least one FMZ to edit impacts."));
    EXPECT_EQ(ShownForm(), QStringLiteral("frm4FMZs"));
}

TEST_F(Worksheets, LargerLetters_MakeTheStripHigherAndTheWorksheetLower) {
    RunWithFile();
    const QWidget& strip = Get(QStringLiteral("frmTabs"));
    const int before = strip.height();
    QFont larger = frame_->font();
    larger.setPointSize(20);
    frame_->setFont(larger);
    EXPECT_TRUE(QTest::qWaitFor([&] { return strip.height() > before; }));
    EXPECT_EQ(strip.height(), frmTabs::HeightFor(larger));
    EXPECT_EQ(strip.geometry().bottom() + 1, frame_->ClientSize().height());
    EXPECT_EQ(a3PrepForms::CurrentForm()->geometry().bottom() + 1, strip.y());
}

TEST_F(Worksheets, Strip_SaysWhereTheOpenFileLies) {
    RunWithFile();
    auto& file = Get<QLabel>(QStringLiteral("lblFile"));
    EXPECT_EQ(file.toolTip(),
              "Data file: " + QDir::toNativeSeparators(PrepDatafile::CurrentPath()));
    EXPECT_EQ(file.accessibleName(), file.toolTip());
    ResizeClientTo(1600, 700);
    EXPECT_TRUE(file.isVisible());
    EXPECT_EQ(file.text(), QDir::toNativeSeparators(PrepDatafile::CurrentPath()));
    EXPECT_GT(file.x(), Tab().tabRect(6).right());
    const QString name = PrepDatafile::CurrentFileName();
    const int tabs = file.x();
    ResizeClientTo(tabs + file.fontMetrics().horizontalAdvance(name), 500);
    EXPECT_EQ(file.text(), QFileInfo(name).completeBaseName()) << "no cut name";
    ResizeClientTo(600, 500);
    EXPECT_FALSE(file.isVisible()) << "no room beside the tabs";
}

TEST_F(Worksheets, Import_SaysWhatCameAndShowsTheFirstNewZone) {
    RunWithFile();
    for (int zone = 0; zone < 40; ++zone) {
        ZoneRecords::Create(QStringLiteral("Zone"), 1);
    }
    ClickTab(4);
    support::Answers answers;
    const QString source = support::BuiltFolder() + QStringLiteral("/Costs/BRAM0000.mdb");
    answers.Then([source](QWidget& dialog) { ChooseFile(dialog, source); });
    Click(QStringLiteral("cmdImport"));
    const auto& note = Get<QLabel>(QStringLiteral("lblNote"));
    EXPECT_TRUE(note.isVisible());
    EXPECT_EQ(note.text(), "Imported: 3 zones with 6 locations.");
    const auto& zones = Get<vsFlexGrid>(QStringLiteral("grdFMZs"));
    EXPECT_EQ(zones.Row(), 41);
    EXPECT_TRUE(zones.viewport()->rect().contains(zones.visualRect(zones.currentIndex())));
}

}  // namespace
