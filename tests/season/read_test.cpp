#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <limits>

#include "jet/database.h"
#include "jet/recordset.h"
#include "season/data_file.h"
#include "season/schema.h"
#include "support/jet_files.h"
#include "support/made_season.h"
#include "support/temp_folder.h"

namespace {

using season::Season;
using tarn_test::SoundSeason;
using testing::HasSubstr;

std::string Bytes(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string ReasonOf(const std::filesystem::path& path) {
    try {
        season::Read(path);
    } catch (const season::Refused& refused) {
        return refused.what();
    }
    return "was read";
}

std::filesystem::path Made(const char* name) {
    return tarn_test::SharedFolder() / "corpus" / "made" / name;
}

class SeasonFile : public testing::TestWithParam<jet::Version> {
protected:
    Season WrittenAndRead(const Season& made) {
        season::WriteNew(made, path_, GetParam());
        tarn_test::ExpectSound(path_);
        return season::Read(path_);
    }

    tarn_test::TempFolder folder_;
    std::filesystem::path path_ = folder_ / "UMFOR26.fcd";
};

INSTANTIATE_TEST_SUITE_P(Versions, SeasonFile,
                         testing::Values(jet::Version::kJet3, jet::Version::kJet4));

TEST_P(SeasonFile, Read_AfterWriting_GivesEveryValue) {
    const Season read = WrittenAndRead(SoundSeason(3, 2));
    EXPECT_EQ(read.version, GetParam());
    EXPECT_EQ(read.format, "4.01.01");
    EXPECT_EQ(read.bytes, std::filesystem::file_size(path_));
    EXPECT_EQ(read.PropertyText("UNITNAME"), "Umatilla National Forest '26");
    ASSERT_EQ(read.goals.size(), 2U);
    EXPECT_EQ(read.goals[1].explanation, "Keep fires small.");
    ASSERT_EQ(read.resources.size(), 3U);
    EXPECT_EQ(read.resources[2].cost, 3850.5F);
    EXPECT_EQ(read.NvcName(14), "Value 14");
    ASSERT_EQ(read.zones.size(), 3U);
    const Season made = SoundSeason(3, 2);
    for (std::size_t z = 0; z < 3; ++z) {
        EXPECT_EQ(read.zones[z].name, made.zones[z].name);
        ASSERT_EQ(read.zones[z].classes.size(), 9U);
        EXPECT_EQ(read.zones[z].classes[4].cost, made.zones[z].classes[4].cost);
        EXPECT_EQ(read.zones[z].classes[8].topSize, std::nullopt);
        ASSERT_EQ(read.zones[z].locations.size(), 2U);
        for (std::size_t l = 0; l < 2; ++l) {
            ASSERT_EQ(read.zones[z].locations[l].rows.size(), 14U);
            for (std::size_t r = 0; r < 14; ++r) {
                EXPECT_EQ(read.zones[z].locations[l].rows[r].values,
                          made.zones[z].locations[l].rows[r].values);
            }
        }
    }
}

TEST_P(SeasonFile, Read_NullsAndOddNumbers_StayWhatTheyAre) {
    Season made = SoundSeason(1, 1);
    made.goals[0] = {7, std::nullopt, ""};
    made.zones[0].rlCount = std::nullopt;
    made.zones[0].classes[0].topSize = std::numeric_limits<float>::infinity();
    made.zones[0].locations[0].rows[3].values[2] = std::nullopt;
    made.zones[0].locations[0].rows[3].values[3] = std::numeric_limits<float>::quiet_NaN();
    made.resources[1].sequence = std::nullopt;
    const Season read = WrittenAndRead(made);
    EXPECT_EQ(read.goals[1].key, 7);
    EXPECT_EQ(read.goals[1].area, std::nullopt);
    EXPECT_EQ(read.goals[1].explanation, "");
    EXPECT_EQ(read.zones[0].rlCount, std::nullopt);
    EXPECT_EQ(season::LiveCount(read.zones[0]), 0);
    EXPECT_TRUE(std::isinf(*read.zones[0].classes[0].topSize));
    const auto& values = read.zones[0].locations[0].rows[3].values;
    EXPECT_EQ(values[2], std::nullopt);
    EXPECT_TRUE(std::isnan(*values[3]));
    EXPECT_EQ(read.resources[0].key, 2) << "a resource without a place comes first";
}

TEST_P(SeasonFile, Read_KeysOfAnySign_FindsEachZonesRows) {
    Season made = SoundSeason(0);
    for (const std::int32_t key : {-21474835, -7, 0, 5, 21474835}) {
        made.zones.push_back(tarn_test::SoundZone(key, 3));
    }
    const Season read = WrittenAndRead(made);
    ASSERT_EQ(read.zones.size(), 5U);
    for (const season::Zone& zone : read.zones) {
        EXPECT_EQ(zone.classes.size(), 9U) << zone.key;
        ASSERT_EQ(zone.locations.size(), 3U) << zone.key;
        EXPECT_EQ(zone.locations[2].number, 3) << zone.key;
        EXPECT_EQ(zone.locations[2].rows.size(), 14U) << zone.key;
    }
    EXPECT_TRUE(read.strayNvc.empty());
}

TEST_P(SeasonFile, Read_DroppedMissingAndStrayRows_KeepsThemApart) {
    Season made = SoundSeason(2, 3);
    made.zones[0].rlCount = 1;
    made.zones[1].locations[0].rows.erase(made.zones[1].locations[0].rows.begin() + 4);
    made.zones[1].classes.erase(made.zones[1].classes.begin());
    made.strayCosts.push_back({99, {1, 10.0F, 20.0F}});
    made.strayNvc.push_back({9901, {1, {1.0F}}});
    const Season read = WrittenAndRead(made);
    EXPECT_EQ(season::LiveCount(read.zones[0]), 1);
    EXPECT_EQ(read.zones[0].locations.size(), 3U);
    EXPECT_EQ(read.zones[1].locations[0].rows.size(), 13U);
    EXPECT_EQ(season::FindRow(read.zones[1].locations[0], 5), nullptr);
    EXPECT_EQ(season::FindClass(read.zones[1], 1), nullptr);
    ASSERT_EQ(read.strayCosts.size(), 1U);
    EXPECT_EQ(read.strayCosts[0].row.cost, 20.0F);
    ASSERT_EQ(read.strayNvc.size(), 1U);
    EXPECT_EQ(read.strayNvc[0].locationKey, 9901);
}

TEST_P(SeasonFile, Read_LongAndUnusualTexts_GivesThemWhole) {
    Season made = SoundSeason(1, 1);
    std::string text;
    for (int i = 0; i < 9000; ++i) {
        text += GetParam() == jet::Version::kJet4 ? "\xE2\x82\xAC\xF0\x9F\x8C\xB2x" : "\xC3\xA9y";
    }
    made.goals[0].explanation = text;
    made.zones[0].name = std::string(46, 'N') + "ine more";
    const Season read = WrittenAndRead(made);
    EXPECT_EQ(read.goals[0].explanation, text);
    EXPECT_EQ(read.zones[0].name, made.zones[0].name);
}

TEST_P(SeasonFile, Read_Always_LeavesFileAndFolderAlone) {
    season::WriteNew(SoundSeason(), path_, GetParam());
    const std::string before = Bytes(path_);
    const auto time = std::filesystem::last_write_time(path_);
    const auto folderTime = std::filesystem::last_write_time(folder_.Path());
    season::Read(path_);
    EXPECT_EQ(Bytes(path_), before);
    EXPECT_EQ(std::filesystem::last_write_time(path_), time);
    EXPECT_EQ(std::filesystem::last_write_time(folder_.Path()), folderTime);
}

// What a program that was killed leaves: a file, and beside it a log with its last change.
TEST_P(SeasonFile, Read_WithALogBeside_ReadsItAlongAndLeavesBoth) {
    season::WriteNew(SoundSeason(), path_, GetParam());
    const auto left = folder_ / "left" / "UMFOR26.fcd";
    std::filesystem::create_directory(left.parent_path());
    {
        const auto database = jet::Database::Open(path_);
        const auto zones = database->OpenTable("FMZList");
        zones->MoveFirst();
        zones->Edit();
        zones->Set("Name", u"Changed at last");
        zones->Update();
        ASSERT_GT(database->PendingOperations(), 0U);
        std::filesystem::copy_file(path_, left);
        std::filesystem::copy_file(jet::Database::LogOf(path_), jet::Database::LogOf(left));
    }
    const auto log = jet::Database::LogOf(left);
    const std::string before = Bytes(left) + Bytes(log);
    const auto time = std::filesystem::last_write_time(left);
    const auto logTime = std::filesystem::last_write_time(log);
    const auto folderTime = std::filesystem::last_write_time(left.parent_path());
    EXPECT_EQ(season::Read(left).zones[0].name, "Changed at last");
    EXPECT_EQ(Bytes(left) + Bytes(log), before);
    EXPECT_EQ(std::filesystem::last_write_time(left), time);
    EXPECT_EQ(std::filesystem::last_write_time(log), logTime);
    EXPECT_EQ(std::filesystem::last_write_time(left.parent_path()), folderTime);
}

TEST_P(SeasonFile, Read_WithoutATable_RefusesIt) {
    {
        const auto database = jet::Database::Create(path_, GetParam());
        for (const jet::TableSchema& table : season::Tables()) {
            if (table.name != "FMZList") database->CreateTable(table);
        }
        const auto properties = database->OpenTable("Properties");
        properties->AddNew();
        properties->Set("Property", u"DataFormatID");
        properties->Set("Value", u"4.01.01");
        properties->Update();
        database->Close();
    }
    EXPECT_THAT(ReasonOf(path_), HasSubstr("FMZList"));
}

TEST_P(SeasonFile, Read_OfEachFormat_AcceptsWhatIsKnown) {
    for (const char* const format : {"4.01.01", "4.00.00", "3.92.00", "3.00.00"}) {
        Season made = SoundSeason(1, 1);
        made.properties[0].value = format;
        const auto path = folder_ / (std::string(format) + ".fcd");
        season::WriteNew(made, path, GetParam());
        EXPECT_EQ(season::Read(path).format, format);
    }
    Season made = SoundSeason(1, 1);
    made.properties[0].value = "5.02.00";
    season::WriteNew(made, path_, GetParam());
    EXPECT_EQ(ReasonOf(path_),
              "This file uses an incompatible format and cannot be opened: 5.02.00.");
}

TEST_P(SeasonFile, Read_WhatAnotherProgramHolds_RefusesIt) {
    season::WriteNew(SoundSeason(), path_, GetParam());
    const auto holder = jet::Database::Open(path_);
    EXPECT_THAT(ReasonOf(path_), HasSubstr("in use"));
}

TEST(SeasonRefusals, Read_WhatIsNoDataFile_SaysWhy) {
    const tarn_test::TempFolder folder;
    EXPECT_NE(ReasonOf(folder / "none.fcd"), "was read");
    EXPECT_NE(ReasonOf(folder.Path()), "was read");
    std::ofstream(folder / "text.fcd") << "No database at all.";
    EXPECT_THAT(ReasonOf(folder / "text.fcd"),
                HasSubstr("The file does not appear to be a TARN Prep file: "));
    std::ofstream(folder / "empty.fcd").flush();
    EXPECT_NE(ReasonOf(folder / "empty.fcd"), "was read");
}

TEST(SeasonRefusals, Read_AFileCutOff_SaysSo) {
    const tarn_test::TempFolder folder;
    const auto path = folder / "cut.fcd";
    season::WriteNew(SoundSeason(), path);
    std::filesystem::resize_file(path, std::filesystem::file_size(path) / 2);
    EXPECT_NE(ReasonOf(path), "was read");
}

TEST(SeasonOtherWriters, Read_TheirFiles_GivesWhatTheyHold) {
    if (!std::filesystem::exists(Made("README.md"))) GTEST_SKIP() << tarn_test::kNoCorpus;
    const Season read = season::Read(Made("data-4.01.01.fcd"));
    EXPECT_EQ(read.goals.size(), 6U);
    EXPECT_EQ(read.resources.size(), 8U);
    ASSERT_EQ(read.zones.size(), 4U);
    EXPECT_EQ(read.zones[2].key, 5);
    EXPECT_EQ(season::LiveCount(read.zones[2]), 0);
    EXPECT_EQ(read.nvcResources.size(), 14U);
    std::size_t longest = 0;
    for (const season::Goal& goal : read.goals) {
        longest = std::max(longest, season::Words(goal.explanation).size());
    }
    EXPECT_GE(longest, 70000U);
    EXPECT_TRUE(season::Read(Made("data-3.00.00.fcd")).goals.empty());
    EXPECT_EQ(season::Read(Made("data-3.92.00.fcd")).nvcResources.size(), 14U)
        << "its key has another name";
    EXPECT_EQ(ReasonOf(Made("data-noformat.fcd")),
              "This file uses an incompatible format and cannot be opened: it does not say which.");
    EXPECT_NE(ReasonOf(Made("bram-basic.mdb")), "was read");
    EXPECT_NE(ReasonOf(Made("damaged/memochain.fcd")), "was read");
}

TEST(SeasonKeys, SplitKey_IsTheWayBackFromJoinKey) {
    for (const std::int32_t zone : {-12, -1, 0, 1, 7}) {
        for (const std::int32_t location : {1, 50, 99, 100}) {
            const auto key = static_cast<std::int32_t>(season::JoinKey(zone, location));
            EXPECT_EQ(season::SplitKey(key).zone, zone) << key;
            EXPECT_EQ(season::SplitKey(key).location, location) << key;
        }
    }
}

}  // namespace
