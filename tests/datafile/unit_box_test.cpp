#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QTest>

#include "datafile/UnitBox.h"

namespace {

using Rule = UnitBox::Rule;

QString Filtered(Rule rule, const QString& text) {
    QString kept;
    for (const QChar character : text) {
        if (const QChar filtered = UnitBox::Filtered(rule, character); !filtered.isNull()) {
            kept += filtered;
        }
    }
    return kept;
}

TEST(UnitBox, Filtered_EachAsciiCharacter_FollowsTheRuleOfItsBox) {
    for (char16_t code = 1; code < 256; ++code) {
        const QChar character(code);
        const bool digit = code >= u'0' && code <= u'9';
        const bool upper = code >= u'A' && code <= u'Z';
        const bool lower = code >= u'a' && code <= u'z';
        const QChar letter = upper ? character : lower ? QChar(char16_t(code - 32)) : QChar();
        EXPECT_EQ(UnitBox::Filtered(Rule::kUnitID, character), digit ? character : letter);
        EXPECT_EQ(UnitBox::Filtered(Rule::kState, character), digit ? QChar() : letter);
        EXPECT_EQ(UnitBox::Filtered(Rule::kYear, character), digit ? character : QChar());
    }
}

TEST(UnitBox, Filtered_LettersWithAccents_AreDiscarded) {
    EXPECT_EQ(Filtered(Rule::kUnitID, QStringLiteral("gép ß1")), QStringLiteral("GP1"));
}

TEST(UnitBox, Typing_LowerCaseAndOthers_LeavesUpperCaseUpToTheLength) {
    UnitBox box(Rule::kUnitID, 3, nullptr);
    QTest::keyClicks(&box, QStringLiteral("g-p fx"));
    EXPECT_EQ(box.text(), QStringLiteral("GPF"));
    QTest::keyClick(&box, Qt::Key_Backspace);
    EXPECT_EQ(box.text(), QStringLiteral("GP"));
    QTest::keyClick(&box, Qt::Key_Home);
    QTest::keyClicks(&box, QStringLiteral("r"));
    EXPECT_EQ(box.text(), QStringLiteral("RGP"));
    QTest::keyClicks(&box, QStringLiteral("z"));
    EXPECT_EQ(box.text(), QStringLiteral("RGP")) << "a full box takes no more";
}

TEST(UnitBox, Pasting_LooseText_IsFilteredLikeTyping) {
    UnitBox box(Rule::kUnitID, 3, nullptr);
    QApplication::clipboard()->setText(QStringLiteral(" gp-f wa"));
    box.paste();
    EXPECT_EQ(box.text(), QStringLiteral("GPF"));
    box.selectAll();
    QApplication::clipboard()->setText(QStringLiteral("x1"));
    box.paste();
    EXPECT_EQ(box.text(), QStringLiteral("X1"));
}

TEST(UnitBox, Pasting_BeforeText_KeepsWhatStoodThere) {
    UnitBox box(Rule::kUnitID, 3, nullptr);
    box.SetProgramText(QStringLiteral("F"));
    box.setCursorPosition(0);
    QApplication::clipboard()->setText(QStringLiteral("gpqq"));
    box.paste();
    EXPECT_EQ(box.text(), QStringLiteral("GPF"));
    EXPECT_EQ(box.cursorPosition(), 2);
}

TEST(UnitBox, SetProgramText_AnyText_PassesAsItIs) {
    UnitBox box(Rule::kUnitID, 3, nullptr);
    box.SetProgramText(QStringLiteral("Mcd"));
    EXPECT_EQ(box.text(), QStringLiteral("Mcd"));
}

}  // namespace
