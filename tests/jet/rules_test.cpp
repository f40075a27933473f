// What tables ask of their values: no empty texts, and validation rules.
#include <gtest/gtest.h>

#include <string>

#include "jet/check.h"
#include "jet/database.h"
#include "jet/recordset.h"
#include "sample_table.h"
#include "table/rule.h"

namespace jet {
namespace {

class Rules : public testing::TestWithParam<Version> {
protected:
    void Create(const TableSchema& schema) {
        rows_.reset();
        database_.reset();
        if (files_->Exists("a file.mdb")) files_->Remove("a file.mdb");
        database_ = Database::Create("a file.mdb", GetParam(), *files_);
        database_->CreateTable(schema);
        database_->Close();
        database_ = Database::Open("a file.mdb", {}, *files_);
        rows_ = database_->OpenTable(schema.name);
    }
    static TableSchema Schema(const std::string& rule, const std::string& text = {}) {
        TableSchema schema;
        schema.name = "Zones";
        schema.columns = {{.name = "Zone", .validationRule = rule, .validationText = text},
                          {.name = "Other"},
                          {.name = "Name", .type = ColumnType::kText, .length = 20}};
        return schema;
    }
    void Add(const Value& zone, const Value& other = {}) {
        rows_->AddNew();
        rows_->Set("Zone", zone);
        rows_->Set("Other", other);
        rows_->Update();
    }

    std::unique_ptr<FileSystem> files_ = MakeMemoryFileSystem();
    std::unique_ptr<Database> database_;
    std::unique_ptr<Recordset> rows_;
};

INSTANTIATE_TEST_SUITE_P(Versions, Rules, testing::Values(Version::kJet3, Version::kJet4),
                         [](const auto& tested) { return VersionName(tested.param); });

TEST_P(Rules, EmptyTexts_AreRefusedWhereTheFieldSaysSo) {
    TableSchema schema = Schema({});
    schema.columns[2].allowZeroLength = false;
    Create(schema);
    rows_->AddNew();
    rows_->Set("Name", u"");
    EXPECT_EQ(ErrorOf([&] { rows_->Update(); }), ErrorKind::kZeroLengthNotAllowed);
    rows_->Set("Name", Value());
    rows_->Update();
    rows_->MoveFirst();
    rows_->Edit();
    rows_->Set("Name", u"");
    EXPECT_EQ(ErrorOf([&] { rows_->Update(); }), ErrorKind::kZeroLengthNotAllowed);
    rows_->Set("Name", u"x");
    rows_->Update();
    EXPECT_EQ(rows_->RecordCount(), 1);
}

TEST_P(Rules, RequiredFields_TakeNoNull) {
    TableSchema schema = Schema({});
    schema.columns[0].required = true;
    schema.columns.push_back({.name = "Done", .type = ColumnType::kBoolean, .required = true});
    Create(schema);
    EXPECT_EQ(ErrorOf([&] { Add(Value()); }), ErrorKind::kNullNotAllowed);
    rows_->AddNew();
    EXPECT_EQ(ErrorOf([&] { rows_->Update(); }), ErrorKind::kNullNotAllowed);
    Add(1);
    rows_->MoveFirst();
    EXPECT_EQ(rows_->Get("Done"), Value(false));
    rows_->Edit();
    rows_->Set("Zone", Value());
    EXPECT_EQ(ErrorOf([&] { rows_->Update(); }), ErrorKind::kNullNotAllowed);
    rows_->CancelUpdate();
    EXPECT_EQ(rows_->RecordCount(), 1);
}

TEST_P(Rules, AFieldsRule_HoldsForEveryWrite) {
    Create(Schema(">0 And <100", "A zone has a number from 1 to 99."));
    Add(1);
    EXPECT_EQ(ErrorOf([&] { Add(0); }), ErrorKind::kRuleViolated);
    EXPECT_EQ(ErrorOf([&] { Add(Value()); }), ErrorKind::kRuleViolated);
    rows_->MoveFirst();
    rows_->Edit();
    rows_->Set("Zone", 100);
    try {
        rows_->Update();
        ADD_FAILURE();
    } catch (const Error& error) {
        EXPECT_EQ(error.Number(), 3317);
        EXPECT_STREQ(error.what(), "A zone has a number from 1 to 99.");
    }
    rows_->Set("Zone", 99);
    rows_->Update();
    EXPECT_EQ(rows_->RecordCount(), 1);
    EXPECT_TRUE(CheckDatabase(*database_).IsSound());
}

TEST_P(Rules, ARecordsRule_ComparesItsFields) {
    TableSchema schema = Schema({});
    schema.validationRule = "[Zone] < [Other] Or [Other] Is Null";
    schema.validationText = "In order, please.";
    Create(schema);
    EXPECT_EQ(database_->Describe("Zones").validationRule, schema.validationRule);
    EXPECT_EQ(database_->Describe("Zones").validationText, schema.validationText);
    Add(1, 2);
    Add(1);
    EXPECT_EQ(ErrorOf([&] { Add(2, 2); }), ErrorKind::kRuleViolated);
    rows_->MoveFirst();
    rows_->Edit();
    rows_->Set("Zone", 3);
    EXPECT_EQ(ErrorOf([&] { rows_->Update(); }), ErrorKind::kRuleViolated);
}

TEST_P(Rules, WhatIsNotUnderstood_MakesTheTableReadOnly) {
    for (const char* rule :
         {"Len([Name]) > 2", "Like \"a*\"", "> Date()", "#1/1/2000#", "[None] > 1", "> \"text\"",
          "(> 1", "1 +", "[Zone", "'open", "> 1 And", "!"}) {
        Create(Schema(rule));
        EXPECT_EQ(database_->Describe("Zones").columns[0].validationRule, rule);
        EXPECT_EQ(ErrorOf([&] { Add(5); }), ErrorKind::kUnsupported) << rule;
        EXPECT_TRUE(rows_->IsEof());
    }
}

class RuleText : public testing::Test {
protected:
    // Whether the rule of a number field allows a value; the other field is a text.
    bool Allows(const std::u16string& rule, const Value& number, const Value& text = {}) {
        Definition definition;
        definition.columns.resize(2);
        definition.columns[0].wide = u"Number";
        definition.columns[1].wide = u"Text";
        definition.columns[1].type = ColumnType::kText;
        const auto parsed = Rule::Parse(rule, definition, 0);
        if (!parsed) {
            ADD_FAILURE() << "not understood";
            return false;
        }
        return parsed->Allows([&](std::size_t column) { return column == 0 ? number : text; });
    }
};

TEST_F(RuleText, EveryForm_SaysWhatItMeans) {
    EXPECT_TRUE(Allows(u"5", 5));
    EXPECT_FALSE(Allows(u"-5", 5));
    EXPECT_TRUE(Allows(u"<> 4", 5));
    EXPECT_TRUE(Allows(u"Between 1 And 5", 5));
    EXPECT_FALSE(Allows(u"not between 1 and 5", 5));
    EXPECT_TRUE(Allows(u"In (1, 3, 5)", 5));
    EXPECT_FALSE(Allows(u"[Number] Not In (1,3,5)", 5));
    EXPECT_TRUE(Allows(u"<1 Or >4 And <6", 5));
    EXPECT_FALSE(Allows(u"(<1 Or >4) And <5", 5));
    EXPECT_TRUE(Allows(u"Not (>5)", 5));
    EXPECT_TRUE(Allows(u"Is Not Null", 5));
    EXPECT_FALSE(Allows(u"Is Not Null", Value()));
    EXPECT_TRUE(Allows(u">0 Or Is Null", Value()));
    EXPECT_FALSE(Allows(u"Not >0", Value()));
    EXPECT_TRUE(Allows(u"[Text] = 'It''s'", 1, u"IT'S"));
    EXPECT_FALSE(Allows(u"[Text] <> \"\"", 1, u""));
    EXPECT_TRUE(Allows(
        u"0.1",
        Decimal{.magnitude = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 10}, .scale = 2}));
    EXPECT_TRUE(Allows(u">= 922337203685477.5807", Currency{INT64_MAX}));
    EXPECT_FALSE(Allows(u"> 922337203685477.5807", Currency{INT64_MAX}));
}

TEST_F(RuleText, NestingWithoutEnd_IsNotUnderstood) {
    Definition definition;
    definition.columns.resize(1);
    const std::u16string deep = std::u16string(100000, u'(') + u"1" + std::u16string(100000, u')');
    EXPECT_FALSE(Rule::Parse(deep, definition, 0).has_value());
}

}  // namespace
}  // namespace jet
