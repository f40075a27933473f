#include <gtest/gtest.h>

#include "platform/controls/FlexGridNotes.h"

namespace {

TEST(FlexGridNotesTest, Sentence_NamesCellTextAndNumber) {
    const FlexGridNotes::Cell cell{"Forage", "FIL 3"};
    const auto read = [&](const char* typed, const char* stored) {
        return FlexGridNotes::ReadAs(cell, QString::fromUtf8(typed), stored, true, 10);
    };
    EXPECT_EQ(read("-1,250", "-1"), "Forage, FIL 3: '-1,250' was read as -1. Type -1250.");
    EXPECT_EQ(read("(75)", "0"), "Forage, FIL 3: '(75)' was read as 0. Type -75.");
    EXPECT_EQ(read("$-40", "0"), "Forage, FIL 3: '$-40' was read as 0. Type -40.");
    EXPECT_EQ(read("12,5", "12"), "Forage, FIL 3: '12,5' was read as 12. Type 12.5.");
    EXPECT_EQ(read("abc", "0"), "Forage, FIL 3: 'abc' was read as 0. Type a number.");
    EXPECT_EQ(read("99", "5"), "Forage, FIL 3: '99' became 5.");
    EXPECT_EQ(FlexGridNotes::ReadAs(cell, "%1", "x", false, 0),
              "Forage, FIL 3: '%1' was stored as 'x'.");
    // What cannot be typed is no advice.
    EXPECT_EQ(FlexGridNotes::Meant("1,250,000", 5), "");
    EXPECT_EQ(FlexGridNotes::StoredAs("-1"), "Stored as -1");
}

TEST(FlexGridNotesTest, BeginningsOfNumbers_AreNotComplainedAbout) {
    for (const char* text : {"", "-", "-1", ".", "-.5", "12.", "1e", "1e-", " 4"}) {
        EXPECT_TRUE(FlexGridNotes::MayBecomeNumber(text)) << text;
    }
    for (const char* text : {"1,", "a", "$", "(7", "1-", "e5"}) {
        EXPECT_FALSE(FlexGridNotes::MayBecomeNumber(text)) << text;
    }
}

}  // namespace
