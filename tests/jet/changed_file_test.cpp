// Whole files in which a few bytes of one row or one list say something else: what the check names
// and what the repair keeps.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "jet/check.h"
#include "jet/database.h"
#include "jet/error.h"
#include "jet/recordset.h"
#include "page/bytes.h"
#include "sample_table.h"

namespace jet {
namespace {

constexpr char kFile[] = "a file.mdb";
constexpr char kRepaired[] = "repaired.mdb";

class ChangedFile : public testing::Test {
protected:
    using Contents = std::vector<std::byte>;

    // A table with the fields Id and Mark, and the given marks in its rows.
    void Make(const TableSchema& schema, const std::vector<std::int32_t>& marks) {
        const auto database = Database::Create(kFile, Version::kJet4, *files_);
        database->CreateTable(schema);
        const auto rows = database->OpenTable(schema.name);
        std::int32_t id = 0;
        for (const std::int32_t mark : marks) {
            rows->AddNew();
            if (!schema.columns[0].autoNumber) rows->Set("Id", ++id);
            rows->Set("Mark", mark);
            rows->Update();
        }
        database->Close();
    }
    static TableSchema IdAndMark() {
        TableSchema schema;
        schema.name = "T";
        schema.columns = {{.name = "Id"}, {.name = "Mark"}};
        return schema;
    }
    Contents Load() {
        const auto file = files_->Open(kFile, OpenMode::kReadOnly);
        Contents contents(file->Size());
        file->Read(0, contents);
        return contents;
    }
    void Store(const Contents& contents) {
        files_->Remove(kFile);
        files_->Open(kFile, OpenMode::kCreateNew)->Write(0, contents);
    }
    // Where these bytes are, which the file has once.
    static std::size_t PlaceOf(const Contents& contents, const Contents& bytes) {
        const auto found =
            std::search(contents.begin(), contents.end(), bytes.begin(), bytes.end());
        EXPECT_NE(found, contents.end());
        EXPECT_EQ(std::search(found + 1, contents.end(), bytes.begin(), bytes.end()),
                  contents.end());
        return static_cast<std::size_t>(found - contents.begin());
    }
    static std::size_t PlaceOf(const Contents& contents, std::int32_t mark) {
        Contents bytes(4);
        WriteU32(bytes, 0, static_cast<std::uint32_t>(mark));
        return PlaceOf(contents, bytes);
    }
    // The number before the mark of a row.
    void ChangeId(std::int32_t mark, std::int32_t id) {
        Contents contents = Load();
        WriteU32(contents, PlaceOf(contents, mark) - 4, static_cast<std::uint32_t>(id));
        Store(contents);
    }
    // Takes the value of Id from a row; the mask is behind the mark.
    void TakeId(std::int32_t mark) {
        Contents contents = Load();
        contents[PlaceOf(contents, mark) + 4] &= std::byte{0xFE};
        Store(contents);
    }
    std::set<std::string> Codes() {
        std::set<std::string> codes;
        for (const Finding& finding : CheckFile(kFile, *files_).findings) {
            codes.insert(finding.code);
        }
        return codes;
    }
    // Repairs the file into a sound one.
    RepairReport Repaired() {
        RepairReport report = RepairFile(kFile, kRepaired, *files_);
        const CheckReport check = CheckFile(kRepaired, *files_);
        EXPECT_TRUE(check.findings.empty()) << check.Text();
        return report;
    }
    static bool Names(const RepairReport& report, const std::string& words) {
        return std::any_of(report.losses.begin(), report.losses.end(),
                           [&](const auto& loss) { return loss.find(words) != std::string::npos; });
    }
    TableSchema RepairedSchema() { return Database::Open(kRepaired, {}, *files_)->Describe("T"); }

    std::unique_ptr<FileSystem> files_ = MakeMemoryFileSystem();
};

constexpr std::int32_t kFirst = 0x5A5B1234;
constexpr std::int32_t kSecond = 0x6A6B2345;

TEST_F(ChangedFile, KeyThatTwoRowsHave_IsNotUniqueAnyMoreAndBothAreKept) {
    TableSchema schema = IdAndMark();
    schema.indexes = {{.name = "PrimaryKey", .columns = {{"Id"}}, .primary = true}};
    Make(schema, {kFirst, kSecond});
    ChangeId(kSecond, 1);
    EXPECT_TRUE(Codes().contains("index-unique"));
    const RepairReport report = Repaired();
    EXPECT_EQ(report.rowsKept, 2U);
    EXPECT_TRUE(Names(report, "it is not unique any more"));
    const TableSchema repaired = RepairedSchema();
    ASSERT_EQ(repaired.indexes.size(), 1U);
    EXPECT_FALSE(repaired.indexes[0].primary);
    EXPECT_FALSE(repaired.indexes[0].unique);
}

TEST_F(ChangedFile, RequiredFieldWithoutAValue_IsNotRequiredAnyMore) {
    TableSchema schema = IdAndMark();
    schema.columns[0].required = true;
    schema.indexes = {{.name = "Id", .columns = {{"Id"}}, .required = true}};
    Make(schema, {kFirst, kSecond});
    TakeId(kSecond);
    const RepairReport report = Repaired();
    EXPECT_EQ(report.rowsKept, 2U);
    EXPECT_TRUE(Names(report, "so it is not required any more"));
    EXPECT_TRUE(Names(report, "so it does not require them any more"));
    EXPECT_FALSE(RepairedSchema().columns[0].required);
}

TEST_F(ChangedFile, AutoNumberThatARowLacks_IsGivenOutAnew) {
    TableSchema schema = IdAndMark();
    schema.columns[0].autoNumber = true;
    Make(schema, {kFirst, kSecond});
    TakeId(kSecond);
    EXPECT_EQ(Repaired().rowsKept, 2U);
    const auto database = Database::Open(kRepaired, {}, *files_);
    const auto rows = database->OpenTable("T");
    rows->MoveLast();
    EXPECT_EQ(rows->Get("Mark"), Value(kSecond));
    EXPECT_EQ(rows->Get("Id"), Value(2));
}

TEST_F(ChangedFile, NumbersBeyondTheLastGivenOut_AreAnErrorUnlessDrawnAtRandom) {
    TableSchema schema = IdAndMark();
    schema.columns[0].autoNumber = true;
    Make(schema, {kFirst, kSecond});
    EXPECT_TRUE(Codes().empty());
    ChangeId(kFirst, 7000);
    EXPECT_TRUE(Codes().contains("autonumber"));
    ChangeId(kSecond, -5);
    EXPECT_FALSE(Codes().contains("autonumber"));
}

TEST_F(ChangedFile, FileOfTooFewPages_IsFoundAndNotLookedInto) {
    Make(IdAndMark(), {kFirst});
    Contents contents = Load();
    contents.resize(std::size_t{5} * 4096);
    Store(contents);
    EXPECT_EQ(Codes(), std::set<std::string>{"file-length"});
}

// The texts share their boundary, so that each has half a character when it moves by a byte.
TEST_F(ChangedFile, HalfACharacter_IsFoundAndTheRowIsKeptWithoutIt) {
    {
        const auto database = Database::Create(kFile, Version::kJet4, *files_);
        TableSchema schema;
        schema.name = "T";
        schema.columns = {{.name = "Id"},
                          {.name = "A", .type = ColumnType::kText, .length = 50},
                          {.name = "B", .type = ColumnType::kText, .length = 50}};
        database->CreateTable(schema);
        const auto rows = database->OpenTable("T");
        rows->AddNew();
        rows->Set("Id", 1);
        rows->Set("A", u"\u0416");
        rows->Set("B", u"\u0411\u0435\u0440\u043D");
        rows->Update();
        database->Close();
    }
    const Contents sound = Load();
    const std::size_t text = PlaceOf(
        sound, {std::byte{0x16}, std::byte{4}, std::byte{0x11}, std::byte{4}, std::byte{0x35},
                std::byte{4}, std::byte{0x40}, std::byte{4}, std::byte{0x3D}, std::byte{4}});
    // The table of places is behind the texts, the last one first.
    const std::size_t placeOfB = text + 10 + 2;
    Contents changed = sound;
    WriteU16(changed, placeOfB, static_cast<std::uint16_t>(ReadU16(sound, placeOfB) - 1));
    Store(changed);
    EXPECT_EQ(Codes(), std::set<std::string>{"value-text"});
    const RepairReport report = Repaired();
    EXPECT_EQ(report.rowsKept, 1U);
    EXPECT_TRUE(Names(report, "The column A has half a character"));
    EXPECT_TRUE(Names(report, "The column B has half a character"));
    const auto repaired = Database::Open(kRepaired, {}, *files_);
    const auto rows = repaired->OpenTable("T");
    EXPECT_EQ(rows->Get("Id"), Value(1));
    EXPECT_TRUE(rows->Get("A").IsNull());
}

// The places of all lengths in the properties of an object, from the signature on:
//
//   "MR2" 0 | u32 length, u16 80 00, names: u16 length, bytes ... |
//             u32 length, u16 kind, u32 length of the owner, u16 length of its name, name,
//             values: u16 length, u8, u8 kind, u16 number, u16 length, bytes ... | ...
std::vector<std::size_t> PropertyLengths(const std::vector<std::byte>& file, std::size_t at) {
    std::vector<std::size_t> places;
    at += 4;
    const std::size_t valuesAt = at + ReadU32(file, at);
    places.push_back(at);
    for (std::size_t name = at + 6; name < valuesAt; name += 2U + ReadU16(file, name)) {
        places.push_back(name);
    }
    places.push_back(valuesAt);
    const std::size_t end = valuesAt + ReadU32(file, valuesAt);
    const std::size_t owner = valuesAt + 6;
    places.push_back(owner);
    places.push_back(owner + 4);
    for (std::size_t value = owner + ReadU32(file, owner); value < end;
         value += ReadU16(file, value)) {
        places.push_back(value);
        places.push_back(value + 6);
    }
    return places;
}

TEST_F(ChangedFile, PropertiesWithAWrongLength_AreFound) {
    TableSchema schema = IdAndMark();
    schema.columns[0].required = true;
    schema.columns[1].defaultValue = "12";
    Make(schema, {kFirst});
    const Contents sound = Load();
    const std::size_t at =
        PlaceOf(sound, {std::byte{'M'}, std::byte{'R'}, std::byte{'2'}, std::byte{0}});
    std::vector<std::size_t> places = PropertyLengths(sound, at);
    EXPECT_GT(places.size(), 8U);
    places.push_back(at);  // the signature itself
    for (const std::size_t place : places) {
        for (const int by : {1, -1}) {
            Contents changed = sound;
            WriteU16(changed, place, static_cast<std::uint16_t>(ReadU16(sound, place) + by));
            Store(changed);
            EXPECT_TRUE(Codes().contains("properties")) << place - at << " by " << by;
        }
    }
}

}  // namespace
}  // namespace jet
