// The repair: everything of a sound file, nearly everything of a damaged one, and nothing done to
// the file itself.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <map>

#include "jet/check.h"
#include "jet/database.h"
#include "jet/error.h"
#include "jet/recordset.h"
#include "support/jet_files.h"
#include "support/temp_folder.h"

namespace jet {
namespace {

using tarn_test::Quoted;

const std::filesystem::path kShared = tarn_test::SharedFolder();

using Rows = std::vector<std::vector<Value>>;

std::map<std::string, Rows> Contents(const std::filesystem::path& path) {
    const auto database = Database::Open(path, {.exclusive = false, .readOnly = true});
    std::map<std::string, Rows> contents;
    for (const std::string& name : database->TableNames()) {
        const auto records = database->OpenTable(name);
        Rows& rows = contents[name];
        for (; !records->IsEof(); records->MoveNext()) {
            std::vector<Value> row;
            for (std::size_t i = 0; i < records->Fields().size(); ++i) {
                row.push_back(records->Get(FieldId{static_cast<int>(i)}));
            }
            rows.push_back(row);
        }
    }
    return contents;
}

std::string Bytes(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::size_t RowCount(const std::map<std::string, Rows>& contents) {
    std::size_t count = 0;
    for (const auto& [name, rows] : contents) {
        count += rows.size();
    }
    return count;
}

std::size_t IndexCount(const std::filesystem::path& path) {
    const auto database = Database::Open(path, {.exclusive = false, .readOnly = true});
    std::size_t count = 0;
    for (const std::string& name : database->TableNames()) {
        for (const IndexSchema& index : database->Describe(name).indexes) {
            count += index.relation ? 0 : 1;
        }
    }
    return count;
}

class RepairSoundFile : public ::testing::TestWithParam<const char*> {};

INSTANTIATE_TEST_SUITE_P(Files, RepairSoundFile,
                         ::testing::Values("jackcess-testIndexCodesV1997.mdb",
                                           "jackcess-testIndexCodes.mdb", "jackcess-test2V2000.mdb",
                                           "jackcess-testUnicodeCompV2003.mdb",
                                           "vcsamples-employee.mdb", "made/data-4.01.01.fcd",
                                           "made/bram-gaps.mdb"));

TEST_P(RepairSoundFile, KeepsEveryRowAndIndex) {
    const auto source = kShared / "corpus" / GetParam();
    if (!std::filesystem::exists(source)) {
        GTEST_SKIP() << tarn_test::kNoCorpus;
    }
    const tarn_test::TempFolder folder;
    const auto target = folder / "repaired.mdb";
    const RepairReport report = RepairFile(source, target);
    const auto expected = Contents(source);
    EXPECT_EQ(Contents(target), expected);
    EXPECT_EQ(report.tables, expected.size());
    EXPECT_EQ(report.rowsKept, RowCount(expected));
    EXPECT_EQ(IndexCount(target), IndexCount(source));
    const CheckReport check = CheckFile(target);
    EXPECT_TRUE(check.findings.empty()) << check.Text();
}

struct Damage {
    const char* kind;
    std::size_t rowsLost;  // of 868
};

class RepairDamagedFile : public ::testing::TestWithParam<Damage> {};

INSTANTIATE_TEST_SUITE_P(
    Kinds, RepairDamagedFile,
    ::testing::Values(Damage{"header-pointer", 0}, Damage{"page-lost-data", 0},
                      Damage{"page-lost-index", 0}, Damage{"page-used-free", 0},
                      Damage{"map-pointer", 0}, Damage{"map-shared", 0}, Damage{"map-type", 0},
                      Damage{"page-owner", 0}, Damage{"page-type", 0}, Damage{"index-missing", 0},
                      Damage{"index-order", 0}, Damage{"index-loop", 0}, Damage{"index-root", 0},
                      Damage{"index-unique", 0}, Damage{"free-space", 0}, Damage{"slot-bounds", 2},
                      Damage{"slot-overlap", 2}, Damage{"null-mask-cut", 1},
                      Damage{"var-offset", 1}, Damage{"overflow-dangling", 0},
                      Damage{"overflow-orphan", 0}, Damage{"tdef-length", 0},
                      Damage{"tdef-cut", 256}, Damage{"row-count", 0}, Damage{"autonumber-low", 0},
                      Damage{"column-type", 0}, Damage{"catalogue-missing", 0}),
    [](const auto& instance) {
        std::string name = instance.param.kind;
        std::replace(name.begin(), name.end(), '-', '_');
        return name;
    });

TEST_P(RepairDamagedFile, KeepsWhatCanBeReadAndLeavesTheFileAlone) {
    const auto source = kShared / "corpus/jackcess-testIndexCodesV1997.mdb";
    if (!std::filesystem::exists(source) || tarn_test::Judge().empty()) {
        GTEST_SKIP() << tarn_test::kNoPlanting;
    }
    const tarn_test::TempFolder folder;
    const auto damaged = folder / "damaged.mdb";
    const auto target = folder / "repaired.mdb";
    const int status = tarn_test::RunCommand(tarn_test::Judge() + " plant " + Quoted(source) + " " +
                                             GetParam().kind + " " + Quoted(damaged) + " --seed 3")
                           .status;
    if (status == 3) {
        GTEST_SKIP() << "The file has no place where this damage could be planted.";
    }
    ASSERT_EQ(status, 0);
    const std::string before = Bytes(damaged);
    const RepairReport report = RepairFile(damaged, target);
    EXPECT_EQ(Bytes(damaged), before);
    EXPECT_GE(report.rowsKept + GetParam().rowsLost, 868U);
    EXPECT_LE(report.rowsKept, 868U);
    EXPECT_EQ(RowCount(Contents(target)), report.rowsKept);
    const CheckReport check = CheckFile(target);
    EXPECT_TRUE(check.findings.empty()) << check.Text();
}

// A definition that says less than the rows hold: what does not fit is left out and reported.
TEST(RepairFile, ValueThatTheDefinitionDoesNotAllow_IsLeftOutAndTheRowKept) {
    const auto files = MakeMemoryFileSystem();
    const auto database = Database::Create("a file.mdb", Version::kJet4, *files);
    TableSchema schema;
    schema.name = "T";
    schema.columns = {{.name = "Id"}, {.name = "Name", .type = ColumnType::kText, .length = 77}};
    database->CreateTable(schema);
    const auto rows = database->OpenTable("T");
    for (const char16_t* name : {u"short", u"longer than what is allowed"}) {
        rows->AddNew();
        rows->Set("Id", 1);
        rows->Set("Name", name);
        rows->Update();
    }
    database->Close();
    const auto file = files->Open("a file.mdb", OpenMode::kReadWrite);
    std::vector<std::byte> contents(file->Size());
    file->Read(0, contents);
    // The length in the column's block, 23 bytes behind its type.
    int changed = 0;
    for (std::size_t at = 4096; at + 25 < contents.size(); ++at) {
        if (contents[at] == std::byte{0x0A} && contents[at + 23] == std::byte{2 * 77} &&
            contents[at + 24] == std::byte{0}) {
            const std::byte shorter{2 * 5};
            file->Write(at + 23, {&shorter, 1});
            ++changed;
        }
    }
    ASSERT_EQ(changed, 1);
    const RepairReport report = RepairFile("a file.mdb", "repaired.mdb", *files);
    EXPECT_EQ(report.rowsKept, 2U);
    ASSERT_EQ(report.losses.size(), 1U);
    EXPECT_NE(report.losses[0].find("the value of Name is left out"), std::string::npos);
    const auto repaired = Database::Open("repaired.mdb", {}, *files);
    const auto kept = repaired->OpenTable("T");
    EXPECT_EQ(kept->Get("Name"), Value(u"short"));
    kept->MoveNext();
    EXPECT_TRUE(kept->Get("Name").IsNull());
}

TEST(RepairFile, ExistingTarget_IsRefusedAndKept) {
    const tarn_test::TempFolder folder;
    const auto source = folder / "a source.mdb";
    Database::Create(source, Version::kJet4)->Close();
    const auto target = folder / "target.mdb";
    std::ofstream(target) << "mine";
    try {
        (void)RepairFile(source, target);
        ADD_FAILURE() << "an existing file was overwritten";
    } catch (const Error& error) {
        EXPECT_EQ(error.Kind(), ErrorKind::kAlreadyExists);
    }
    EXPECT_EQ(Bytes(target), "mine");
}

TEST(RepairFile, DefaultsAndAutoNumbers_SurviveTheCopy) {
    for (const Version version : {Version::kJet3, Version::kJet4}) {
        const tarn_test::TempFolder folder;
        const auto source = folder / "a source.mdb";
        TableSchema schema;
        schema.name = "Zones";
        schema.columns = {
            {.name = "Id", .type = ColumnType::kLong, .autoNumber = true},
            {.name = "Code", .type = ColumnType::kText, .length = 60},
            {.name = "Acres", .type = ColumnType::kSingle, .required = true, .defaultValue = "5"},
            {.name = "Remarks", .type = ColumnType::kMemo}};
        schema.indexes = {{.name = "PrimaryKey", .columns = {{"Id"}}, .primary = true},
                          {.name = "Code", .columns = {{"Code", false}}, .unique = true}};
        {
            const auto database = Database::Create(source, version);
            database->CreateTable(schema);
            const auto rows = database->OpenTable("Zones");
            for (int i = 0; i < 50; ++i) {
                rows->AddNew();
                rows->Set("Code",
                          Value(u"zone " + std::u16string(static_cast<std::size_t>(i), u'A')));
                rows->Set("Remarks",
                          Value(std::u16string(static_cast<std::size_t>(i * 300), u'x')));
                rows->Update();
            }
            database->Close();
        }
        const auto target = folder / "target.mdb";
        const RepairReport report = RepairFile(source, target);
        EXPECT_TRUE(report.losses.empty());
        EXPECT_EQ(Contents(target), Contents(source));
        const auto database = Database::Open(target);
        const TableSchema copied = database->Describe("Zones");
        EXPECT_EQ(copied.columns[2].defaultValue, "5");
        EXPECT_TRUE(copied.columns[2].required);
        const auto rows = database->OpenTable("Zones");
        rows->AddNew();
        rows->Set("Code", Value(u"new"));
        rows->Update();
        rows->SetIndex("PrimaryKey");
        rows->MoveLast();
        EXPECT_EQ(rows->Get(FieldId{0}), Value(51));
    }
}

}  // namespace
}  // namespace jet
