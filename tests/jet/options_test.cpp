// What can be chosen when a database is opened.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "jet/database.h"
#include "sample_table.h"
#include "support/fault_file_system.h"

namespace jet {
namespace {

constexpr char kFile[] = "zones.mdb";

class OptionsTest : public ::testing::Test {
protected:
    OptionsTest() {
        const auto database = Database::Create(kFile, Version::kJet4, files_);
        database->CreateTable(ZonesSchema());
        database->Close();
        options_.logger = [this](LogLevel level, std::string_view sentence) {
            levels_.push_back(level);
            sentences_ += sentence;
        };
    }

    // The files as they are when the process ends with an operation in the log.
    std::unique_ptr<tarn_test::FaultFileSystem> InterruptedRun() {
        const auto database = Database::Open(kFile, {}, files_);
        AddZone(*database->OpenTable("Zones"), 1, 1, 0);
        return files_.Copy();
    }

    tarn_test::FaultFileSystem files_;
    OpenOptions options_;
    std::vector<LogLevel> levels_;
    std::string sentences_;
};

// Adds records and gives the most operations that waited in the log meanwhile.
std::uint64_t MostPending(Database& database) {
    const auto zones = database.OpenTable("Zones");
    std::uint64_t most = 0;
    for (int zone = 0; zone < 200; ++zone) {
        AddZone(*zones, zone, 1, 0);
        most = std::max(most, database.PendingOperations());
    }
    return most;
}

TEST_F(OptionsTest, ASmallLog_IsBroughtIntoTheFileOften) {
    EXPECT_EQ(MostPending(*Database::Open(kFile, {}, files_)), 200U);
    options_.logBytes = 4096;
    const auto database = Database::Open(kFile, options_, files_);
    const auto zones = database->OpenTable("Zones");
    while (!zones->IsEof()) {
        zones->Delete();
        zones->MoveNext();
    }
    EXPECT_LT(MostPending(*database), 100U);
}

TEST_F(OptionsTest, ATinyCache_ReadsEverythingAllTheSame) {
    options_.cacheBytes = 0;
    options_.changedBytes = 0;
    const auto database = Database::Open(kFile, options_, files_);
    EXPECT_LE(MostPending(*database), 1U);
    const auto zones = database->OpenTable("Zones");
    int count = 0;
    for (; !zones->IsEof(); zones->MoveNext()) ++count;
    EXPECT_EQ(count, 200);
    EXPECT_TRUE(sentences_.empty()) << sentences_;
}

TEST_F(OptionsTest, Logger_IsGivenWhatOpeningRecovers) {
    const auto killed = InterruptedRun();
    EXPECT_TRUE(Database::Open(kFile, options_, *killed)->OpeningRecovery().applied);
    EXPECT_EQ(levels_, std::vector<LogLevel>{LogLevel::kInfo});
    EXPECT_NE(sentences_.find("Operations: 1"), std::string::npos) << sentences_;
}

TEST_F(OptionsTest, LoggerThatThrows_FailsNothing) {
    const auto killed = InterruptedRun();
    options_.logger = [](LogLevel, std::string_view) { throw std::runtime_error("no room"); };
    EXPECT_TRUE(Database::Open(kFile, options_, *killed)->OpeningRecovery().applied);
}

}  // namespace
}  // namespace jet
