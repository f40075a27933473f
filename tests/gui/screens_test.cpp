// The real program on screens of several sizes, in a process and a folder of its own.

#include <gtest/gtest.h>

#include <QProcess>
#include <QTest>

#include <filesystem>
#include <memory>
#include <string>

#include "support/BuiltProgramFolder.h"
#include "support/Screen.h"
#include "support/command.h"
#include "support/system.h"

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
        Prepare(width, height);
        program_.start(name_, arguments);
        ASSERT_TRUE(program_.waitForStarted());
    }
    // With a command line as the shell takes it, which knows names that are no text; the program's
    // folder is the current one.
    void StartByShell(int width, int height, const QString& arguments) {
        Prepare(width, height);
        program_.setWorkingDirectory(folder_.Path(QString()));
        program_.start(QStringLiteral("/bin/sh"),
                       {QStringLiteral("-c"), QStringLiteral("exec ./tarnprep ") + arguments});
        ASSERT_TRUE(program_.waitForStarted());
    }
    void Prepare(int width, int height) {
        screen_ = std::make_unique<support::Screen>(width, height);
        const QString file =
            QString::fromStdU16String(tarn_test::BuiltProgram("tarnprep").filename().u16string());
        name_ = folder_.Path(file);
        ASSERT_TRUE(QFile::copy(support::BuiltFolder() + u'/' + file, name_));
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"),
                           QString::fromLocal8Bit(screen_->Platform()));
        program_.setProcessEnvironment(environment);
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
    std::unique_ptr<support::Screen> screen_;
    QString name_;
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

class FrameOnScreen : public testing::Test {
protected:
    // What the frame says and how large it is on a screen of that size.
    QStringList On(int width, int height) {
        QProcess program;
        program.start(
            QString::fromStdU16String(tarn_test::BuiltProgram("frame_on_screen").u16string()),
            {folder_.Path(QString()), QString::number(width), QString::number(height)});
        EXPECT_TRUE(program.waitForFinished(60000));
        EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(program.exitCode(), 0) << program.readAllStandardError().toStdString();
        QString said = QString::fromUtf8(program.readAllStandardOutput());
        return said.remove(u'\r').trimmed().split(u'\n');
    }
    static void ExpectWarning(const QStringList& said, const QString& size) {
        ASSERT_EQ(said.size(), 3) << said.join(u'|').toStdString();
        EXPECT_EQ(said[0],
                  QStringLiteral("TARN Prep: This program is designed for display at 800 x "
                                 "600 resolution or higher."));
        EXPECT_EQ(said[1], QStringLiteral("You may have difficulty using the program with your "
                                          "current display settings."));
        EXPECT_TRUE(said[2].startsWith(size)) << said[2].toStdString();
        EXPECT_TRUE(said[2].endsWith(QStringLiteral("normal, as it was"))) << said[2].toStdString();
    }

    support::ProgramFolder folder_;
    std::unique_ptr<support::Screen> screen_;
};

TEST_F(FrameOnScreen, AtMost8000Twips_WarnsAndLeavesTheFrame) {
    // With room for a window manager's border and title.
    ExpectWarning(On(640, 480), QStringLiteral("9540 x 6600 at"));
    ExpectWarning(On(800, 533), QStringLiteral("11940 x 7395 at"));
}

TEST_F(FrameOnScreen, AtMost9120Twips_IsMaximized) {
    EXPECT_EQ(On(800, 534), QStringList(QStringLiteral("12000 x 8010 at 0, 0, maximized, sized")));
    EXPECT_EQ(On(800, 600), QStringList(QStringLiteral("12000 x 9000 at 0, 0, maximized, sized")));
    EXPECT_EQ(On(1024, 608), QStringList(QStringLiteral("15360 x 9120 at 0, 0, maximized, sized")));
}

TEST_F(FrameOnScreen, Above9120Twips_HasItsWorkingSizeAtTheTopLeftCorner) {
    for (const int height : {609, 768, 1080}) {
        EXPECT_TRUE(
            On(1024, height).front().startsWith(QStringLiteral("12120 x 9120 at 0, 0, normal")))
            << height;
    }
}

TEST_F(Screens, Start_WithANameThatIsNoUtf8_OpensTheFile) {
    if (!support::kNamesAreBytes) {
        GTEST_SKIP() << "names of files are text on this system";
    }
    const QByteArray name = QFile::encodeName(folder_.Path(QStringLiteral("Monta"))) +
                            "\xF1"
                            "a.fcd";
    std::filesystem::copy_file(folder_.Path(QStringLiteral("FCD.new")).toStdString(),
                               std::filesystem::path(name.toStdString()));
    StartByShell(1024, 768, QStringLiteral("\"$(printf 'Monta\\361a.fcd')\""));
    EXPECT_TRUE(LogShows(QStringLiteral(" Finished a1Prep.LoadFromFile")));
    EXPECT_TRUE(End());
}

}  // namespace
