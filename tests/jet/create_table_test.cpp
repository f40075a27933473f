// Tables that the format, or this engine, does not have are refused before anything is changed.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "jet/check.h"
#include "jet/database.h"
#include "jet/recordset.h"
#include "sample_table.h"

namespace jet {
namespace {

class CreateTable : public testing::TestWithParam<Version> {
protected:
    CreateTable() { database_ = Database::Create("a file.mdb", GetParam(), *files_); }
    ~CreateTable() override {
        const CheckReport report = CheckDatabase(*database_);
        EXPECT_TRUE(report.IsSound()) << report.Text();
    }

    ErrorKind Refusal(const std::vector<ColumnSchema>& columns,
                      const std::vector<IndexSchema>& indexes = {}) {
        TableSchema schema;
        schema.name = "T";
        schema.columns = columns;
        schema.indexes = indexes;
        const ErrorKind kind = ErrorOf([&] { database_->CreateTable(schema); });
        EXPECT_FALSE(database_->HasTable("T"));
        return kind;
    }
    [[nodiscard]] TableSchema Made(const TableSchema& schema) {
        database_->CreateTable(schema);
        return database_->Describe(schema.name);
    }

    std::unique_ptr<FileSystem> files_ = MakeMemoryFileSystem();
    std::unique_ptr<Database> database_;
};

INSTANTIATE_TEST_SUITE_P(Versions, CreateTable, testing::Values(Version::kJet3, Version::kJet4),
                         [](const auto& tested) { return VersionName(tested.param); });

TEST_P(CreateTable, FieldsThatTheFormatLacks_AreRefused) {
    const int longestBytes = GetParam() == Version::kJet3 ? 255 : 510;
    const std::vector<ColumnSchema> refused = {
        {.name = "A", .type = static_cast<ColumnType>(0x0D)},
        {.name = "A", .type = ColumnType::kText, .length = 256},
        {.name = "A", .type = ColumnType::kText, .length = -1},
        {.name = "A", .type = ColumnType::kBinary, .length = longestBytes + 1},
        {.name = "A", .type = ColumnType::kText, .length = 10, .autoNumber = true},
        {.name = "A", .type = ColumnType::kDecimal, .precision = 29},
        {.name = "A", .type = ColumnType::kDecimal, .precision = 0},
        {.name = "A", .type = ColumnType::kDecimal, .precision = 5, .scale = 6},
        {.name = "A", .type = ColumnType::kDecimal, .precision = 5, .scale = -1}};
    for (std::size_t i = 0; i < refused.size(); ++i) {
        EXPECT_EQ(Refusal({refused[i]}), ErrorKind::kUnsupported) << i;
    }
    EXPECT_EQ(Refusal({}), ErrorKind::kUnsupported);
    std::vector<ColumnSchema> many;
    for (int i = 0; i < 256; ++i) many.push_back({.name = "F" + std::to_string(i)});
    EXPECT_EQ(Refusal(many), ErrorKind::kUnsupported);
}

TEST_P(CreateTable, TwoFieldsThatNumberTheRecords_AreRefused) {
    EXPECT_EQ(Refusal({{.name = "A", .autoNumber = true}, {.name = "B", .autoNumber = true}}),
              ErrorKind::kUnsupported);
}

TEST_P(CreateTable, NamesThatTheFileWouldChange_AreRefused) {
    std::vector<std::string> refused = {"\xFF\xFE", "a\xC3", "\xED\xA0\x80"};
    if (GetParam() == Version::kJet3) refused.emplace_back("\u4E00");
    for (const std::string& name : refused) {
        EXPECT_EQ(ErrorOf([&] {
                      database_->CreateTable({name, {{"A"}}, {}});
                  }),
                  ErrorKind::kBadName);
        EXPECT_EQ(Refusal({{.name = name}}), ErrorKind::kBadName);
        EXPECT_EQ(Refusal({{.name = "A"}}, {{.name = name, .columns = {{"A"}}}}),
                  ErrorKind::kBadName);
    }
    EXPECT_TRUE(database_->TableNames().empty());
}

TEST_P(CreateTable, PropertiesThatAreTooLong_AreRefused) {
    const std::string tooLong(70000, 'x');
    const std::string longest(30000, '7');
    EXPECT_EQ(Refusal({{.name = "A", .defaultValue = tooLong}}), ErrorKind::kUnsupported);
    EXPECT_EQ(Refusal({{.name = "A", .validationRule = tooLong}}), ErrorKind::kUnsupported);
    EXPECT_EQ(Refusal({{.name = "A", .validationRule = "1", .validationText = tooLong}}),
              ErrorKind::kUnsupported);
    const TableSchema made = Made({"T", {{.name = "A", .defaultValue = longest}}, {}});
    EXPECT_EQ(made.columns[0].defaultValue, longest);
}

TEST_P(CreateTable, IndexesThatCannotBe_AreRefused) {
    EXPECT_EQ(Refusal({{.name = "A"}}, {{.name = "I", .columns = {{"A"}, {"a", false}}}}),
              ErrorKind::kUnsupported);
    const std::vector<ColumnSchema> columns = {{.name = "A"}, {.name = "B"}};
    EXPECT_EQ(Refusal(columns, {{.name = "I"}}), ErrorKind::kUnsupported);
    EXPECT_EQ(Refusal(columns, {{.name = "I", .columns = std::vector<IndexColumn>(11, {"A"})}}),
              ErrorKind::kUnsupported);
    EXPECT_EQ(Refusal(columns, {{.name = "I", .columns = {{"A"}}, .relation = true}}),
              ErrorKind::kUnsupported);
    EXPECT_EQ(Refusal(columns, {{.name = "I", .columns = {{"C"}}}}), ErrorKind::kNoSuchField);
    EXPECT_EQ(
        Refusal(columns, {{.name = "I", .columns = {{"A"}}}, {.name = "i", .columns = {{"B"}}}}),
        ErrorKind::kAlreadyExists);
    EXPECT_EQ(Refusal(columns, {{.name = "I", .columns = {{"A"}}, .primary = true},
                                {.name = "J", .columns = {{"B"}}, .primary = true}}),
              ErrorKind::kUnsupported);
    EXPECT_EQ(Refusal(columns, {{.name = "", .columns = {{"A"}}}}), ErrorKind::kBadName);
    std::vector<IndexSchema> many;
    for (int i = 0; i < 33; ++i)
        many.push_back({.name = "I" + std::to_string(i), .columns = {{"A"}}});
    EXPECT_EQ(Refusal(columns, many), ErrorKind::kUnsupported);
}

TEST_P(CreateTable, RecordThatWouldNotFitOnAPage_IsRefused) {
    std::vector<ColumnSchema> columns;
    for (int i = 0; i < 20; ++i) {
        columns.push_back({.name = "F" + std::to_string(i),
                           .type = ColumnType::kText,
                           .length = 255,
                           .fixedLength = true});
    }
    EXPECT_EQ(Refusal(columns), ErrorKind::kRecordTooLarge);
}

TEST_P(CreateTable, IndexesThatDifferInOrderOnly_HaveTreesOfTheirOwn) {
    TableSchema schema = ZonesSchema();
    schema.indexes = {{.name = "Up", .columns = {{"Zone"}}},
                      {.name = "Again", .columns = {{"Zone"}}},
                      {.name = "Down", .columns = {{"Zone", false}}}};
    database_->CreateTable(schema);
    const auto zones = database_->OpenTable("Zones");
    for (const int zone : {2, 1, 3}) AddZone(*zones, zone, 1, 0);
    const auto first = [&](const char* index) {
        zones->SetIndex(index);
        zones->MoveFirst();
        return zones->Get("Zone");
    };
    EXPECT_EQ(first("Up"), Value(1));
    EXPECT_EQ(first("Again"), Value(1));
    EXPECT_EQ(first("Down"), Value(3));
}

TEST_P(CreateTable, Description_IsWhatWasAskedFor) {
    TableSchema schema;
    schema.name = "T";
    schema.columns = {
        {.name = "Text", .type = ColumnType::kText, .length = 12},
        {.name = "Plain", .type = ColumnType::kText, .compressed = false},
        {.name = "Padded", .type = ColumnType::kText, .length = 8, .fixedLength = true},
        {.name = "Bytes", .type = ColumnType::kBinary, .length = 9},
        {.name = "Filled", .type = ColumnType::kBinary, .length = 7, .fixedLength = true}};
    const TableSchema made = Made(schema);
    ASSERT_EQ(made.columns.size(), 5U);
    EXPECT_EQ(made.columns[0].length, 12);
    EXPECT_EQ(made.columns[0].compressed, GetParam() == Version::kJet4);
    EXPECT_EQ(made.columns[1].length, 255);
    EXPECT_FALSE(made.columns[1].compressed);
    EXPECT_TRUE(made.columns[2].fixedLength);
    EXPECT_EQ(made.columns[3].length, 9);
    EXPECT_FALSE(made.columns[3].fixedLength);
    EXPECT_TRUE(made.columns[4].fixedLength);
}

TEST_P(CreateTable, Defaults_ArePlainNumbersTextsAndWords) {
    TableSchema schema;
    schema.name = "T";
    const std::vector<std::pair<std::string, Value>> defaults = {
        {"\"a text\"", Value(u"a text")},
        {"'it''s'", Value(u"it's")},
        {" = \"say \"\"so\"\"\" ", Value(u"say \"so\"")},
        {"12", Value(u"12")},
        {"\"", Value()},
        {"\"open", Value()},
        {"\"a\"b\"", Value()},
        {"\"a\"\"", Value()},
        {"Now()", Value()},
        {"=", Value()}};
    for (std::size_t i = 0; i < defaults.size(); ++i) {
        schema.columns.push_back({.name = "F" + std::to_string(i),
                                  .type = ColumnType::kText,
                                  .length = 20,
                                  .defaultValue = defaults[i].first});
    }
    const std::pair<const char*, bool> words[] = {{"Yes", true}, {"TRUE", true}, {"on", true},
                                                  {"No", false}, {"off", false}, {"false", false}};
    for (const auto& [word, meaning] : words) {
        schema.columns.push_back(
            {.name = word, .type = ColumnType::kBoolean, .defaultValue = word});
    }
    database_->CreateTable(schema);
    const auto rows = database_->OpenTable("T");
    rows->AddNew();
    for (std::size_t i = 0; i < defaults.size(); ++i) {
        EXPECT_EQ(rows->Get("F" + std::to_string(i)), defaults[i].second) << defaults[i].first;
    }
    for (const auto& [word, meaning] : words) EXPECT_EQ(rows->Get(word), Value(meaning)) << word;
    rows->CancelUpdate();
}

TEST_P(CreateTable, TypedReads_SeeTheOpenEditAndEveryKindOfNumber) {
    database_->CreateTable(PeopleSchema());
    const auto people = database_->OpenTable("People");
    people->AddNew();
    people->Set("Paid", Currency{15000});
    people->Set("Age", 41);
    people->Set("Active", true);
    people->Set("Score", 2.5F);
    people->Set("Class", 7);
    const auto expectReads = [&] {
        std::int32_t whole = 0;
        float single = 0;
        double number = 0;
        EXPECT_TRUE(people->ReadLong(people->Field("Age"), whole));
        EXPECT_EQ(whole, 41);
        EXPECT_TRUE(people->ReadLong(people->Field("Score"), whole));
        EXPECT_EQ(whole, 2);
        EXPECT_TRUE(people->ReadLong(people->Field("Class"), whole));
        EXPECT_EQ(whole, 7);
        EXPECT_TRUE(people->ReadSingle(people->Field("Score"), single));
        EXPECT_EQ(single, 2.5F);
        EXPECT_TRUE(people->ReadSingle(people->Field("Age"), single));
        EXPECT_EQ(single, 41);
        EXPECT_TRUE(people->ReadDouble(people->Field("Paid"), number));
        EXPECT_EQ(number, 1.5);
        EXPECT_TRUE(people->ReadDouble(people->Field("Active"), number));
        EXPECT_EQ(number, -1);
        std::u16string text = u"before";
        EXPECT_FALSE(people->ReadLong(people->Field("Weight"), whole));
        EXPECT_FALSE(people->ReadSingle(people->Field("Weight"), single));
        EXPECT_FALSE(people->ReadDouble(people->Field("Weight"), number));
        EXPECT_FALSE(people->ReadDouble(people->Field("Born"), number));
        EXPECT_FALSE(people->ReadText(people->Field("Town"), text));
        EXPECT_EQ(text, u"before");
        EXPECT_TRUE(people->ReadText(people->Field("Age"), text));
        EXPECT_EQ(text, u"41");
    };
    expectReads();
    people->Update();
    people->MoveFirst();
    expectReads();
    people->Edit();
    people->Set("Town", u"Chur");
    std::u16string text;
    EXPECT_TRUE(people->ReadText(people->Field("Town"), text));
    EXPECT_EQ(text, u"Chur");
    people->CancelUpdate();
    EXPECT_EQ(ErrorOf([&] { static_cast<void>(people->Get(FieldId{-1})); }),
              ErrorKind::kNoSuchField);
    EXPECT_EQ(ErrorOf([&] { static_cast<void>(people->Get(FieldId{99})); }),
              ErrorKind::kNoSuchField);
}

}  // namespace
}  // namespace jet
