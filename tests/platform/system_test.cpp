#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QScreen>
#include <QTemporaryDir>
#include <QWidget>

#include "platform/RuntimeError.h"
#include "platform/system/Host.h"
#include "platform/system/TextFile.h"

namespace {

class SystemTest : public testing::Test {
protected:
    [[nodiscard]] QString Path(const QString& name) const { return folder_.filePath(name); }
    void Put(const QString& name, const QByteArray& bytes) const {
        QFile file(Path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    [[nodiscard]] QByteArray Bytes(const QString& name) const {
        QFile file(Path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(none)");
    }
    template <typename Body>
    static int ErrorOf(Body body) {
        try {
            body();
        } catch (const platform::RuntimeError& error) {
            return error.Number();
        }
        return 0;
    }
    QTemporaryDir folder_{QDir::tempPath() + "/tarn system XXXXXX"};
};

TEST_F(SystemTest, WriteLines_StartsAnewOrAppends) {
    platform::WriteLines(Path("A.LOG"), platform::TextMode::kOutput, {"one", QString("\u00e9")});
    platform::WriteLines(Path("A.LOG"), platform::TextMode::kAppend, {"", "two"});
    EXPECT_EQ(Bytes("A.LOG"), QByteArray("one\r\n\xc3\xa9\r\n\r\ntwo\r\n"));
    platform::WriteLines(Path("A.LOG"), platform::TextMode::kOutput, {"new"});
    EXPECT_EQ(Bytes("A.LOG"), QByteArray("new\r\n"));
    platform::WriteLines(Path("A.LOG"), platform::TextMode::kOutput, {});
    EXPECT_EQ(Bytes("A.LOG"), QByteArray());
    if (QFile::exists("/dev/null")) {
        platform::WriteLines("/dev/null", platform::TextMode::kOutput, {"lost"});
    }
}

TEST_F(SystemTest, WriteLines_FailuresHaveNumbers) {
    QDir(folder_.path()).mkdir("dir");
    const auto write = [&](const QString& path) {
        return ErrorOf([&] { platform::WriteLines(path, platform::TextMode::kAppend, {"x"}); });
    };
    EXPECT_EQ(write(Path("none/A.LOG")), platform::kPathNotFound);
    EXPECT_EQ(write(Path("dir")), platform::kPathAccess);
    if (QFile::exists("/dev/full")) {
        EXPECT_EQ(write("/dev/full"), platform::kDiskFull);
    }
#ifdef Q_OS_UNIX
    // The reason is named, and a pipe without a reader holds nobody up.
    ASSERT_EQ(::mkfifo(QFile::encodeName(Path("pipe")).constData(), 0600), 0);
    EXPECT_EQ(write(Path("pipe")), platform::kDeviceError);
    ASSERT_TRUE(QFile::link("loop", Path("loop")));
    EXPECT_EQ(write(Path("loop")), platform::kDeviceError);
#endif
    if (geteuid() != 0) {
        Put("ro", "");
        QFile::setPermissions(Path("ro"), QFile::ReadOwner);
        EXPECT_EQ(write(Path("ro")), platform::kPermissionDenied);
    }
}

TEST_F(SystemTest, Dir_MatchesWithoutRegardToCase) {
    Put("A.fcd", "");
    Put("b.FCD", "");
    Put("[x].txt", "");
    QDir(folder_.path()).mkdir("sub.fcd");
    EXPECT_EQ(platform::Dir(Path("*.fcd")), QStringList({"A.fcd", "b.FCD"}));
    EXPECT_EQ(platform::Dir(Path("B.fc?")), QStringList({"b.FCD"}));
    EXPECT_EQ(platform::Dir(Path("[x].txt")), QStringList({"[x].txt"}));
    EXPECT_EQ(platform::Dir(folder_.path() + "/").size(), 3);
    EXPECT_EQ(platform::Dir(Path("*.*")).size(), 3);
    EXPECT_EQ(platform::Dir(Path("none/*")), QStringList());
    EXPECT_EQ(platform::Dir(Path("nothing")), QStringList());
    EXPECT_EQ(ErrorOf([&] { (void)platform::Dir(Path("A.fcd/*")); }), platform::kPathAccess);
}

TEST_F(SystemTest, FindFile_PrefersTheExactName) {
    Put("fcd.NEW", "");
    EXPECT_EQ(platform::FindFile(folder_.path(), "FCD.new"), Path("fcd.NEW"));
    Put("FCD.new", "");
    EXPECT_EQ(platform::FindFile(folder_.path(), "FCD.new"), Path("FCD.new"));
    EXPECT_EQ(platform::FindFile(folder_.path(), "other"), Path("other"));
}

TEST_F(SystemTest, FindPath_MatchesEachPartWithoutRegardToCase) {
    ASSERT_TRUE(QDir(folder_.path()).mkdir("Costs"));
    Put("Costs/UNIT one.FCD", "");
    const QString there = Path("Costs/UNIT one.FCD");
    EXPECT_EQ(platform::FindPath(there), there);
    EXPECT_EQ(platform::FindPath(Path("costs/unit ONE.fcd")), there);
    EXPECT_EQ(platform::FindPath(Path("costs\\unit one.fcd")), there);
    EXPECT_EQ(platform::FindPath(Path("costs/unit two.fcd")), Path("costs/unit two.fcd"));
    Put("Costs/unit one.fcd", "");
    EXPECT_EQ(platform::FindPath(Path("Costs/unit one.fcd")), Path("Costs/unit one.fcd"));
}

TEST_F(SystemTest, FileCopy_ReplacesTheTarget) {
    QByteArray large(300000, 'x');
    large[299999] = 'y';
    Put("FCD.new", large);
    platform::FileCopy(Path("FCD.new"), Path("a b.FCD"));
    EXPECT_EQ(Bytes("a b.FCD"), large);
    Put("FCD.new", "short");
    platform::FileCopy(Path("FCD.new"), Path("a b.FCD"));
    EXPECT_EQ(Bytes("a b.FCD"), QByteArray("short"));
    EXPECT_EQ(QDir(folder_.path()).entryList(QDir::Files | QDir::Hidden).size(), 2);
}

TEST_F(SystemTest, FileCopy_OfAReadOnlyTemplate_CanBeWritten) {
    Put("FCD.new", "x");
    QFile::setPermissions(Path("FCD.new"), QFile::ReadOwner);
    platform::FileCopy(Path("FCD.new"), Path("copy"));
    EXPECT_TRUE(QFile::permissions(Path("copy")) & QFile::WriteOwner);
}

TEST_F(SystemTest, FileCopy_Failures_LeaveTheTargetAsItWas) {
    Put("target", "old");
    QDir(folder_.path()).mkdir("dir");
    const auto copy = [&](const QString& from, const QString& to) {
        return ErrorOf([&] { platform::FileCopy(from, to); });
    };
    EXPECT_EQ(copy(Path("none"), Path("target")), platform::kFileNotFound);
    EXPECT_EQ(copy(Path("none/none"), Path("target")), platform::kPathNotFound);
    EXPECT_EQ(copy(Path("target"), Path("none/x")), platform::kPathNotFound);
    EXPECT_EQ(copy(Path("dir"), Path("target")), platform::kPathAccess);
    EXPECT_EQ(copy(Path("target"), Path("dir")), platform::kPathAccess);
    EXPECT_EQ(Bytes("target"), QByteArray("old"));
}

TEST_F(SystemTest, ProgramFolder_CanBeReplaced) {
    const QString own = platform::ProgramFolder();
    EXPECT_FALSE(own.endsWith('/'));
    platform::SetProgramFolder(folder_.path());
    EXPECT_EQ(platform::ProgramFolder(), folder_.path());
    platform::SetProgramFolder({});
    EXPECT_EQ(platform::ProgramFolder(), own);
    EXPECT_EQ(platform::JoinPath("/a", "b"), "/a/b");
    EXPECT_EQ(platform::JoinPath("/", "b"), "/b");
}

TEST_F(SystemTest, Pointer_IsOneAndNotAStack) {
    platform::SetMousePointer(platform::Pointer::kHourglass);
    platform::SetMousePointer(platform::Pointer::kHourglass);
    ASSERT_NE(QGuiApplication::overrideCursor(), nullptr);
    EXPECT_EQ(QGuiApplication::overrideCursor()->shape(), Qt::WaitCursor);
    EXPECT_EQ(platform::MousePointer(), platform::Pointer::kHourglass);
    platform::SetMousePointer(platform::Pointer::kDefault);
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    platform::SetMousePointer(platform::Pointer::kDefault);
    EXPECT_EQ(platform::MousePointer(), platform::Pointer::kDefault);
}

TEST_F(SystemTest, Lengths_AreTwips) {
    EXPECT_EQ(platform::ToTwips(808), 12120);
    EXPECT_EQ(platform::ToPixels(9120), 608);
    EXPECT_EQ(platform::ScreenSize(), QGuiApplication::primaryScreen()->size() * 15);
}

TEST_F(SystemTest, Clipboard_KeepsText) {
    platform::SetClipboardText("a\tb");
    EXPECT_EQ(platform::ClipboardText(), "a\tb");
}

TEST_F(SystemTest, PlaceOver_CentersInsideTheScreen) {
    const QRect room = QGuiApplication::primaryScreen()->availableGeometry();
    QWidget frame;
    frame.setGeometry(100, 100, 400, 300);
    QWidget dialog;
    dialog.resize(200, 100);
    platform::PlaceOver(dialog, frame);
    EXPECT_EQ(QRect(dialog.pos(), dialog.size()).center(), frame.frameGeometry().center());
    frame.move(room.right() - 50, room.bottom() - 50);
    platform::PlaceOver(dialog, frame);
    EXPECT_TRUE(room.contains(QRect(dialog.pos(), dialog.size())));
}

// A log is read, moved and removed by others while it is written.
TEST_F(SystemTest, WriteLines_LineByLine_GoesToTheFileThatHasTheName) {
    const auto append = [this](const char* line) {
        platform::WriteLines(Path("LOG"), platform::TextMode::kAppend, {QString::fromLatin1(line)});
    };
    append("one");
    append("two");
    EXPECT_EQ(Bytes("LOG"), QByteArray("one\r\ntwo\r\n")) << "each is there at once";
    ASSERT_TRUE(QFile::rename(Path("LOG"), Path("LOG.old")));
    append("three");
    EXPECT_EQ(Bytes("LOG"), QByteArray("three\r\n"));
    EXPECT_EQ(Bytes("LOG.old"), QByteArray("one\r\ntwo\r\n"));
    ASSERT_TRUE(QFile::remove(Path("LOG")));
    append("four");
    EXPECT_EQ(Bytes("LOG"), QByteArray("four\r\n"));
    platform::WriteLines(Path("other"), platform::TextMode::kAppend, {"five"});
    platform::WriteLines(Path("LOG"), platform::TextMode::kOutput, {"six"});
    append("seven");
    EXPECT_EQ(Bytes("LOG"), QByteArray("six\r\nseven\r\n"));
    EXPECT_EQ(Bytes("other"), QByteArray("five\r\n"));
    Put("LOG", "");
    append("eight");
    EXPECT_EQ(Bytes("LOG"), QByteArray("eight\r\n")) << "emptied by somebody";
}

TEST_F(SystemTest, WriteLines_FolderMadeReadOnlyOrGone_FailsFromThenOn) {
    ASSERT_TRUE(QDir(folder_.path()).mkdir("logs"));
    platform::WriteLines(Path("logs/LOG"), platform::TextMode::kAppend, {"one"});
    ASSERT_TRUE(QDir(Path("logs")).removeRecursively());
    EXPECT_EQ(ErrorOf([&] {
                  platform::WriteLines(Path("logs/LOG"), platform::TextMode::kAppend, {"two"});
              }),
              platform::kPathNotFound);
}

}  // namespace
