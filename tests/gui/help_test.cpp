// Help as the user asks for it: by F1 on a form or in a dialog, and by the two items of the menu.

#include <QTextBrowser>

#include <array>

#include "RunningProgram.h"
#include "platform/help/HelpViewer.h"

namespace {

class Help : public RunningProgram {
protected:
    Help() {
        const QString name = QStringLiteral("TARNPlus.hlp");
        support::Copy(support::BuiltFolder() + u'/' + name, folder_.Path(name));
    }
    ~Help() override { platform::HelpViewer::Close(); }

    // The page that the help window shows, closed then so that the next one is asked for anew.
    static QString TakeTopic() {
        QString topic;
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (window->objectName() == QStringLiteral("frmHelp") && window->isVisible()) {
                topic = window->findChild<QTextBrowser*>(QStringLiteral("txtTopic"))
                            ->source()
                            .fileName();
            }
        }
        platform::HelpViewer::Close();
        return topic;
    }
    QString PressF1() {
        Press(Qt::Key_F1);
        return TakeTopic();
    }
    QString ChooseHelp(int item) {
        Choose(QStringLiteral("mnuHelp_%1").arg(item));
        return TakeTopic();
    }
    // In the dialog that the button opens.
    QString PressF1In(const char* button) {
        QString topic;
        support::Answers answers;
        answers.Then([&topic](QWidget& dialog) {
            QTest::keyClick(dialog.windowHandle(), Qt::Key_F1);
            topic = TakeTopic();
            QMetaObject::invokeMethod(&dialog, "reject");
        });
        Click(QLatin1String(button));
        return topic;
    }
};

constexpr std::array<const char*, 6> kTopics{"introduction.html", "goals.html", "resources.html",
                                             "zones.html",        "nvc.html",   "costs.html"};

TEST_F(Help, StartScreen_KeyAndItem_ShowItsTopic) {
    Run();
    EXPECT_EQ(PressF1(), QStringLiteral("start.html"));
    EXPECT_EQ(ChooseHelp(1), QStringLiteral("start.html"));
}

TEST_F(Help, EachWorksheet_KeyAndItem_ShowItsTopic) {
    RunWithFile();
    ClickTab(4);
    Click(QStringLiteral("cmdAdd"));
    for (int tab = 1; tab <= 6; ++tab) {
        ClickTab(tab);
        const QString topic = QLatin1String(kTopics.at(std::size_t(tab - 1)));
        EXPECT_EQ(PressF1(), topic);
        EXPECT_EQ(ChooseHelp(1), topic);
    }
}

TEST_F(Help, ContentsItem_ShowsTheContentsWhateverWorksheetShows) {
    RunWithFile();
    EXPECT_EQ(ChooseHelp(2), QStringLiteral("index.html"));
    ClickTab(4);
    EXPECT_EQ(ChooseHelp(2), QStringLiteral("index.html"));
    EXPECT_TRUE(NewTrace().contains(QStringLiteral("   mnuHelp_Click 2")));
}

TEST_F(Help, KeyInAnOpenCellEditor_ShowsTheTopicOfTheWorksheet) {
    RunWithFile();
    ClickTab(4);
    Click(QStringLiteral("cmdAdd"));
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("No"));
    EXPECT_EQ(PressF1(), QStringLiteral("zones.html"));
}

TEST_F(Help, KeyInADialog_ShowsTheTopicOfTheDialog) {
    RunWithFile();
    ClickTab(3);
    EXPECT_EQ(PressF1In("cmdAdd"), QStringLiteral("add-resource.html"));
    frame_.reset();
    Run();
    EXPECT_EQ(PressF1In("cmdNew"), QStringLiteral("naming.html"));
}

}  // namespace
