// What the grid of costs shows and takes, without a window.
#include "worksheets/cost/CostGridTable.h"
#include "datafile/data_file_fixture.h"
#include "worksheets/zones/ZoneRecords.h"

using platform::GridTable;
using worksheets::CostGridTable;

namespace {

using Kind = GridTable::Answer::Kind;
using Takes = GridTable::Takes;

class CostGridTableTest : public DataFileTest {
protected:
    void SetUp() override {
        OpenNewFile();
        zone_ = ZoneRecords::Create(QStringLiteral("North"), 1);
        auto classes = std::make_unique<c35AACTable>();
        classes->Initialize(zone_);
        costs_.Show(std::move(classes));
    }

    int zone_ = 0;
    int actions_ = 0;
    CostGridTable::Changes costChanges_;
    CostGridTable costs_{[this](const QString& /*name*/, const CostGridTable::Changes& changes) {
        costChanges_ = changes;
        ++actions_;
    }};
};

TEST_F(CostGridTableTest, FromIsComputedAndTakesNothing) {
    EXPECT_EQ(costs_.CellTakes(1, 0), Takes::kNothing);
    EXPECT_FALSE(costs_.TabStops(0));
    EXPECT_TRUE(costs_.TabStops(1));
    EXPECT_EQ(costs_.Offer(2, 0, QStringLiteral("5")).kind, Kind::kRefused);
    EXPECT_EQ(costs_.Text(1, 0), QStringLiteral("0"));
    costs_.SetNextLowerBound(2, 10);
    EXPECT_EQ(costs_.Text(2, 0), QStringLiteral("11"));
    EXPECT_EQ(costs_.MaxLength(1), 9);
    EXPECT_EQ(costs_.MaxLength(2), 7);
}

TEST_F(CostGridTableTest, ShowWhatIsStored) {
    const GridTable::Answer answer = costs_.Offer(1, 2, QStringLiteral("1,200"));
    EXPECT_EQ(answer.kind, Kind::kChanged);
    EXPECT_EQ(answer.text, QStringLiteral("1"));
    EXPECT_EQ(costs_.Text(1, 2), QStringLiteral("1"));
    EXPECT_EQ(costs_.Offer(1, 2, QString()).kind, Kind::kStored) << "clearing says nothing";
    EXPECT_EQ(costs_.Text(1, 2), QStringLiteral("0"));
    costs_.Offer(1, 1, QStringLiteral("-3"));
    EXPECT_EQ(costs_.Text(1, 1), QString());
    EXPECT_EQ(costs_.Stored(1, 1), QStringLiteral("-3"));
}

TEST_F(CostGridTableTest, WhatACellShowedAtFirst_PutsBackWhatItHeld) {
    costs_.Put(1, 1, -3);
    costs_.BeginAction(QStringLiteral("Typing"));
    costs_.Offer(1, 1, QStringLiteral("5"));
    costs_.Offer(1, 1, QString());
    costs_.EndAction();
    EXPECT_EQ(costs_.Value(1, 1), -3);
    EXPECT_TRUE(costChanges_.empty());
}

}  // namespace
