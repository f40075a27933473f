// What the grid of net value changes shows and takes, without a window.
#include "worksheets/nvc/NVCGridTable.h"
#include "datafile/data_file_fixture.h"
#include "platform/text/Numbers.h"
#include "worksheets/zones/ZoneRecords.h"

using platform::GridTable;
using worksheets::NVCGridTable;

namespace {

using Kind = GridTable::Answer::Kind;
using Takes = GridTable::Takes;

class NVCGridTableTest : public DataFileTest {
protected:
    void SetUp() override {
        OpenNewFile();
        zone_ = ZoneRecords::Create(QStringLiteral("North"), 1);
        auto values = std::make_unique<c34NVCTable>();
        values->Initialize(zone_, 1);
        nvc_.LoadNames();
        nvc_.Show(std::move(values));
    }

    int zone_ = 0;
    int actions_ = 0;
    NVCGridTable::Changes nvcChanges_;
    NVCGridTable nvc_{[this](const QString& /*name*/, const NVCGridTable::Changes& changes) {
        nvcChanges_ = changes;
        ++actions_;
    }};
};

TEST_F(NVCGridTableTest, TakesNamesAndNumbersWhileItsLocationIsShown) {
    EXPECT_EQ(nvc_.RowCount(), 14);
    EXPECT_EQ(nvc_.CellTakes(1, 0), Takes::kText);
    EXPECT_EQ(nvc_.CellTakes(1, 6), Takes::kNumber);
    EXPECT_EQ(nvc_.MaxLength(0), 50);
    EXPECT_EQ(nvc_.MaxLength(1), 10);
    EXPECT_FALSE(nvc_.TabStops(0));
    EXPECT_TRUE(nvc_.TabStops(1));
    nvc_.StopTyping();
    EXPECT_EQ(nvc_.CellTakes(1, 1), Takes::kNothing);
    EXPECT_EQ(nvc_.Offer(1, 1, QStringLiteral("5")).kind, Kind::kRefused);
    EXPECT_EQ(nvc_.Text(1, 1), QStringLiteral("0"));
}

TEST_F(NVCGridTableTest, BeforeTheFirstTable_IsEmptyAndTakesNothing) {
    NVCGridTable none({});
    EXPECT_EQ(none.Text(1, 1), QString());
    EXPECT_EQ(none.Stored(1, 1), QString());
    EXPECT_EQ(none.ShownTotal(1), 0);
    EXPECT_EQ(none.LoadedTotal(1), 0);
    EXPECT_EQ(none.CellTakes(1, 1), Takes::kNothing);
}

TEST_F(NVCGridTableTest, ShowsWhatWasTypedAndReportsWhatIsStored) {
    EXPECT_EQ(nvc_.Offer(4, 3, QStringLiteral("-1,250")).kind, Kind::kStored);
    EXPECT_EQ(nvc_.Text(4, 3), QStringLiteral("-1,250"));
    EXPECT_EQ(nvc_.Stored(4, 3), QStringLiteral("-1"));
    EXPECT_EQ(nvc_.RowName(4), QStringLiteral("Forage"));
    EXPECT_EQ(nvc_.ShownTotal(3), -1);
}

// 0.7 and 1.8 as singles would make a little less than two and a half.
TEST_F(NVCGridTableTest, Total_AddsTheDecimalsThatCellsShow) {
    nvc_.Offer(1, 2, QStringLiteral("0.7"));
    nvc_.Offer(2, 2, QStringLiteral("1.8"));
    EXPECT_EQ(nvc_.ShownTotal(2), 2.5);
    nvc_.Table()->SaveChanges();
    auto again = std::make_unique<c34NVCTable>();
    again->Initialize(zone_, 1);
    nvc_.Show(std::move(again));
    EXPECT_EQ(nvc_.ShownTotal(2), 2.5);
    EXPECT_EQ(nvc_.Value(2, 2), 1.8);
}

TEST_F(NVCGridTableTest, TypedDigitsBeyondTheStoredOnes_CountInTheTotalUntilTakenBack) {
    nvc_.BeginAction(QStringLiteral("Typing"));
    nvc_.Offer(1, 4, QStringLiteral("12345678.5"));
    nvc_.EndAction();
    EXPECT_EQ(nvc_.ShownTotal(4), 12345678.5);
    EXPECT_EQ(nvc_.Stored(1, 4), platform::Str(12345678.5F));
    ASSERT_EQ(nvcChanges_.size(), 1U);
    nvc_.Put(1, 4, nvcChanges_[0].before);
    EXPECT_EQ(nvc_.ShownTotal(4), 0);
    nvc_.Put(1, 4, nvcChanges_[0].after);
    EXPECT_EQ(nvc_.ShownTotal(4), 12345678.5);
}

TEST_F(NVCGridTableTest, OneActionKeepsTheFirstAndTheLastOfEachCell) {
    nvc_.BeginAction(QStringLiteral("Paste"));
    nvc_.Offer(2, 1, QStringLiteral("1"));
    nvc_.Offer(2, 1, QStringLiteral("12"));
    nvc_.Offer(1, 0, QStringLiteral("Moss"));
    nvc_.Offer(3, 1, QStringLiteral("7"));
    nvc_.Offer(3, 1, QStringLiteral("0"));
    nvc_.EndAction();
    ASSERT_EQ(nvcChanges_.size(), 2U) << "a cell that is as before is no change";
    EXPECT_EQ(nvcChanges_[0].before.text, QStringLiteral("Timber - Sawtimber"));
    EXPECT_EQ(nvcChanges_[0].after.text, QStringLiteral("Moss"));
    EXPECT_EQ(nvcChanges_[1].row, 2);
    EXPECT_EQ(nvcChanges_[1].before.value, 0);
    EXPECT_EQ(nvcChanges_[1].after.value, 12);
    for (const auto& change : nvcChanges_) {
        nvc_.Put(change.row, change.col, change.before);
    }
    EXPECT_EQ(nvc_.Text(2, 1), QStringLiteral("0"));
    EXPECT_EQ(nvc_.Text(1, 0), QStringLiteral("Timber - Sawtimber"));
}

TEST_F(NVCGridTableTest, NumberTooLarge_LeavesTheCellAsBeforeTheAction) {
    nvc_.Offer(1, 1, QStringLiteral("12abc"));
    nvc_.BeginAction(QStringLiteral("Typing"));
    nvc_.Offer(1, 1, QStringLiteral("9e9"));
    const GridTable::Answer answer = nvc_.Offer(1, 1, QStringLiteral("9e99"));
    EXPECT_EQ(answer.kind, Kind::kRefused);
    EXPECT_EQ(answer.text, QStringLiteral("The number \"9e99\" is too large."));
    EXPECT_EQ(nvc_.Text(1, 1), QStringLiteral("12abc"));
    nvc_.EndAction();
    EXPECT_EQ(actions_, 1);
    EXPECT_TRUE(nvcChanges_.empty());
}

}  // namespace
