// Files of other origin with one byte changed at random places: opening, walking and checking them
// must neither crash nor take long, and no row may be missing or too many without the check naming
// something. TARN_DAMAGE sets the number of places for each file.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "damaged_file.h"
#include "jet/check.h"
#include "jet/database.h"
#include "jet/error.h"
#include "jet/recordset.h"
#include "sample_table.h"
#include "support/jet_files.h"
#include "support/sanitizers.h"

namespace jet {
namespace {

// Seconds for one file; the sanitizers make everything several times slower.
constexpr double kPatience = support::kIsSanitized ? 8 : 1;
constexpr char kFile[] = "a file.mdb";
using Contents = std::vector<std::byte>;
// The rows of each table, or -1 for a table that says that it cannot be read.
using RowCounts = std::map<std::string, long>;

Contents ReadFile(const std::filesystem::path& path) {
    std::ifstream from(path, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(from), {}};
    Contents contents(bytes.size());
    std::transform(bytes.begin(), bytes.end(), contents.begin(),
                   [](char c) { return static_cast<std::byte>(c); });
    return contents;
}

long CountRows(Database& database, const std::string& table) {
    try {
        const auto rows = database.OpenTable(table);
        long count = 0;
        for (; !rows->IsEof(); rows->MoveNext()) {
            for (int i = 0; i < static_cast<int>(rows->Fields().size()); ++i) {
                (void)rows->Get(FieldId{i});
            }
            ++count;
        }
        return count;
    } catch (const Error&) {
        return -1;
    }
}

struct Look {
    bool opened = false;
    RowCounts rows;
    std::string findings;
};

Look LookAt(FileSystem& files) {
    Look look;
    try {
        look.findings = CheckFile(kFile, files).Text();
        const auto database = Database::Open(kFile, {.readOnly = true}, files);
        for (const std::string& name : database->TableNames()) {
            look.rows[name] = CountRows(*database, name);
        }
        look.opened = true;
    } catch (const Error&) {
        // Refused: nothing is passed off as sound.
    }
    return look;
}

// True when the damaged file gives other rows than the sound one and nobody says so.
bool IsSilentlyWrong(const Look& sound, const Look& damaged) {
    if (!damaged.opened || damaged.findings != sound.findings) return false;
    for (const auto& [table, rows] : damaged.rows) {
        if (rows == -1) return false;  // the table itself says that it cannot be read
    }
    return damaged.rows != sound.rows;
}

int PlacesForEachFile() {
    const char* wanted = std::getenv("TARN_DAMAGE");
    return wanted == nullptr ? 5 : std::atoi(wanted);
}

TEST(Damage, OneByteAnywhere_IsSurvivedAndNeverPassedOver) {
    const auto paths = tarn_test::CorpusFiles();
    if (paths.empty()) GTEST_SKIP() << tarn_test::kNoCorpus;
    const auto files = MakeMemoryFileSystem();
    int tried = 0;
    int noticed = 0;
    double slowest = 0;
    for (const auto& path : paths) {
        const Contents contents = ReadFile(path);
        // The largest files are for the long run.
        if (std::getenv("TARN_DAMAGE") == nullptr && contents.size() > 400'000) continue;
        files->Remove(kFile);
        const auto file = files->Open(kFile, OpenMode::kCreateNew);
        file->Write(0, contents);
        const Look sound = LookAt(*files);
        std::mt19937 draw(4711);
        for (int i = 0; i < PlacesForEachFile(); ++i, ++tried) {
            const std::size_t at = draw() % contents.size();
            const std::byte now = contents[at] ^ static_cast<std::byte>(1 + draw() % 255);
            file->Write(at, {&now, 1});
            const std::clock_t begin = std::clock();
            const Look damaged = LookAt(*files);
            const double seconds = static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
            file->Write(at, {&contents[at], 1});
            noticed += !damaged.opened || damaged.findings != sound.findings ? 1 : 0;
            EXPECT_FALSE(IsSilentlyWrong(sound, damaged)) << path << ", byte " << at;
            slowest = std::max(slowest, seconds);
            EXPECT_LT(seconds, kPatience) << path << ", byte " << at;
        }
    }
    RecordProperty("places", tried);
    std::cout << tried << " changed bytes in " << paths.size() << " files; " << noticed
              << " refused or named by the check; the slowest took " << slowest << " s\n";
    EXPECT_GT(tried, 100);
}

class SmallFile : public testing::TestWithParam<Version> {
protected:
    // A file with one of everything: long values in each of their forms, a row that has moved,
    // deleted rows, free pages, an index of two levels.
    Contents Make() {
        const auto database = Database::Create(kFile, GetParam(), *files_);
        database->CreateTable(PeopleSchema());
        database->CreateTable(ZonesSchema());
        const auto people = database->OpenTable("People");
        for (int i = 0; i < 12; ++i) {
            people->AddNew();
            people->Set("Name", u"name " + Value(i).AsText());
            people->Set("Town", i % 3 == 0 ? u"Bern" : u"G\u00E9n\u00E8ve");
            people->Set("Paid", Currency{i * 15000});
            people->Set("Born", Date{30000.5 + i});
            people->Set("Active", i % 2 == 0);
            people->Set("Story", std::u16string(std::size_t{1} << i, u's'));
            people->Set("Picture", Binary(static_cast<std::size_t>(i) * 400, std::byte{0x11}));
            people->Set("Code", Binary(3, std::byte{0x22}));
            people->Update();
        }
        people->MoveFirst();
        people->Edit();
        people->Set("Name", std::u16string(60, u'n'));
        people->Set("Town", std::u16string(30, u't'));
        people->Update();
        people->MoveLast();
        people->Delete();
        const auto zones = database->OpenTable("Zones");
        for (int zone = 0; zone < 400; ++zone) AddZone(*zones, zone, zone % 7, 0.5F);
        database->Close();
        Contents contents(files_->Open(kFile, OpenMode::kReadOnly)->Size());
        files_->Open(kFile, OpenMode::kReadOnly)->Read(0, contents);
        return contents;
    }

    std::unique_ptr<FileSystem> files_ = MakeMemoryFileSystem();
};

INSTANTIATE_TEST_SUITE_P(Versions, SmallFile, testing::Values(Version::kJet3, Version::kJet4),
                         [](const auto& tested) { return VersionName(tested.param); });

TEST_P(SmallFile, AnyByteOfItsStructuresDamaged_IsSurvivedReportedAndRepaired) {
    const Contents contents = Make();
    const std::size_t pageSize = GetParam() == Version::kJet3 ? 2048 : 4096;
    const Look sound = LookAt(*files_);
    ASSERT_TRUE(sound.opened);
    std::mt19937 draw(99);
    for (int i = 0; i < 60 * PlacesForEachFile() / support::kOneOf; ++i) {
        // Headers and directories begin a page, rows end it.
        const std::size_t page = draw() % (contents.size() / pageSize);
        const std::size_t within = draw() % 160;
        const std::size_t at = page * pageSize + (within < 96 ? within : pageSize - 160 + within);
        const std::byte was = contents[at];
        const std::byte values[] = {std::byte{0}, std::byte{0xFF}, was ^ std::byte{1},
                                    was ^ std::byte{0x80}, static_cast<std::byte>(draw())};
        Contents damaged = contents;
        damaged[at] = values[draw() % std::size(values)];
        files_->Remove(kFile);
        files_->Open(kFile, OpenMode::kCreateNew)->Write(0, damaged);
        EXPECT_FALSE(IsSilentlyWrong(sound, LookAt(*files_))) << "byte " << at;
        ExpectRepairedOrRefused(kFile, "repaired.mdb", *files_);
        EditEverywhere(kFile, *files_);
        files_->Remove("a file.mdb-log");
        if (HasFailure()) FAIL() << "byte " << at << " as " << static_cast<int>(damaged[at]);
    }
}

// The maps decide which pages are written to, so none of their bytes may lead a change astray.
TEST_P(SmallFile, AnyByteOfTheGlobalMapsDamaged_IsSurvivedAndReported) {
    const Contents contents = Make();
    const std::size_t pageSize = GetParam() == Version::kJet3 ? 2048 : 4096;
    const Look sound = LookAt(*files_);
    std::vector<std::size_t> places;
    for (std::size_t i = 0; i < 18; ++i) places.push_back(pageSize + i);
    for (std::size_t i = 1; i <= 145; i += 4) places.push_back(2 * pageSize - i);
    for (const std::size_t at : places) {
        for (const unsigned value : {0x00U, 0x01U, 0x40U, 0xFFU}) {
            Contents damaged = contents;
            damaged[at] = static_cast<std::byte>(value);
            files_->Remove(kFile);
            files_->Open(kFile, OpenMode::kCreateNew)->Write(0, damaged);
            EXPECT_FALSE(IsSilentlyWrong(sound, LookAt(*files_))) << "byte " << at;
            EditEverywhere(kFile, *files_);
            files_->Remove("a file.mdb-log");
        }
    }
}

}  // namespace
}  // namespace jet
