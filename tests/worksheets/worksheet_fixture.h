// A worksheet in a window, on a new data file, with the keyboard and the mouse of a user.
#pragma once

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QTest>
#include <QWidget>

#include <memory>
#include <vector>

#include "base/UIMode.h"
#include "datafile/data_file_fixture.h"
#include "platform/EventTrap.h"
#include "platform/controls/ClipboardShortcuts.h"
#include "platform/controls/vsFlexGrid.h"
#include "support/Answers.h"
#include "support/Corpus.h"
#include "support/print.h"
#include "worksheets/Worksheet.h"

// The worksheet manager as the forms see it.
class FrameHost : public worksheets::WorksheetHost {
public:
    FrameHost() { frame.resize(808, 535); }
    void PositionWorksheet(QWidget& form) override {
        form.setGeometry(frame.rect());
        form.show();
    }
    void BecomeCurrent(const QString& id) override { worksheetID = id; }
    QWidget& Frame() override { return frame; }
    QWidget& ClientArea() override { return frame; }

    QWidget frame;
    QString worksheetID;
};

class WorksheetTest : public DataFileTest {
protected:
    WorksheetTest() {
        platform::InstallClipboardShortcutFilter();
        platform::EventTrap::Install(
            {.report =
                 [this](const platform::EventTrap::Report& report) { errors_.push_back(report); },
             .remember =
                 [] {
                     const UIMode::State state = UIMode::Remember();
                     return [state] { UIMode::Restore(state); };
                 },
             .idle = {}});
    }
    ~WorksheetTest() override {
        form_.reset();
        platform::EventTrap::Install({});
    }

    void SetUp() override { OpenNewFile(); }

    template <typename Form>
    Form& Load() {
        auto form = std::make_unique<Form>(manager_, &manager_.frame);
        Form& loaded = *form;
        form_ = std::move(form);
        manager_.frame.show();
        manager_.frame.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&manager_.frame));
        form_->SetUp();
        QApplication::processEvents();
        return loaded;
    }
    // What the worksheet manager does when another worksheet is chosen.
    void Leave() {
        form_->Save();
        Unload();
    }
    void Unload() {
        form_->Form().hide();
        form_->Unload();
        form_.reset();
    }

    template <typename Control>
    Control& Find(const char* name) {
        auto* control = manager_.frame.findChild<Control*>(QString::fromLatin1(name));
        EXPECT_NE(control, nullptr) << name;
        return *control;
    }
    vsFlexGrid& Grid(const char* name) { return Find<vsFlexGrid>(name); }

    // Keys go the way of the user's keys: to the window, which gives them to what has the focus.
    void Type(const QString& text) {
        for (const QChar one : text) {
            QTest::keyClick(manager_.frame.windowHandle(), one.toLatin1());
        }
    }
    void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(manager_.frame.windowHandle(), key, modifiers);
    }
    void ClickAt(QWidget& widget, const QPoint& place) {
        const QPoint inFrame = widget.mapTo(&manager_.frame, place);
        QTest::mouseClick(manager_.frame.windowHandle(), Qt::LeftButton, {}, inFrame);
    }
    void ClickCell(vsFlexGrid& grid, int row, int col) {
        ClickAt(*grid.viewport(), grid.CellRect(row, col).center());
    }
    void ClickButton(const char* name) {
        auto& button = Find<QAbstractButton>(name);
        ClickAt(button, button.rect().center());
    }
    // Chooses an item of a combo box by keyboard.
    void Choose(const char* name, int index) {
        auto& box = Find<QComboBox>(name);
        box.setFocus();
        while (box.currentIndex() != index) {
            const int before = box.currentIndex();
            Press(before < index ? Qt::Key_Down : Qt::Key_Up);
            ASSERT_NE(box.currentIndex(), before);
        }
    }
    // Types into a cell and ends the edit with Enter.
    void Enter(vsFlexGrid& grid, int row, int col, const QString& text) {
        ClickCell(grid, row, col);
        // A click into an editor that was open sets its cursor.
        Press(Qt::Key_A, Qt::ControlModifier);
        Type(text);
        Press(Qt::Key_Return);
    }

    [[nodiscard]] int Count(const QStringList& lines, const QString& line) const {
        return static_cast<int>(lines.count(QStringLiteral("   ") + line));
    }

    FrameHost manager_;
    std::unique_ptr<worksheets::Worksheet> form_;
    std::vector<platform::EventTrap::Report> errors_;
};
