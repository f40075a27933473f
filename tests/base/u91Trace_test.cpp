#include "base/u91Trace.h"

#include <gtest/gtest.h>

#include <QDateTime>

#include "platform/RuntimeError.h"
#include "platform/system/ProgramFolder.h"
#include "platform/system/Screen.h"
#include "support/LogFolder.h"

namespace {

const QString kTrace = QStringLiteral("TARN.LOG");
const QString kErrors = QStringLiteral("ERROR.LOG");

TEST(u91Trace, ProgramStart_Always_WritesItsBlock) {
    const LogFolder folder;
    u91Trace::ProgramStart(QStringLiteral("TARN Prep 05.1"));
    const QSize screen = platform::ScreenSize();
    EXPECT_EQ(
        folder.Lines(kTrace),
        QStringList({QString(), "* * * * * Program Start * * * * *", "mm/dd/yyyy",
                     "App.Path = " + folder.Path(),
                     QStringLiteral("Screen: %1 x %2").arg(screen.width()).arg(screen.height()),
                     "hh:mm:ss Start TARN Prep 05.1", QString()}));
}

TEST(u91Trace, ProgramStart_SecondRun_LeavesOnlyItsOwnTraceAndAllErrors) {
    const LogFolder folder;
    u91Trace::ProgramStart(QStringLiteral("first"));
    u91Trace::Error(QStringLiteral("of the first run"));
    u91Trace::ProgramStart(QStringLiteral("second"));
    u91Trace::Error(QStringLiteral("of the second run"));
    EXPECT_FALSE(folder.Bytes(kTrace).contains("first"));
    EXPECT_TRUE(folder.Bytes(kErrors).contains("of the first run"));
    EXPECT_TRUE(folder.Bytes(kErrors).contains("of the second run"));
}

struct Entry {
    void (*routine)(const QString&);
    QStringList lines;
};

class u91TraceEntry : public testing::TestWithParam<Entry> {};

TEST_P(u91TraceEntry, Routine_AnyText_AppendsExactlyItsLines) {
    const LogFolder folder;
    u91Trace::Procedure(QStringLiteral("before"));
    GetParam().routine(QStringLiteral("a text"));
    EXPECT_EQ(folder.Lines(kTrace), QStringList("hh:mm:ss   before") + GetParam().lines);
}

INSTANTIATE_TEST_SUITE_P(
    Routines, u91TraceEntry,
    testing::Values(Entry{u91Trace::ProgramEnd,
                          {"", "hh:mm:ss a text", "* * * * * Program End * * * * *", ""}},
                    Entry{u91Trace::Procedure, {"hh:mm:ss   a text"}},
                    Entry{u91Trace::FormLoad, {"hh:mm:ss   Load a text"}},
                    Entry{u91Trace::FormUnload, {"hh:mm:ss   Unloaded a text"}},
                    Entry{u91Trace::Start, {"", "hh:mm:ss Start a text"}},
                    Entry{u91Trace::Finished, {"hh:mm:ss Finished a text", ""}},
                    Entry{u91Trace::Warning, {"", "hh:mm:ss  Warning! a text", ""}},
                    Entry{u91Trace::Error, {"", "* * * ERROR * * *", "hh:mm:ss   a text", ""}}));

TEST(u91Trace, Error_Always_AppendsADatedBlockToTheErrorLog) {
    const LogFolder folder;
    u91Trace::Error(QStringLiteral("Error during startup 53"));
    EXPECT_EQ(folder.Lines(kErrors),
              QStringList({QString(), "* * * ERROR * * *", "mm/dd/yyyy",
                           "hh:mm:ss   Error during startup 53", QString()}));
}

TEST(u91Trace, Procedure_WithAPath_SeparatesItByOneBlank) {
    const LogFolder folder;
    u91Trace::Procedure(QStringLiteral("a1Prep.StartWithFile ") + QStringLiteral("C:\\x y.fcd"));
    EXPECT_EQ(folder.Lines(kTrace), QStringList("hh:mm:ss   a1Prep.StartWithFile C:\\x y.fcd"));
}

int Seconds(const QTime& time) {
    return time.msecsSinceStartOfDay() / 1000;
}

TEST(u91Trace, Times_Always_AreLocalAndOfTwentyFourHours) {
    constexpr int kSecondsOfADay = 24 * 60 * 60;
    // The entry's time lies between two readings, however long it takes and over midnight too.
    const auto now = [] { return Seconds(QTime::currentTime()); };
    const LogFolder folder;
    const int before = now();
    u91Trace::Procedure(QStringLiteral("now"));
    const int after = now();
    const QTime written =
        QTime::fromString(QString::fromUtf8(folder.Bytes(kTrace).left(8)), "hh:mm:ss");
    ASSERT_TRUE(written.isValid());
    const auto since_before = [before](int second) {
        return (second - before + kSecondsOfADay) % kSecondsOfADay;
    };
    EXPECT_LE(since_before(Seconds(written)), since_before(after));
}

class ToleranceScope {
public:
    ToleranceScope() { u91Trace::SetTolerant(true); }
    ~ToleranceScope() { u91Trace::SetTolerant(false); }
    ToleranceScope(const ToleranceScope&) = delete;
    ToleranceScope& operator=(const ToleranceScope&) = delete;
};

TEST(u91Trace, Procedure_FolderIsMissing_PassesTheErrorOn) {
    const LogFolder folder;
    platform::SetProgramFolder(folder.Path(QStringLiteral("not there")));
    EXPECT_THROW(u91Trace::Procedure(QStringLiteral("x")), platform::RuntimeError);
}

TEST(u91Trace, Procedure_FolderIsMissingWhileTolerant_RemembersTheFailure) {
    const LogFolder folder;
    platform::SetProgramFolder(folder.Path(QStringLiteral("not there")));
    const ToleranceScope tolerance;
    EXPECT_TRUE(u91Trace::PassedOverFailure().isEmpty());
    u91Trace::Procedure(QStringLiteral("x"));
    EXPECT_FALSE(u91Trace::PassedOverFailure().isEmpty());
}

}  // namespace
