// Management goals.
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>

#include "datafile/FieldReaders.h"
#include "worksheet_fixture.h"
#include "worksheets/goals/frm2RMAs.h"

using PrepDatatables::tblManagementGoals;

namespace {

class GoalsTest : public WorksheetTest {
protected:
    static void AddArea(const QString& heading, const QString& body) {
        tblManagementGoals->AddNew();
        tblManagementGoals->SetField(QStringLiteral("ManagementArea"), heading);
        tblManagementGoals->SetField(QStringLiteral("Explanation"), body);
        tblManagementGoals->Update();
    }
    static QString Heading(int key) {
        tblManagementGoals->Seek("=", {key});
        return FieldReaders::TextField(*tblManagementGoals, QStringLiteral("ManagementArea"));
    }
    static QString Body(int key) {
        tblManagementGoals->Seek("=", {key});
        return FieldReaders::TextField(*tblManagementGoals, QStringLiteral("Explanation"));
    }
    QListWidget& List() { return Find<QListWidget>("lstRMAs"); }
    QLineEdit& HeadingBox() { return Find<QLineEdit>("txtHeading"); }
    QPlainTextEdit& BodyBox() { return Find<QPlainTextEdit>("txtBody"); }
};

TEST_F(GoalsTest, EmptyFile_OffersOnlyAdding) {
    Load<frm2RMAs>();
    EXPECT_EQ(manager_.worksheetID, QStringLiteral("RMA"));
    EXPECT_EQ(List().count(), 0);
    EXPECT_FALSE(HeadingBox().isEnabled());
    EXPECT_FALSE(BodyBox().isEnabled());
    EXPECT_FALSE(Find<QPushButton>("cmdDelete").isEnabled());
    EXPECT_TRUE(Find<QPushButton>("cmdAdd").isEnabled());
}

TEST_F(GoalsTest, Setup_ShowsTheFirstAreaAndLinksByKey) {
    AddArea(QStringLiteral("North"), QStringLiteral("Keep fires small."));
    AddArea(QStringLiteral("<b>South</b>"), QString());
    Load<frm2RMAs>();
    ASSERT_EQ(List().count(), 2);
    EXPECT_EQ(List().item(1)->text(), QStringLiteral("<b>South</b>"));
    EXPECT_EQ(List().item(1)->data(Qt::UserRole).toInt(), 2);
    EXPECT_EQ(HeadingBox().text(), QStringLiteral("North"));
    EXPECT_EQ(BodyBox().toPlainText(), QStringLiteral("Keep fires small."));
    EXPECT_TRUE(Find<QPushButton>("cmdDelete").isEnabled());
    EXPECT_EQ(Count(folder_.Trace(), QStringLiteral("lstRMAs_Click North")), 1);
}

TEST_F(GoalsTest, Add_MakesTheRecordAtOnceAndWaitsForTheName) {
    Load<frm2RMAs>();
    ClickButton("cmdAdd");
    EXPECT_EQ(tblManagementGoals->RecordCount(), 1);
    EXPECT_EQ(QApplication::focusWidget(), &HeadingBox());
    EXPECT_TRUE(BodyBox().isEnabled());
    Leave();
    EXPECT_EQ(tblManagementGoals->RecordCount(), 1) << "also without a name";
    EXPECT_EQ(Heading(1), QString());
}

TEST_F(GoalsTest, TypingTheHeading_ChangesTheListLetterByLetter) {
    Load<frm2RMAs>();
    ClickButton("cmdAdd");
    Type(QStringLiteral("Wi"));
    EXPECT_EQ(List().item(0)->text(), QStringLiteral("Wi"));
    EXPECT_EQ(Heading(1), QString()) << "not saved yet";
    Type(QStringLiteral("lderness"));
    form_->Save();
    EXPECT_EQ(Heading(1), QStringLiteral("Wilderness"));
    EXPECT_EQ(Count(folder_.Trace(), QStringLiteral("Update 1")), 1);
    form_->Save();
    EXPECT_EQ(Count(folder_.Trace(), QStringLiteral("Update 1")), 1) << "nothing to save twice";
}

TEST_F(GoalsTest, AnotherArea_SavesTheOneThatWasShown) {
    AddArea(QStringLiteral("North"), QStringLiteral("n"));
    AddArea(QStringLiteral("South"), QStringLiteral("s"));
    Load<frm2RMAs>();
    BodyBox().setFocus();
    Type(QStringLiteral("New "));
    List().setFocus();
    Press(Qt::Key_Down);
    EXPECT_EQ(BodyBox().toPlainText(), QStringLiteral("s"));
    EXPECT_EQ(Body(1), QStringLiteral("New n"));
    EXPECT_EQ(Body(2), QStringLiteral("s"));
}

TEST_F(GoalsTest, JustLooking_WritesNothing) {
    const QString mixed = QStringLiteral("a\nb\rc\r\nd");
    AddArea(QStringLiteral("North"), mixed);
    AddArea(QStringLiteral("South"), QString());
    Load<frm2RMAs>();
    List().setFocus();
    Press(Qt::Key_Down);
    Press(Qt::Key_Up);
    Leave();
    EXPECT_EQ(Body(1), mixed);
    EXPECT_TRUE(folder_.Trace().filter(QStringLiteral("   Update ")).isEmpty());
}

TEST_F(GoalsTest, HeadingEdited_LeavesTheObjectivesAsTheyAreToTheLetter) {
    const QString mixed = QStringLiteral("a\nb\rc\r\nd") + QChar(0x00A0) + QChar(0x2028);
    AddArea(QStringLiteral("North"), mixed);
    Load<frm2RMAs>();
    HeadingBox().setFocus();
    Type(QStringLiteral("!"));
    Leave();
    EXPECT_EQ(Body(1), mixed);
}

TEST_F(GoalsTest, LineBreaks_AreReturnAndLineFeedInTheFile) {
    Load<frm2RMAs>();
    ClickButton("cmdAdd");
    BodyBox().setFocus();
    Type(QStringLiteral("one"));
    Press(Qt::Key_Return);
    Type(QStringLiteral("two"));
    Leave();
    EXPECT_EQ(Body(1), QStringLiteral("one\r\ntwo"));
    Load<frm2RMAs>();
    EXPECT_EQ(BodyBox().toPlainText(), QStringLiteral("one\ntwo"));
}

TEST_F(GoalsTest, HundredThousandCharactersOfAnyKind_SurviveUnchanged) {
    const QString piece = QString::fromUtf8("Feu de forêt 森林火災 \U0001F525 a\u00a0b\n");
    QString text = piece.repeated(100000 / static_cast<int>(piece.size()) + 1);
    text.chop(1);
    Load<frm2RMAs>();
    ClickButton("cmdAdd");
    BodyBox().setPlainText(text);
    Leave();
    QString inFile = text;
    inFile.replace(u'\n', QStringLiteral("\r\n"));
    EXPECT_EQ(Body(1) == inFile, true);
    Load<frm2RMAs>();
    BodyBox().setFocus();
    Type(QStringLiteral("x"));
    Leave();
    EXPECT_EQ(Body(1) == QStringLiteral("x") + inFile, true);
}

TEST_F(GoalsTest, Heading_TakesAtMostHundredCharacters) {
    Load<frm2RMAs>();
    ClickButton("cmdAdd");
    Type(QString(120, u'h'));
    EXPECT_EQ(HeadingBox().text().size(), 100);
    Leave();
    EXPECT_EQ(Heading(1).size(), 100);
}

TEST_F(GoalsTest, DeleteDeclined_LeavesRecordAndList) {
    AddArea(QStringLiteral("North"), QString());
    Load<frm2RMAs>();
    support::Answers answers({QMessageBox::No});
    ClickButton("cmdDelete");
    EXPECT_EQ(answers.Texts(), QStringList{"Do you really want to delete North"});
    EXPECT_EQ(answers.Messages().at(0).defaultButton, QMessageBox::No);
    EXPECT_EQ(tblManagementGoals->RecordCount(), 1);
    EXPECT_EQ(List().count(), 1);
}

TEST_F(GoalsTest, DeletingTheLastArea_EmptiesAndDisablesEverything) {
    AddArea(QStringLiteral("North"), QStringLiteral("n"));
    Load<frm2RMAs>();
    support::Answers answers({QMessageBox::Yes});
    ClickButton("cmdDelete");
    EXPECT_EQ(tblManagementGoals->RecordCount(), 0);
    EXPECT_EQ(List().count(), 0);
    EXPECT_EQ(HeadingBox().text(), QString());
    EXPECT_EQ(BodyBox().toPlainText(), QString());
    EXPECT_FALSE(HeadingBox().isEnabled());
    EXPECT_FALSE(BodyBox().isEnabled());
    EXPECT_FALSE(Find<QPushButton>("cmdDelete").isEnabled());
    Leave();
    EXPECT_TRUE(errors_.empty());
}

TEST_F(GoalsTest, AddAfterDeletingTheLast_EnablesTheBoxesAgain) {
    AddArea(QStringLiteral("North"), QStringLiteral("n"));
    Load<frm2RMAs>();
    support::Answers answers({QMessageBox::Yes});
    ClickButton("cmdDelete");
    ClickButton("cmdAdd");
    Type(QStringLiteral("West"));
    Leave();
    EXPECT_EQ(Heading(2), QStringLiteral("West"));
}

TEST_F(GoalsTest, DeletingOneOfSeveral_ShowsTheFirst) {
    AddArea(QStringLiteral("North"), QStringLiteral("n"));
    AddArea(QStringLiteral("South"), QStringLiteral("s"));
    Load<frm2RMAs>();
    List().setFocus();
    Press(Qt::Key_Down);
    support::Answers answers({QMessageBox::Yes});
    ClickButton("cmdDelete");
    EXPECT_EQ(List().count(), 1);
    EXPECT_EQ(List().currentRow(), 0);
    EXPECT_EQ(HeadingBox().text(), QStringLiteral("North"));
    EXPECT_EQ(Heading(2), QString()) << "gone";
}

TEST_F(GoalsTest, TextThatCannotBeSaved_StaysWithItsArea) {
    AddArea(QStringLiteral("North"), QStringLiteral("n"));
    AddArea(QStringLiteral("South"), QStringLiteral("s"));
    Load<frm2RMAs>();
    BodyBox().setFocus();
    Type(QStringLiteral("typed "));
    tblManagementGoals->Seek("=", {1});
    tblManagementGoals->Delete();
    List().setFocus();
    Press(Qt::Key_Down);
    ASSERT_EQ(errors_.size(), 1U);
    EXPECT_EQ(errors_[0].subject, QStringLiteral("North"));
    EXPECT_EQ(List().currentRow(), 0) << "back to the area in the boxes";
    EXPECT_EQ(BodyBox().toPlainText(), QStringLiteral("typed n"));
    EXPECT_EQ(Body(2), QStringLiteral("s"));
}

TEST_F(GoalsTest, ClickOnTheSelectedArea_RunsItsHandler) {
    AddArea(QStringLiteral("North"), QStringLiteral("n"));
    AddArea(QStringLiteral("South"), QStringLiteral("s"));
    Load<frm2RMAs>();
    const auto click = [this](int row) {
        ClickAt(*List().viewport(), List().visualItemRect(List().item(row)).center());
    };
    const auto clicks = [this](const char* name) {
        return Count(folder_.Trace(), QStringLiteral("lstRMAs_Click ") + QString::fromLatin1(name));
    };
    click(1);
    EXPECT_EQ(clicks("South"), 1) << "once for each click";
    BodyBox().setFocus();
    Type(QStringLiteral("New "));
    click(1);
    EXPECT_EQ(clicks("South"), 2);
    EXPECT_EQ(Body(2), QStringLiteral("New s")) << "saved by it";
}

TEST_F(GoalsTest, AreaWithoutAName_IsShownAsSuch) {
    AddArea(QString(), QString());
    Load<frm2RMAs>();
    EXPECT_EQ(List().item(0)->text(), QString());
    EXPECT_EQ(List().item(0)->data(Qt::AccessibleTextRole).toString(), QStringLiteral("(no name)"));
}

TEST_F(GoalsTest, TypedTexts_AreTakenBackBoxByBox) {
    AddArea(QStringLiteral("North"), QStringLiteral("a\nb"));
    AddArea(QStringLiteral("South"), QStringLiteral("s"));
    Load<frm2RMAs>();
    BodyBox().setFocus();
    Type(QStringLiteral("New "));
    HeadingBox().setFocus();
    Press(Qt::Key_End);
    Type(QStringLiteral("!"));
    List().setFocus();
    Press(Qt::Key_Down);
    EXPECT_EQ(Body(1), QStringLiteral("New a\r\nb"));
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(List().currentRow(), 0) << "what is taken back is shown";
    EXPECT_EQ(HeadingBox().text(), QStringLiteral("North"));
    EXPECT_EQ(List().item(0)->text(), QStringLiteral("North"));
    EXPECT_EQ(Heading(1), QStringLiteral("North"));
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(BodyBox().toPlainText(), QStringLiteral("a\nb"));
    EXPECT_EQ(Body(1), QStringLiteral("a\nb")) << "to the letter";
    Press(Qt::Key_Y, Qt::ControlModifier);
    EXPECT_EQ(Body(1), QStringLiteral("New a\r\nb"));
    EXPECT_TRUE(errors_.empty());
}

TEST_F(GoalsTest, TypingIsTakenBackLineByLine) {
    AddArea(QStringLiteral("North"), QString());
    Load<frm2RMAs>();
    BodyBox().setFocus();
    Type(QStringLiteral("one"));
    Press(Qt::Key_Return);
    Type(QStringLiteral("two"));
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(BodyBox().toPlainText(), QStringLiteral("one\n"));
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(BodyBox().toPlainText(), QString());
}

TEST_F(GoalsTest, DeletedArea_ComesBackWithItsTexts) {
    AddArea(QStringLiteral("North"), QStringLiteral("n"));
    AddArea(QStringLiteral("South"), QStringLiteral("s"));
    Load<frm2RMAs>();
    List().setFocus();
    Press(Qt::Key_Down);
    support::Answers answers({QMessageBox::Yes});
    ClickButton("cmdDelete");
    EXPECT_EQ(List().count(), 1);
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(List().count(), 2);
    EXPECT_EQ(List().currentRow(), 1);
    EXPECT_EQ(HeadingBox().text(), QStringLiteral("South"));
    EXPECT_EQ(Heading(2), QStringLiteral("South"));
    EXPECT_EQ(Body(2), QStringLiteral("s"));
}

TEST_F(GoalsTest, AddingAndNaming_AreTakenBackOneAfterTheOther) {
    Load<frm2RMAs>();
    ClickButton("cmdAdd");
    Type(QStringLiteral("West"));
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(List().item(0)->text(), QString());
    EXPECT_EQ(tblManagementGoals->RecordCount(), 1);
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(List().count(), 0);
    EXPECT_EQ(tblManagementGoals->RecordCount(), 0);
    EXPECT_FALSE(HeadingBox().isEnabled());
    Press(Qt::Key_Y, Qt::ControlModifier);
    Press(Qt::Key_Y, Qt::ControlModifier);
    EXPECT_EQ(Heading(1), QStringLiteral("West"));
    EXPECT_EQ(HeadingBox().text(), QStringLiteral("West"));
    EXPECT_TRUE(errors_.empty());
}

}  // namespace
