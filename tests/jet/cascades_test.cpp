// Relationships of several columns and over several tables, and within transactions; judged by an
// independent reader, too.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "jet/convert.h"
#include "jet/database.h"
#include "jet/recordset.h"
#include "relationship.h"
#include "sample_table.h"
#include "support/jet_files.h"
#include "support/temp_folder.h"

namespace jet {
namespace {

constexpr Cascades kAll = {.updates = true, .deletes = true};

// Forests have units, which have stands; stands refer to a unit of their forest, and to the forest
// itself. All keys are texts.
class CascadesTest : public testing::TestWithParam<Version> {
protected:
    void SetUp() override {
        database_ = Database::Create(path_, GetParam());
        const auto text = [](const char* name) {
            return ColumnSchema{.name = name, .type = ColumnType::kText, .length = 20};
        };
        database_->CreateTable({"Forests",
                                {text("Forest")},
                                {{.name = "Key", .columns = {{"Forest"}}, .primary = true}}});
        database_->CreateTable(
            {"Units",
             {text("Forest"), text("Unit")},
             {{.name = "Key", .columns = {{"Forest"}, {"Unit", false}}, .primary = true},
              {.name = "Forest", .columns = {{"Forest"}}}}});
        database_->CreateTable({"Stands",
                                {text("Stand"), text("Forest"), text("Unit")},
                                {{.name = "Key", .columns = {{"Stand"}}, .primary = true},
                                 {.name = "Unit", .columns = {{"Forest"}, {"Unit"}}},
                                 {.name = "Forest", .columns = {{"Forest"}}}}});
    }

    void RelateAll(const Cascades& cascades) {
        // The stands come first, so that they change before the units that they refer to.
        const auto relate = [&](const char16_t* parent, const char16_t* child,
                                const char16_t* index) {
            Relate(*database_, parent, u"Key", child, index, cascades);
            Reopen();
        };
        relate(u"Forests", u"Stands", u"Forest");
        relate(u"Forests", u"Units", u"Forest");
        relate(u"Units", u"Stands", u"Unit");
    }
    void Reopen() {
        tables_.clear();
        database_->Close();
        tarn_test::ExpectSound(path_);
        database_ = Database::Open(path_);
        for (const char* name : {"Forests", "Units", "Stands"}) {
            tables_[name] = database_->OpenTable(name);
            tables_[name]->SetIndex("Key");
        }
    }
    // Values of the first fields; "-" is null.
    void Add(const char* table, const std::vector<std::string>& values) {
        Recordset& rows = *tables_.at(table);
        rows.AddNew();
        for (std::size_t i = 0; i < values.size(); ++i) {
            const Value value = values[i] == "-" ? Value() : Value(ToUtf16(values[i]));
            rows.Set(FieldId{static_cast<int>(i)}, value);
        }
        rows.Update();
    }
    Recordset& Find(const char* table, std::u16string_view key) {
        Recordset& rows = *tables_.at(table);
        EXPECT_TRUE(rows.Seek(Comparison::kEqual, {std::u16string(key)}));
        return rows;
    }
    void Rename(const char* table, std::u16string_view key, const char* field,
                std::u16string_view value) {
        Recordset& rows = Find(table, key);
        rows.Edit();
        rows.Set(field, std::u16string(value));
        rows.Update();
    }
    void AddSome() {
        Add("Forests", {"North"});
        Add("Forests", {"South"});
        for (const char* unit : {"A", "B"}) Add("Units", {"North", unit});
        Add("Units", {"South", "A"});
        Add("Stands", {"1", "North", "A"});
        Add("Stands", {"2", "North", "B"});
        Add("Stands", {"3", "South", "A"});
        Add("Stands", {"4", "North", "-"});
    }
    // All rows of a table: "1 North A; ...".
    std::string All(const char* table) {
        std::string all;
        const auto rows = database_->OpenTable(table);
        rows->SetIndex("Key");
        for (; !rows->IsEof(); rows->MoveNext()) {
            for (const ColumnSchema& field : rows->Fields()) {
                const Value value = rows->Get(field.name);
                all += (value.IsNull() ? "-" : ToUtf8(value.AsText())) + " ";
            }
            all.back() = ';';
        }
        return all;
    }

    tarn_test::TempFolder folder_;
    std::filesystem::path path_ = folder_ / "a file.mdb";
    std::unique_ptr<Database> database_;
    std::map<std::string, std::unique_ptr<Recordset>, std::less<>> tables_;
};

INSTANTIATE_TEST_SUITE_P(Versions, CascadesTest, testing::Values(Version::kJet3, Version::kJet4),
                         [](const auto& tested) { return VersionName(tested.param); });

TEST_P(CascadesTest, KeysOfSeveralColumns_AreWholeReferencesOrNone) {
    RelateAll({});
    AddSome();
    EXPECT_EQ(ErrorOf([&] { Add("Stands", {"5", "South", "B"}); }), ErrorKind::kNoRelatedRecord);
    EXPECT_EQ(ErrorOf([&] { Add("Stands", {"5", "West", "-"}); }), ErrorKind::kNoRelatedRecord);
    Add("Stands", {"5", "-", "C"});
    Add("Stands", {"6", "NORTH ", "b"});
    EXPECT_EQ(ErrorOf([&] { Find("Forests", u"South").Delete(); }), ErrorKind::kRelatedRecords);
    EXPECT_EQ(ErrorOf([&] { Find("Units", u"South").Delete(); }), ErrorKind::kRelatedRecords);
    EXPECT_EQ(ErrorOf([&] { Rename("Units", u"South", "Unit", u"Z"); }),
              ErrorKind::kRelatedRecords);
    EXPECT_EQ(All("Units"), "North B;North A;South A;");
    Find("Stands", u"3").Delete();
    Find("Units", u"South").Delete();
    Find("Forests", u"South").Delete();
    EXPECT_EQ(All("Stands"), "1 North A;2 North B;4 North -;5 - C;6 NORTH  b;");
    Reopen();
}

TEST_P(CascadesTest, AnotherSpellingOfAKey_LeavesNoOrphan) {
    RelateAll({});
    AddSome();
    Rename("Forests", u"north", "Forest", u"NORTH");
    EXPECT_EQ(All("Forests"), "NORTH;South;");
    EXPECT_EQ(ErrorOf([&] { Rename("Forests", u"north", "Forest", u"West"); }),
              ErrorKind::kRelatedRecords);
    Reopen();
}

TEST_P(CascadesTest, AChange_ReachesARowByTwoRoads) {
    RelateAll(kAll);
    AddSome();
    Rename("Forests", u"North", "Forest", u"West");
    EXPECT_EQ(All("Units"), "South A;West B;West A;");
    EXPECT_EQ(All("Stands"), "1 West A;2 West B;3 South A;4 West -;");
    Rename("Units", u"South", "Unit", u"AA");
    EXPECT_EQ(All("Stands"), "1 West A;2 West B;3 South AA;4 West -;");
    Reopen();
}

TEST_P(CascadesTest, ADeletion_ReachesARowByTwoRoads_AndGivesItsPagesBack) {
    RelateAll(kAll);
    AddSome();
    for (int i = 100; i < 1500; ++i) Add("Stands", {std::to_string(i), "North", "B"});
    Find("Forests", u"North").Delete();
    EXPECT_EQ(All("Units"), "South A;");
    EXPECT_EQ(All("Stands"), "3 South A;");
    Find("Forests", u"South").Delete();
    EXPECT_EQ(All("Stands"), "");
    Reopen();
}

TEST_P(CascadesTest, ADeletionThatSetsNull_FreesAllColumnsOfTheReference) {
    Relate(*database_, u"Units", u"Key", u"Stands", u"Unit", {.nulls = true});
    Reopen();
    Relate(*database_, u"Forests", u"Key", u"Stands", u"Forest", {});
    Reopen();
    AddSome();
    {
        Transaction transaction = database_->Begin();
        Find("Units", u"South").Delete();
        EXPECT_EQ(All("Stands"), "1 North A;2 North B;3 - -;4 North -;");
    }
    EXPECT_EQ(All("Stands"), "1 North A;2 North B;3 South A;4 North -;");
    EXPECT_EQ(ErrorOf([&] { Find("Forests", u"South").Delete(); }), ErrorKind::kRelatedRecords);
    Find("Units", u"South").Delete();
    Find("Forests", u"South").Delete();
    EXPECT_EQ(All("Units") + All("Stands"), "North B;North A;1 North A;2 North B;3 - -;4 North -;");
    Reopen();
}

TEST_P(CascadesTest, InATransaction_ARefusedRowIsTakenBackAloneAndARollbackTakesAll) {
    RelateAll(kAll);
    AddSome();
    const std::string before = All("Forests") + All("Units") + All("Stands");
    {
        Transaction transaction = database_->Begin();
        Rename("Forests", u"North", "Forest", u"West");
        EXPECT_EQ(ErrorOf([&] {
                      Add("Stands", {"9", "North", "A"});
                  }),
                  ErrorKind::kNoRelatedRecord);
        // Its keys exist already, so that the whole cascade is refused at its end.
        EXPECT_EQ(ErrorOf([&] { Rename("Forests", u"West", "Forest", u"South"); }),
                  ErrorKind::kDuplicateKey);
        Find("Forests", u"South").Delete();
        EXPECT_EQ(All("Stands"), "1 West A;2 West B;4 West -;");
        transaction.Rollback();
    }
    EXPECT_EQ(All("Forests") + All("Units") + All("Stands"), before);
    Transaction transaction = database_->Begin();
    Find("Forests", u"South").Delete();
    EXPECT_EQ(ErrorOf([&] { Add("Units", {"South", "A"}); }), ErrorKind::kNoRelatedRecord);
    Rename("Forests", u"North", "Forest", u"West");
    transaction.Commit();
    Reopen();
    EXPECT_EQ(All("Units") + All("Stands"), "West B;West A;1 West A;2 West B;4 West -;");
}

}  // namespace
}  // namespace jet
