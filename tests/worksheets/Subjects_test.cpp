#include <gtest/gtest.h>

#include "worksheets/Subjects.h"

namespace {

TEST(SubjectsTest, NamesTheFirstAndCountsTheRest) {
    EXPECT_EQ(Subjects::Of({"North"}), "North");
    EXPECT_EQ(Subjects::Of({"North", " ", "South"}), "North, (no name), South");
    EXPECT_EQ(Subjects::Of({"A", "B", "C", "D", "E"}), "A, B, C and 2 more");
    EXPECT_EQ(Subjects::Of({}), QString());
}

}  // namespace
