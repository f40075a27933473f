// What was done on a worksheet is taken back and repeated, from whichever control has the keyboard.
#include "worksheets/undo/UndoHistory.h"

#include <QLineEdit>
#include <QPlainTextEdit>
#include <QVBoxLayout>

#include <functional>

#include "datafile/PrepDatatables.h"
#include "worksheet_fixture.h"
#include "worksheets/WorksheetPage.h"

using worksheets::WorksheetHost;
using worksheets::WorksheetPage;

namespace {

// A worksheet that counts; whoever leaves its box has its text counted as an action.
class Counter : public WorksheetPage {
public:
    Counter(WorksheetHost& host, QWidget* parent)
        : WorksheetPage(host, parent,
                        {.name = "frmCounter",
                         .caption = QStringLiteral("Counter"),
                         .id = "CNT",
                         .helpContextId = 0}),
          box_(new QLineEdit(this)),
          lines_(new QPlainTextEdit(this)) {
        box_->setObjectName(QStringLiteral("box"));
        lines_->setObjectName(QStringLiteral("lines"));
        Body().addWidget(box_);
        Body().addWidget(lines_);
    }
    void SetUp() override { BecomeCurrent(); }
    void Unload() override {}

    void Count(int by) {
        number += by;
        Add(by);
    }
    void Add(int by) {
        Did<Counter>(
            QStringLiteral("Count"), [by](Counter& form) { form.Change(-by); },
            [by](Counter& form) { form.Change(by); });
    }
    void Change(int by) {
        if (before) {
            before();
        }
        number += by;
        box_->setText(QString::number(number));
    }
    undo::History& Past() { return History(); }

    static inline int number = 0;  // stands for the file, which outlives the form
    std::function<void()> before;

protected:
    bool EndOpenEdit() override {
        const bool typed = box_->isModified();
        if (typed) {
            box_->setModified(false);
            const int by = box_->text().toInt() - number;
            number += by;
            Add(by);
        }
        return typed;
    }

private:
    QLineEdit* box_;
    QPlainTextEdit* lines_;
};

class UndoHistoryTest : public WorksheetTest {
protected:
    void SetUp() override {
        WorksheetTest::SetUp();
        Counter::number = 0;
    }
};

TEST_F(UndoHistoryTest, Actions_AreTakenBackAndRepeatedOneByOne) {
    auto& form = Load<Counter>();
    form.Count(1);
    form.Count(10);
    EXPECT_EQ(form.Past().UndoName(), QStringLiteral("Count"));
    form.Undo();
    EXPECT_EQ(Counter::number, 1);
    form.Undo();
    form.Undo();
    EXPECT_EQ(Counter::number, 0);
    EXPECT_FALSE(form.Past().CanUndo());
    form.Redo();
    form.Redo();
    form.Redo();
    EXPECT_EQ(Counter::number, 11);
    form.Undo();
    form.Count(100);
    EXPECT_FALSE(form.Past().CanRedo()) << "what was done since stands in place of it";
    form.Undo();
    EXPECT_EQ(Counter::number, 1);
}

TEST_F(UndoHistoryTest, Keys_WorkFromEveryControlAndFromNone) {
    auto& form = Load<Counter>();
    for (const char* control : {"box", "lines", ""}) {
        SCOPED_TRACE(control);
        form.Count(1);
        if (*control != '\0') {
            Find<QWidget>(control).setFocus();
        } else if (QWidget* focus = QApplication::focusWidget()) {
            focus->clearFocus();
        }
        Press(Qt::Key_Z, Qt::ControlModifier);
        EXPECT_EQ(Counter::number, 0);
        Press(Qt::Key_Y, Qt::ControlModifier);
        EXPECT_EQ(Counter::number, 1);
        Press(Qt::Key_Z, Qt::ControlModifier);
        Press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
        EXPECT_EQ(Counter::number, 1);
        Press(Qt::Key_Z, Qt::ControlModifier);
        EXPECT_EQ(Counter::number, 0);
    }
}

TEST_F(UndoHistoryTest, OpenEdit_IsTheActionThatIsTakenBackFirst) {
    auto& form = Load<Counter>();
    form.Count(5);
    auto& box = Find<QLineEdit>("box");
    box.setFocus();
    box.clear();
    Type(QStringLiteral("12"));
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Counter::number, 5);
    EXPECT_EQ(box.text(), QStringLiteral("5"));
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Counter::number, 0);
}

TEST_F(UndoHistoryTest, History_OutlivesTheFormAndEndsWithTheFile) {
    Load<Counter>().Count(3);
    Leave();
    auto& again = Load<Counter>();
    again.Undo();
    EXPECT_EQ(Counter::number, 0);
    again.Redo();
    PrepDatatables::CloseAll();
    EXPECT_FALSE(again.Past().CanUndo());
    EXPECT_FALSE(again.Past().CanRedo());
}

TEST_F(UndoHistoryTest, FailedStep_LeavesTheActionWhereItWas) {
    auto& form = Load<Counter>();
    form.Count(1);
    form.before = [] { throw platform::RuntimeError(70, QStringLiteral("Permission denied")); };
    EXPECT_THROW(form.Undo(), platform::RuntimeError);
    EXPECT_TRUE(form.Past().CanUndo());
    EXPECT_FALSE(form.Past().CanRedo());
    form.before = nullptr;
    form.Undo();
    EXPECT_EQ(Counter::number, 0);
    form.before = [] { throw platform::RuntimeError(70, QStringLiteral("Permission denied")); };
    Press(Qt::Key_Y, Qt::ControlModifier);
    ASSERT_EQ(errors_.size(), 1U) << "by keyboard the error is reported";
    EXPECT_TRUE(form.Past().CanRedo());
    EXPECT_FALSE(form.Past().CanUndo());
}

TEST_F(UndoHistoryTest, StepWithoutItsObject_IsReportedAndDropped) {
    auto& form = Load<Counter>();
    form.Count(1);
    form.Count(10);
    form.before = [] { throw undo::GoneError(QStringLiteral("The zone is no longer there.")); };
    EXPECT_THROW(form.Undo(), undo::GoneError);
    form.before = nullptr;
    EXPECT_EQ(Counter::number, 11);
    form.Undo();
    EXPECT_EQ(Counter::number, 10) << "the action before it can still be taken back";
    EXPECT_FALSE(form.Past().CanUndo());
}

TEST_F(UndoHistoryTest, WhatAStepDoes_IsNoActionOfItsOwn) {
    auto& form = Load<Counter>();
    form.Count(1);
    form.before = [&form] { form.Add(7); };
    form.Undo();
    EXPECT_FALSE(form.Past().CanUndo());
    EXPECT_TRUE(form.Past().CanRedo());
}

}  // namespace
