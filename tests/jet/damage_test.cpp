// Files of other origin with one byte changed at random places: opening, walking and checking them
// must neither crash nor take long, and no row may be missing or too many without the check naming
// something. TARN_DAMAGE sets the number of places for each file.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "jet/check.h"
#include "jet/database.h"
#include "jet/error.h"
#include "jet/recordset.h"
#include "support/jet_files.h"

namespace jet {
namespace {

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
    if (paths.empty()) GTEST_SKIP() << "no sample files beside the source";
    const auto files = MakeMemoryFileSystem();
    int tried = 0;
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
            EXPECT_FALSE(IsSilentlyWrong(sound, damaged)) << path << ", byte " << at;
            EXPECT_LT(seconds, 3) << path << ", byte " << at;
        }
    }
    RecordProperty("places", tried);
    EXPECT_GT(tried, 100);
}

}  // namespace
}  // namespace jet
