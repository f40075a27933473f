#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QTreeView>
#include <QWidget>
#include <QWindow>
#include <functional>

#include "platform/dialogs/CommonDialog.h"
#include "platform/dialogs/MsgBox.h"
#include "platform/dialogs/RunModal.h"
#include "platform/system/Host.h"
#include "support/Answers.h"

namespace {

using support::OnNext;

TEST(MsgBox, ShowsPlainTextUnderTheApplicationsTitle) {
    OnNext<QMessageBox> answer([](QMessageBox& box) {
        EXPECT_EQ(box.objectName(), "MsgBox");
        EXPECT_EQ(box.text(), "<b>North</b>\r\nline");
        EXPECT_EQ(box.textFormat(), Qt::PlainText);
        EXPECT_EQ(box.windowTitle(), "TARN Prep");
        EXPECT_EQ(box.icon(), QMessageBox::NoIcon);
        EXPECT_EQ(box.buttons().size(), 1);
        QTest::keyClick(&box, Qt::Key_Escape);
    });
    EXPECT_EQ(platform::MsgBox("<b>North</b>" + platform::kNewLine + "line"),
              platform::MsgAnswer::kOk);
}

platform::MsgOptions DeleteQuestion() {
    platform::MsgOptions options;
    options.title = "Delete";
    options.icon = platform::MsgIcon::kStop;
    options.buttons = platform::MsgButtons::kYesNo;
    options.secondIsDefault = true;
    return options;
}

TEST(MsgBox, YesNo_DefaultsToNoAndEscapeIsNo) {
    OnNext<QMessageBox> answer([](QMessageBox& box) {
        EXPECT_EQ(box.windowTitle(), "Delete");
        EXPECT_EQ(box.icon(), QMessageBox::Critical);
        EXPECT_EQ(box.defaultButton(), box.button(QMessageBox::No));
        QTest::keyClick(&box, Qt::Key_Escape);
    });
    EXPECT_EQ(platform::MsgBox("Really?", DeleteQuestion()), platform::MsgAnswer::kNo);
}

TEST(MsgBox, YesNo_AnswersAreTold) {
    for (const auto button : {QMessageBox::Yes, QMessageBox::No}) {
        OnNext<QMessageBox> answer([button](QMessageBox& box) { box.button(button)->click(); });
        EXPECT_EQ(platform::MsgBox("Really?", DeleteQuestion()), button == QMessageBox::Yes
                                                                     ? platform::MsgAnswer::kYes
                                                                     : platform::MsgAnswer::kNo);
    }
    OnNext<QMessageBox> answer([](QMessageBox& box) { box.close(); });
    EXPECT_EQ(platform::MsgBox("Really?", DeleteQuestion()), platform::MsgAnswer::kNo);
}

TEST(MsgBox, ReasonAndDetails_FollowTheTextInTheSameBox) {
    platform::MsgOptions options;
    options.informative = "The file <i>A</i> is read-only.";
    options.details = "form.cmd_Click\n3051";
    OnNext<QMessageBox> answer([](QMessageBox& box) {
        EXPECT_EQ(box.text(), "It cannot be opened.");
        EXPECT_EQ(box.informativeText(), "The file <i>A</i> is read-only.");
        EXPECT_EQ(box.detailedText(), "form.cmd_Click\n3051");
        EXPECT_EQ(box.standardButtons(), QMessageBox::Ok);
        const auto* reason = box.findChild<QLabel*>("qt_msgbox_informativelabel");
        ASSERT_NE(reason, nullptr);
        EXPECT_TRUE(reason->isVisible());
        EXPECT_EQ(reason->textFormat(), Qt::PlainText);
        auto* details = box.findChild<QWidget*>("txtDetails");
        ASSERT_NE(details, nullptr);
        EXPECT_FALSE(details->isVisible());
        EXPECT_EQ(details->accessibleName(), "Details");
        auto* show = box.findChild<QPushButton*>("cmdDetails");
        ASSERT_NE(show, nullptr);
        QTest::mouseClick(show, Qt::LeftButton);
        EXPECT_TRUE(box.isVisible()) << "details are no answer";
        EXPECT_TRUE(details->isVisible());
        QTest::keyClick(&box, Qt::Key_Escape);
    });
    EXPECT_EQ(platform::MsgBox("It cannot be opened.", options), platform::MsgAnswer::kOk);
}

TEST(MsgBox, HourglassWaitsForTheAnswer) {
    platform::SetMousePointer(platform::Pointer::kHourglass);
    OnNext<QMessageBox> answer([](QMessageBox& box) {
        EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
        box.accept();
    });
    platform::MsgBox("x");
    EXPECT_NE(QGuiApplication::overrideCursor(), nullptr);
    platform::SetMousePointer(platform::Pointer::kDefault);
}

TEST(NameFilters, PairsBecomeFilters) {
    EXPECT_EQ(platform::NameFilters("TARN Prep files (*.fcd)|*.fcd|Both|*.fcd;*.mdb|All|*.*"),
              QStringList({"TARN Prep files (*.fcd)", "Both (*.fcd *.mdb)", "All (*.*)"}));
    EXPECT_EQ(platform::NameFilters(""), QStringList());
}

class ShowOpenTest : public testing::Test {
protected:
    void SetUp() override {
        QFile file(folder_.filePath("A unit.fcd"));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        request_.title = "Open a file";
        request_.initialFolder = folder_.path();
        request_.filter = "Data files|*.fcd|All|*.*";
        request_.filterIndex = 2;
    }
    QTemporaryDir folder_{QDir::tempPath() + "/tarn dialog XXXXXX"};
    platform::OpenFileRequest request_;
};

TEST_F(ShowOpenTest, Cancel_GivesNothing) {
    OnNext<QFileDialog> answer([this](QFileDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), "Open a file");
        EXPECT_EQ(dialog.selectedNameFilter(), "All (*.*)");
        EXPECT_EQ(dialog.directory().canonicalPath(), QDir(folder_.path()).canonicalPath());
        EXPECT_EQ(dialog.fileMode(), QFileDialog::ExistingFile);
        EXPECT_TRUE(dialog.testOption(QFileDialog::DontUseNativeDialog));
        dialog.reject();
    });
    EXPECT_EQ(platform::CommonDialog::ShowOpen(request_, nullptr), "");
}

TEST_F(ShowOpenTest, Filters_AreShownAsGivenAndAllFilesMeansAll) {
    QFile plain(folder_.filePath("no dot"));
    ASSERT_TRUE(plain.open(QIODevice::WriteOnly));
    request_.filter = "TARN Prep files (*.fcd)|*.fcd|All Files (*.*)|*.*";
    OnNext<QFileDialog> answer([](QFileDialog& dialog) {
        EXPECT_EQ(dialog.objectName(), "CMDialog1");
        auto* kinds = dialog.findChild<QComboBox*>("fileTypeCombo");
        const auto* files = dialog.findChild<QTreeView*>("treeView");
        const auto rows = [files] { return files->model()->rowCount(files->rootIndex()); };
        EXPECT_EQ(kinds->itemText(0), "TARN Prep files (*.fcd)");
        EXPECT_EQ(kinds->itemText(1), "All Files (*.*)");
        EXPECT_EQ(dialog.selectedNameFilter(), "All Files (*.*)");
        EXPECT_TRUE(QTest::qWaitFor([&] { return rows() == 2; })) << "a name without a dot, too";
        dialog.selectNameFilter("TARN Prep files (*.fcd)");
        EXPECT_TRUE(QTest::qWaitFor([&] { return rows() == 1; }));
        dialog.selectNameFilter("All Files (*.*)");
        EXPECT_TRUE(QTest::qWaitFor([&] { return rows() == 2; }));
        dialog.reject();
    });
    EXPECT_EQ(platform::CommonDialog::ShowOpen(request_, nullptr), "");
}

TEST_F(ShowOpenTest, ChosenFile_ComesBackWithItsPath) {
    request_.fileName = "A unit.fcd";
    OnNext<QFileDialog> answer(
        [](QFileDialog& dialog) { static_cast<QDialog&>(dialog).done(QDialog::Accepted); });
    EXPECT_EQ(platform::CommonDialog::ShowOpen(request_, nullptr), folder_.filePath("A unit.fcd"));
}

TEST(RunModal, GivesTheKeyboardBackToTheWindowBehind) {
    QWidget window;
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    QDialog dialog(&window);
    OnNext<QDialog> answer([](QDialog& shown) { shown.accept(); });
    EXPECT_EQ(platform::RunModal(dialog), QDialog::Accepted);
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return QGuiApplication::focusWindow() == window.windowHandle(); }));
}

TEST_F(ShowOpenTest, TypedNameInOtherCase_OpensTheFile) {
    for (const bool byKey : {true, false}) {
        OnNext<QFileDialog> answer([byKey](QFileDialog& dialog) {
            auto* name = dialog.findChild<QLineEdit*>("fileNameEdit");
            auto* open =
                dialog.findChild<QDialogButtonBox*>("buttonBox")->button(QDialogButtonBox::Open);
            name->setText("a UNIT.FCD");
            EXPECT_TRUE(open->isEnabled());
            if (byKey) {
                QTest::keyClick(name, Qt::Key_Return);
            } else {
                open->click();
            }
            if (dialog.isVisible()) {
                ADD_FAILURE() << "the name was not taken";
                dialog.reject();
            }
        });
        EXPECT_EQ(platform::CommonDialog::ShowOpen(request_, nullptr),
                  folder_.filePath("A unit.fcd"));
    }
}

TEST_F(ShowOpenTest, LargeFontOnASmallScreen_LeavesRoomForTheNames) {
    const QFont usual = QApplication::font();
    QFont large = usual;
    large.setPointSize(24);
    QApplication::setFont(large);
    OnNext<QFileDialog> answer([](QFileDialog& dialog) {
        dialog.resize(700, 500);
        const auto* list = dialog.findChild<QTreeView*>("treeView");
        const int least = dialog.fontMetrics().averageCharWidth() * 15;
        EXPECT_TRUE(QTest::qWaitFor([&] { return list->columnWidth(0) >= least; }))
            << list->columnWidth(0);
        dialog.reject();
    });
    EXPECT_EQ(platform::CommonDialog::ShowOpen(request_, nullptr), "");
    QApplication::setFont(usual);
}

TEST_F(ShowOpenTest, TypedNameOfNoFile_CannotBeOpened) {
    OnNext<QFileDialog> answer([](QFileDialog& dialog) {
        dialog.findChild<QLineEdit*>("fileNameEdit")->setText("another unit.fcd");
        EXPECT_FALSE(dialog.findChild<QDialogButtonBox*>("buttonBox")
                         ->button(QDialogButtonBox::Open)
                         ->isEnabled());
        dialog.reject();
    });
    EXPECT_EQ(platform::CommonDialog::ShowOpen(request_, nullptr), "");
}

}  // namespace
