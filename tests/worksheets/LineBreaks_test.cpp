#include <gtest/gtest.h>

#include "worksheets/goals/LineBreaks.h"

namespace {

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

}  // namespace
