// The naming dialog, played with keys and clicks.
#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QDate>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include <memory>

#include "base/UIMode.h"
#include "datafile/frmFCDName.h"
#include "platform/controls/vsFlexGrid.h"
#include "support/Answers.h"
#include "support/BuiltProgramFolder.h"

namespace {

class NamingDialogTest : public testing::Test {
protected:
    NamingDialogTest() : dialog_(std::make_unique<frmFCDName>(nullptr)) {
        EXPECT_TRUE(dialog_->Load());
        dialog_->show();
        dialog_->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(dialog_.get()));
        folder_.ForgetTrace();
    }
    ~NamingDialogTest() override { dialog_->Unload(); }

    template <typename Control>
    [[nodiscard]] Control* Find(const char* name) const {
        auto* control = dialog_->findChild<Control*>(QString::fromLatin1(name));
        EXPECT_NE(control, nullptr) << name;
        return control;
    }
    [[nodiscard]] QLineEdit* Box(const char* name) const { return Find<QLineEdit>(name); }
    [[nodiscard]] QString Text(const char* name) const { return Box(name)->text(); }
    // The log without the entries of the boxes' change handlers, which the program's own filling
    // writes as well.
    [[nodiscard]] QStringList Steps() const {
        QStringList steps = folder_.Trace();
        steps.removeIf([](const QString& entry) { return entry.endsWith(u"_Change"); });
        return steps;
    }
    [[nodiscard]] vsFlexGrid* Grid() const { return Find<vsFlexGrid>("grdUnits"); }

    void Type(const char* name, const QString& text) const {
        Box(name)->setFocus();
        Box(name)->selectAll();
        QTest::keyClicks(Box(name), text);
    }
    void PressOK() const { QTest::mouseClick(Find<QPushButton>("cmdOK"), Qt::LeftButton); }
    [[nodiscard]] QString Focus() const {
        const QWidget* focus = dialog_->focusWidget();
        return focus == nullptr ? QString() : focus->objectName();
    }
    [[nodiscard]] int RowOf(const QString& id, const QString& state) const {
        for (int row = 1; row < Grid()->Rows(); ++row) {
            if (Grid()->TextMatrix(row, 1) == id && Grid()->TextMatrix(row, 2) == state) {
                return row;
            }
        }
        return -1;
    }
    // Of the row that is marked; empty while none is.
    [[nodiscard]] QString MarkedID() const {
        const QModelIndexList marked = Grid()->selectionModel()->selectedRows(1);
        return marked.isEmpty() ? QString() : marked.front().data().toString();
    }
    void ClickRow(int row) const {
        ASSERT_GT(row, 0);
        QTest::mouseClick(Grid()->viewport(), Qt::LeftButton, Qt::NoModifier,
                          Grid()->CellRect(row, 0).center());
    }
    static QString Year() { return QDate::currentDate().toString(QStringLiteral("yy")); }

    support::ProgramFolder folder_;
    std::unique_ptr<frmFCDName> dialog_;
};

TEST_F(NamingDialogTest, Load_FillsTheYearAndTheHeaders) {
    EXPECT_EQ(dialog_->windowTitle(), QStringLiteral("Name the TARN Prep file"));
    EXPECT_EQ(Text("txtYear"), Year());
    EXPECT_EQ(Text("txtFileTitle"), QString());
    EXPECT_FALSE(Find<QLabel>("lblTie")->isVisible());
    EXPECT_EQ(Find<QLabel>("lblExtension")->text(), QStringLiteral(".FCD"));
    EXPECT_EQ(Grid()->Cols(), 3);
    EXPECT_EQ(Grid()->ColWidth(0), 3240);
    EXPECT_EQ(Grid()->ColWidth(1), 600);
    EXPECT_EQ(Grid()->TextMatrix(0, 0), QStringLiteral("Unit Name"));
    EXPECT_EQ(Grid()->TextMatrix(0, 1), QStringLiteral("Unit ID"));
    EXPECT_EQ(Grid()->TextMatrix(0, 2), QStringLiteral("State"));
    EXPECT_TRUE(UIMode::NotBusy());
}

TEST_F(NamingDialogTest, EveryControl_HasANameForPeople) {
    for (const QWidget* control : dialog_->findChildren<QWidget*>()) {
        if (!control->isVisible() || control->focusPolicy() == Qt::NoFocus ||
            control->objectName().startsWith(QStringLiteral("qt_"))) {
            continue;
        }
        EXPECT_FALSE(control->objectName().isEmpty()) << control->metaObject()->className();
        EXPECT_FALSE(control->accessibleName().isEmpty()) << control->objectName().toStdString();
    }
}

TEST_F(NamingDialogTest, UnitID_OfOneState_FillsNameStateAndTitle) {
    Type("txtUnitID", QStringLiteral("gpf"));
    EXPECT_EQ(Text("txtUnitID"), QStringLiteral("GPF"));
    EXPECT_EQ(Text("txtUnitName"), QStringLiteral("Gifford Pinchot National Forest"));
    EXPECT_EQ(Text("txtState"), QStringLiteral("WA"));
    EXPECT_EQ(Text("txtFileTitle"), QStringLiteral("GPFWA") + Year());
    EXPECT_EQ(Focus(), QStringLiteral("txtYear"));
    EXPECT_EQ(MarkedID(), QStringLiteral("GPF"));
    EXPECT_EQ(Box("txtYear")->selectedText(), Year());
    EXPECT_EQ(Steps(),
              QStringList({QStringLiteral("   frmFCDName.GetMatchingIDs G"),
                           QStringLiteral("   frmFCDName.GetMatchingIDs GP"),
                           QStringLiteral("   frmFCDName.GetUnit GPF"),
                           QStringLiteral("   frmFCDName.CreateFileTitle GPFWA") + Year()}));
}

TEST_F(NamingDialogTest, UnitID_OfSeveralStates_ShowsTheTieAndWaitsForTheState) {
    Type("txtUnitID", QStringLiteral("snf"));
    EXPECT_TRUE(Find<QLabel>("lblTie")->isVisible());
    EXPECT_EQ(Find<QLabel>("lblTie")->text(),
              QStringLiteral("Units in more than one state have the same unit ID.\nPlease select "
                             "the Unit from the list at the right."));
    EXPECT_EQ(Focus(), QStringLiteral("txtState"));
    EXPECT_EQ(Text("txtFileTitle"), QString());
    EXPECT_GT(RowOf(QStringLiteral("SNF"), QStringLiteral("NM")), 0);

    QTest::keyClicks(Box("txtState"), QStringLiteral("n5m"));
    EXPECT_EQ(Text("txtState"), QStringLiteral("NM"));
    EXPECT_EQ(Text("txtUnitName"), QStringLiteral("Santa Fe National Forest"));
    EXPECT_EQ(Text("txtFileTitle"), QStringLiteral("SNFNM") + Year());
    EXPECT_EQ(Focus(), QStringLiteral("txtYear"));
    EXPECT_FALSE(Find<QLabel>("lblTie")->isVisible());
}

TEST_F(NamingDialogTest, UnitID_PastedTie_ShowsItsUnitsInTheList) {
    QApplication::clipboard()->setText(QStringLiteral("TNF"));
    Box("txtUnitID")->setFocus();
    Box("txtUnitID")->paste();
    EXPECT_TRUE(Find<QLabel>("lblTie")->isVisible());
    EXPECT_GT(RowOf(QStringLiteral("TNF"), QStringLiteral("AZ")), 0);
}

TEST_F(NamingDialogTest, UnitID_Unknown_ShowsNeighborsAndAsksForTheName) {
    const QString search = QStringLiteral("   frmFCDName.GetMatchingIDs ZZZ");
    Type("txtUnitID", QStringLiteral("zzz"));
    EXPECT_EQ(Focus(), QStringLiteral("txtUnitName"));
    EXPECT_EQ(Grid()->TextMatrix(Grid()->Rows() - 1, 1), QStringLiteral("ZUA"));
    EXPECT_EQ(Steps().count(search), 1);
    QTest::keyClicks(Box("txtUnitName"), QStringLiteral("New unit"));
    Type("txtState", QStringLiteral("wa"));
    EXPECT_EQ(Text("txtFileTitle"), QStringLiteral("ZZZWA") + Year());
    EXPECT_EQ(Focus(), QStringLiteral("txtUnitName")) << "the pair is not in the table";
    EXPECT_EQ(Steps().count(search), 2);
    EXPECT_EQ(Grid()->TextMatrix(Grid()->Rows() - 1, 1), QStringLiteral("ZUA"));
    PressOK();
    EXPECT_EQ(dialog_->Result().fileStatus, frmFCDName::kChosen);
    EXPECT_EQ(dialog_->Result().fileName, QStringLiteral("ZZZWA") + Year() + ".FCD");
    EXPECT_EQ(dialog_->Result().unitDescription, QStringLiteral("New unit '") + Year());
}

TEST_F(NamingDialogTest, UnknownUnitAfterAFoundOne_EmptiesTheTitle) {
    Type("txtUnitID", QStringLiteral("GPF"));
    Type("txtUnitID", QStringLiteral("ZZZ"));
    EXPECT_EQ(Text("txtFileTitle"), QString());
    EXPECT_EQ(Text("txtUnitName"), QString());
    EXPECT_EQ(Text("txtState"), QString());
}

TEST_F(NamingDialogTest, State_Shortened_EmptiesTheTitleUntilItIsWhole) {
    Type("txtUnitID", QStringLiteral("GPF"));
    Box("txtState")->setFocus();
    EXPECT_EQ(Box("txtState")->selectedText(), QStringLiteral("WA"));
    QTest::keyClick(Box("txtState"), Qt::Key_End);
    QTest::keyClick(Box("txtState"), Qt::Key_Backspace);
    EXPECT_EQ(Text("txtFileTitle"), QString());
    QTest::keyClicks(Box("txtState"), QStringLiteral("a"));
    EXPECT_EQ(Text("txtFileTitle"), QStringLiteral("GPFWA") + Year());
}

TEST_F(NamingDialogTest, Year_Retyped_ComposesTheTitleAnew) {
    Type("txtUnitID", QStringLiteral("GPF"));
    QTest::keyClicks(Box("txtYear"), QStringLiteral("3x"));
    EXPECT_EQ(Text("txtYear"), QStringLiteral("3"));
    EXPECT_EQ(Text("txtFileTitle"), QString());
    QTest::keyClicks(Box("txtYear"), QStringLiteral("1"));
    EXPECT_EQ(Text("txtFileTitle"), QStringLiteral("GPFWA31"));
    EXPECT_EQ(Focus(), QStringLiteral("txtYear"));
    QTest::keyClick(Box("txtYear"), Qt::Key_Return);
    EXPECT_EQ(dialog_->Result().fileName, QStringLiteral("GPFWA31.FCD"));
}

TEST_F(NamingDialogTest, Year_OfFourDigits_EndsAsTheLastTwo) {
    Type("txtUnitID", QStringLiteral("GPF"));
    QTest::keyClicks(dialog_->focusWidget(), QStringLiteral("202"));
    EXPECT_EQ(Text("txtYear"), QStringLiteral("202"));
    EXPECT_EQ(Text("txtFileTitle"), QString()) << "no file of the year 20";
    QTest::keyClicks(dialog_->focusWidget(), QStringLiteral("7"));
    EXPECT_EQ(Text("txtYear"), QStringLiteral("27"));
    EXPECT_EQ(Text("txtFileTitle"), QStringLiteral("GPFWA27"));
    EXPECT_EQ(Focus(), QStringLiteral("txtYear"));
}

TEST_F(NamingDialogTest, Year_OfThreeDigits_MakesNoTitleWhateverComposesIt) {
    Type("txtUnitID", QStringLiteral("GPF"));
    QTest::keyClicks(dialog_->focusWidget(), QStringLiteral("202"));
    Box("txtState")->clear();
    Type("txtState", QStringLiteral("wa"));
    EXPECT_EQ(Text("txtFileTitle"), QString());
    Box("txtYear")->setFocus();
    QTest::keyClick(Box("txtYear"), Qt::Key_End);
    QTest::keyClicks(Box("txtYear"), QStringLiteral("7"));
    EXPECT_EQ(Text("txtFileTitle"), QStringLiteral("GPFWA27"));
}

TEST_F(NamingDialogTest, Year_OfAnUnknownUnit_KeepsTheKeyboard) {
    Type("txtUnitID", QStringLiteral("zzz"));
    QTest::keyClicks(Box("txtUnitName"), QStringLiteral("New unit"));
    Type("txtState", QStringLiteral("wa"));
    Box("txtYear")->setFocus();
    for (const char digit : {'2', '0', '2', '7'}) {
        QTest::keyClick(dialog_->focusWidget(), digit);
    }
    EXPECT_EQ(Text("txtFileTitle"), QStringLiteral("ZZZWA27"));
    EXPECT_EQ(Text("txtUnitName"), QStringLiteral("New unit"));
}

TEST_F(NamingDialogTest, DiscardedKeys_LeaveYearAndTitle) {
    Type("txtUnitID", QStringLiteral("gpf"));
    QTest::keyClick(dialog_->focusWidget(), Qt::Key_Space);
    QTest::keyClicks(dialog_->focusWidget(), QStringLiteral("gpf"));
    EXPECT_EQ(Text("txtYear"), Year());
    EXPECT_EQ(Text("txtFileTitle"), QStringLiteral("GPFWA") + Year());
}

TEST_F(NamingDialogTest, List_IsFilledFromTheStart) {
    EXPECT_EQ(Grid()->Rows(), 21);
    EXPECT_FALSE(Grid()->TextMatrix(1, 0).isEmpty());
    EXPECT_EQ(Text("txtUnitID"), QString());
}

TEST_F(NamingDialogTest, List_MarksTheWholeRowOfTheMatch) {
    Type("txtUnitName", QStringLiteral("gifford"));
    EXPECT_EQ(MarkedID(), QStringLiteral("GPF"));
    EXPECT_EQ(Grid()->selectionModel()->selectedIndexes().size(), 3);
    EXPECT_EQ(Grid()->selectionModel()->selectedIndexes().front().row(), Grid()->Row() - 1);
    Type("txtUnitID", QStringLiteral("gp"));
    EXPECT_EQ(MarkedID(), QStringLiteral("GPA")) << "the first that begins like this";
}

TEST_F(NamingDialogTest, List_WithoutAMatch_MarksNothing) {
    EXPECT_EQ(MarkedID(), QString()) << "nothing was looked for yet";
    Type("txtUnitName", QStringLiteral("giffordx"));
    EXPECT_EQ(MarkedID(), QString()) << "no name begins like this";
    Type("txtUnitName", QStringLiteral("zzz"));
    EXPECT_EQ(MarkedID(), QString());
    EXPECT_FALSE(Grid()->currentIndex().isValid()) << "nor is one framed";
    EXPECT_TRUE(Grid()->viewport()->rect().contains(
        Grid()->visualRect(Grid()->model()->index(Grid()->Rows() - 2, 0))));
}

TEST_F(NamingDialogTest, List_MarksAUnitThatWasPastedWhole) {
    QApplication::clipboard()->setText(QStringLiteral("GPF"));
    Box("txtUnitID")->setFocus();
    Box("txtUnitID")->paste();
    EXPECT_EQ(MarkedID(), QStringLiteral("GPF"));
}

TEST_F(NamingDialogTest, Extension_StandsNextToTheTitle) {
    const auto gap = [this] {
        const QLineEdit& title = *Box("txtFileTitle");
        return Find<QLabel>("lblExtension")->x() - title.x() -
               title.fontMetrics().horizontalAdvance(title.text());
    };
    Type("txtUnitID", QStringLiteral("GPF"));
    QCoreApplication::processEvents();
    EXPECT_LE(gap(), 6);
    Type("txtUnitID", QStringLiteral("WWW"));
    QTest::keyClicks(Box("txtState"), QStringLiteral("WW"));
    QCoreApplication::processEvents();
    EXPECT_LE(gap(), 6);
    EXPECT_GE(gap(), 0);
}

TEST_F(NamingDialogTest, ComposedName_DoesNotLookLikeABoxToTypeIn) {
    EXPECT_FALSE(Box("txtFileTitle")->hasFrame());
    EXPECT_TRUE(Box("txtFileTitle")->isReadOnly());
    EXPECT_EQ(Box("txtFileTitle")->palette().color(QPalette::Base).alpha(), 0);
}

TEST_F(NamingDialogTest, Year_WithoutATitle_ComposesNone) {
    Type("txtYear", QStringLiteral("31"));
    EXPECT_EQ(Text("txtFileTitle"), QString());
}

TEST_F(NamingDialogTest, DownArrow_WalksFromUnitToStateToYear) {
    Box("txtUnitID")->setFocus();
    QTest::keyClick(Box("txtUnitID"), Qt::Key_Down);
    EXPECT_EQ(Focus(), QStringLiteral("txtState"));
    QTest::keyClick(Box("txtState"), Qt::Key_Down);
    EXPECT_EQ(Focus(), QStringLiteral("txtYear"));
}

TEST_F(NamingDialogTest, UnitName_BeyondTheLast_ListsTheLastEntries) {
    Type("txtUnitName", QStringLiteral("zzz"));
    EXPECT_EQ(Grid()->Rows(), 7);
    EXPECT_EQ(Grid()->TextMatrix(6, 0), QStringLiteral("Zuni Agency"));
}

TEST_F(NamingDialogTest, ClickOnAUnit_FillsTheBoxesAndComposesTheTitle) {
    Type("txtUnitName", QStringLiteral("gifford"));
    folder_.ForgetTrace();
    ClickRow(RowOf(QStringLiteral("GPF"), QStringLiteral("WA")));
    EXPECT_EQ(Text("txtUnitID"), QStringLiteral("GPF"));
    EXPECT_EQ(Text("txtUnitName"), QStringLiteral("Gifford Pinchot National Forest"));
    EXPECT_EQ(Text("txtState"), QStringLiteral("WA"));
    EXPECT_EQ(Steps(),
              QStringList({QStringLiteral("   grdUnits_Click"),
                           QStringLiteral("   frmFCDName.CreateFileTitle GPFWA") + Year()}));
    PressOK();
    EXPECT_EQ(dialog_->Result().fileName, QStringLiteral("GPFWA") + Year() + ".FCD");
    EXPECT_EQ(dialog_->Result().unitDescription,
              QStringLiteral("Gifford Pinchot National Forest '") + Year());
}

TEST_F(NamingDialogTest, EnterInTheList_ChoosesTheCurrentUnit) {
    Type("txtUnitName", QStringLiteral("gifford"));
    Grid()->setFocus();
    Grid()->Select(RowOf(QStringLiteral("GPF"), QStringLiteral("WA")), 0);
    QTest::keyClick(Grid(), Qt::Key_Return);
    EXPECT_EQ(Text("txtFileTitle"), QStringLiteral("GPFWA") + Year());
    EXPECT_TRUE(dialog_->isVisible());
}

TEST_F(NamingDialogTest, HeaderOfTheList_Clicked_ChangesNothing) {
    Type("txtUnitName", QStringLiteral("gifford"));
    const QRect header = Grid()->CellRect(0, 0);
    QWidget* at = Grid()->childAt(Grid()->viewport()->mapTo(Grid(), header.center()));
    ASSERT_NE(at, nullptr);
    QTest::mouseClick(at, Qt::LeftButton, Qt::NoModifier, QPoint(20, header.height() / 2));
    EXPECT_EQ(Text("txtUnitID"), QString());
    EXPECT_EQ(Text("txtUnitName"), QStringLiteral("gifford"));
}

TEST_F(NamingDialogTest, OK_WithNothing_IsCancel) {
    PressOK();
    EXPECT_EQ(dialog_->Result().fileStatus, frmFCDName::kCancelled);
    EXPECT_FALSE(dialog_->isVisible());
    EXPECT_EQ(folder_.Trace(), QStringList({QStringLiteral("   frmFCDName.cmdOK_Click")}));
}

TEST_F(NamingDialogTest, OK_WithANameOnly_GoesBackToTheIdentifier) {
    Type("txtUnitName", QStringLiteral("Somewhere"));
    PressOK();
    EXPECT_TRUE(dialog_->isVisible());
    EXPECT_EQ(Focus(), QStringLiteral("txtUnitID"));
}

TEST_F(NamingDialogTest, OK_NameTaken_AsksAndStaysOnNo) {
    support::WriteBytes(folder_.CostsPath(QStringLiteral("GPFWA%1.FCD").arg(Year())), "here");
    Type("txtUnitID", QStringLiteral("GPF"));
    {
        const support::Answers answers({QMessageBox::No});
        PressOK();
        ASSERT_EQ(answers.Messages().size(), 1U);
        const support::Message& question = answers.Messages().front();
        EXPECT_EQ(question.text,
                  QStringLiteral("The file already exists.  Do you want to overwrite it?"));
        EXPECT_EQ(question.title, QStringLiteral("Replace file?"));
        EXPECT_EQ(question.icon, QMessageBox::Critical);
        EXPECT_EQ(question.buttons, QMessageBox::Yes | QMessageBox::No);
        EXPECT_EQ(question.defaultButton, QMessageBox::No);
    }
    EXPECT_TRUE(dialog_->isVisible());
    EXPECT_EQ(dialog_->Result().fileStatus, frmFCDName::kCancelled);
    const support::Answers answers({QMessageBox::Yes});
    PressOK();
    EXPECT_EQ(dialog_->Result().fileStatus, frmFCDName::kChosen);
    EXPECT_FALSE(dialog_->isVisible());
}

TEST_F(NamingDialogTest, Esc_IsCancel) {
    QTest::keyClick(dialog_.get(), Qt::Key_Escape);
    EXPECT_FALSE(dialog_->isVisible());
    EXPECT_EQ(dialog_->Result().fileStatus, frmFCDName::kCancelled);
    EXPECT_EQ(folder_.Trace(), QStringList({QStringLiteral("   frmFCDName.cmdCancel_Click")}));
}

TEST_F(NamingDialogTest, AtEightHundredBySixHundred_NothingIsCutOff) {
    EXPECT_LE(dialog_->width(), 800);
    EXPECT_LE(dialog_->height(), 560);
    for (const QLabel* label : dialog_->findChildren<QLabel*>()) {
        if (label->isVisible() && !label->text().isEmpty()) {
            const int needed = label->wordWrap() ? label->heightForWidth(label->width())
                                                 : label->sizeHint().height();
            EXPECT_GE(label->height(), needed) << label->text().toStdString();
        }
    }
}

TEST(NamingDialog, Load_WithoutUnitNames_SaysSoAndEnds) {
    const support::ProgramFolder folder;
    QFile::remove(folder.Path(QStringLiteral("fcdname.dat")));
    const support::Answers answers;
    const frmFCDName::Outcome outcome = frmFCDName::ShowModal(nullptr);
    EXPECT_EQ(outcome.fileStatus, frmFCDName::kNoUnitNames);
    EXPECT_EQ(answers.Texts(),
              QStringList(QStringLiteral("Error loading Unit Names from fcdname.dat")));
    EXPECT_FALSE(answers.Messages().front().informative.isEmpty()) << "the reason";
    EXPECT_EQ(folder.Trace(),
              QStringList({QStringLiteral("   Load frmFCDName"),
                           QStringLiteral("   frmFCDName.SetupGrid"),
                           QStringLiteral("   frmFCDName.OpenNameTables"),
                           QStringLiteral("  Warning! frmFCDName.OpenNameTables: Unsuccessful"),
                           QStringLiteral("   Unloaded frmFCDName"),
                           QStringLiteral("   frmFCDName.CloseNameTables")}));
    EXPECT_TRUE(UIMode::NotBusy());
}

TEST_F(NamingDialogTest, NamesTakeTheRoomThatIsFree) {
    const auto used = [this] {
        int width = 0;
        for (int col = 0; col < 3; ++col) {
            width += Grid()->columnWidth(col);
        }
        return width;
    };
    EXPECT_EQ(used(), Grid()->viewport()->width());
    EXPECT_GE(Grid()->columnWidth(0),
              Grid()->fontMetrics().horizontalAdvance("George Washington Carver Nat. Monument"));
    dialog_->resize(dialog_->width() + 300, dialog_->height());
    EXPECT_EQ(used(), Grid()->viewport()->width());
    EXPECT_GT(Grid()->columnWidth(0), 216 + 100);
    EXPECT_EQ(Grid()->ColWidth(0), 3240);
}

}  // namespace
