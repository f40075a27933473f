// Somebody who presses whatever is there: nothing may crash, and the file stays sound.

#include <QDialog>

#include <random>

#include "RunningProgram.h"
#include "jet/check.h"

namespace {

class RandomUse : public RunningProgram, public testing::WithParamInterface<unsigned> {
protected:
    int Below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(random_); }

    void PressSomeKey() {
        static constexpr Qt::Key kKeys[] = {
            Qt::Key_A,      Qt::Key_7,        Qt::Key_1,      Qt::Key_Minus, Qt::Key_Period,
            Qt::Key_Return, Qt::Key_Tab,      Qt::Key_Escape, Qt::Key_Down,  Qt::Key_Up,
            Qt::Key_Left,   Qt::Key_Right,    Qt::Key_Delete, Qt::Key_F2,    Qt::Key_Backspace,
            Qt::Key_Space,  Qt::Key_PageDown, Qt::Key_Home,   Qt::Key_End,   Qt::Key_Backtab};
        Press(kKeys[Below(static_cast<int>(std::size(kKeys)))]);
    }
    void PressSomeShortcut() {
        static constexpr Qt::Key kKeys[] = {Qt::Key_X, Qt::Key_C, Qt::Key_V, Qt::Key_A};
        Press(kKeys[Below(4)], Qt::ControlModifier);
    }
    void ClickSomeButton() {
        QList<QPushButton*> buttons;
        for (QPushButton* button : frame_->findChildren<QPushButton*>()) {
            if (button->isVisible() && button->isEnabled() &&
                button->objectName() != QStringLiteral("cmdExit")) {
                buttons += button;
            }
        }
        if (!buttons.isEmpty()) {
            QTest::mouseClick(buttons[Below(static_cast<int>(buttons.size()))], Qt::LeftButton);
        }
    }
    void ClickSomewhere() {
        if (QWidget* form = a3PrepForms::CurrentForm()) {
            QWidget* child = form->childAt(Below(form->width()), Below(form->height()));
            if (child != nullptr && child->isEnabled()) {
                QTest::mouseClick(child, Qt::LeftButton);
            }
        }
    }
    void DoSomething() {
        switch (Below(10)) {
            case 0:
                return ClickTab(1 + Below(6));
            case 1:
                return Choose(QStringLiteral("mnuStep_%1").arg(1 + Below(6)));
            case 2:
                return PressSomeShortcut();
            case 3:
                return ClickSomeButton();
            case 4:
                return ClickSomewhere();
            case 5:
                return frame_->resize(300 + Below(900), 60 + Below(700));
            default:
                return PressSomeKey();
        }
    }

    std::mt19937 random_{GetParam()};
};

TEST_P(RandomUse, ManySteps_NeverCrash_LeaveASoundFile) {
    const QString path = NewFile();
    Run(path);
    support::Answers answers;
    for (int dialog = 0; dialog < 400; ++dialog) {
        answers.Then([](QWidget& window) {
            if (auto* asking = qobject_cast<QDialog*>(&window)) {
                asking->reject();
            }
        });
    }
    for (int step = 0; step < 250 && !frame_->IsUnloaded(); ++step) {
        DoSomething();
    }
    frame_->close();
    EXPECT_TRUE(frame_->IsUnloaded());
    const jet::CheckReport report = jet::CheckFile(path.toStdU16String());
    EXPECT_TRUE(report.IsSound()) << report.Text();
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomUse, testing::Values(1U, 2U, 3U, 4U));

}  // namespace
