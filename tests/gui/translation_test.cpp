// The whole program in a language of longer words: every text is translated, and none is cut.
#include <QComboBox>
#include <QMenu>

#include "RunningProgram.h"
#include "platform/help/HelpViewer.h"
#include "platform/system/Translations.h"
#include "season/data_file.h"
#include "support/PseudoLanguage.h"
#include "support/made_season.h"

namespace {

// Texts of data that count as translated.
season::Season InBrackets() {
    season::Season season = tarn_test::SoundSeason();
    const auto mark = [](season::Text& text) { text = "[" + text.value_or("") + "]"; };
    for (season::Property& property : season.properties) {
        if (property.name != "DataFormatID") {
            mark(property.value);
        }
    }
    for (season::Zone& zone : season.zones) {
        mark(zone.name);
    }
    for (season::Resource& resource : season.resources) {
        mark(resource.longName);
    }
    for (season::Goal& goal : season.goals) {
        mark(goal.area);
    }
    return season;
}

class Translation : public RunningProgram {
protected:
    ~Translation() override { EXPECT_EQ(Text(language_.Missing()), "") << "looked up in vain"; }

    void RunWithSeason(int width = 808) {
        const QString path = folder_.CostsPath(QStringLiteral("[%1].fcd").arg(width));
        season::WriteNew(InBrackets(), path.toStdString());
        Run(path);
        frame_->resize(width, 700);
    }
    static void ExpectWhole(const QWidget& window) {
        QCoreApplication::processEvents();
        EXPECT_EQ(Text(support::Untranslated(window)), "") << window.objectName().toStdString();
        EXPECT_EQ(Text(support::Cut(window)), "") << window.objectName().toStdString();
    }
    // Every modal window that comes up is looked at.
    static void Watch(support::Answers& answers) {
        answers.See([](QWidget& window) {
            if (!window.inherits("QFileDialog")) {
                ExpectWhole(window);
            }
        });
    }

    support::PseudoLanguage language_;
};

TEST_F(Translation, StartScreenAndMenus) {
    Run();
    ExpectWhole(*frame_);
    frame_->resize(800, 600);
    ExpectWhole(*frame_);
    support::Answers answers;
    Watch(answers);
    Choose(QStringLiteral("mnuHelp_9"));
    EXPECT_EQ(answers.Messages().size(), 1U);
}

TEST_F(Translation, NamingDialog) {
    Run();
    support::Answers answers;
    Watch(answers);
    answers.Then([](QWidget& dialog) {
        auto& unit = *dialog.findChild<QLineEdit*>(QStringLiteral("txtUnitID"));
        QTest::keyClicks(&unit, QStringLiteral("g"));
        ExpectWhole(dialog);
        dialog.close();
    });
    Click(QStringLiteral("cmdNew"));
}

TEST_F(Translation, EachWorksheet) {
    for (const int width : {808, 1100}) {
        SCOPED_TRACE(width);
        RunWithSeason(width);
        for (int tab = 1; tab <= 6; ++tab) {
            SCOPED_TRACE(tab);
            ClickTab(tab);
            if (width > 1000 && tab >= 5) {
                const QString chart = QLatin1String(tab == 5 ? "pltNVC" : "pltCost");
                EXPECT_TRUE(QTest::qWaitFor([&] { return Find(chart) != nullptr; }));
            }
            ExpectWhole(*frame_);
        }
        frame_.reset();
        PrepDatafile::CloseDatafile();
    }
}

TEST_F(Translation, QuestionsOfTheWorksheets) {
    RunWithSeason();
    support::Answers answers({QMessageBox::No});
    Watch(answers);
    ClickTab(2);
    Click(QStringLiteral("cmdDelete"));
    ClickTab(3);
    answers.Press({QMessageBox::No});
    Click(QStringLiteral("cmdDelete"));
    answers.Then([](QWidget& dialog) { dialog.close(); });
    Click(QStringLiteral("cmdAdd"));
    EXPECT_EQ(answers.Messages().size(), 2U);
}

TEST_F(Translation, ZonesAndImport) {
    RunWithSeason();
    support::Answers answers;
    Watch(answers);
    ClickTab(4);
    Click(QStringLiteral("cmdAdd"));
    ExpectWhole(*frame_);
    const QString source = support::BuiltFolder() + QStringLiteral("/Costs/BRAM0000.mdb");
    answers.Press({QMessageBox::Yes});
    answers.Then([source](QWidget& dialog) { ChooseFile(dialog, source); });
    Click(QStringLiteral("cmdImport"));
    ExpectWhole(*frame_);
}

TEST_F(Translation, WorksheetsThatNeedAZone) {
    RunWithFile();
    support::Answers answers;
    Watch(answers);
    ClickTab(5);
    ClickTab(6);
    EXPECT_EQ(answers.Messages().size(), 2U);
    for (const int tab : {1, 2, 3, 4}) {
        ClickTab(tab);
        EXPECT_EQ(Text(support::Cut(*frame_)), "");
    }
}

TEST_F(Translation, FilesThatCannotBeOpened) {
    support::WriteBytes(folder_.CostsPath(QStringLiteral("[notes].fcd")), "notes");
    support::Answers answers;
    Watch(answers);
    Run(folder_.CostsPath(QStringLiteral("[notes].fcd")));
    EXPECT_GE(answers.Messages().size(), 1U);
    ExpectWhole(*frame_);
}

TEST_F(Translation, HelpWindow) {
    const QString name = QStringLiteral("TARNPlus.hlp");
    support::Copy(support::BuiltFolder() + u'/' + name, folder_.Path(name));
    RunWithSeason();
    Press(Qt::Key_F1);
    const QWidget* help = nullptr;
    EXPECT_TRUE(QTest::qWaitFor([&help] {
        for (const QWidget* window : QApplication::topLevelWidgets()) {
            if (window->objectName() == QLatin1String("frmHelp") && window->isVisible()) {
                help = window;
            }
        }
        return help != nullptr;
    }));
    if (help != nullptr) {
        EXPECT_EQ(Text(support::Cut(*help)), "");
    }
    platform::HelpViewer::Close();
}

}  // namespace
