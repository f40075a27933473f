#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QDropEvent>
#include <QInputMethodEvent>
#include <QMenu>
#include <QMimeData>
#include <QTest>

#include <utility>

#include "datafile/UnitBox.h"

using datafile::UnitBox;

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

TEST(UnitBox, Entered_ByKeyOrMouse_SelectsItsFirstTwoCharacters) {
    QWidget window;
    QLineEdit other(&window);
    UnitBox box(Rule::kYear, 4, &window);
    box.move(0, 60);
    box.SelectTwoOnFocus();
    box.SetProgramText(QStringLiteral("202"));
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    other.setFocus();
    box.setFocus(Qt::TabFocusReason);
    EXPECT_EQ(box.selectedText(), QStringLiteral("20"));
    other.setFocus();
    QTest::mouseClick(&box, Qt::LeftButton, {}, QPoint(box.width() - 4, box.height() / 2));
    EXPECT_TRUE(box.hasFocus());
    EXPECT_EQ(box.selectedText(), QStringLiteral("20"));
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

TEST(UnitBox, DiscardedKey_OverASelection_LeavesItAsItIs) {
    UnitBox box(Rule::kYear, 4, nullptr);
    box.SetProgramText(QStringLiteral("26"));
    box.selectAll();
    QTest::keyClick(&box, Qt::Key_Space);
    QTest::keyClicks(&box, QStringLiteral("x-"));
    EXPECT_EQ(box.text(), QStringLiteral("26"));
    EXPECT_EQ(box.selectedText(), QStringLiteral("26"));
    QTest::keyClicks(&box, QStringLiteral("31"));
    EXPECT_EQ(box.text(), QStringLiteral("31"));
}

TEST(UnitBox, KeptKey_ThatEqualsTheSelection_ReplacesIt) {
    UnitBox box(Rule::kUnitID, 3, nullptr);
    QTest::keyClicks(&box, QStringLiteral("g"));
    box.selectAll();
    QTest::keyClicks(&box, QStringLiteral("gpf"));
    EXPECT_EQ(box.text(), QStringLiteral("GPF"));
    box.selectAll();
    QTest::keyClicks(&box, QStringLiteral("gpf"));
    EXPECT_EQ(box.text(), QStringLiteral("GPF"));
}

TEST(UnitBox, Pasting_NothingToKeep_LeavesTheSelection) {
    UnitBox box(Rule::kYear, 4, nullptr);
    box.SetProgramText(QStringLiteral("26"));
    box.selectAll();
    QApplication::clipboard()->setText(QStringLiteral("next year"));
    QTest::keySequence(&box, QKeySequence::Paste);
    EXPECT_EQ(box.text(), QStringLiteral("26"));
    QApplication::clipboard()->setText(QStringLiteral("FY 2027"));
    QTest::keySequence(&box, QKeySequence::Paste);
    EXPECT_EQ(box.text(), QStringLiteral("2027"));
}

TEST(UnitBox, InputMethodAndDrop_AreFilteredLikeTyping) {
    UnitBox box(Rule::kUnitID, 3, nullptr);
    QInputMethodEvent composed;
    composed.setCommitString(QStringLiteral("g-p"));
    QApplication::sendEvent(&box, &composed);
    EXPECT_EQ(box.text(), QStringLiteral("GP"));
    box.show();
    QMimeData dragged;
    dragged.setText(QStringLiteral(" f "));
    QDragEnterEvent enter(QPoint(2, 2), Qt::CopyAction, &dragged, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&box, &enter);
    QDropEvent drop(QPointF(box.rect().right() - 2, box.height() / 2), Qt::CopyAction, &dragged,
                    Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&box, &drop);
    EXPECT_EQ(box.text(), QStringLiteral("GPF"));
}

TEST(UnitBox, ContextMenu_PastesByTheRule) {
    UnitBox box(Rule::kYear, 4, nullptr);
    box.SetProgramText(QStringLiteral("26"));
    box.selectAll();
    box.show();
    for (const auto& [pasted, left] : {std::pair("none", "26"), std::pair("y28", "28")}) {
        QApplication::clipboard()->setText(QString::fromLatin1(pasted));
        QContextMenuEvent asked(QContextMenuEvent::Keyboard, QPoint(1, 1),
                                box.mapToGlobal(QPoint(1, 1)));
        QApplication::sendEvent(&box, &asked);
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        ASSERT_NE(menu, nullptr);
        for (QAction* entry : menu->actions()) {
            if (entry->text().startsWith(QStringLiteral("&Paste"))) {
                entry->trigger();
            }
        }
        menu->close();
        EXPECT_EQ(box.text(), QString::fromLatin1(left));
    }
}

TEST(UnitBox, SetProgramText_AnyText_PassesAsItIs) {
    UnitBox box(Rule::kUnitID, 3, nullptr);
    box.SetProgramText(QStringLiteral("Mcd"));
    EXPECT_EQ(box.text(), QStringLiteral("Mcd"));
}

}  // namespace
