// The host's own files, and that a process which is killed loses nothing that was acknowledged.
#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "jet/error.h"
#include "jet/file.h"
#include "page/bytes.h"
#include "page/operation.h"
#include "page/pager.h"
#include "support/child_process.h"
#include "support/command.h"
#include "support/system.h"
#include "support/temp_folder.h"

#ifndef _WIN32
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>

#include "os/clock.h"
#include "os/posix_errors.h"
#endif

namespace jet {
namespace {

using tarn_test::BuiltProgram;
using tarn_test::ChildProcess;
using tarn_test::TempFolder;

constexpr const char* kHeld = "Whoever has a file open keeps all others from it there.";

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

std::uint32_t NumberIn(const std::string& line) {
    return static_cast<std::uint32_t>(std::stoul(line));
}

void MakeFile(const std::filesystem::path& path) {
    const auto pager = Pager::Create(HostFileSystem(), path, Version::kJet4);
    Operation operation(*pager);
    for (int i = 0; i < 4; ++i) operation.Allocate();
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

TEST(HostFiles, NamesWithBlanksAndAnyLetters_AreKeptAndSaid) {
    const TempFolder folder;
    const auto path = folder.Path() / u8"Größe \u4E66 1.bin";
    HostFileSystem().Open(path, OpenMode::kCreateNew)->Write(0, SomeBytes(3));
    EXPECT_TRUE(HostFileSystem().Exists(path));
    const auto renamed = folder.Path() / u8"Maß 2.bin";
    HostFileSystem().Rename(path, renamed);
    EXPECT_FALSE(HostFileSystem().Exists(path));
    EXPECT_EQ(HostFileSystem().Open(renamed, OpenMode::kReadOnly)->Size(), 3U);
    try {
        (void)HostFileSystem().Open(path, OpenMode::kReadOnly);
        ADD_FAILURE() << "opened a file under its former name";
    } catch (const Error& error) {
        const std::string name = "\"Gr\xC3\xB6\xC3\x9F\x65 \xE4\xB9\xA6 1.bin\"";
        EXPECT_EQ(error.what(), "The file " + name + " cannot be found.");
    }
}

TEST(HostFiles, BeyondFourGibibytes_OffsetsAreWhole) {
    const TempFolder folder;
    const auto file = HostFileSystem().Open(folder / "a.bin", OpenMode::kCreateNew);
    file->Write(0, SomeBytes(1));
    constexpr std::uint64_t kSize = (std::uint64_t{5} << 30) + 1;
    file->Truncate(kSize);
    EXPECT_EQ(file->Size(), kSize);
    // An offset that lost its upper half would find the byte that is at the beginning.
    std::vector<std::byte> read(1);
    file->Read(std::uint64_t{1} << 32, read);
    EXPECT_EQ(read.front(), std::byte{0});
    EXPECT_THROW(file->Read(kSize, read), Error);
}

TEST(HostFiles, Open_OfAFileThatMayOnlyBeRead_SaysSo) {
    const TempFolder folder;
    const auto path = folder / "a.bin";
    (void)HostFileSystem().Open(path, OpenMode::kCreateNew);
    std::filesystem::permissions(path, std::filesystem::perms::owner_read);
    EXPECT_TRUE(HostFileSystem().Open(path, OpenMode::kReadOnly));
    try {
        (void)HostFileSystem().Open(path, OpenMode::kReadWrite);
        GTEST_SKIP() << "This user may write everything, so that no file is read-only.";
    } catch (const Error& error) {
        EXPECT_EQ(error.Kind(), ErrorKind::kReadOnly);
    }
}

TEST(HostFiles, Write_WithAFileOpenedForReading_IsAnErrorOfTheEngine) {
    const TempFolder folder;
    (void)HostFileSystem().Open(folder / "a.bin", OpenMode::kCreateNew);
    const auto file = HostFileSystem().Open(folder / "a.bin", OpenMode::kReadOnly);
    EXPECT_THROW(file->Write(0, SomeBytes(1)), Error);
    EXPECT_THROW(file->Truncate(5), Error);
    EXPECT_EQ(file->Size(), 0U);
}

TEST(HostFiles, Remove_OfAFileThatIsOpen_FreesTheNameOnceItIsClosed) {
    if (!support::kOthersReachHeldFiles) GTEST_SKIP() << kHeld;
    const TempFolder folder;
    auto file = HostFileSystem().Open(folder / "a.bin", OpenMode::kCreateNew);
    HostFileSystem().Remove(folder / "a.bin");
    file.reset();
    EXPECT_FALSE(HostFileSystem().Exists(folder / "a.bin"));
    HostFileSystem().Remove(folder / "a.bin");
    EXPECT_TRUE(HostFileSystem().Open(folder / "a.bin", OpenMode::kCreateNew));
}

TEST(HostFiles, Open_OfWhatIsNoFile_SaysWhy) {
    const TempFolder folder;
    EXPECT_EQ(KindOf(folder / "missing", OpenMode::kReadWrite), ErrorKind::kFileNotFound);
    EXPECT_EQ(KindOf(folder / "missing/below", OpenMode::kReadWrite), ErrorKind::kFileNotFound);
    EXPECT_EQ(KindOf(folder.Path(), OpenMode::kReadWrite), ErrorKind::kPermissionDenied);
    EXPECT_EQ(KindOf(folder.Path(), OpenMode::kReadOnly), ErrorKind::kPermissionDenied);
    std::ofstream(folder / "there") << "x";
    EXPECT_EQ(KindOf(folder / "there", OpenMode::kCreateNew), ErrorKind::kAlreadyExists);
}

// Longer than the paths that Windows took for decades, and takes without further ado to this day.
TEST(HostFiles, LongPaths_AreTaken) {
    const TempFolder folder;
    std::filesystem::path deep = folder.Path();
    for (const char letter : {'a', 'b', 'c'}) {
        deep /= std::string(100, letter);
#ifdef _WIN32
        std::filesystem::create_directory(LR"(\\?\)" + deep.make_preferred().native());
#else
        std::filesystem::create_directory(deep);
#endif
    }
    const std::byte letter{'x'};
    const std::filesystem::path file = deep / "a.bin";
    HostFileSystem().Open(file, OpenMode::kCreateNew)->Write(0, std::span(&letter, 1));
    EXPECT_EQ(HostFileSystem().Open(file, OpenMode::kReadOnly)->Size(), 1U);
    HostFileSystem().Rename(file, deep / "b.bin");
    EXPECT_FALSE(HostFileSystem().Exists(file));
    EXPECT_TRUE(HostFileSystem().Exists(deep / "b.bin"));
    HostFileSystem().Remove(deep / "b.bin");
    EXPECT_FALSE(HostFileSystem().Exists(deep / "b.bin"));
}

#ifdef _WIN32
TEST(HostFiles, Open_OfADevice_IsRefused) {
    EXPECT_EQ(KindOf("NUL", OpenMode::kReadOnly), ErrorKind::kNotADatabase);
}
#else
TEST(HostFiles, Open_OfAPipe_IsRefusedAtOnce) {
    const TempFolder folder;
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(KindOf(folder / "pipe", OpenMode::kReadOnly), ErrorKind::kNotADatabase);
}

TEST(HostFiles, SystemErrors_BecomeTheKindsThatProgramsDecideBy) {
    const std::pair<int, ErrorKind> naming[] = {{ENOENT, ErrorKind::kFileNotFound},
                                                {ENOTDIR, ErrorKind::kFileNotFound},
                                                {ENAMETOOLONG, ErrorKind::kFileNotFound},
                                                {ELOOP, ErrorKind::kFileNotFound},
                                                {EEXIST, ErrorKind::kAlreadyExists},
                                                {EROFS, ErrorKind::kReadOnly},
                                                {EACCES, ErrorKind::kPermissionDenied},
                                                {EPERM, ErrorKind::kPermissionDenied},
                                                {EISDIR, ErrorKind::kPermissionDenied},
                                                {ETXTBSY, ErrorKind::kFileInUse},
                                                {ENOSPC, ErrorKind::kDiskFull},
                                                {EDQUOT, ErrorKind::kDiskFull},
                                                {EIO, ErrorKind::kIo}};
    for (const auto& [code, kind] : naming) {
        EXPECT_EQ(ErrorOfNaming(code, "a folder/a file").Kind(), kind) << code;
    }
    const std::pair<int, ErrorKind> transfer[] = {{ENOSPC, ErrorKind::kDiskFull},
                                                  {EDQUOT, ErrorKind::kDiskFull},
                                                  {EFBIG, ErrorKind::kFileTooLarge},
                                                  {EIO, ErrorKind::kIo}};
    for (const auto& [code, kind] : transfer) {
        EXPECT_EQ(ErrorOfTransfer(code, "written").Kind(), kind) << code;
    }
    EXPECT_STREQ(
        ErrorOfTransfer(EIO, "read").what(),
        ("The file could not be read (system error " + std::to_string(EIO) + ").").c_str());
}

TEST(HostFiles, NamesThatLeadNowhere_AreErrorsOfTheEngine) {
    const TempFolder folder;
    std::ofstream(folder / "file") << "x";
    EXPECT_EQ(KindOf(folder / "file/below", OpenMode::kReadOnly), ErrorKind::kFileNotFound);
    EXPECT_EQ(KindOf(folder / std::string(300, 'n'), OpenMode::kCreateNew),
              ErrorKind::kFileNotFound);
    EXPECT_THROW(HostFileSystem().Remove(folder.Path()), Error);
    EXPECT_THROW(HostFileSystem().Rename(folder / "missing", folder / "new"), Error);
    EXPECT_THROW(HostFileSystem().FlushFolder(folder / "missing"), Error);
    HostFileSystem().FlushFolder("");
    EXPECT_EQ(HostFileSystem().Resolve(folder / "missing"), folder / "missing");
}

// The system has taken the file away from under the engine, as it does with a failed medium.
TEST(HostFiles, CallsThatTheSystemRefuses_AreErrorsOfTheEngine) {
    const TempFolder folder;
    const int next = ::open("/dev/null", O_RDONLY);
    ASSERT_GE(next, 0);
    ::close(next);
    const auto file = HostFileSystem().Open(folder / "a.bin", OpenMode::kCreateNew);
    file->Write(0, SomeBytes(5));
    ASSERT_EQ(::close(next), 0);
    std::vector<std::byte> into(5);
    EXPECT_THROW(file->Read(0, into), Error);
    EXPECT_THROW(file->Write(0, SomeBytes(1)), Error);
    const std::vector<std::byte> piece = SomeBytes(1);
    const std::vector<std::span<const std::byte>> pieces(2, piece);
    EXPECT_THROW(file->WriteAll(0, pieces), Error);
    EXPECT_THROW((void)file->Size(), Error);
    EXPECT_THROW(file->Truncate(1), Error);
    EXPECT_THROW(file->Flush(), Error);
    EXPECT_THROW((void)file->TryLock(true), Error);
    // Reading along is allowed where no lock can be had.
    EXPECT_TRUE(file->TryLock(false));
}

TEST(HostFiles, FolderThatCannotBeFlushed_IsLeftAsItIs) {
    if (!std::filesystem::exists("/proc/self"))
        GTEST_SKIP() << "This system has no folder that cannot be flushed, such as /proc.";
    EXPECT_NO_THROW(HostFileSystem().FlushFolder("/proc"));
}

#ifdef __linux__
// For its life no file grows beyond so many bytes.
class LongestFile {
public:
    explicit LongestFile(rlim_t bytes) : former_(std::signal(SIGXFSZ, SIG_IGN)) {
        EXPECT_EQ(::getrlimit(RLIMIT_FSIZE, &limit_), 0);
        const rlimit wanted{bytes, limit_.rlim_max};
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &wanted), 0);
    }
    LongestFile(const LongestFile&) = delete;
    LongestFile& operator=(const LongestFile&) = delete;
    ~LongestFile() {
        ::setrlimit(RLIMIT_FSIZE, &limit_);
        std::signal(SIGXFSZ, former_);
    }

private:
    void (*former_)(int);
    rlimit limit_{};
};

TEST(HostFiles, PiecesThatTheSystemTakesHalf_AreAnErrorAndWhatWasTakenIsThere) {
    const TempFolder folder;
    const auto file = HostFileSystem().Open(folder / "a.bin", OpenMode::kCreateNew);
    const std::vector<std::byte> piece = SomeBytes(600);
    const std::vector<std::span<const std::byte>> pieces(3, piece);
    {
        const LongestFile limit(1000);
        EXPECT_THROW(file->WriteAll(0, pieces), Error);
    }
    EXPECT_EQ(file->Size(), 1000U);
}

// For its life the process has the rights of nobody, if it is the one that has all.
class AsNobody {
public:
    AsNobody() : changed_(::geteuid() == 0 && Become(65534)) {}
    AsNobody(const AsNobody&) = delete;
    AsNobody& operator=(const AsNobody&) = delete;
    ~AsNobody() { EXPECT_TRUE(!changed_ || Become(0)); }

private:
    // The saved user stays, so that there is a way back.
    static bool Become(uid_t user) { return ::setresuid(user, user, 0) == 0; }

    bool changed_;
};

TEST(HostFiles, Open_WithoutTheRights_SaysWhichAreMissing) {
    const TempFolder folder;
    const auto readable = folder / "readable.bin";
    const auto closed = folder / "closed.bin";
    std::ofstream(readable) << "x";
    std::ofstream(closed) << "x";
    using std::filesystem::perms;
    std::filesystem::permissions(folder.Path(), perms::all);
    std::filesystem::permissions(readable,
                                 perms::owner_read | perms::group_read | perms::others_read);
    std::filesystem::permissions(closed, perms::none);
    const AsNobody nobody;
    if (::access(readable.c_str(), R_OK) != 0 || ::access(readable.c_str(), W_OK) == 0) {
        GTEST_SKIP() << "The rights of the file do not hold for the other user here.";
    }
    EXPECT_EQ(KindOf(readable, OpenMode::kReadWrite), ErrorKind::kReadOnly);
    EXPECT_EQ(KindOf(closed, OpenMode::kReadWrite), ErrorKind::kPermissionDenied);
    EXPECT_EQ(KindOf(closed, OpenMode::kReadOnly), ErrorKind::kPermissionDenied);
}
#endif

TEST(Clock, TimeThatABuildSets_IsTheTime) {
    ASSERT_EQ(::setenv("SOURCE_DATE_EPOCH", "86400", 1), 0);
    const double set = LocalTime();
    ASSERT_EQ(::unsetenv("SOURCE_DATE_EPOCH"), 0);
    // Wherever the clock is, the second day of 1970 is less than a day away.
    EXPECT_NEAR(set, 25570, 1);
    EXPECT_GT(LocalTime(), 40000);
}
#endif

TEST(HostFiles, Lock_ConflictsWithinTheProcessAndOutlivesOtherHandles) {
    if (!support::kOthersReachHeldFiles) GTEST_SKIP() << kHeld;
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
    std::error_code failed;
    std::filesystem::create_symlink(folder / "real.mdb", folder / "elsewhere/link.mdb", failed);
    if (failed) GTEST_SKIP() << "Links cannot be made here: " << failed.message();
    Recovery recovery;
    const auto pager = OpenPager(folder / "elsewhere/link.mdb", recovery);
    EXPECT_TRUE(std::filesystem::exists(folder / "real.mdb-log"));
    EXPECT_FALSE(std::filesystem::exists(folder / "elsewhere/link.mdb-log"));
    pager->Close();
    EXPECT_FALSE(std::filesystem::exists(folder / "real.mdb-log"));
}

TEST(Process, KilledAtAnyInstant_EverythingToldIsThereAndNothingIsHalf) {
    const TempFolder folder;
    const auto path = folder / "a file.mdb";
    MakeFile(path);
    for (int round = 0; round < 40; ++round) {
        ChildProcess child(BuiltProgram("count_up"), path);
        std::uint32_t acknowledged = 0;
        // The number of acknowledgements waited for varies the instant, not a clock.
        for (int i = 0; i <= round * 7; ++i) {
            const auto line = child.ReadLine();
            ASSERT_TRUE(line);
            acknowledged = NumberIn(*line);
        }
        child.Kill();
        while (const auto line = child.ReadLine()) acknowledged = NumberIn(*line);

        Recovery recovery;
        const auto pager = OpenPager(path, recovery);
        EXPECT_FALSE(recovery.foreignLogIgnored);
        const std::uint32_t found = ReadU32(pager->Page(PageNumber{3}).Data(), 100);
        EXPECT_EQ(found, ReadU32(pager->Page(PageNumber{5}).Data(), 3000));
        EXPECT_GE(found, acknowledged);
        EXPECT_LE(found, acknowledged + 1);
        pager->Close();
    }
}

TEST(Process, Ended_FreesTheLock) {
    const TempFolder folder;
    const auto path = folder / "a file.mdb";
    MakeFile(path);
    ChildProcess child(BuiltProgram("count_up"), path);
    ASSERT_TRUE(child.ReadLine());
    Recovery recovery;
    try {
        OpenPager(path, recovery);
        ADD_FAILURE() << "opened a file that another process holds";
    } catch (const Error& error) {
        EXPECT_EQ(error.Kind(), ErrorKind::kFileInUse);
    }
    child.Kill();
    EXPECT_TRUE(OpenPager(path, recovery));
}

// What both kinds of file system promise.
class AnyFileSystem : public testing::TestWithParam<const char*> {
protected:
    [[nodiscard]] FileSystem& Files() { return IsHost() ? HostFileSystem() : *memory_; }
    [[nodiscard]] std::filesystem::path Name(const std::string& name) const {
        return IsHost() ? folder_ / name : std::filesystem::path(name);
    }
    [[nodiscard]] static bool IsHost() { return std::string(GetParam()) == "Host"; }
    ErrorKind Refusal(const std::string& name, OpenMode mode) {
        try {
            (void)Files().Open(Name(name), mode);
        } catch (const Error& error) {
            return error.Kind();
        }
        ADD_FAILURE() << name << " was opened";
        return ErrorKind::kOutOfMemory;
    }

    TempFolder folder_;
    std::unique_ptr<FileSystem> memory_ = MakeMemoryFileSystem();
};

INSTANTIATE_TEST_SUITE_P(Kinds, AnyFileSystem, testing::Values("Host", "Memory"),
                         [](const auto& tested) { return std::string(tested.param); });

TEST_P(AnyFileSystem, Opening_MindsWhetherTheFileIsThere) {
    EXPECT_EQ(Refusal("a", OpenMode::kReadOnly), ErrorKind::kFileNotFound);
    EXPECT_EQ(Refusal("a", OpenMode::kReadWrite), ErrorKind::kFileNotFound);
    EXPECT_TRUE(Files().Open(Name("a"), OpenMode::kCreateOrOpen));
    EXPECT_EQ(Refusal("a", OpenMode::kCreateNew), ErrorKind::kAlreadyExists);
    Files().Open(Name("a"), OpenMode::kCreateOrOpen)->Write(0, SomeBytes(4));
    EXPECT_EQ(Files().Open(Name("a"), OpenMode::kReadWrite)->Size(), 4U);
}

TEST_P(AnyFileSystem, ReadingPastTheEnd_IsAnErrorAndReadingNothingIsNone) {
    const auto file = Files().Open(Name("a"), OpenMode::kCreateNew);
    file->Write(0, SomeBytes(4));
    file->Write(4, {});
    std::vector<std::byte> into(3);
    EXPECT_THROW(file->Read(2, into), Error);
    EXPECT_THROW(file->Read(9, into), Error);
    file->Read(4, {});
    EXPECT_EQ(file->Size(), 4U);
}

TEST_P(AnyFileSystem, PiecesAreWrittenOneBehindTheOther) {
    const auto file = Files().Open(Name("a"), OpenMode::kCreateNew);
    file->Write(0, SomeBytes(3));
    std::vector<std::byte> expected = SomeBytes(3);
    // More pieces than a system takes at once, some of them empty.
    std::vector<std::vector<std::byte>> bytes;
    for (std::size_t i = 0; i < 2500; ++i) {
        bytes.emplace_back(i % 5, static_cast<std::byte>(i));
        expected.insert(expected.end(), bytes.back().begin(), bytes.back().end());
    }
    file->WriteAll(3, std::vector<std::span<const std::byte>>(bytes.begin(), bytes.end()));
    std::vector<std::byte> stored(file->Size());
    file->Read(0, stored);
    EXPECT_EQ(stored, expected);
}

TEST_P(AnyFileSystem, TemporaryFile_IsGoneWhenItIsClosed) {
    const auto model = Files().Open(Name("a"), OpenMode::kCreateNew);
    Files().Open(Name("b"), OpenMode::kCreateNew)->Write(0, SomeBytes(9));
    auto file = Files().CreateTemporary(Name("b"), *model);
    EXPECT_EQ(file->Size(), 0U);
    file->Write(0, SomeBytes(4));
    std::vector<std::byte> stored(4);
    file->Read(0, stored);
    EXPECT_EQ(stored, SomeBytes(4));
    file.reset();
    EXPECT_FALSE(Files().Exists(Name("b")));
}

TEST_P(AnyFileSystem, FileOpenedForReading_IsNotWritten) {
    Files().Open(Name("a"), OpenMode::kCreateNew)->Write(0, SomeBytes(4));
    const auto file = Files().Open(Name("a"), OpenMode::kReadOnly);
    EXPECT_THROW(file->Write(0, SomeBytes(1)), Error);
    EXPECT_THROW(file->Truncate(0), Error);
    EXPECT_EQ(file->Size(), 4U);
}

TEST_P(AnyFileSystem, SharedLocksStandBesideEachOther_ExclusiveOnesAlone) {
    if (IsHost() && !support::kOthersReachHeldFiles) GTEST_SKIP() << kHeld;
    const auto one = Files().Open(Name("a"), OpenMode::kCreateNew);
    auto two = Files().Open(Name("a"), OpenMode::kReadWrite);
    auto three = Files().Open(Name("a"), OpenMode::kReadWrite);
    EXPECT_TRUE(two->TryLock(false));
    EXPECT_TRUE(three->TryLock(false));
    EXPECT_FALSE(one->TryLock(true));
    two.reset();
    EXPECT_FALSE(one->TryLock(true));
    three.reset();
    EXPECT_TRUE(one->TryLock(true));
    two = Files().Open(Name("a"), OpenMode::kReadWrite);
    EXPECT_FALSE(two->TryLock(false));
}

TEST_P(AnyFileSystem, Rename_ReplacesWhatHadTheName) {
    Files().Open(Name("a"), OpenMode::kCreateNew)->Write(0, SomeBytes(4));
    Files().Open(Name("b"), OpenMode::kCreateNew)->Write(0, SomeBytes(9));
    Files().Rename(Name("a"), Name("b"));
    EXPECT_FALSE(Files().Exists(Name("a")));
    EXPECT_EQ(Files().Open(Name("b"), OpenMode::kReadOnly)->Size(), 4U);
    Files().Rename(Name("b"), Name("b"));
    EXPECT_TRUE(Files().Exists(Name("b")));
    EXPECT_THROW(Files().Rename(Name("a"), Name("c")), Error);
    Files().Remove(Name("b"));
    Files().Remove(Name("b"));
    EXPECT_FALSE(Files().Exists(Name("b")));
}

}  // namespace
}  // namespace jet
