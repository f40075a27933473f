// Lock files of other programs, and the files that the engine makes beside a data file: who may
// read them, and that none is written through a link.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "jet/check.h"
#include "jet/database.h"
#include "jet/error.h"
#include "jet/recordset.h"
#include "support/command.h"
#include "support/jet_files.h"
#include "support/temp_folder.h"

#ifndef _WIN32
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
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
        try {
            Database::Open(path_);
            ADD_FAILURE() << "the file is in use";
        } catch (const Error& error) {
            EXPECT_EQ(error.Kind(), ErrorKind::kFileInUse);
        }
        EXPECT_THROW(Database::RequireFree(path_), Error);
        // Reading along is not working with it.
        Database::Open(path_, {.exclusive = false, .readOnly = true})->Close();
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
    const OpenOptions reading{.exclusive = false, .readOnly = true};
    const auto first = Database::Open(left, reading);
    const auto second = Database::Open(left, reading);
    EXPECT_TRUE(first->HasTable("Zones"));
    EXPECT_TRUE(second->HasTable("Zones"));
    EXPECT_EQ(second->OpeningRecovery().operations, 1U);
    EXPECT_THROW(Database::Open(left), Error);
    first->Close();
    second->Close();
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
