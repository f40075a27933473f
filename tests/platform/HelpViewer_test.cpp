#include "platform/help/HelpViewer.h"

#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QListWidget>
#include <QScreen>
#include <QScrollBar>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBrowser>
#include <QTextDocument>
#include <QTreeView>
#include <QWidget>
#include <QWindow>
#include <algorithm>

#include "support/Answers.h"
#include "support/Keyboard.h"
#include "support/paths.h"

namespace {

QString BuiltHelpFile() {
    return QString::fromStdU16String(
        (support::BuildFolder() / "TARNPrep/TARNPlus.hlp").u16string());
}

QWidget* HelpWindowShown() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->objectName() == "frmHelp" && window->isVisible()) {
            return window;
        }
    }
    return nullptr;
}

class HelpViewerTest : public testing::Test {
protected:
    void TearDown() override { platform::HelpViewer::Close(); }
    QTemporaryDir folder_{QDir::tempPath() + "/tarn help XXXXXX"};
};

// With the help file of this build.
class BuiltHelpTest : public HelpViewerTest {
protected:
    void SetUp() override { platform::HelpViewer::SetHelpFile(BuiltHelpFile()); }
};

TEST_F(HelpViewerTest, Context_ShowsItsTopic) {
    // A copy beside nothing else: the file alone must do.
    const QString copy = folder_.filePath("Help.hlp");
    ASSERT_TRUE(QFile::copy(BuiltHelpFile(), copy));
    platform::HelpViewer::SetHelpFile(copy);
    platform::HelpViewer::ShowContext(40);
    QWidget* window = HelpWindowShown();
    ASSERT_NE(window, nullptr);
    auto* page = window->findChild<QTextBrowser*>("txtTopic");
    EXPECT_TRUE(page->source().path().endsWith("zones.html"))
        << page->source().path().toStdString();
    EXPECT_TRUE(page->toPlainText().contains("Zone", Qt::CaseInsensitive));
    platform::HelpViewer::ShowContents();
    EXPECT_TRUE(page->source().path().endsWith("index.html"));
    EXPECT_EQ(HelpWindowShown(), window);
    page->backward();
    EXPECT_TRUE(page->source().path().endsWith("zones.html"));
}

TEST_F(BuiltHelpTest, UnknownContext_ShowsContents) {
    platform::HelpViewer::ShowContext(999);
    ASSERT_NE(HelpWindowShown(), nullptr);
    auto* page = HelpWindowShown()->findChild<QTextBrowser*>("txtTopic");
    EXPECT_TRUE(page->source().path().endsWith("index.html"));
}

TEST_F(BuiltHelpTest, EveryFocusableWidget_HasAName) {
    platform::HelpViewer::ShowContents();
    ASSERT_NE(HelpWindowShown(), nullptr);
    for (const QWidget* widget : HelpWindowShown()->findChildren<QWidget*>()) {
        if (widget->focusPolicy() != Qt::NoFocus && widget->isVisible()) {
            EXPECT_FALSE(widget->accessibleName().isEmpty())
                << widget->metaObject()->className() << " " << widget->objectName().toStdString();
        }
    }
}

TEST_F(BuiltHelpTest, Search_FindsWordsInTheText) {
    platform::HelpViewer::ShowContents();
    QWidget* window = HelpWindowShown();
    ASSERT_NE(window, nullptr);
    auto* words = window->findChild<QLineEdit*>("txtQuery");
    auto* found = window->findChild<QListWidget*>("lstResults");
    auto* count = window->findChild<QLabel*>("lblFound");
    words->setText("minus sign");
    ASSERT_GT(found->count(), 0);
    EXPECT_TRUE(found->item(0)->text().startsWith("NVC Table (Impacts)\n"));
    EXPECT_TRUE(found->item(0)->text().contains("minus sign"));
    EXPECT_EQ(count->text(), QString("Topics found: %1").arg(found->count()));
    emit words->returnPressed();
    EXPECT_EQ(window->findChild<QTextBrowser*>("txtTopic")->source().fileName(), "nvc.html");
}

TEST_F(BuiltHelpTest, Search_TakesWordsInEachFormAndEachState) {
    platform::HelpViewer::ShowContents();
    ASSERT_NE(HelpWindowShown(), nullptr);
    auto* words = HelpWindowShown()->findChild<QLineEdit*>("txtQuery");
    auto* found = HelpWindowShown()->findChild<QListWidget*>("lstResults");
    const auto titles = [&](const char* text) {
        words->setText(text);
        QStringList all;
        for (int row = 0; row < found->count(); ++row) {
            all += found->item(row)->text().section('\n', 0, 0);
        }
        return all;
    };
    const QString paste = "Copying and pasting tables";
    EXPECT_TRUE(titles("PASTED").contains(paste));
    EXPECT_TRUE(titles("spreadsh").contains(paste));
    EXPECT_TRUE(titles("\"middle mouse button\"").contains(paste));
    EXPECT_FALSE(titles("\"button mouse middle\"").contains(paste));
    EXPECT_TRUE(titles("button mouse middle").contains(paste));
}

// What means something to the search itself, and what is no word at all.
TEST_F(BuiltHelpTest, Search_OfOddText_FindsNothingOrTheWordsInIt) {
    platform::HelpViewer::ShowContents();
    ASSERT_NE(HelpWindowShown(), nullptr);
    auto* words = HelpWindowShown()->findChild<QLineEdit*>("txtQuery");
    auto* found = HelpWindowShown()->findChild<QListWidget*>("lstResults");
    auto* count = HelpWindowShown()->findChild<QLabel*>("lblFound");
    for (const char* text : {"xyzzy", "- *", "\"\"", "\""}) {
        words->setText(text);
        EXPECT_EQ(found->count(), 0) << text;
        EXPECT_EQ(count->text(), "No topic holds all of these words.") << text;
    }
    for (const char* text : {"undo: (*) \"taking back", "undo NOT zone^("}) {
        words->setText(text);
        EXPECT_GT(found->count(), 0) << text;
    }
    words->setText("  ");
    EXPECT_EQ(found->count(), 0);
    EXPECT_EQ(count->text(), "");
}

TEST_F(BuiltHelpTest, Index_LeadsToItsTopic) {
    platform::HelpViewer::ShowContents();
    QWidget* window = HelpWindowShown();
    ASSERT_NE(window, nullptr);
    auto* list = window->findChild<QListView*>("lstIndex");
    ASSERT_TRUE(QTest::qWaitFor([&] { return list->model()->rowCount() > 5; }));
    auto* filter = window->findChild<QLineEdit*>("txtIndex");
    filter->setText("apostrophe");
    emit filter->returnPressed();
    auto* page = window->findChild<QTextBrowser*>("txtTopic");
    ASSERT_TRUE(QTest::qWaitFor([&] { return page->source().path().endsWith("import.html"); }))
        << page->source().toString().toStdString();
}

TEST_F(BuiltHelpTest, Opened_TheTopicHasTheKeyboard) {
    platform::HelpViewer::ShowContext(40);
    ASSERT_TRUE(QTest::qWaitForWindowActive(HelpWindowShown()));
    EXPECT_EQ(QApplication::focusWidget(), HelpWindowShown()->findChild<QTextBrowser*>("txtTopic"));
}

TEST_F(BuiltHelpTest, Opened_StandsBesideTheWorkWhereThereIsRoom) {
    QWidget work;
    const QRect screen = work.screen()->availableGeometry();
    work.setGeometry(screen.left(), screen.top(), screen.width() / 3, screen.height() / 2);
    work.show();
    work.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&work));
    platform::HelpViewer::ShowContext(40);
    const QWidget* help = HelpWindowShown();
    ASSERT_NE(help, nullptr);
    EXPECT_FALSE(help->geometry().intersects(work.geometry()));
    EXPECT_TRUE(screen.contains(help->geometry()));
}

TEST_F(BuiltHelpTest, Opened_OnAFullScreen_StaysOnIt) {
    QWidget work;
    work.setGeometry(work.screen()->availableGeometry());
    work.show();
    work.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&work));
    platform::HelpViewer::ShowContext(40);
    ASSERT_NE(HelpWindowShown(), nullptr);
    EXPECT_TRUE(work.geometry().contains(HelpWindowShown()->geometry()));
}

TEST_F(BuiltHelpTest, Tree_MarksTheTopicThatIsShown) {
    platform::HelpViewer::ShowContext(50);
    QWidget* window = HelpWindowShown();
    ASSERT_NE(window, nullptr);
    auto* tree = window->findChild<QTreeView*>("lstContents");
    const auto marked = [tree] { return tree->currentIndex().data().toString(); };
    EXPECT_TRUE(QTest::qWaitFor([&] { return marked() == "NVC Table (Impacts)"; }));
    platform::HelpViewer::ShowContext(10);
    EXPECT_EQ(marked(), "A file from start to finish");
    window->findChild<QTextBrowser*>("txtTopic")->backward();
    EXPECT_EQ(marked(), "NVC Table (Impacts)");
}

TEST_F(BuiltHelpTest, Tree_ShowsItsTitlesWhole) {
    platform::HelpViewer::ShowContents();
    QWidget* window = HelpWindowShown();
    ASSERT_NE(window, nullptr);
    auto* tree = window->findChild<QAbstractItemView*>("lstContents");
    ASSERT_NE(tree, nullptr);
    EXPECT_TRUE(QTest::qWaitFor([tree] {
        return tree->model()->rowCount() > 0 &&
               tree->viewport()->width() >= tree->sizeHintForColumn(0);
    }));
}

TEST_F(BuiltHelpTest, Tree_InLargeLetters_GoesOnInAnotherLineInsteadOfCuttingTitles) {
    const QFont before = QApplication::font();
    QFont large = before;
    large.setPointSize(24);
    QApplication::setFont(large);
    platform::HelpViewer::ShowContents();
    QWidget* window = HelpWindowShown();
    ASSERT_NE(window, nullptr);
    window->resize(700, 600);
    auto* tree = window->findChild<QTreeView*>("lstContents");
    ASSERT_TRUE(QTest::qWaitFor([tree] { return tree->model()->rowCount() > 0; }));
    constexpr int kMargins = 8;
    int wrapped = 0;
    const auto cutTitle = [&] {
        wrapped = 0;
        for (QModelIndex at = tree->model()->index(0, 0); at.isValid(); at = tree->indexBelow(at)) {
            const QRect place = tree->visualRect(at);
            const QRect room(0, 0, place.width() - kMargins, 1000);
            const QFontMetrics letters(tree->font());
            const int height =
                letters.boundingRect(room, Qt::TextWordWrap, at.data().toString()).height();
            const int lines = (height + letters.leading()) / letters.lineSpacing();
            wrapped += lines > 1 ? 1 : 0;
            if (place.height() < lines * letters.height()) {
                return at.data().toString();
            }
        }
        return QString();
    };
    EXPECT_TRUE(QTest::qWaitFor([&] { return cutTitle().isEmpty(); })) << cutTitle().toStdString();
    EXPECT_GT(wrapped, 3);
    QApplication::setFont(before);
}

TEST_F(BuiltHelpTest, SearchBox_TakesTheKeyboardWhenItIsChosen) {
    platform::HelpViewer::ShowContents();
    QWidget* window = HelpWindowShown();
    ASSERT_NE(window, nullptr);
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    auto* tabs = window->findChild<QTabWidget*>("tabNavigation");
    tabs->setCurrentIndex(1);
    EXPECT_EQ(QApplication::focusWidget(), window->findChild<QLineEdit*>("txtIndex"));
    tabs->setCurrentIndex(0);
    QTest::keySequence(window, QKeySequence::Find);
    EXPECT_EQ(tabs->currentIndex(), 2);
    EXPECT_EQ(QApplication::focusWidget(),
              window->findChild<QWidget*>("pnlQuery")->findChild<QLineEdit*>());
}

TEST_F(BuiltHelpTest, WordsThatPeopleLookFor_AreInTheIndex) {
    platform::HelpViewer::ShowContents();
    QWidget* window = HelpWindowShown();
    ASSERT_NE(window, nullptr);
    auto* list = window->findChild<QListView*>("lstIndex");
    ASSERT_TRUE(QTest::qWaitFor([&] { return list->model()->rowCount() > 5; }));
    for (const char* word : {"print", "undo", "paste", "comma"}) {
        window->findChild<QLineEdit*>("txtIndex")->setText(word);
        EXPECT_TRUE(list->currentIndex().data().toString().contains(word)) << word;
    }
}

TEST_F(BuiltHelpTest, Letters_AreUnique) {
    platform::HelpViewer::ShowContents();
    auto* ways = HelpWindowShown()->findChild<QTabWidget*>("tabNavigation");
    for (int way = 0; way < ways->count(); ++way) {
        ways->setCurrentIndex(way);
        QString letters = support::Mnemonics(*HelpWindowShown());
        std::sort(letters.begin(), letters.end());
        EXPECT_EQ(std::adjacent_find(letters.begin(), letters.end()), letters.end())
            << way << " " << letters.toStdString();
    }
}

TEST_F(BuiltHelpTest, Pictures_NeverMakeThePageScrollSideways) {
    platform::HelpViewer::ShowContext(40);
    QWidget* window = HelpWindowShown();
    auto* page = window->findChild<QTextBrowser*>("txtTopic");
    const auto picture = [page] {
        return page->document()->find(QString(QChar::ObjectReplacementCharacter)).charFormat();
    };
    ASSERT_TRUE(picture().isImageFormat());
    window->resize(1400, 600);
    const double own = picture().toImageFormat().width();
    window->resize(640, 480);
    EXPECT_EQ(page->horizontalScrollBar()->maximum(), 0);
    EXPECT_LT(picture().toImageFormat().width(), own);
    window->resize(1400, 600);
    EXPECT_EQ(picture().toImageFormat().width(), own);
}

TEST_F(BuiltHelpTest, Escape_ClosesTheWindow) {
    platform::HelpViewer::ShowContents();
    ASSERT_TRUE(QTest::qWaitForWindowActive(HelpWindowShown()));
    QTest::keyClick(HelpWindowShown()->windowHandle(), Qt::Key_Escape);
    EXPECT_EQ(HelpWindowShown(), nullptr);
}

TEST_F(HelpViewerTest, MissingFile_IsShownToTheUser) {
    platform::HelpViewer::SetHelpFile(folder_.filePath("Nothing.hlp"));
    support::Answers answers;
    platform::HelpViewer::ShowContext(40);
    ASSERT_EQ(answers.Texts().size(), 1);
    EXPECT_TRUE(answers.Texts().front().startsWith("The help file cannot be found.\r\n"));
    EXPECT_EQ(HelpWindowShown(), nullptr);
}

TEST_F(HelpViewerTest, DamagedFile_IsShownToTheUser) {
    QFile file(folder_.filePath("Bad.hlp"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(5000, 'x'));
    file.close();
    platform::HelpViewer::SetHelpFile(file.fileName());
    support::Answers answers;
    platform::HelpViewer::ShowContents();
    ASSERT_EQ(answers.Texts().size(), 1);
    EXPECT_TRUE(answers.Texts().front().startsWith("The help file cannot be read.\r\n"));
    EXPECT_EQ(HelpWindowShown(), nullptr);
}

TEST_F(HelpViewerTest, CutFile_IsShownToTheUser) {
    const QString copy = folder_.filePath("Cut.hlp");
    ASSERT_TRUE(QFile::copy(BuiltHelpFile(), copy));
    ASSERT_TRUE(QFile::resize(copy, 9000));
    platform::HelpViewer::SetHelpFile(copy);
    support::Answers answers;
    platform::HelpViewer::ShowContents();
    ASSERT_EQ(answers.Texts().size(), 1);
    EXPECT_TRUE(answers.Texts().front().startsWith("The help file cannot be read.\r\n"));
}

TEST(HelpContextIdTest, NearestFormUpwards_Decides) {
    QWidget form;
    auto* inner = new QWidget(&form);
    auto* control = new QWidget(inner);
    EXPECT_EQ(platform::HelpContextId(control), 0);
    platform::SetHelpContextId(form, 40);
    EXPECT_EQ(platform::HelpContextId(control), 40);
    platform::SetHelpContextId(*inner, 31);
    EXPECT_EQ(platform::HelpContextId(control), 31);
    EXPECT_EQ(platform::HelpContextId(nullptr), 0);
}

}  // namespace
