#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "SystemFixture.h"
#include "platform/system/TextFile.h"

namespace {

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
    if (geteuid() != 0) {
        Put("ro", "");
        QFile::setPermissions(Path("ro"), QFile::ReadOwner);
        EXPECT_EQ(write(Path("ro")), platform::kPermissionDenied);
    }
#endif
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
