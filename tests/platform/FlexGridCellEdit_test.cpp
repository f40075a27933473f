#include <gtest/gtest.h>

#include "platform/controls/FlexGridCellEdit.h"

using platform::FlexGridCellEdit;

namespace {

TEST(FlexGridCellEditTest, MovingThrough_OffersNothing) {
    FlexGridCellEdit edit;
    edit.Begin("7");
    EXPECT_FALSE(edit.MustOffer("7"));
    EXPECT_TRUE(edit.Change());
    EXPECT_FALSE(edit.Change());
    // Typed is typed, also when it is what was there.
    EXPECT_TRUE(edit.MustOffer("7"));
    edit.Offered("7", {});
    EXPECT_FALSE(edit.MustOffer("7"));
    EXPECT_TRUE(edit.MustOffer("78"));
    edit.Begin("8");
    EXPECT_FALSE(edit.IsChanged());
    EXPECT_FALSE(edit.WasOffered());
}

TEST(FlexGridCellEditTest, Limit_HoldsWhateverWasThere) {
    EXPECT_TRUE(FlexGridCellEdit::Allows("", "12345", 5));
    EXPECT_FALSE(FlexGridCellEdit::Allows("12345", "123456", 5));
    // A longer text may be shortened only.
    EXPECT_TRUE(FlexGridCellEdit::Allows("1250.75", "1250.7", 5));
    EXPECT_TRUE(FlexGridCellEdit::Allows("1250.75", "250.75", 5));
    EXPECT_FALSE(FlexGridCellEdit::Allows("1250.75", "9250.75", 5));
    EXPECT_FALSE(FlexGridCellEdit::Allows("1250.75", "999999", 5));
    EXPECT_TRUE(FlexGridCellEdit::Allows("1250.75", "9", 5));
    EXPECT_TRUE(FlexGridCellEdit::Allows("1", QString(900, 'x'), 0));
}

}  // namespace
