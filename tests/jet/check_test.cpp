// The structure check: silent about sound files of any origin, and naming damage that an
// independent program has planted.
#include "jet/check.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <random>
#include <set>
#include <span>
#include <sstream>

#include "damaged_file.h"
#include "jet/database.h"
#include "jet/error.h"
#include "jet/recordset.h"
#include "support/jet_files.h"
#include "support/temp_folder.h"

namespace jet {
namespace {

using tarn_test::Quoted;

const std::filesystem::path kShared = tarn_test::SharedFolder();

TEST(CheckFile, SoundFilesOfAnyOrigin_HaveNoErrors) {
    const auto files = tarn_test::CorpusFiles();
    if (files.empty()) {
        GTEST_SKIP() << tarn_test::kNoCorpus;
    }
    int checked = 0;
    for (const auto& file : files) {
        try {
            const CheckReport report = CheckFile(file);
            EXPECT_TRUE(report.IsSound()) << file << "\n" << report.Text();
            EXPECT_GE(report.tables, 4U);
            ++checked;
        } catch (const Error& error) {
            EXPECT_EQ(error.Kind(), ErrorKind::kEncrypted) << file << ": " << error.what();
        }
    }
    EXPECT_GT(checked, 60);
}

TEST(CheckDatabase, OpenDatabase_ShowsItsLatestChanges) {
    for (const Version version : {Version::kJet3, Version::kJet4}) {
        const auto files = MakeMemoryFileSystem();
        const auto database = Database::Create("a file.mdb", version, *files);
        EXPECT_TRUE(CheckDatabase(*database).findings.empty());
        database->CreateTable({"Zones",
                               {{.name = "Code", .type = ColumnType::kText, .length = 60},
                                {.name = "Remarks", .type = ColumnType::kMemo}},
                               {{.name = "Code", .columns = {{"Code"}}, .unique = true}}});
        const auto rows = database->OpenTable("Zones");
        for (std::size_t i = 0; i < 300; ++i) {
            rows->AddNew();
            rows->Set("Code",
                      Value(std::u16string(i % 20, u'a') + std::u16string(1 + i / 20, u'b')));
            rows->Set("Remarks", Value(std::u16string(i * 20, u'c')));
            rows->Update();
        }
        const CheckReport report = CheckDatabase(*database);
        EXPECT_TRUE(report.findings.empty()) << report.Text();
        EXPECT_EQ(report.tables, 5U);
        EXPECT_GE(report.rows, 300U);
        // The file itself does not have the last changes yet, and is in use.
        EXPECT_THROW((void)CheckFile("a file.mdb", *files), Error);
        database->Close();
        EXPECT_TRUE(CheckFile("a file.mdb", *files).findings.empty());
        EXPECT_THROW((void)CheckDatabase(*database), Error);
    }
}

// One bit of a table's flags hides it among the system's tables; the check says so, and a repair
// brings it back.
TEST(CheckFile, TableHiddenByItsFlags_IsNamedAndComesBackInRepair) {
    for (const Version version : {Version::kJet3, Version::kJet4}) {
        const auto files = MakeMemoryFileSystem();
        const auto database = Database::Create("a file.mdb", version, *files);
        database->CreateTable({"Zones", {{.name = "Code"}}, {}});
        const auto rows = database->OpenTable("Zones");
        rows->AddNew();
        rows->Update();
        database->Close();
        {
            const auto file = files->Open("a file.mdb", OpenMode::kReadWrite);
            std::string bytes(static_cast<std::size_t>(file->Size()), '\0');
            file->Read(0, std::as_writable_bytes(std::span(bytes)));
            // The name follows the flags in the catalog's row.
            const std::string name =
                version == Version::kJet3 ? "Zones" : std::string("Z\0o\0n\0e\0s\0", 10);
            const std::size_t at = bytes.find(name, version == Version::kJet3 ? 4096 : 8192);
            ASSERT_NE(at, std::string::npos);
            const std::byte hidden{0x80};
            file->Write(at - 1, {&hidden, 1});
        }
        EXPECT_TRUE(Database::Open("a file.mdb", {}, *files)->TableNames().empty());
        EXPECT_NE(CheckFile("a file.mdb", *files).Text().find("catalog-flags"), std::string::npos);
        static_cast<void>(RepairFile("a file.mdb", "new.mdb", *files));
        EXPECT_EQ(Database::Open("new.mdb", {}, *files)->OpenTable("Zones")->RecordCount(), 1);
    }
}

// Has the named damage planted in a copy; status 3 says that the file has no place for it.
tarn_test::CommandResult PlantDamage(const std::filesystem::path& from, const std::string& kind,
                                     const std::filesystem::path& to) {
    return tarn_test::RunCommand(tarn_test::Judge() + " plant " + Quoted(from) + " " + kind + " " +
                                 Quoted(to) + " --seed 3");
}

// The codes of which the check should name at least one.
std::set<std::string> ExpectedCodes(const std::string& answer) {
    std::set<std::string> codes;
    const std::size_t start = answer.find("\"expect\"");
    const std::size_t end = answer.find(']', start);
    std::string code;
    bool inside = false;
    for (std::size_t i = answer.find('[', start); i < end && i != std::string::npos; ++i) {
        if (answer[i] != '"') {
            if (inside) {
                code += answer[i];
            }
            continue;
        }
        if (inside) {
            codes.insert(code);
        }
        code.clear();
        inside = !inside;
    }
    return codes;
}

std::vector<std::string> DamageKinds() {
    std::vector<std::string> kinds;
    std::ostringstream names;
    names << "file-cut-midpage file-cut-pages header-pointer page-twice page-lost-data "
             "page-lost-index page-lost-free page-used-free map-beyond-end map-pointer map-shared "
             "map-type free-map-extra long-value-map page-owner page-type page-header "
             "index-missing index-extra index-double index-key index-order index-link index-free "
             "index-prefix index-bitmap index-owner index-level index-empty-leaf index-unique "
             "index-node-key index-child index-loop index-tail free-space slot-overlap slot-bounds "
             "slot-count row-deleted row-undeleted null-mask-cut row-column-count var-offset "
             "var-count null-bit value-changed overflow-dangling overflow-loop overflow-orphan "
             "overflow-shared overflow-unmarked long-value-loop long-value-chain-cut "
             "long-value-dangling long-value-length long-value-orphan long-value-shared "
             "long-value-deleted long-value-form tdef-length tdef-chain tdef-cut row-count "
             "autonumber-low column-count column-number column-overlap column-type index-root "
             "index-column index-number relation-partner properties catalogue-dangling "
             "catalogue-type catalogue-missing";
    std::istringstream words(names.str());
    for (std::string word; words >> word;) {
        kinds.push_back(word);
    }
    return kinds;
}

class PlantedDamage : public ::testing::TestWithParam<std::string> {};

INSTANTIATE_TEST_SUITE_P(Kinds, PlantedDamage, ::testing::ValuesIn(DamageKinds()),
                         [](const auto& instance) {
                             std::string name = instance.param;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

TEST_P(PlantedDamage, IsFoundByNameAndSurvived) {
    if (tarn_test::Judge().empty()) {
        GTEST_SKIP() << tarn_test::kNoPlanting;
    }
    const tarn_test::TempFolder folder;
    int planted = 0;
    for (const char* name : {"jackcess-test2V1997.mdb", "jackcess-indexTestV2003.mdb",
                             "jackcess-testIndexCodesV1997.mdb"}) {
        const auto copy = folder.Path() / name;
        const auto plant = PlantDamage(kShared / "corpus" / name, GetParam(), copy);
        if (plant.status == 3) {
            continue;
        }
        ASSERT_EQ(plant.status, 0) << plant.output;
        ++planted;
        const CheckReport report = CheckFile(copy);
        const std::set<std::string> expected = ExpectedCodes(plant.output);
        ASSERT_FALSE(expected.empty());
        EXPECT_TRUE(
            std::any_of(report.findings.begin(), report.findings.end(),
                        [&](const Finding& finding) { return expected.count(finding.code) != 0; }))
            << name << ": " << plant.output << report.Text();
        ExpectRepairedOrRefused(copy, folder / "repaired.mdb", HostFileSystem());
        EditEverywhere(copy, HostFileSystem());
    }
    EXPECT_GT(planted, 0);
}

// Random bytes anywhere behind the header: the check ends, with findings or without.
TEST(CheckFile, Noise_NeverHangsOrCrashes) {
    const auto source = kShared / "corpus/jackcess-test2V1997.mdb";
    if (!std::filesystem::exists(source)) {
        GTEST_SKIP() << tarn_test::kNoCorpus;
    }
    std::ifstream file(source, std::ios::binary);
    const std::string whole((std::istreambuf_iterator<char>(file)), {});
    const tarn_test::TempFolder folder;
    const auto copy = folder.Path() / "noise.mdb";
    std::mt19937 random(7);
    int unsound = 0;
    for (int round = 0; round < 150; ++round) {
        std::string bytes = whole;
        for (unsigned i = 0; i < 1U << random() % 8; ++i) {
            bytes[2048 + random() % (bytes.size() - 2048)] = static_cast<char>(random() & 0xFF);
        }
        std::ofstream(copy, std::ios::binary | std::ios::trunc) << bytes;
        unsound += CheckFile(copy).IsSound() ? 0 : 1;
    }
    EXPECT_GT(unsound, 20);
}

TEST(CheckFile, WhatIsNoDatabase_IsRefused) {
    const tarn_test::TempFolder folder;
    const auto path = folder.Path() / "a text.mdb";
    for (const std::string& content :
         {std::string(), std::string("hello"), std::string(100000, 'x')}) {
        std::ofstream(path, std::ios::binary | std::ios::trunc) << content;
        try {
            (void)CheckFile(path);
            ADD_FAILURE() << "a file that is no database was checked";
        } catch (const Error& error) {
            EXPECT_EQ(error.Kind(), ErrorKind::kNotADatabase);
        }
    }
    EXPECT_THROW((void)CheckFile(folder.Path() / "absent.mdb"), Error);
}

TEST(CheckFile, LogBesideTheFile_IsNoted) {
    const tarn_test::TempFolder folder;
    const auto path = folder / "a file.mdb";
    Database::Create(path, Version::kJet4)->Close();
    std::ofstream(folder / "a file.mdb-log") << std::string(100, 'x');
    const CheckReport report = CheckFile(path);
    EXPECT_TRUE(report.IsSound());
    ASSERT_EQ(report.findings.size(), 1U);
    EXPECT_EQ(report.findings[0].code, "log-foreign");
    const RepairReport repair = RepairFile(path, folder / "repaired.mdb");
    EXPECT_EQ(repair.losses.size(), 1U);
}

TEST(CheckReport, Text_NamesPlaceAndCountsFindings) {
    CheckReport report;
    report.findings.push_back(
        {Severity::kError, "index-missing", "AAC", 12, 3, "The row has no entry."});
    report.findings.push_back({Severity::kWarning, "page-lost", "", 9, -1, "Nobody uses it."});
    EXPECT_FALSE(report.IsSound());
    EXPECT_NE(report.Text().find("error index-missing, table AAC, page 12, row 3: The row has no "
                                 "entry.\n"),
              std::string::npos);
    EXPECT_NE(report.Text().find("1 errors, 1 warnings, 0 notes"), std::string::npos);
    report.findings.erase(report.findings.begin());
    EXPECT_TRUE(report.IsSound());
}

}  // namespace
}  // namespace jet
