// What a query selects: every comparison over every kind of field, its order, and moving about in
// the result while rows go.
#include <gtest/gtest.h>

#include <string>

#include "jet/database.h"
#include "jet/recordset.h"
#include "sample_table.h"

namespace jet {
namespace {

class QueryResult : public testing::TestWithParam<Version> {
protected:
    // Ages 1 to 5 and one without; towns a to e in lower and upper case; stories and scores.
    void SetUp() override {
        database_ = Database::Create("a file.mdb", GetParam(), *files_);
        database_->CreateTable(PeopleSchema());
        people_ = database_->OpenTable("People");
        const char16_t* towns[] = {u"a", u"B", u"c-d", u"D", u"e z"};
        for (int i = 1; i <= 5; ++i) {
            people_->AddNew();
            people_->Set("Age", i);
            people_->Set("Town", towns[i - 1]);
            people_->Set("Story", i % 2 == 0 ? u"even" : u"odd");
            people_->Set("Score", static_cast<float>(i) / 2);
            people_->Update();
        }
        people_->AddNew();
        people_->Update();
    }

    // The ages of the records that a condition selects, in the order given; 0 for none.
    [[nodiscard]] std::string Ages(const std::string& rest) const {
        const auto found = database_->OpenQuery("SELECT Age FROM People " + rest);
        std::string ages;
        for (; !found->IsEof(); found->MoveNext()) {
            std::int32_t age = 0;
            found->ReadLong(FieldId{0}, age);
            ages += std::to_string(age);
        }
        return ages;
    }
    [[nodiscard]] ErrorKind ErrorIn(const std::string& rest) const {
        return ErrorOf([&] { static_cast<void>(Ages(rest)); });
    }

    std::unique_ptr<FileSystem> files_ = MakeMemoryFileSystem();
    std::unique_ptr<Database> database_;
    std::unique_ptr<Recordset> people_;
};

INSTANTIATE_TEST_SUITE_P(Versions, QueryResult, testing::Values(Version::kJet3, Version::kJet4),
                         [](const auto& tested) { return VersionName(tested.param); });

TEST_P(QueryResult, EveryComparisonOfNumbers_LeavesNullsOut) {
    EXPECT_EQ(Ages("WHERE Age = 3"), "3");
    EXPECT_EQ(Ages("WHERE Age <> 3"), "1245");
    EXPECT_EQ(Ages("WHERE Age < 3"), "12");
    EXPECT_EQ(Ages("WHERE Age <= 3"), "123");
    EXPECT_EQ(Ages("WHERE Age > 3"), "45");
    EXPECT_EQ(Ages("WHERE Age >= 3"), "345");
    EXPECT_EQ(Ages("WHERE Age IS NULL"), "0");
    EXPECT_EQ(Ages("WHERE Age IS NOT NULL"), "12345");
    EXPECT_EQ(Ages("WHERE Score > 0.5 AND Score < 2.5"), "234");
}

TEST_P(QueryResult, EveryComparisonOfTexts_IgnoresCaseAndLeavesNullsOut) {
    EXPECT_EQ(Ages("WHERE Town = 'b'"), "2");
    EXPECT_EQ(Ages("WHERE Town = 'A'"), "1");
    EXPECT_EQ(Ages("WHERE Town = 'c-d'"), "3");
    EXPECT_EQ(Ages("WHERE Town = 'E Z'"), "5");
    EXPECT_EQ(Ages("WHERE Town = 'ba'"), "");
    EXPECT_EQ(Ages("WHERE Town <> 'B'"), "1345");
    EXPECT_EQ(Ages("WHERE Town <= 'b'"), "12");
    EXPECT_EQ(Ages("WHERE Town > 'c-d'"), "45");
    EXPECT_EQ(Ages("WHERE Town IS NOT NULL"), "12345");
    EXPECT_EQ(Ages("WHERE Story = 'EVEN'"), "24");
}

TEST_P(QueryResult, TextsAndNumbers_AreNotCompared) {
    EXPECT_EQ(ErrorIn("WHERE Age = '3'"), ErrorKind::kTypeMismatch);
    EXPECT_EQ(ErrorIn("WHERE Town = 3"), ErrorKind::kTypeMismatch);
    EXPECT_EQ(ErrorIn("WHERE Nothing = 3"), ErrorKind::kNoSuchField);
    EXPECT_EQ(ErrorIn("ORDER BY Nothing"), ErrorKind::kNoSuchField);
}

TEST_P(QueryResult, OrderByMemoThenNumber_BreaksTies) {
    EXPECT_EQ(Ages("WHERE Age IS NOT NULL ORDER BY Story, Age DESC"), "42531");
    EXPECT_EQ(Ages("ORDER BY Town DESC, Age"), "543210");
}

TEST_P(QueryResult, EmptyResult_HasNoWayAnywhere) {
    const auto none = database_->OpenQuery("SELECT * FROM People WHERE Age > 100");
    none->MoveLast();
    EXPECT_TRUE(none->IsEof());
    none->MoveFirst();
    EXPECT_TRUE(none->IsBof());
    none->SetIndex("");
    EXPECT_EQ(none->Index(), "");
    EXPECT_EQ(ErrorOf([&] { none->Seek(Comparison::kEqual, {1}); }), ErrorKind::kNoSuchIndex);
    EXPECT_EQ(ErrorOf([&] { none->MoveNext(); }), ErrorKind::kNoCurrentRecord);
    EXPECT_EQ(ErrorOf([&] { none->MovePrevious(); }), ErrorKind::kNoCurrentRecord);
}

TEST_P(QueryResult, MovingBackOverTheFirst_EndsBeforeIt) {
    const auto found = database_->OpenQuery("SELECT * FROM People WHERE Age < 3 ORDER BY Age");
    found->MoveLast();
    EXPECT_EQ(found->Get("Age"), Value(2));
    found->MovePrevious();
    EXPECT_EQ(found->Get("Age"), Value(1));
    found->MovePrevious();
    EXPECT_TRUE(found->IsBof());
    EXPECT_EQ(ErrorOf([&] { found->MovePrevious(); }), ErrorKind::kNoCurrentRecord);
    found->MoveNext();
    EXPECT_EQ(found->Get("Age"), Value(1));
}

TEST_P(QueryResult, RowsDeletedElsewhere_LeaveThePlaceAlone) {
    const auto found = database_->OpenQuery("SELECT * FROM People WHERE Age > 2 ORDER BY Age");
    found->MoveLast();
    const auto drop = [&](int age) {
        const auto one =
            database_->OpenQuery("SELECT * FROM People WHERE Age = " + std::to_string(age));
        one->Delete();
    };
    drop(1);  // not in the result
    drop(3);  // before the place
    EXPECT_EQ(found->Get("Age"), Value(5));
    EXPECT_EQ(found->RecordCount(), 2);
    found->MovePrevious();
    EXPECT_EQ(found->Get("Age"), Value(4));
    drop(5);  // behind it
    found->MoveNext();
    EXPECT_TRUE(found->IsEof());
    // A row of another table is none of the result's.
    database_->CreateTable(ZonesSchema());
    const auto zones = database_->OpenTable("Zones");
    AddZone(*zones, 1, 1, 1);
    zones->MoveFirst();
    zones->Delete();
    EXPECT_EQ(found->RecordCount(), 1);
}

}  // namespace
}  // namespace jet
