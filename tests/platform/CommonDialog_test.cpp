#include <gtest/gtest.h>

#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeView>

#include "platform/dialogs/CommonDialog.h"
#include "support/Answers.h"
#include "support/system.h"

namespace {

constexpr Qt::CaseSensitivity kNames =
    support::kNamesDifferByCase ? Qt::CaseSensitive : Qt::CaseInsensitive;

using support::OnNext;

TEST(NameFilters, PairsBecomeFilters) {
    EXPECT_EQ(platform::NameFilters("TARN Prep files (*.fcd)|*.fcd|Both|*.fcd;*.mdb|All|*.*"),
              QStringList({"TARN Prep files (*.fcd)", "Both (*.fcd *.mdb)", "All (*.*)"}));
    EXPECT_EQ(platform::NameFilters(""), QStringList());
}

class ShowOpenTest : public testing::Test {
protected:
    void SetUp() override {
        QFile file(QDir::toNativeSeparators(folder_.filePath("A unit.fcd")));
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
    EXPECT_EQ(platform::CommonDialog::ShowOpen(request_, nullptr),
              QDir::toNativeSeparators(folder_.filePath("A unit.fcd")));
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
        const QString opened = platform::CommonDialog::ShowOpen(request_, nullptr);
        const QString there = QDir::toNativeSeparators(folder_.filePath("A unit.fcd"));
        EXPECT_EQ(opened.compare(there, kNames), 0) << opened.toStdString();
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
