// The real program on screens of several sizes, in a process and a folder of its own.

#include <gtest/gtest.h>

#include <QProcess>
#include <QTest>

#include "support/BuiltProgramFolder.h"

namespace {

class Screens : public testing::Test {
protected:
    ~Screens() override {
        if (program_.state() != QProcess::NotRunning) {
            program_.kill();
            program_.waitForFinished();
        }
    }

    void Start(int width, int height, const QStringList& arguments = {}) {
        const QString config = folder_.Path(QStringLiteral("screen.json"));
        support::WriteBytes(config, QStringLiteral(R"({"synchronousWindowSystemEvents": false,
                "windowFrameMargins": false, "screens": [{"name": "s", "x": 0, "y": 0,
                "width": %1, "height": %2, "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})")
                                        .arg(width)
                                        .arg(height)
                                        .toUtf8());
        const QString name = folder_.Path(QStringLiteral("tarnprep"));
        ASSERT_TRUE(QFile::copy(support::BuiltFolder() + QStringLiteral("/tarnprep"), name));
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"),
                           QStringLiteral("offscreen:configfile=") + config);
        program_.setProcessEnvironment(environment);
        program_.start(name, arguments);
        ASSERT_TRUE(program_.waitForStarted());
    }
    [[nodiscard]] bool LogShows(const QString& entry) const {
        return QTest::qWaitFor([&] { return folder_.Trace().contains(entry); }, 20000);
    }
    // Asks the program to end, as a session that goes down does.
    bool End() {
        program_.terminate();
        return program_.waitForFinished(20000) && program_.exitStatus() == QProcess::NormalExit;
    }

    support::ProgramFolder folder_;
    QProcess program_;
};

TEST_F(Screens, Start_On640x480_WarnsAndLeavesTheFrame) {
    Start(640, 480);
    ASSERT_TRUE(LogShows(QStringLiteral("Screen: 9600 x 7200")));
    ASSERT_TRUE(LogShows(QStringLiteral("   a1Prep.DisplayCheck")));
    // The message waits; nothing has been sized yet.
    EXPECT_TRUE(folder_.Trace().filter(QStringLiteral("frm0_Prep_Resize")).isEmpty());
    EXPECT_TRUE(End());
    EXPECT_FALSE(folder_.Trace().contains(QStringLiteral("   frm0_Prep_Resize 12120 x 9120")));
}

TEST_F(Screens, Start_On800x600_FillsTheScreen) {
    Start(800, 600);
    EXPECT_TRUE(LogShows(QStringLiteral("   frm0_Prep_Resize 12000 x 9000")));
    EXPECT_TRUE(LogShows(QStringLiteral(" Finished Loading TARN Prep")));
    EXPECT_TRUE(End());
    EXPECT_EQ(program_.exitCode(), 0);
    EXPECT_EQ(folder_.Trace().last(), QStringLiteral("* * * * * Program End * * * * *"));
}

TEST_F(Screens, Start_On1024x768_HasItsWorkingSize) {
    Start(1024, 768);
    EXPECT_TRUE(LogShows(QStringLiteral("   frm0_Prep_Resize 12120 x 9120")));
    EXPECT_TRUE(LogShows(QStringLiteral(" Finished Loading TARN Prep")));
    EXPECT_TRUE(End());
}

TEST_F(Screens, Start_WithWordsAndSwitches_JoinsThemByBlanks) {
    Start(1024, 768, {QStringLiteral("-style"), QStringLiteral("my"), QStringLiteral("unit.fcd")});
    EXPECT_TRUE(LogShows(QStringLiteral("   a1Prep.StartWithFile -style my unit.fcd")));
    EXPECT_TRUE(End());
}

}  // namespace
