// What other programs do to a file while it is open here: nothing that was stored is lost for it,
// and nothing of two files is mixed.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "jet/database.h"
#include "jet/error.h"
#include "jet/recordset.h"
#include "support/jet_files.h"
#include "support/temp_folder.h"

#ifndef _WIN32
#include <sys/stat.h>

namespace jet {
namespace {

using tarn_test::ExpectSound;
using tarn_test::TempFolder;

namespace fs = std::filesystem;

std::string Bytes(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void Overwrite(const fs::path& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

void AddTable(Database& database, const char* name) {
    TableSchema schema;
    schema.name = name;
    schema.columns = {{.name = "Zone"}};
    database.CreateTable(schema);
}

class Elsewhere : public testing::Test {
protected:
    Elsewhere() {
        fs::create_directory(path_.parent_path());
        database_ = Database::Create(path_, Version::kJet4);
        TableSchema schema;
        schema.name = "Zones";
        schema.columns = {{.name = "Zone"}};
        schema.indexes = {{.name = "PrimaryKey", .columns = {{"Zone"}}, .primary = true}};
        database_->CreateTable(schema);
        Add(1);
        database_->MakeDurable();
    }

    void Add(int zone) {
        const auto zones = database_->OpenTable("Zones");
        zones->AddNew();
        zones->Set("Zone", zone);
        zones->Update();
    }
    // The sentence of the error, or nothing.
    std::string MakeDurable() {
        try {
            database_->MakeDurable();
            return {};
        } catch (const Error& error) {
            kind_ = error.Kind();
            return error.what();
        }
    }
    static int ZonesIn(const fs::path& path) {
        const auto database = Database::Open(path);
        const int zones = database->OpenTable("Zones")->RecordCount();
        database->Close();
        ExpectSound(path);
        return zones;
    }

    TempFolder folder_;
    fs::path path_ = folder_ / "a folder" / "Unit.fcd";
    std::unique_ptr<Database> database_;
    ErrorKind kind_ = ErrorKind::kClosed;
};

TEST_F(Elsewhere, Removed_IsPutBackWithEverything) {
    fs::remove(path_);
    Add(2);
    EXPECT_EQ(MakeDurable(), "");
    EXPECT_TRUE(database_->WasPutBack());
    EXPECT_EQ(database_->PendingOperations(), 0U);
    EXPECT_THROW(Database::Open(path_), Error) << "it is ours as before";
    Add(3);
    database_->Close();
    EXPECT_EQ(ZonesIn(path_), 3);
    EXPECT_EQ(std::distance(fs::directory_iterator(path_.parent_path()), {}), 1);
}

TEST_F(Elsewhere, RemovedAndKilledAfterwards_FileAndLogAreWhole) {
    fs::remove(path_);
    Add(2);
    EXPECT_EQ(MakeDurable(), "");
    Add(3);
    const fs::path left = folder_ / "left.fcd";
    fs::copy_file(path_, left);
    fs::copy_file(path_.string() + "-log", left.string() + "-log");
    EXPECT_EQ(ZonesIn(left), 3);
}

// The host's files in folders that are flushed in vain as long as the test says so.
class UnflushableFolders : public FileSystem {
public:
    std::unique_ptr<File> Open(const fs::path& path, OpenMode mode) override {
        return HostFileSystem().Open(path, mode);
    }
    std::unique_ptr<File> OpenBeside(const fs::path& path, OpenMode mode) override {
        return HostFileSystem().OpenBeside(path, mode);
    }
    std::unique_ptr<File> CreateLike(const fs::path& path, File& model) override {
        return HostFileSystem().CreateLike(path, model);
    }
    bool Exists(const fs::path& path) override { return HostFileSystem().Exists(path); }
    void Remove(const fs::path& path) override { HostFileSystem().Remove(path); }
    void Rename(const fs::path& from, const fs::path& to) override {
        HostFileSystem().Rename(from, to);
    }
    fs::path Resolve(const fs::path& path) override { return HostFileSystem().Resolve(path); }
    void FlushFolder(const fs::path& folder) override {
        if (failing) throw Error(ErrorKind::kIo, "The folder cannot be flushed.");
        HostFileSystem().FlushFolder(folder);
    }

    bool failing = false;
};

TEST_F(Elsewhere, PutBackIntoAFolderWhoseFlushFails_IsDoneAgainAndNothingKeptBeside) {
    database_->Close();
    UnflushableFolders files;
    database_ = Database::Open(path_, {}, files);
    fs::remove(path_);
    Add(2);
    files.failing = true;
    for (int attempt = 0; attempt < 2; ++attempt) {
        EXPECT_NE(MakeDurable(), "");
        EXPECT_EQ(kind_, ErrorKind::kFileNotFound);
        EXPECT_EQ(database_->PendingOperations(), 1U) << "told as stored, and may not be";
    }
    Add(3);
    files.failing = false;
    EXPECT_EQ(MakeDurable(), "");
    EXPECT_TRUE(database_->WasPutBack());
    EXPECT_THROW(Database::Open(path_), Error) << "it is ours as before";
    database_->Close();
    database_.reset();
    EXPECT_EQ(ZonesIn(path_), 3);
    EXPECT_EQ(std::distance(fs::directory_iterator(path_.parent_path()), {}), 1);
}

TEST_F(Elsewhere, RemovedWithItsFolder_WaitsForTheFolder) {
    fs::remove_all(path_.parent_path());
    Add(2);
    EXPECT_NE(MakeDurable().find("Nothing is lost as long as"), std::string::npos);
    EXPECT_EQ(kind_, ErrorKind::kFileNotFound);
    EXPECT_EQ(database_->PendingOperations(), 1U);
    fs::create_directory(path_.parent_path());
    Add(3);
    EXPECT_EQ(MakeDurable(), "");
    database_->Close();
    EXPECT_EQ(ZonesIn(path_), 3);
}

TEST_F(Elsewhere, Renamed_GoesOnWhereItIsNow) {
    const fs::path moved = path_.parent_path() / "Moved.fcd";
    EXPECT_FALSE(database_->WasMoved());
    fs::rename(path_, moved);
    Add(2);
    EXPECT_EQ(MakeDurable(), "");
    EXPECT_TRUE(database_->WasMoved());
    EXPECT_FALSE(database_->WasPutBack());
    database_->Close();
    EXPECT_FALSE(fs::exists(path_));
    EXPECT_EQ(ZonesIn(moved), 2);
}

TEST_F(Elsewhere, Replaced_BothAreKept) {
    const std::string other = "somebody's file";
    Overwrite(folder_ / "other", other);
    fs::rename(folder_ / "other", path_);
    const fs::path kept = path_.parent_path() / "Unit-kept.fcd";
    Add(2);
    EXPECT_NE(MakeDurable().find("is kept in \"Unit-kept.fcd\""), std::string::npos);
    EXPECT_EQ(kind_, ErrorKind::kFileInUse);
    EXPECT_EQ(ZonesIn(kept), 2);
    Add(3);
    EXPECT_NE(MakeDurable(), "");
    EXPECT_THROW(database_->Close(), Error);
    EXPECT_EQ(ZonesIn(kept), 3);
    EXPECT_EQ(Bytes(path_), other);
}

// A copy that somebody made before, say: the log would fit it.
TEST_F(Elsewhere, ReplacedByTheFileAsItWas_IsNotGivenTheChangesLater) {
    EXPECT_EQ(MakeDurable(), "");
    const std::string backup = Bytes(path_);
    Overwrite(folder_ / "backup", backup);
    Add(2);
    fs::rename(folder_ / "backup", path_);
    EXPECT_THROW(database_->Close(), Error);
    EXPECT_EQ(Bytes(path_), backup);
    EXPECT_EQ(ZonesIn(path_.parent_path() / "Unit-kept.fcd"), 2);
    EXPECT_EQ(ZonesIn(path_), 1);
    EXPECT_EQ(Database::Open(path_)->OpeningRecovery().keptLogs.size(), 1U);
}

TEST_F(Elsewhere, ReplacedWhereTheNameForKeepingIsTaken_SaysWhatToDo) {
    const fs::path kept = path_.parent_path() / "Unit-kept.fcd";
    Overwrite(kept, "kept before");
    Overwrite(folder_ / "other", "somebody's file");
    fs::rename(folder_ / "other", path_);
    Add(2);
    EXPECT_NE(MakeDurable().find("Rename \"Unit-kept.fcd\""), std::string::npos);
    EXPECT_EQ(Bytes(kept), "kept before");
    fs::remove(kept);
    EXPECT_NE(MakeDurable().find("is kept in \"Unit-kept.fcd\""), std::string::npos);
    EXPECT_EQ(ZonesIn(kept), 2);
}

TEST_F(Elsewhere, Overwritten_IsNotMixed) {
    const std::string backup = Bytes(path_);
    Add(2);
    EXPECT_EQ(MakeDurable(), "");
    for (const std::string& other : {backup, std::string("cut short")}) {
        const std::string present = Bytes(path_);
        Overwrite(path_, other);
        Add(static_cast<int>(other.size()));
        EXPECT_NE(MakeDurable().find("has been overwritten by another program"), std::string::npos);
        EXPECT_EQ(kind_, ErrorKind::kFileInUse);
        EXPECT_EQ(Bytes(path_), other);
        Overwrite(path_, present);
        EXPECT_EQ(MakeDurable(), "");
    }
    database_->Close();
    EXPECT_EQ(ZonesIn(path_), 4);
}

TEST(LogName, OfAVeryLongFileName_FitsAndIsFoundAgain) {
    const TempFolder folder;
    for (const std::size_t length : {244U, 245U, 255U}) {
        const fs::path path = folder / (std::string(length - 4, 'x') + ".fcd");
        std::error_code refused;
        std::ofstream(path).close();
        if (!fs::remove(path, refused)) GTEST_SKIP() << "Names of this length cannot be made here.";
        const auto database = Database::Create(path, Version::kJet4);
        AddTable(*database, "Zones");
        const fs::path left = folder / "left" / path.filename().string();
        fs::create_directory(left.parent_path());
        for (const auto& entry : fs::directory_iterator(folder.Path())) {
            if (entry.is_regular_file()) fs::copy(entry, left.parent_path());
        }
        const auto again = Database::Open(left);
        EXPECT_EQ(again->OpeningRecovery().operations, 1U) << length;
        EXPECT_TRUE(again->HasTable("Zones"));
        again->Close();
        database->Close();
        fs::remove_all(left.parent_path());
        fs::remove(path);
        EXPECT_TRUE(fs::is_empty(folder.Path()));
    }
}

// Only what may hold changes is reported.
TEST(LogFound, ThatIsNoFile_IsSetAsideWithoutAWord) {
    const TempFolder folder;
    const fs::path path = folder / "a file.mdb";
    Database::Create(path, Version::kJet4)->Close();
    const fs::path log = path.string() + "-log";
    ASSERT_EQ(::mkfifo(log.c_str(), 0600), 0);
    const auto besidePipe = Database::Open(path);
    EXPECT_TRUE(besidePipe->OpeningRecovery().foreignLogIgnored);
    EXPECT_TRUE(besidePipe->OpeningRecovery().keptLogs.empty());
    besidePipe->Close();
    fs::create_symlink("nowhere", log);
    const auto besideLink = Database::Open(path);
    EXPECT_TRUE(besideLink->OpeningRecovery().foreignLogIgnored);
    besideLink->Close();
    ExpectSound(path);
}

TEST(LogFound, BesideAnOlderCopy_IsKeptAndNamed) {
    const TempFolder folder;
    const fs::path path = folder / "a file.mdb";
    const auto database = Database::Create(path, Version::kJet4);
    const std::string older = Bytes(path);
    AddTable(*database, "Zones");
    database->MakeDurable();
    AddTable(*database, "Costs");
    const fs::path left = folder / "left.mdb";
    Overwrite(left, older);
    fs::copy_file(path.string() + "-log", left.string() + "-log");
    const auto restored = Database::Open(left);
    EXPECT_EQ(restored->OpeningRecovery().keptLogs.front().filename(), "left.mdb-log-old");
    EXPECT_FALSE(restored->HasTable("Zones"));
    EXPECT_FALSE(restored->HasTable("Costs"));
    restored->Close();
    EXPECT_TRUE(fs::exists(folder / "left.mdb-log-old"));
    ExpectSound(left);
}

TEST(LogFound, BesideAFileCopiedOverAnother_CanBeDiscarded) {
    const TempFolder folder;
    const fs::path path = folder / "a file.mdb";
    const auto database = Database::Create(path, Version::kJet4);
    const std::string copied = Bytes(path);
    AddTable(*database, "Zones");
    const fs::path left = folder / "left.mdb";
    Overwrite(left, copied);
    fs::copy_file(path.string() + "-log", left.string() + "-log");
    Database::DiscardLog(left);
    Database::DiscardLog(left);
    const auto fresh = Database::Open(left);
    EXPECT_FALSE(fresh->HasTable("Zones"));
}

}  // namespace
}  // namespace jet

#endif
