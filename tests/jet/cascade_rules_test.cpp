// Validation rules of rows that a relationship changes, and tables that refer to each other.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "jet/check.h"
#include "jet/database.h"
#include "jet/recordset.h"
#include "relationship.h"
#include "sample_table.h"

namespace jet {
namespace {

// Units have zones, which have spots; each refers to the one above by the same number.
class CascadeRules : public testing::TestWithParam<Version> {
protected:
    void Create(const std::string& zoneRule, const std::string& spotRule,
                const std::string& spotsRule, const Cascades& cascades) {
        database_ = Database::Create("a file.mdb", GetParam(), *files_);
        const auto create = [&](const char* name, const std::string& rule) {
            TableSchema schema;
            schema.name = name;
            schema.columns = {{.name = "Id"},
                              {.name = "Above", .validationRule = rule},
                              {.name = "Notes", .type = ColumnType::kMemo}};
            schema.indexes = {{.name = "Key", .columns = {{"Id"}}, .primary = true},
                              {.name = "Above", .columns = {{"Above"}}, .unique = true}};
            if (schema.name == "Spots") schema.validationRule = spotsRule;
            database_->CreateTable(schema);
        };
        create("Units", {});
        create("Zones", zoneRule);
        create("Spots", spotRule);
        Relate(*database_, u"Units", u"Key", u"Zones", u"Above", cascades);
        Reopen();
        Relate(*database_, u"Zones", u"Above", u"Spots", u"Above", cascades);
        Reopen();
    }
    void Reopen() {
        database_->Close();
        database_ = Database::Open("a file.mdb", {}, *files_);
    }
    void Add(const char* table, int id, const Value& above) {
        const auto rows = database_->OpenTable(table);
        rows->AddNew();
        rows->Set("Id", id);
        rows->Set("Above", above);
        rows->Set("Notes", std::u16string(5000, u'n'));
        rows->Update();
    }
    void AddSome() {
        for (const int id : {1, 2}) {
            Add("Units", id, Value());
            Add("Zones", 10 * id, id);
            Add("Spots", 100 * id, id);
        }
    }
    void Renumber(int from, int to) {
        const auto units = database_->OpenTable("Units");
        units->SetIndex("Key");
        ASSERT_TRUE(units->Seek(Comparison::kEqual, {from}));
        units->Edit();
        units->Set("Id", to);
        units->Update();
    }
    void Delete(const char* table, int id) {
        const auto rows = database_->OpenTable(table);
        rows->SetIndex("Key");
        ASSERT_TRUE(rows->Seek(Comparison::kEqual, {id}));
        rows->Delete();
    }
    // "1:- 2:- |10:1 20:2 |100:1 200:2 "
    std::string All() {
        std::string all;
        for (const char* table : {"Units", "Zones", "Spots"}) {
            const auto rows = database_->OpenTable(table);
            rows->SetIndex("Key");
            for (; !rows->IsEof(); rows->MoveNext()) {
                const Value above = rows->Get("Above");
                all += std::to_string(rows->Get("Id").AsLong()) + ":" +
                       (above.IsNull() ? "-" : std::to_string(above.AsLong())) + " ";
                EXPECT_EQ(rows->Get("Notes").AsText().size(), 5000U);
            }
            all += "|";
        }
        EXPECT_TRUE(CheckDatabase(*database_).IsSound()) << CheckDatabase(*database_).Text();
        return all;
    }

    std::unique_ptr<FileSystem> files_ = MakeMemoryFileSystem();
    std::unique_ptr<Database> database_;
};

constexpr Cascades kAll = {.updates = true, .deletes = true};
constexpr const char* kSome = "1:- 2:- |10:1 20:2 |100:1 200:2 |";

INSTANTIATE_TEST_SUITE_P(Versions, CascadeRules, testing::Values(Version::kJet3, Version::kJet4),
                         [](const auto& tested) { return VersionName(tested.param); });

TEST_P(CascadeRules, AFieldsRuleBelow_RefusesTheChangeAsAWhole) {
    Create({}, "< 50", {}, kAll);
    AddSome();
    EXPECT_EQ(ErrorOf([&] { Renumber(1, 60); }), ErrorKind::kRuleViolated);
    EXPECT_EQ(All(), kSome);
    Transaction transaction = database_->Begin();
    Renumber(2, 40);
    EXPECT_EQ(ErrorOf([&] { Renumber(1, 60); }), ErrorKind::kRuleViolated);
    transaction.Commit();
    Reopen();
    EXPECT_EQ(All(), "1:- 40:- |10:1 20:40 |100:1 200:40 |");
}

TEST_P(CascadeRules, ARecordsRuleBelow_RefusesTheChangeAsAWhole) {
    Create({}, {}, "[Id] > [Above]", kAll);
    AddSome();
    EXPECT_EQ(ErrorOf([&] { Renumber(1, 100); }), ErrorKind::kRuleViolated);
    EXPECT_EQ(All(), kSome);
    Renumber(1, 99);
    EXPECT_EQ(All(), "2:- 99:- |10:99 20:2 |100:99 200:2 |");
    Delete("Units", 99);
    EXPECT_EQ(All(), "2:- |20:2 |200:2 |");
}

TEST_P(CascadeRules, ARuleThatRefusesNull_KeepsTheParentOfARowThatIsToBeFreed) {
    Create("> 0", {}, {}, {.nulls = true});
    AddSome();
    EXPECT_EQ(ErrorOf([&] { Delete("Units", 1); }), ErrorKind::kRuleViolated);
    EXPECT_EQ(All(), kSome);
}

TEST_P(CascadeRules, ARuleThatIsNotUnderstood_KeepsCascadesOut) {
    Create({}, "Like \"1*\"", {}, kAll);
    for (const int id : {1, 2}) Add("Units", id, Value());
    Add("Zones", 10, 1);
    const std::string before = All();
    EXPECT_EQ(ErrorOf([&] { Add("Spots", 100, 1); }), ErrorKind::kUnsupported);
    const auto spots = database_->OpenTable("Spots");
    EXPECT_EQ(spots->RecordCount(), 0);
    EXPECT_EQ(All(), before);
}

TEST_P(CascadeRules, TablesThatReferToEachOther_AreDeletedTogether) {
    Create({}, {}, {}, kAll);
    Relate(*database_, u"Spots", u"Key", u"Units", u"Above", kAll);
    Reopen();
    // A ring of three that a transaction closes, and one row that it leaves alone.
    Add("Units", 1, Value());
    Add("Units", 2, Value());
    Add("Zones", 10, 1);
    Add("Spots", 100, 1);
    const auto units = database_->OpenTable("Units");
    units->SetIndex("Key");
    ASSERT_TRUE(units->Seek(Comparison::kEqual, {1}));
    units->Edit();
    units->Set("Above", 100);
    units->Update();
    Renumber(1, 5);
    EXPECT_EQ(All(), "2:- 5:100 |10:5 |100:5 |");
    Delete("Spots", 100);
    EXPECT_EQ(All(), "2:- |||");
}

}  // namespace
}  // namespace jet
