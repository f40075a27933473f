// Lock files of other programs, and the files that the engine makes beside a data file: who may
// read them, and that none is written through a link.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <set>
#include <string>
#include <utility>

#include "jet/check.h"
#include "jet/database.h"
#include "jet/error.h"
#include "jet/recordset.h"
#include "support/command.h"
#include "support/jet_files.h"
#include "support/temp_folder.h"

#ifndef _WIN32
#include <fcntl.h>
#include <grp.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace jet {
namespace {

using tarn_test::ExpectSound;

namespace fs = std::filesystem;

std::string Bytes(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

unsigned RightsOf(const fs::path& path) {
    struct stat status {};
    EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
    EXPECT_TRUE(S_ISREG(status.st_mode)) << path;
    return status.st_mode & 0777U;
}

void AddTable(Database& database, const char* name) {
    TableSchema schema;
    schema.name = name;
    schema.columns = {{.name = "Zone"}};
    database.CreateTable(schema);
}

const OpenOptions kShared = {.exclusive = false, .readOnly = true};

bool IsRefused(const std::function<void()>& call) {
    try {
        call();
        return false;
    } catch (const Error& error) {
        return error.Kind() == ErrorKind::kFileInUse;
    }
}

class SideFiles : public testing::Test {
protected:
    SideFiles() {
        Database::Create(path_, Version::kJet4)->Close();
        std::ofstream(victim_) << "somebody's own";
    }

    // The file and its log as a process leaves them that is killed.
    fs::path LeaveInterrupted() {
        const auto database = Database::Open(path_);
        AddTable(*database, "Zones");
        const fs::path left = folder_ / "left.mdb";
        fs::copy_file(path_, left);
        fs::copy_file(log_, left.string() + "-log");
        return left;
    }

    tarn_test::TempFolder folder_;
    fs::path path_ = folder_ / "Unit.mdb";
    fs::path log_ = folder_ / "Unit.mdb-log";
    fs::path lock_ = folder_ / "Unit.ldb";
    fs::path victim_ = folder_ / "victim";
};

TEST_F(SideFiles, LockFileBesideALink_RefusesTheFileToo) {
    const fs::path link = folder_ / "link.mdb";
    fs::create_symlink(path_, link);
    std::ofstream(folder_ / "link.LDB") << "somebody";
    const int holder = ::open((folder_ / "link.LDB").c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(::flock(holder, LOCK_EX), 0);
    EXPECT_TRUE(IsRefused([&] { Database::Open(link); }));
    ::close(holder);
    Database::Open(link)->Close();
}

TEST_F(SideFiles, LockFileThatNobodyHolds_KeepsNoReaderFromAnother) {
    std::ofstream(lock_) << "somebody";
    const int reader = ::open(lock_.c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(::flock(reader, LOCK_SH), 0);
    const auto first = Database::Open(path_, kShared);
    const auto second = Database::Open(path_, kShared);
    EXPECT_TRUE(CheckFile(path_).IsSound());
    ::close(reader);
}

TEST_F(SideFiles, DataFileNamedLikeALockFile_IsNotItsOwn) {
    const fs::path odd = folder_ / "odd.ldb";
    fs::rename(path_, odd);
    Database::Open(odd)->Close();
}

TEST_F(SideFiles, LockFile_ThatIsHeld_RefusesTheFile) {
    std::ofstream(lock_) << "somebody";
    Database::Open(path_)->Close();
    // The two kinds of locks that programs take; the original engine locks bytes past the end.
    for (const bool whole : {true, false}) {
        const int holder = ::open(lock_.c_str(), O_RDWR | O_CLOEXEC);
        ASSERT_GE(holder, 0);
        struct flock range {};
        range.l_type = F_WRLCK;
        range.l_start = 0x10000001;
        range.l_len = 1;
        ASSERT_EQ(whole ? ::flock(holder, LOCK_EX) : ::fcntl(holder, F_OFD_SETLK, &range), 0);
        const fs::path link = folder_ / "link.mdb";
        if (whole) fs::create_symlink(path_, link);
        for (const fs::path& name : {path_, link}) {
            EXPECT_TRUE(IsRefused([&] { Database::Open(name); }));
            EXPECT_TRUE(IsRefused([&] { Database::RequireFree(name); }));
            // Its pages change under those who only read, too.
            EXPECT_TRUE(IsRefused([&] { Database::Open(name, kShared); }));
            EXPECT_TRUE(IsRefused([&] { CheckFile(name); }));
        }
        ::close(holder);
    }
    Database::Open(path_)->Close();
    Database::RequireFree(path_);
    Database::RequireFree(folder_ / "none.mdb");
    EXPECT_EQ(Bytes(lock_), "somebody");
}

TEST_F(SideFiles, DataFile_WithALockedRange_IsInUse) {
    const int holder = ::open(path_.c_str(), O_RDWR | O_CLOEXEC);
    struct flock range {};
    range.l_type = F_WRLCK;
    range.l_start = 100;
    range.l_len = 1;
    ASSERT_EQ(::fcntl(holder, F_OFD_SETLK, &range), 0);
    EXPECT_THROW(Database::Open(path_), Error);
    ::close(holder);
    Database::Open(path_)->Close();
}

TEST_F(SideFiles, Log_HasTheRightsOfTheFile) {
    const mode_t former = ::umask(0);
    for (const unsigned rights : {0600U, 0640U, 0664U}) {
        fs::permissions(path_, fs::perms(rights));
        const auto database = Database::Open(path_);
        EXPECT_EQ(RightsOf(log_), rights);
    }
    ::umask(former);
}

// What a log's rights become when a user makes it who may not give it the file's group.
TEST_F(SideFiles, Log_OfAGroupThatTheUserIsNotIn_OpensToNobodyElse) {
    if (::geteuid() != 0) GTEST_SKIP() << "Only the superuser can become somebody else.";
    constexpr uid_t kSomebody = 65534;
    constexpr gid_t kForeignGroup = 54321;
    fs::permissions(folder_.Path(), fs::perms(0777));
    ASSERT_EQ(::chown(path_.c_str(), kSomebody, kForeignGroup), 0);
    for (const auto& [rights, expected] :
         {std::pair{0664U, 0604U}, {0660U, 0600U}, {0604U, 0600U}, {0640U, 0600U}}) {
        fs::permissions(path_, fs::perms(rights));
        const pid_t child = ::fork();
        if (child == 0) {
            int failed = ::setgroups(0, nullptr) | ::setgid(kSomebody) | ::setuid(kSomebody);
            try {
                const auto database = Database::Open(path_);
                AddTable(*database, "Zones");
                ::_exit(failed == 0 ? 0 : 2);  // the log stays
            } catch (const Error&) {
                ::_exit(1);
            }
        }
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        ASSERT_EQ(status, 0);
        EXPECT_EQ(RightsOf(log_), expected) << std::oct << rights;
        fs::remove(log_);
    }
}

TEST_F(SideFiles, FilePutBackOrKept_HasTheRightsOfTheFile) {
    const mode_t former = ::umask(0);
    fs::permissions(path_, fs::perms(0600));
    const auto database = Database::Open(path_);
    fs::remove(path_);
    fs::create_symlink(victim_, folder_ / "Unit.mdb-log-new");
    AddTable(*database, "Zones");
    database->MakeDurable();
    EXPECT_TRUE(database->WasPutBack());
    EXPECT_EQ(RightsOf(path_), 0600U);
    fs::remove(path_);
    std::ofstream(path_) << "another file";
    AddTable(*database, "Costs");
    EXPECT_THROW(database->MakeDurable(), Error);
    EXPECT_EQ(RightsOf(folder_ / "Unit-kept.mdb"), 0600U);
    EXPECT_EQ(Bytes(victim_), "somebody's own");
    ::umask(former);
}

TEST_F(SideFiles, RepairedCopy_HasTheRightsOfTheFile) {
    fs::permissions(path_, fs::perms(0600));
    const fs::path copy = folder_ / "copy.mdb";
    RepairFile(path_, copy);
    EXPECT_EQ(RightsOf(copy), 0600U);
}

TEST_F(SideFiles, LinkInPlaceOfTheLog_IsNotFollowed) {
    fs::create_symlink(victim_, log_);
    {
        const auto database = Database::Open(path_);
        AddTable(*database, "Zones");
        RightsOf(log_);
        database->Close();
    }
    EXPECT_EQ(Bytes(victim_), "somebody's own");
    ExpectSound(path_);
}

TEST_F(SideFiles, LinkInPlaceOfATemporaryFile_IsNotFollowed) {
    const auto database = Database::Open(path_);
    database->CreateTable({"Maps", {{.name = "Map", .type = ColumnType::kOle}}, {}});
    const auto maps = database->OpenTable("Maps");
    const fs::path temporary = folder_ / "Unit.mdb-log-tmp";
    const std::vector<std::byte> piece(300000);
    for (const bool hard : {false, true}) {
        if (hard) {
            fs::create_hard_link(victim_, temporary);
        } else {
            fs::create_symlink(victim_, temporary);
        }
        maps->AddNew();
        maps->Append(maps->Field("Map"), piece);
        maps->Append(maps->Field("Map"), piece);
        maps->Update();
        EXPECT_FALSE(fs::exists(fs::symlink_status(temporary)));
    }
    EXPECT_EQ(Bytes(victim_), "somebody's own");
    database->Close();
    ExpectSound(path_);
}

TEST_F(SideFiles, EmptyFileWithASecondName_IsNotWrittenThrough) {
    const fs::path other = folder_ / "empty";
    std::ofstream(other).close();
    fs::create_hard_link(other, log_);
    const auto database = Database::Open(path_);
    AddTable(*database, "Zones");
    EXPECT_EQ(fs::file_size(other), 0U);
}

TEST_F(SideFiles, ReadersBesideALog_SeeWhatItHoldsAndWriteNothing) {
    const fs::path left = LeaveInterrupted();
    const std::string file = Bytes(left);
    const std::string log = Bytes(left.string() + "-log");
    const auto names = [&] {
        std::set<fs::path> found;
        for (const auto& entry : fs::directory_iterator(folder_.Path())) found.insert(entry.path());
        return found;
    };
    const std::set<fs::path> before = names();
    const auto first = Database::Open(left, kShared);
    const auto second = Database::Open(left, kShared);
    EXPECT_TRUE(first->HasTable("Zones"));
    EXPECT_TRUE(second->HasTable("Zones"));
    EXPECT_EQ(second->OpeningRecovery().operations, 1U);
    EXPECT_THROW(Database::Open(left), Error);
    EXPECT_EQ(names(), before);
    first->Close();
    second->Close();
    EXPECT_EQ(names(), before);
    EXPECT_EQ(Bytes(left), file);
    EXPECT_EQ(Bytes(left.string() + "-log"), log);
}

TEST_F(SideFiles, CheckRepairAndDump_SeeWhatTheLogHolds_ThroughALinkToo) {
    const fs::path left = LeaveInterrupted();
    const std::string file = Bytes(left);
    fs::create_directory(folder_ / "elsewhere");
    const fs::path link = folder_ / "elsewhere" / "link.mdb";
    fs::create_symlink(left, link);
    for (const fs::path& path : {left, link}) {
        const CheckReport report = CheckFile(path);
        EXPECT_TRUE(report.IsSound()) << report.Text();
        ASSERT_EQ(report.findings.size(), 1U) << report.Text();
        EXPECT_EQ(report.findings[0].code, "log-pending");
        const fs::path copy = folder_ / "copy.mdb";
        EXPECT_TRUE(RepairFile(path, copy).losses.empty());
        EXPECT_TRUE(Database::Open(copy)->HasTable("Zones"));
        fs::remove(copy);
        const auto dumped = tarn_test::RunCommand(
            tarn_test::Quoted(tarn_test::BuiltProgram("jetdump")) + " " + tarn_test::Quoted(path));
        EXPECT_NE(dumped.output.find("Zones"), std::string::npos) << dumped.output;
    }
    EXPECT_EQ(Bytes(left), file);
    EXPECT_TRUE(fs::exists(left.string() + "-log"));
}

}  // namespace
}  // namespace jet

#endif
