// Key filters, text boxes, line breaks and totals.
#include <gtest/gtest.h>

#include <QTest>

#include <limits>
#include <vector>

#include "support/print.h"
#include "worksheets/Subjects.h"
#include "worksheets/TextBox.h"
#include "worksheets/goals/LineBreaks.h"
#include "worksheets/nvc/NVCTotals.h"
#include "worksheets/resources/KeyFilters.h"

namespace {

TEST(TakesDigits, EachCharacterCode_OnlyDigitsOfThePrintableOnesPass) {
    for (char16_t code = 0; code < 0x300; ++code) {
        const bool printable = code >= 32 && code <= 126;
        const bool digit = code >= u'0' && code <= u'9';
        EXPECT_EQ(KeyFilters::TakesDigits(QChar(code)), !printable || digit) << int{code};
    }
}

TEST(TakesDigits, Text_PassesWhenEveryCharacterDoes) {
    EXPECT_TRUE(KeyFilters::TakesDigits(QStringLiteral("123")));
    EXPECT_TRUE(KeyFilters::TakesDigits(QString()));
    EXPECT_FALSE(KeyFilters::TakesDigits(QStringLiteral("1.5")));
    EXPECT_FALSE(KeyFilters::TakesDigits(QStringLiteral("-1")));
}

TEST(TextBox, EnteredByTheTabKey_SelectsItsTextAndTellsOnce) {
    QWidget window;
    TextBox box(&window);
    box.setText(QStringLiteral("Budget"));
    int told = 0;
    QObject::connect(&box, &TextBox::GotFocus, &box, [&told] { ++told; });
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    window.setFocus();
    told = 0;
    box.clearFocus();
    box.setFocus(Qt::TabFocusReason);
    EXPECT_EQ(box.selectedText(), QStringLiteral("Budget"));
    EXPECT_EQ(told, 1);
}

TEST(LineBreaksForFile, EveryKind_BecomesReturnAndLineFeed) {
    const QString mixed = QStringLiteral("a\nb\r\nc\rd\n\ne") + QChar(QChar::ParagraphSeparator) +
                          QStringLiteral("f\r");
    EXPECT_EQ(LineBreaks::ForFile(mixed), QStringLiteral("a\r\nb\r\nc\r\nd\r\n\r\ne\r\nf\r\n"));
}

TEST(LineBreaksForFile, OtherCharacters_StayAsTheyAre) {
    const QString text =
        QString::fromUtf8("no\u00a0break \u2028 \U0001F332 \u0416\u4e2d e\u0301\ttab");
    EXPECT_EQ(LineBreaks::ForFile(text), text);
}

TEST(LineBreaksForFile, AppliedTwice_ChangesNothingMore) {
    const QString once = LineBreaks::ForFile(QStringLiteral("a\n\r\n\r\rb\n"));
    EXPECT_EQ(LineBreaks::ForFile(once), once);
}

TEST(NVCTotals, SumBelowHalfADollar_ShowsWholeDollarsBothWays) {
    std::vector<float> singles(14, 0);
    singles[0] = 1000;
    singles[13] = 234.4F;
    std::vector<double> doubles(singles.begin(), singles.end());
    EXPECT_EQ(NVCTotals::Text(NVCTotals::Loaded(singles)), QStringLiteral("$1,234"));
    EXPECT_EQ(NVCTotals::Text(NVCTotals::Typed(doubles)), QStringLiteral("$1,234"));
}

TEST(NVCTotals, Loaded_AddsSinglesInResourceOrder) {
    EXPECT_EQ(NVCTotals::Loaded(std::vector<float>{16777216.0F, 1.0F, 1.0F}), 16777216.0);
    EXPECT_EQ(NVCTotals::Loaded(std::vector<float>{1.0F, 1.0F, 16777216.0F}), 16777218.0);
}

TEST(NVCTotals, Typed_AddsDoubles) {
    EXPECT_EQ(NVCTotals::Typed(std::vector<double>{16777216.0, 1.0, 1.0}), 16777218.0);
}

TEST(NVCTotals, Losses_ShowTheMinusSignFirst) {
    EXPECT_EQ(NVCTotals::Text(-1234.4), QStringLiteral("-$1,234"));
    EXPECT_EQ(NVCTotals::Text(0), QStringLiteral("$0"));
}

TEST(NVCTotals, SumBeyondTheSingles_IsSaidSo) {
    const std::vector<float> huge(2, std::numeric_limits<float>::max());
    EXPECT_EQ(NVCTotals::Text(NVCTotals::Loaded(huge)), QStringLiteral("too large"));
}

TEST(SubjectsTest, NamesTheFirstAndCountsTheRest) {
    EXPECT_EQ(Subjects::Of({"North"}), "North");
    EXPECT_EQ(Subjects::Of({"North", " ", "South"}), "North, (no name), South");
    EXPECT_EQ(Subjects::Of({"A", "B", "C", "D", "E"}), "A, B, C and 2 more");
    EXPECT_EQ(Subjects::Of({}), QString());
}

}  // namespace
