#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>

#include "platform/dialogs/MsgBox.h"
#include "platform/system/Pointer.h"
#include "support/Answers.h"

namespace {

using support::OnNext;

TEST(MsgBox, ShowsPlainTextUnderTheApplicationsTitle) {
    OnNext<QMessageBox> answer([](QMessageBox& box) {
        EXPECT_EQ(box.objectName(), "MsgBox");
        EXPECT_EQ(box.text(), "<b>North</b>\r\nline");
        EXPECT_EQ(box.textFormat(), Qt::PlainText);
        EXPECT_EQ(box.windowTitle(), "TARN Prep");
        EXPECT_EQ(box.icon(), QMessageBox::NoIcon);
        EXPECT_EQ(box.buttons().size(), 1);
        QTest::keyClick(&box, Qt::Key_Escape);
    });
    EXPECT_EQ(platform::MsgBox("<b>North</b>" + platform::kNewLine + "line"),
              platform::MsgAnswer::kOk);
}

platform::MsgOptions DeleteQuestion() {
    platform::MsgOptions options;
    options.title = "Delete";
    options.icon = platform::MsgIcon::kStop;
    options.buttons = platform::MsgButtons::kYesNo;
    options.secondIsDefault = true;
    return options;
}

TEST(MsgBox, YesNo_DefaultsToNoAndEscapeIsNo) {
    OnNext<QMessageBox> answer([](QMessageBox& box) {
        EXPECT_EQ(box.windowTitle(), "Delete");
        EXPECT_EQ(box.icon(), QMessageBox::Critical);
        EXPECT_EQ(box.defaultButton(), box.button(QMessageBox::No));
        QTest::keyClick(&box, Qt::Key_Escape);
    });
    EXPECT_EQ(platform::MsgBox("Really?", DeleteQuestion()), platform::MsgAnswer::kNo);
}

TEST(MsgBox, YesNo_AnswersAreGiven) {
    for (const auto button : {QMessageBox::Yes, QMessageBox::No}) {
        OnNext<QMessageBox> answer([button](QMessageBox& box) { box.button(button)->click(); });
        EXPECT_EQ(platform::MsgBox("Really?", DeleteQuestion()), button == QMessageBox::Yes
                                                                     ? platform::MsgAnswer::kYes
                                                                     : platform::MsgAnswer::kNo);
    }
    OnNext<QMessageBox> answer([](QMessageBox& box) { box.close(); });
    EXPECT_EQ(platform::MsgBox("Really?", DeleteQuestion()), platform::MsgAnswer::kNo);
}

TEST(MsgBox, ReasonAndDetails_FollowTheTextInTheSameBox) {
    platform::MsgOptions options;
    options.informative = "The file <i>A</i> is read-only.";
    options.details = "form.cmd_Click\n3051";
    OnNext<QMessageBox> answer([](QMessageBox& box) {
        EXPECT_EQ(box.text(), "It cannot be opened.");
        EXPECT_EQ(box.informativeText(), "The file <i>A</i> is read-only.");
        EXPECT_EQ(box.detailedText(), "form.cmd_Click\n3051");
        EXPECT_EQ(box.standardButtons(), QMessageBox::Ok);
        const auto* reason = box.findChild<QLabel*>("qt_msgbox_informativelabel");
        ASSERT_NE(reason, nullptr);
        EXPECT_TRUE(reason->isVisible());
        EXPECT_EQ(reason->textFormat(), Qt::PlainText);
        auto* details = box.findChild<QWidget*>("txtDetails");
        ASSERT_NE(details, nullptr);
        EXPECT_FALSE(details->isVisible());
        EXPECT_EQ(details->accessibleName(), "Details");
        auto* show = box.findChild<QPushButton*>("cmdDetails");
        ASSERT_NE(show, nullptr);
        QTest::mouseClick(show, Qt::LeftButton);
        EXPECT_TRUE(box.isVisible()) << "details are no answer";
        EXPECT_TRUE(details->isVisible());
        QTest::keyClick(&box, Qt::Key_Escape);
    });
    EXPECT_EQ(platform::MsgBox("It cannot be opened.", options), platform::MsgAnswer::kOk);
}

TEST(MsgBox, HourglassWaitsForTheAnswer) {
    platform::SetMousePointer(platform::Pointer::kHourglass);
    OnNext<QMessageBox> answer([](QMessageBox& box) {
        EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
        box.accept();
    });
    platform::MsgBox("x");
    EXPECT_NE(QGuiApplication::overrideCursor(), nullptr);
    platform::SetMousePointer(platform::Pointer::kDefault);
}

}  // namespace
