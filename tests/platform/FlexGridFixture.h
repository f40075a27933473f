// A grid in a shown window between two text boxes, with a log of what it reports to its form.
#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QLineEdit>
#include <QStringList>
#include <QTest>
#include <QVBoxLayout>
#include <QWidget>
#include <QWindow>

#include "platform/controls/vsFlexGrid.h"

class FlexGridTest : public testing::Test {
protected:
    void SetUp() override {
        auto* layout = new QVBoxLayout(&window_);
        before_ = new QLineEdit;
        grid_ = new vsFlexGrid;
        after_ = new QLineEdit;
        layout->addWidget(before_);
        layout->addWidget(grid_);
        layout->addWidget(after_);
        window_.resize(600, 400);
    }

    // Names, counts and costs; three data rows, the fourth column hidden.
    void FillList() {
        grid_->SetFormatString(QStringLiteral("Name|# RLs|Cost|Key"));
        grid_->SetRows(4);
        grid_->SetColWidth(0, 3600);
        grid_->SetColWidth(1, 720);
        grid_->SetColDataType(1, vsFlexGrid::DataType::kLong);
        grid_->SetColFormat(1, QStringLiteral("#"));
        grid_->SetColFormat(2, QStringLiteral("$#,0"));
        grid_->SetColAlignment(2, Qt::AlignRight);
        grid_->SetColHidden(3, true);
        const char* names[] = {"North", "East", "South"};
        for (int row = 1; row <= 3; ++row) {
            grid_->SetTextMatrix(row, 0, QString::fromLatin1(names[row - 1]));
            grid_->SetTextMatrix(row, 1, QString::number(row));
            grid_->SetTextMatrix(row, 2, QString::number(row * 1000));
            grid_->SetTextMatrix(row, 3, QString::number(row * 7));
        }
    }

    // Every cell is edited when it is entered.
    void EditOnEntering() {
        QObject::connect(grid_, &vsFlexGrid::EnterCell, grid_, [this] {
            log_ += QStringLiteral("Enter %1 %2").arg(grid_->Row()).arg(grid_->Col());
            grid_->EditCell();
        });
        Listen();
    }

    void Listen() {
        QObject::connect(grid_, &vsFlexGrid::ChangeEdit, grid_,
                         [this] { log_ += QStringLiteral("Change ") + grid_->EditText(); });
        QObject::connect(grid_, &vsFlexGrid::AfterEdit, grid_, [this](int row, int col) {
            log_ += QStringLiteral("After %1 %2 ").arg(row).arg(col) + grid_->TextMatrix(row, col);
        });
        QObject::connect(grid_, &vsFlexGrid::EditCancelled, grid_, [this](int row, int col) {
            log_ += QStringLiteral("Cancelled ") + grid_->TextMatrix(row, col);
        });
        QObject::connect(grid_, &vsFlexGrid::KeyPressEdit, grid_,
                         [this](int, int, QChar key) { log_ += QStringLiteral("Press ") + key; });
        QObject::connect(grid_, &vsFlexGrid::KeyUpEdit, grid_, [this](int row, int col, int) {
            log_ += QStringLiteral("Up %1 %2 ").arg(row).arg(col) + grid_->EditText();
        });
        QObject::connect(grid_, &vsFlexGrid::Click, grid_,
                         [this] { log_ += QStringLiteral("Click"); });
    }

    void Show() {
        window_.show();
        window_.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window_));
        before_->setFocus();
    }

    // Keys go where the keyboard is, as a user's would.
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(window_.windowHandle(), key, modifiers);
    }
    void Type(const QString& text) {
        for (const QChar c : text) {
            QTest::keyClick(window_.windowHandle(), c.toLatin1());
        }
    }
    [[nodiscard]] QPoint InWindow(int row, int col) {
        return grid_->viewport()->mapTo(&window_, grid_->CellRect(row, col).center());
    }
    void ClickCell(int row, int col, Qt::KeyboardModifiers modifiers = {}) {
        QTest::mouseClick(window_.windowHandle(), Qt::LeftButton, modifiers, InWindow(row, col));
    }
    [[nodiscard]] QPair<int, int> Current() const { return {grid_->Row(), grid_->Col()}; }
    QStringList TakeLog() { return std::exchange(log_, {}); }

    QWidget window_;
    QLineEdit* before_ = nullptr;
    vsFlexGrid* grid_ = nullptr;
    QLineEdit* after_ = nullptr;
    QStringList log_;
};

using Cell = QPair<int, int>;
