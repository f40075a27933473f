#include "platform/controls/PasteBox.h"

#include <gtest/gtest.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QTest>

using platform::PasteBox;

namespace {

TEST(PasteBox, Paste_ClipboardWithoutText_LeavesTheSelection) {
    PasteBox box(QStringLiteral("1450"));
    box.selectAll();
    QGuiApplication::clipboard()->clear();
    QTest::keySequence(&box, QKeySequence::Paste);
    EXPECT_EQ(box.text(), QStringLiteral("1450"));
    EXPECT_EQ(box.selectedText(), QStringLiteral("1450"));
}

}  // namespace
