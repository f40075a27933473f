#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

#include "SystemFixture.h"
#include "platform/RuntimeError.h"
#include "platform/system/Clipboard.h"
#include "platform/system/Files.h"
#include "platform/system/Pointer.h"
#include "platform/system/ProgramFolder.h"
#include "platform/system/Screen.h"
#include "platform/system/Twips.h"
#include "support/system.h"

namespace {

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
    if (!support::kNamesDifferByCase) {
        GTEST_SKIP() << "the system itself finds files without regard to case";
    }
    Put("fcd.NEW", "");
    EXPECT_EQ(platform::FindFile(folder_.path(), "FCD.new"), Path("fcd.NEW"));
    Put("FCD.new", "");
    EXPECT_EQ(platform::FindFile(folder_.path(), "FCD.new"), Path("FCD.new"));
    EXPECT_EQ(platform::FindFile(folder_.path(), "other"), Path("other"));
}

TEST_F(SystemTest, FindPath_MatchesEachPartWithoutRegardToCase) {
    if (!support::kNamesDifferByCase) {
        GTEST_SKIP() << "the system itself finds files without regard to case";
    }
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
    const auto native = QDir::toNativeSeparators;
    EXPECT_EQ(platform::JoinPath(native("/a"), "b"), native("/a/b"));
    EXPECT_EQ(platform::JoinPath(native("/"), "b"), native("/b"));
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

}  // namespace
