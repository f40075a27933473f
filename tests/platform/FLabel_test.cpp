#include <gtest/gtest.h>

#include <QApplication>

#include "platform/controls/FLabel.h"

using platform::WrappedText;

namespace {

TEST(FLabelTest, Marks_BecomeParagraphsAndSpace) {
    const QString caption = "|BEFORE:90|One  two|CR|   three|BEFORE:15||CR|<b>|CR||BEFORE:0|x";
    EXPECT_EQ(FLabel::ToPlainText(caption), "One  two\n   three\n<b>\nx");
    const std::vector<WrappedText::Paragraph> paragraphs = FLabel::Paragraphs(caption);
    ASSERT_EQ(paragraphs.size(), 4U);
    const std::vector<std::pair<QString, int>> wanted{
        {"One  two", 6}, {"   three", 6}, {"<b>", 1}, {"x", 0}};
    for (std::size_t each = 0; each < wanted.size(); ++each) {
        EXPECT_EQ(paragraphs[each].text, wanted[each].first);
        EXPECT_EQ(paragraphs[each].before, wanted[each].second);
    }
}

TEST(FLabelTest, Height_GrowsAsTheWidthFalls) {
    FLabel label;
    label.SetCaption("one two three four");
    const int line = label.fontMetrics().lineSpacing();
    const int word = label.fontMetrics().horizontalAdvance("three") + 2;
    EXPECT_EQ(label.heightForWidth(10 * word), label.heightForWidth(20 * word));
    EXPECT_NEAR(label.heightForWidth(word), 4 * label.heightForWidth(10 * word), 4);
    EXPECT_NEAR(label.heightForWidth(10 * word), line, 2);
    EXPECT_GE(label.minimumSizeHint().width(), label.fontMetrics().horizontalAdvance("three"));
    label.SetCaption("one|CR||BEFORE:150|two");
    EXPECT_NEAR(label.heightForWidth(10 * word), 2 * line + 10, 4);
}

TEST(FLabelTest, Text_IsPaintedWithinItsHeight) {
    FLabel label;
    label.SetCaption("one two three four|CR||BEFORE:300|five six");
    const int width = label.minimumSizeHint().width();
    label.setAutoFillBackground(true);
    label.resize(width, label.heightForWidth(width) + 200);
    const QImage picture = label.grab().toImage();
    const QRgb ground = picture.pixel(width - 1, picture.height() - 1);
    int last = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            last = picture.pixel(x, y) == ground ? last : y;
        }
    }
    const int line = label.fontMetrics().height();
    EXPECT_LT(last, label.heightForWidth(width));
    EXPECT_GT(last, label.heightForWidth(width) - line);
}

TEST(FLabelTest, LargerFont_TakesMoreRoom) {
    FLabel label;
    label.SetCaption("one two three four");
    const QSize before = label.minimumSizeHint();
    QFont larger = label.font();
    larger.setPointSizeF(2 * larger.pointSizeF());
    label.setFont(larger);
    EXPECT_GT(label.minimumSizeHint().width(), before.width());
    EXPECT_GT(label.minimumSizeHint().height(), before.height());
}

TEST(FLabelTest, HalfMarks_AreText) {
    for (const char* text : {"|CR", "|BEFORE:|", "|BEFORE:x|", "a|b", "|"}) {
        EXPECT_EQ(FLabel::ToPlainText(text), text);
    }
}

TEST(FLabelTest, Caption_IsKeptAsSetAndNamesTheLabel) {
    FLabel label;
    label.SetCaption("a|CR|b");
    EXPECT_EQ(label.property("Caption").toString(), "a|CR|b");
    EXPECT_EQ(label.accessibleName(), "a\nb");
    label.SetCaption("c");
    EXPECT_EQ(label.accessibleName(), "c");
    label.setAccessibleName("Overview");
    label.SetCaption("d");
    EXPECT_EQ(label.accessibleName(), "Overview");
}

}  // namespace
