// The host's own files, and that a process which is killed loses nothing that it was told.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <memory>
#include <thread>

#include "jet/error.h"
#include "jet/file.h"
#include "page/bytes.h"
#include "page/pager.h"
#include "support/temp_folder.h"

namespace jet {
namespace {

using tarn_test::TempFolder;

std::vector<std::byte> SomeBytes(std::size_t size) {
    return std::vector(size, std::byte{0x37});
}

ErrorKind KindOf(const std::filesystem::path& path, OpenMode mode) {
    try {
        (void)HostFileSystem().Open(path, mode);
    } catch (const Error& error) {
        return error.Kind();
    }
    ADD_FAILURE() << path << " was opened";
    return ErrorKind::kIo;
}

std::unique_ptr<Pager> OpenPager(const std::filesystem::path& path, Recovery& recovery) {
    return Pager::Open(HostFileSystem(), path, {}, recovery);
}

void MakeFile(const std::filesystem::path& path) {
    const auto pager = Pager::Create(HostFileSystem(), path, Version::kJet4);
    Operation operation(*pager);
    for (int i = 0; i < 4; ++i) pager->Allocate();
    operation.Commit();
    pager->Close();
}

TEST(HostFiles, WriteThenRead_GivesTheBytesBack) {
    const TempFolder folder;
    const auto file = HostFileSystem().Open(folder / "a.bin", OpenMode::kCreateNew);
    file->Write(1000, SomeBytes(500));
    EXPECT_EQ(file->Size(), 1500U);
    std::vector<std::byte> read(500);
    file->Read(1000, read);
    EXPECT_EQ(read, SomeBytes(500));
    file->Truncate(1200);
    file->Flush();
    EXPECT_THROW(file->Read(1000, read), Error);
    EXPECT_EQ(file->Size(), 1200U);
    HostFileSystem().FlushFolder(folder.Path());
}

TEST(HostFiles, Open_OfWhatIsNoFile_SaysWhy) {
    const TempFolder folder;
    EXPECT_EQ(KindOf(folder / "missing", OpenMode::kReadWrite), ErrorKind::kFileNotFound);
    EXPECT_EQ(KindOf(folder / "missing/below", OpenMode::kReadWrite), ErrorKind::kFileNotFound);
    EXPECT_EQ(KindOf(folder.Path(), OpenMode::kReadWrite), ErrorKind::kPermissionDenied);
    EXPECT_EQ(KindOf(folder.Path(), OpenMode::kReadOnly), ErrorKind::kPermissionDenied);
    std::ofstream(folder / "there") << "x";
    EXPECT_EQ(KindOf(folder / "there", OpenMode::kCreateNew), ErrorKind::kAlreadyExists);
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(KindOf(folder / "pipe", OpenMode::kReadOnly), ErrorKind::kNotADatabase);
}

TEST(HostFiles, Lock_ConflictsWithinTheProcessAndOutlivesOtherHandles) {
    const TempFolder folder;
    auto first = HostFileSystem().Open(folder / "a.bin", OpenMode::kCreateNew);
    ASSERT_TRUE(first->TryLock(true));
    for (int i = 0; i < 2; ++i) {
        const auto other = HostFileSystem().Open(folder / "a.bin", OpenMode::kReadOnly);
        EXPECT_FALSE(other->TryLock(true));
        EXPECT_FALSE(other->TryLock(false));
    }
    first.reset();
    const auto reader = HostFileSystem().Open(folder / "a.bin", OpenMode::kReadOnly);
    const auto another = HostFileSystem().Open(folder / "a.bin", OpenMode::kReadOnly);
    EXPECT_TRUE(reader->TryLock(false));
    EXPECT_TRUE(another->TryLock(false));
    const auto writer = HostFileSystem().Open(folder / "a.bin", OpenMode::kReadWrite);
    EXPECT_FALSE(writer->TryLock(true));
}

TEST(HostFiles, LinkToAFile_LeadsToTheSameLog) {
    const TempFolder folder;
    MakeFile(folder / "real.mdb");
    std::filesystem::create_directory(folder / "elsewhere");
    std::filesystem::create_symlink(folder / "real.mdb", folder / "elsewhere/link.mdb");
    Recovery recovery;
    const auto pager = OpenPager(folder / "elsewhere/link.mdb", recovery);
    EXPECT_TRUE(std::filesystem::exists(folder / "real.mdb-log"));
    EXPECT_FALSE(std::filesystem::exists(folder / "elsewhere/link.mdb-log"));
    pager->Close();
    EXPECT_FALSE(std::filesystem::exists(folder / "real.mdb-log"));
}

// Counts up on a page, in the file at `path`, telling each number once its operation returned.
[[noreturn]] void CountUpAndTell(const std::filesystem::path& path, int pipe) {
    Recovery recovery;
    const auto pager = OpenPager(path, recovery);
    std::uint32_t number = ReadU32(pager->Page(PageNumber{3}).Data(), 100);
    for (;;) {
        ++number;
        {
            Operation operation(*pager);
            // Two pages far apart must always agree.
            WriteU32(pager->Change(PageNumber{3}), 100, number);
            WriteU32(pager->Change(PageNumber{5}), 3000, number);
            operation.Commit();
        }
        if (::write(pipe, &number, sizeof number) != sizeof number) ::_exit(1);
        if (number % 50 == 0) pager->MakeDurable();
    }
}

TEST(Process, KilledAtAnyInstant_EverythingToldIsThereAndNothingIsHalf) {
    const TempFolder folder;
    const auto path = folder / "a file.mdb";
    MakeFile(path);
    std::uint32_t told = 0;
    for (int round = 0; round < 40; ++round) {
        int ends[2];
        ASSERT_EQ(::pipe(ends), 0);
        const pid_t child = ::fork();
        if (child == 0) CountUpAndTell(path, ends[1]);
        ::close(ends[1]);
        // The number of acknowledgements waited for varies the instant, not a clock.
        for (int i = 0; i <= round * 7; ++i) {
            ASSERT_EQ(::read(ends[0], &told, sizeof told), static_cast<ssize_t>(sizeof told));
        }
        ::kill(child, SIGKILL);
        while (::read(ends[0], &told, sizeof told) == static_cast<ssize_t>(sizeof told)) {
        }
        ::close(ends[0]);
        ASSERT_EQ(::waitpid(child, nullptr, 0), child);

        Recovery recovery;
        const auto pager = OpenPager(path, recovery);
        EXPECT_FALSE(recovery.foreignLogIgnored);
        const std::uint32_t found = ReadU32(pager->Page(PageNumber{3}).Data(), 100);
        EXPECT_EQ(found, ReadU32(pager->Page(PageNumber{5}).Data(), 3000));
        EXPECT_GE(found, told);
        EXPECT_LE(found, told + 1);
        pager->Close();
    }
}

TEST(Process, Ended_FreesTheLock) {
    const TempFolder folder;
    const auto path = folder / "a file.mdb";
    MakeFile(path);
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const pid_t child = ::fork();
    if (child == 0) CountUpAndTell(path, ends[1]);
    ::close(ends[1]);
    std::uint32_t told = 0;
    ASSERT_EQ(::read(ends[0], &told, sizeof told), static_cast<ssize_t>(sizeof told));
    Recovery recovery;
    try {
        OpenPager(path, recovery);
        ADD_FAILURE() << "opened a file that another process holds";
    } catch (const Error& error) {
        EXPECT_EQ(error.Kind(), ErrorKind::kFileInUse);
    }
    ::kill(child, SIGKILL);
    ASSERT_EQ(::waitpid(child, nullptr, 0), child);
    ::close(ends[0]);
    EXPECT_TRUE(OpenPager(path, recovery));
}

}  // namespace
}  // namespace jet
