// The management areas without a window.
#include "worksheets/goals/GoalList.h"

#include <gtest/gtest.h>

#include "datafile/FieldReaders.h"
#include "datafile/data_file_fixture.h"
#include "support/print.h"

using PrepDatatables::tblManagementGoals;
using worksheets::GoalList;

namespace {

class GoalListTest : public DataFileTest {
protected:
    GoalListTest() { OpenNewFile(); }

    void Add(const char* heading, const char* body) {
        const int row = list_.Add();
        list_.SetHeading(row, QString::fromLatin1(heading));
        list_.SetBody(row, QString::fromLatin1(body));
        list_.Save(row);
    }
    static QString Stored(int key, const char* field) {
        tblManagementGoals->Seek("=", {key});
        return FieldReaders::TextField(*tblManagementGoals, QString::fromLatin1(field));
    }

    GoalList list_;
};

TEST_F(GoalListTest, Load_TakesTheAreasInTheOrderOfTheirKeys) {
    Add("North", "n");
    Add("South", "s");
    GoalList list;
    list.Load();
    ASSERT_EQ(list.Count(), 2);
    EXPECT_EQ(list.Heading(0), QStringLiteral("North"));
    EXPECT_EQ(list.Body(1), QStringLiteral("s"));
    EXPECT_EQ(list.RowOf(list.Key(1)), 1);
    EXPECT_EQ(list.RowOf(77), std::nullopt);
}

TEST_F(GoalListTest, Save_WritesOnlyWhatWasChanged) {
    Add("North", "a\nb\rc\r\nd");
    list_.Load();
    EXPECT_FALSE(list_.IsChanged(0));
    list_.SetHeading(0, QStringLiteral("West"));
    EXPECT_TRUE(list_.IsChanged(0));
    EXPECT_EQ(Stored(1, "ManagementArea"), QStringLiteral("North")) << "not saved yet";
    list_.Save(0);
    EXPECT_FALSE(list_.IsChanged(0));
    EXPECT_EQ(Stored(1, "ManagementArea"), QStringLiteral("West"));
    EXPECT_EQ(Stored(1, "Explanation"), QStringLiteral("a\nb\rc\r\nd")) << "to the letter";
}

TEST_F(GoalListTest, DeletedArea_ComesBackUnderItsKeyInItsPlace) {
    Add("North", "n");
    Add("South", "s");
    Add("West", "w");
    list_.SetHeading(1, QStringLiteral("typed"));
    const GoalList::Goal gone = list_.Delete(1);
    EXPECT_EQ(tblManagementGoals->RecordCount(), 2);
    EXPECT_EQ(list_.Count(), 2);
    EXPECT_EQ(list_.Restore(gone), 1);
    EXPECT_EQ(list_.Heading(1), QStringLiteral("typed"));
    EXPECT_EQ(Stored(2, "ManagementArea"), QStringLiteral("typed"));
    EXPECT_EQ(Stored(2, "Explanation"), QStringLiteral("s"));
    EXPECT_EQ(list_.Key(1), 2);
}

TEST_F(GoalListTest, Save_OfAnAreaThatIsGone_KeepsItMarked) {
    Add("North", "n");
    list_.SetBody(0, QStringLiteral("typed"));
    tblManagementGoals->Seek("=", {1});
    tblManagementGoals->Delete();
    EXPECT_THROW(list_.Save(0), platform::RuntimeError);
    EXPECT_TRUE(list_.IsChanged(0));
    EXPECT_EQ(list_.Body(0), QStringLiteral("typed"));
}

}  // namespace
