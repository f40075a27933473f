// The window as a person uses it.
#include <QComboBox>
#include <QDragEnterEvent>
#include <QListWidget>
#include <QMenu>
#include <QMimeData>
#include <QPrintPreviewWidget>
#include <QSplitter>
#include <QTextEdit>

#include <fstream>

#include "support/Keyboard.h"
#include "tarnreview/ReviewWindow.h"

namespace {

namespace fs = std::filesystem;
using tarn_test::SoundSeason;

season::Season WithASlip() {
    season::Season season = SoundSeason();
    season.zones[1].locations[1].rows[4].values[2] = -0.01F;
    return season;
}

QByteArray BytesOf(const fs::path& path) {
    return support::Bytes(platform::FromNativePath(path));
}

TEST_F(ReviewWindow, StartsWithoutAFile_AndOffersToOpenOne) {
    Run();
    EXPECT_EQ(window_->windowTitle(), "TARN Review");
    EXPECT_TRUE(Get<QPushButton>("cmdOpen").isEnabled());
    EXPECT_FALSE(Get<QPushButton>("cmdSave").isEnabled());
    EXPECT_FALSE(Get<QPushButton>("cmdNewYear").isEnabled());
}

TEST_F(ReviewWindow, AFileOfTheCommandLine_IsShownWithItsFindings) {
    const fs::path file = Write("UMFOR26.fcd", WithASlip());
    const QByteArray before = BytesOf(file);
    Run(file);
    EXPECT_EQ(window_->windowTitle(), "TARN Review - UMFOR26.fcd");
    EXPECT_TRUE(Column(Findings(), 1).contains("Zone 2, location 2, Value 5, FIL 3"));
    EXPECT_EQ(BytesOf(file), before);
}

TEST_F(ReviewWindow, AFindingThatIsChosen_ShowsItsPlaceMarked) {
    Run(Write("UMFOR26.fcd", WithASlip()));
    const qsizetype row = Column(Findings(), 1).indexOf("Zone 2, location 2, Value 5, FIL 3");
    ASSERT_GE(row, 0);
    Findings().setFocus();
    Press(Qt::Key_Home, Qt::ControlModifier);
    for (qsizetype i = 0; i < row; ++i) {
        Press(Qt::Key_Down);
    }
    auto& place = Get<vsFlexGrid>("grdPlace");
    EXPECT_EQ(place.TextMatrix(place.Row(), place.Col()), "-0.01");
    EXPECT_EQ(place.TextMatrix(place.Row(), 0), "Value 5");
    EXPECT_EQ(place.TextMatrix(0, place.Col()), "FIL 3");
    EXPECT_EQ(Get("pltPlace").accessibleName(), "Value 5 by FIL");
    EXPECT_EQ(Get<QComboBox>("cboZone").currentText(), "Zone 2");
    EXPECT_EQ(Get<QComboBox>("cboLocation").currentText(), "2");
    EXPECT_TRUE(Get("pltHeat").accessibleName().startsWith("Zone 2, location 2"));
}

TEST_F(ReviewWindow, ARefusedFile_IsASentenceAndNothingElseChanges) {
    Run(Write("UMFOR26.fcd", WithASlip()));
    const fs::path text = platform::ToNativePath(folder_.CostsPath("text.fcd"));
    std::ofstream(text) << "no database";
    support::Answers answers;
    window_->OpenFile(platform::FromNativePath(text));
    ASSERT_EQ(answers.Messages().size(), 1U);
    EXPECT_EQ(answers.Messages()[0].title, "TARN Review");
    EXPECT_EQ(answers.Messages()[0].text, "text.fcd cannot be read.");
    EXPECT_FALSE(answers.Messages()[0].informative.isEmpty());
    EXPECT_EQ(window_->windowTitle(), "TARN Review - UMFOR26.fcd");
}

// A file that is cut off anywhere is a sentence or a season, never a crash.
TEST_F(ReviewWindow, HalfWrittenFiles_AreRefused) {
    const QByteArray whole = BytesOf(Write("UMFOR26.fcd", SoundSeason()));
    Run();
    const fs::path half = platform::ToNativePath(folder_.CostsPath("half.fcd"));
    for (const qsizetype size : {qsizetype(0), qsizetype(100), qsizetype(4096), whole.size() / 3,
                                 whole.size() / 2, whole.size() - 4096}) {
        support::WriteBytes(platform::FromNativePath(half), whole.left(size));
        support::Answers answers;
        window_->OpenFile(platform::FromNativePath(half));
        ASSERT_EQ(answers.Messages().size(), 1U) << size;
        EXPECT_EQ(answers.Messages()[0].text, "half.fcd cannot be read.");
    }
}

TEST_F(ReviewWindow, LastYearsFile_IsOfferedAndCompared) {
    Write("UMFOR25.fcd", SoundSeason());
    Run(Write("UMFOR26.fcd", WithASlip()));
    ASSERT_TRUE(Get("pnlLastYear").isVisible());
    EXPECT_TRUE(Get<QLabel>("lblLastYear").text().contains("UMFOR25.fcd"));
    Click("cmdLastYear");
    EXPECT_FALSE(Get("pnlLastYear").isVisible());
    auto& differences = Get<vsFlexGrid>("grdDifferences");
    EXPECT_TRUE(Column(differences, 2).contains("Zone 2, location 2, Value 5, FIL 3"));
    EXPECT_TRUE(Get("pltChange").accessibleDescription().contains("Value 5, FIL 3"));
}

TEST_F(ReviewWindow, AChangeOnTheDisk_IsOfferedAndRead) {
    const fs::path file = Write("UMFOR26.fcd", SoundSeason());
    Run(file);
    EXPECT_FALSE(Get("pnlChanged").isVisible());
    fs::remove(file);
    Write("UMFOR26.fcd", WithASlip());
    ASSERT_TRUE(QTest::qWaitFor([this] { return Get("pnlChanged").isVisible(); }));
    EXPECT_FALSE(Column(Findings(), 1).contains("Zone 2, location 2, Value 5, FIL 3"));
    Click("cmdChanged");
    EXPECT_TRUE(Column(Findings(), 1).contains("Zone 2, location 2, Value 5, FIL 3"));
    EXPECT_FALSE(Get("pnlChanged").isVisible());
}

TEST_F(ReviewWindow, AChangeThatIsWavedAway_IsNotOfferedAgain) {
    const fs::path file = Write("UMFOR26.fcd", SoundSeason());
    Run(file);
    fs::remove(file);
    ASSERT_TRUE(QTest::qWaitFor([this] { return Get("pnlChanged").isVisible(); }));
    EXPECT_TRUE(Get<QLabel>("lblChanged").text().contains("gone from the disk"));
    Click("cmdChangedNo");
    QEvent back(QEvent::WindowActivate);
    QApplication::sendEvent(window_.get(), &back);
    EXPECT_FALSE(Get("pnlChanged").isVisible());
}

TEST_F(ReviewWindow, ADroppedFile_IsOpened) {
    const fs::path file = Write("UMFOR26.fcd", SoundSeason());
    Run();
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(platform::FromNativePath(file))});
    QDragEnterEvent enter(QPoint(20, 20), Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(window_.get(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(QPointF(20, 20), Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(window_.get(), &drop);
    EXPECT_TRUE(
        QTest::qWaitFor([this] { return window_->windowTitle() == "TARN Review - UMFOR26.fcd"; }));
}

TEST_F(ReviewWindow, Open_TakesAFileAndRemembersIt) {
    const fs::path file = Write("UMFOR26.fcd", SoundSeason());
    Run();
    support::Answers answers;
    answers.Then([&](QWidget& dialog) { TypeName(dialog, platform::FromNativePath(file)); });
    Press(Qt::Key_O, Qt::ControlModifier);
    EXPECT_EQ(window_->windowTitle(), "TARN Review - UMFOR26.fcd");
    const QList<QAction*> recent = Get<QMenu>("mnuRecent").actions();
    ASSERT_EQ(recent.size(), 1);
    EXPECT_TRUE(recent[0]->text().endsWith("UMFOR26.fcd"));
}

TEST_F(ReviewWindow, Save_WritesTheReportAndNeverTheDataFile) {
    const fs::path file = Write("UMFOR26.fcd", SoundSeason());
    const QByteArray before = BytesOf(file);
    Run(file);
    {
        support::Answers answers;
        answers.Then(
            [&](QWidget& dialog) { TypeName(dialog, folder_.CostsPath("a report.html")); });
        Press(Qt::Key_S, Qt::ControlModifier);
        EXPECT_TRUE(answers.Messages().empty());
    }
    EXPECT_TRUE(support::Bytes(folder_.CostsPath("a report.html")).contains("Zone 3"));
    {
        support::Answers answers({QMessageBox::Yes});
        answers.Then([&](QWidget& dialog) { TypeName(dialog, folder_.CostsPath("figures.txt")); });
        Press(Qt::Key_S, Qt::ControlModifier);
    }
    EXPECT_TRUE(support::Bytes(folder_.CostsPath("figures.txt.pdf")).startsWith("%PDF"));
    EXPECT_EQ(BytesOf(file), before);
}

TEST_F(ReviewWindow, Print_ShowsThePagesFirst) {
    Run(Write("UMFOR26.fcd", SoundSeason()));
    support::Answers answers;
    bool shown = false;
    answers.Then([&shown](QWidget& dialog) {
        auto* const preview = dialog.findChild<QPrintPreviewWidget*>();
        ASSERT_NE(preview, nullptr);
        shown = QTest::qWaitFor([preview] { return preview->pageCount() >= 4; });
        static_cast<QDialog&>(dialog).reject();
    });
    Press(Qt::Key_P, Qt::ControlModifier);
    EXPECT_TRUE(shown);
    EXPECT_TRUE(answers.Messages().empty());
}

TEST_F(ReviewWindow, NewYear_MakesTheFileWithoutTheZonesThatWereCleared) {
    Run(Write("UMFOR26.fcd", SoundSeason()));
    support::Answers answers;
    answers.Then([](QWidget& dialog) {
        auto* const zones = dialog.findChild<QListWidget*>("lstZones");
        ASSERT_NE(zones, nullptr);
        ASSERT_EQ(zones->count(), 3);
        zones->item(1)->setCheckState(Qt::Unchecked);
        QTest::mouseClick(dialog.findChild<QPushButton*>("cmdOK"), Qt::LeftButton);
    });
    answers.Then([](QWidget& dialog) { QMetaObject::invokeMethod(&dialog, "accept"); });
    Press(Qt::Key_N, Qt::ControlModifier);
    const fs::path made = platform::ToNativePath(folder_.CostsPath("UMFOR27.FCD"));
    ASSERT_TRUE(fs::exists(made));
    const season::Season season = season::Read(made);
    EXPECT_EQ(season.zones.size(), 2U);
    EXPECT_EQ(season.PropertyText("UnitName"), "Umatilla National Forest '27");
    ASSERT_EQ(answers.Messages().size(), 1U);
    EXPECT_TRUE(answers.Messages()[0].text.startsWith("UMFOR27.FCD was made."));
}

TEST_F(ReviewWindow, EveryPage_IsReachedByKeysAndNamed) {
    Run(Write("UMFOR26.fcd", SoundSeason()));
    for (const QWidget* control : support::ReachedByTab(*window_)) {
        EXPECT_FALSE(control->accessibleName().isEmpty())
            << control->objectName().toStdString() << " " << control->metaObject()->className();
    }
    Pages().setFocus();
    for (int page = 0; page < 4; ++page) {
        EXPECT_EQ(Pages().currentIndex(), page);
        EXPECT_FALSE(Pages().currentWidget()->accessibleName().isEmpty());
        Press(Qt::Key_Tab, Qt::ControlModifier);
    }
}

TEST_F(ReviewWindow, TheReport_HoldsEveryZone) {
    Run(Write("UMFOR26.fcd", SoundSeason()));
    Pages().setCurrentIndex(2);
    const QString text = Get<QTextEdit>("txtReport").toPlainText();
    for (const char* zone : {"Zone 1", "Zone 2", "Zone 3"}) {
        EXPECT_TRUE(text.contains(zone));
    }
}

TEST_F(ReviewWindow, AnOpenedFile_IsReadOnWithTheKeys) {
    Run(Write("UMFOR26.fcd", WithASlip()));
    ASSERT_EQ(QApplication::focusWidget(), &Findings());
    const int row = Findings().Row();
    Press(Qt::Key_Down);
    EXPECT_EQ(Findings().Row(), row + 1);
}

TEST_F(ReviewWindow, InALargeFont_BothSidesHaveTheSameRoom) {
    QFont large = QApplication::font();
    const QFont usual = large;
    large.setPointSize(18);
    QApplication::setFont(large);
    Run(Write("UMFOR26.fcd", WithASlip()));
    QApplication::setFont(usual);
    const QList<int> sides = Get<QSplitter>("splFindings").sizes();
    ASSERT_EQ(sides.size(), 2);
    EXPECT_NEAR(sides[0], sides[1], 20);
    auto& place = Get<vsFlexGrid>("grdFindings");
    EXPECT_LE(place.CellRect(1, 0).width(),
              QFontMetrics(place.font()).horizontalAdvance(QStringLiteral("Warning")) + 40);
}

TEST_F(ReviewWindow, Save_OnTheComparison_WritesTheDifferences) {
    Write("UMFOR25.fcd", SoundSeason());
    Run(Write("UMFOR26.fcd", WithASlip()));
    Click("cmdLastYear");
    Pages().setCurrentIndex(3);
    support::Answers answers;
    answers.Then([&](QWidget& dialog) { TypeName(dialog, folder_.CostsPath("changes")); });
    Press(Qt::Key_S, Qt::ControlModifier);
    EXPECT_TRUE(support::Bytes(folder_.CostsPath("changes.html"))
                    .contains("Differences between UMFOR25.fcd and UMFOR26.fcd"));
    Pages().setCurrentIndex(0);
    answers.Then([&](QWidget& dialog) { TypeName(dialog, folder_.CostsPath("whole.html")); });
    Press(Qt::Key_S, Qt::ControlModifier);
    const QByteArray whole = support::Bytes(folder_.CostsPath("whole.html"));
    EXPECT_FALSE(whole.contains("Differences between"));
    EXPECT_TRUE(whole.contains("TARN Prep: Umatilla"));
    EXPECT_TRUE(answers.Messages().empty());
}

}  // namespace
