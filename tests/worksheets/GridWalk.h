// A person at one grid who does anything in any order, with mouse and keyboard, and reads what is
// there after each step.
//
// A person takes a cell for the figure that it shows. After each step each cell must therefore show
// the figure that is stored, or be marked; after each saving the file must hold what the grid says
// that it stores. Everything that was done is then taken back: file and screen must be those of the
// beginning; and repeated: they must be those of the end.
#pragma once

#include <QGuiApplication>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <optional>
#include <random>

#include "WalkSeed.h"
#include "platform/RuntimeError.h"
#include "platform/controls/GridTable.h"
#include "platform/system/Clipboard.h"
#include "platform/text/Numbers.h"
#include "worksheet_fixture.h"
#include "worksheets/undo/UndoHistory.h"

// The worksheet that a walk goes over.
struct WalkedSheet {
    const char* worksheetID = nullptr;
    const char* grid = nullptr;
    // What the file holds of what the grid shows now: the texts of `GridTable::Stored`, row by row,
    // of the columns from `firstStored` on.
    std::function<QStringList()> shownInFile = {};
    int firstStored = 0;
    // What the file holds of all that the worksheet can change.
    std::function<QStringList()> file = {};
    // What is wrong beside the cells, such as a total; empty when all is well.
    std::function<QString()> wrongBeside = [] { return QString(); };
    // Actions of this worksheet alone, such as choosing another location.
    std::vector<std::function<void()>> others = {};
};

class GridWalk : public WorksheetTest {
protected:
    void Walk(const WalkedSheet& sheet, int steps) {
        sheet_ = &sheet;
        grid_ = &Grid(sheet.grid);
        const support::Answers answers;
        const QStringList first = sheet.file();
        for (step_ = 0; step_ < steps && !HasFailure(); ++step_) {
            Act();
            // Where no window manager does it, the last of several boxes leaves no window active.
            manager_.frame.activateWindow();
            EXPECT_TRUE(QTest::qWaitForWindowActive(&manager_.frame)) << Where();
            Read();
        }
        Save();
        const QStringList last = sheet.file();
        ToTheEnd(Qt::Key_Z, [this] { return History().CanUndo(); });
        EXPECT_EQ(sheet.file(), first) << "all taken back";
        ExpectUnmarked();
        ToTheEnd(Qt::Key_Y, [this] { return History().CanRedo(); });
        EXPECT_EQ(sheet.file(), last) << "all repeated";
        RecordProperty("steps", step_);
    }

    int Below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }

private:
    struct Cell {
        int row = 0;
        int col = 0;
    };

    undo::History& History() { return undo::HistoryOf(QLatin1String(sheet_->worksheetID)); }
    platform::GridTable& Table() { return *grid_->Table(); }
    Cell AnyCell() {
        return {Below(grid_->Rows() - grid_->FixedRows()) + grid_->FixedRows(),
                Below(grid_->Cols())};
    }

    // One action, told in `did_`.
    void Act() {
        switch (Below(14)) {
            case 0:
            case 1:
                return TypeOver();
            case 2:
            case 3:
                return TypeSome();
            case 4:
            case 5:
                return Click(AnyCell(), false);
            case 6:
                return Click(AnyCell(), true);
            case 7:
                return Drag();
            case 8:
                return Shortcut();
            case 9:
                return FromOutside();
            case 10:
                return UndoOrRedo();
            case 11:
                return sheet_->others.empty() ? Save() : Other();
            default:
                return MovingKey();
        }
    }

    void Other() {
        did_ = QStringLiteral("another place");
        sheet_->others[std::size_t(Below(static_cast<int>(sheet_->others.size())))]();
    }

    // What is typed after a click takes the place of what was there.
    void TypeOver() {
        const Cell cell = AnyCell();
        const QString text = AnyText();
        did_ = Words(QStringLiteral("type over"), cell) + text;
        const bool open = grid_->Editing() && grid_->Row() == cell.row && grid_->Col() == cell.col;
        if (open) {
            Press(Qt::Key_Return);
        }
        ClickCell(*grid_, cell.row, cell.col);
        if (!grid_->Editing()) {
            return;
        }
        Type(text);
        const int row = cell.row - grid_->FixedRows() + 1;
        const bool number = Table().CellTakes(row, cell.col) == platform::GridTable::Takes::kNumber;
        Press(Qt::Key_Return);
        const auto value = platform::TypedSingle(text);
        if (number && value && text.size() <= Table().MaxLength(cell.col)) {
            ExpectStored(row, cell.col, *value);
        }
    }
    void ExpectStored(int row, int col, float value) {
        const QString stored = Table().Stored(row, col);
        EXPECT_EQ(static_cast<float>(platform::Val(stored)), value) << Where();
    }
    void TypeSome() {
        const QString text = AnyText().left(Below(4) + 1);
        did_ = QStringLiteral("type ") + text;
        grid_->setFocus();
        Type(text);
        if (Below(3) == 0) {
            Press(Qt::Key_Escape);
        }
    }
    void Click(const Cell& cell, bool twice) {
        did_ = Words(twice ? QStringLiteral("click twice") : QStringLiteral("click"), cell);
        ClickCell(*grid_, cell.row, cell.col);
        if (twice) {
            ClickCell(*grid_, cell.row, cell.col);
        }
    }
    void Drag() {
        const Cell from = AnyCell();
        const Cell to = AnyCell();
        did_ = Words(QStringLiteral("drag from"), from) + Words(QStringLiteral("to"), to);
        const QPoint end = PlaceOf(to);
        const QPoint begin = PlaceOf(from);
        QWindow* window = manager_.frame.windowHandle();
        QTest::mousePress(window, Qt::LeftButton, {}, begin);
        QTest::mouseMove(window, (begin + end) / 2);
        QTest::mouseMove(window, end);
        QTest::mouseRelease(window, Qt::LeftButton, {}, end);
    }
    QPoint PlaceOf(const Cell& cell) {
        const QRect rect = grid_->CellRect(cell.row, cell.col);
        return grid_->viewport()->mapTo(&manager_.frame, rect.center());
    }
    void Shortcut() {
        static constexpr std::array kKeys{Qt::Key_C, Qt::Key_X, Qt::Key_V, Qt::Key_V, Qt::Key_A};
        const Qt::Key key = kKeys[std::size_t(Below(static_cast<int>(kKeys.size())))];
        did_ = QStringLiteral("Ctrl+") + QChar(char16_t(key));
        Press(key, Qt::ControlModifier);
    }
    // What comes from a spreadsheet or a letter.
    void FromOutside() {
        static const std::array<QString, 8> kTexts{
            QStringLiteral("1\t2\n3\t4\n"),
            QStringLiteral("-12,345.50"),
            QStringLiteral("FIL 1\tFIL 2\n5\t6\n"),
            QStringLiteral("text"),
            QStringLiteral("-7\n"),
            QStringLiteral("(75)\t$1,250\t12,5\n\t\tabc\n"),
            QStringLiteral("9e99\t8\n"),
            QStringLiteral("1\n2\n3\n4\n5\n6\n7\n8\n9\n10\n11\n12\n13\n14\n15\n")};
        const QString& text = kTexts[std::size_t(Below(static_cast<int>(kTexts.size())))];
        did_ = QStringLiteral("paste ") + text;
        platform::SetClipboardText(text);
        Press(Qt::Key_V, Qt::ControlModifier);
    }
    void MovingKey() {
        static constexpr std::array kKeys{
            Qt::Key_Return, Qt::Key_Tab,  Qt::Key_Up,     Qt::Key_Down,      Qt::Key_Left,
            Qt::Key_Right,  Qt::Key_Home, Qt::Key_End,    Qt::Key_PageUp,    Qt::Key_PageDown,
            Qt::Key_Escape, Qt::Key_F2,   Qt::Key_Delete, Qt::Key_Backspace, Qt::Key_Tab};
        const Qt::Key key = kKeys[std::size_t(Below(static_cast<int>(kKeys.size())))];
        const bool shift = Below(4) == 0;
        const int times = Below(4) == 0 ? Below(8) + 1 : 1;
        did_ = QStringLiteral("key %1 x %2").arg(int(key), 0, 16).arg(times);
        for (int i = 0; i < times; ++i) {
            Press(key, shift ? Qt::ShiftModifier : Qt::NoModifier);
        }
    }
    void UndoOrRedo() {
        const int times = Below(4) + 1;
        const Qt::Key key = Below(2) == 0 ? Qt::Key_Z : Qt::Key_Y;
        did_ = QStringLiteral("Ctrl+%1 x %2").arg(QChar(char16_t(key))).arg(times);
        for (int i = 0; i < times; ++i) {
            Press(key, Qt::ControlModifier);
        }
    }
    void Save() {
        did_ = QStringLiteral("save");
        form_->Save();
        QStringList stored;
        for (int row = 1; row <= Table().RowCount(); ++row) {
            for (int col = sheet_->firstStored; col < grid_->Cols(); ++col) {
                stored += Table().Stored(row, col);
            }
        }
        EXPECT_EQ(sheet_->shownInFile(), stored) << Where();
    }

    // Each cell as a person reads it.
    void Read() {
        for (int row = grid_->FixedRows(); row < grid_->Rows(); ++row) {
            for (int col = 0; col < grid_->Cols(); ++col) {
                ReadCell({row, col});
            }
        }
        EXPECT_EQ(sheet_->wrongBeside(), QString()) << Where();
        EXPECT_TRUE(errors_.empty()) << Where() << errors_.front().description.toStdString();
    }
    void ReadCell(const Cell& cell) {
        const int row = cell.row - grid_->FixedRows() + 1;
        const bool open = grid_->Editing() && grid_->Row() == cell.row && grid_->Col() == cell.col;
        const QString shown = open ? grid_->EditText() : grid_->DisplayText(cell.row, cell.col);
        const QString stored = Table().Stored(row, cell.col);
        const QString note = grid_->CellNote(cell.row, cell.col);
        if (!note.isEmpty()) {
            EXPECT_TRUE(note.contains(stored)) << Where() << note.toStdString();
            return;
        }
        if (Table().CellTakes(row, cell.col) != platform::GridTable::Takes::kNumber) {
            return;
        }
        const std::optional<double> figure = Figure(shown);
        ASSERT_TRUE(figure) << Where() << Words(QString(), cell).toStdString()
                            << shown.toStdString();
        // Formats show two decimals, or none.
        const double value = platform::Val(stored);
        const double step = shown.contains(u'$') ? 0.5 : 0.005;
        EXPECT_NEAR(*figure, value, step + std::abs(value) * 1e-6)
            << Where() << Words(QString(), cell).toStdString() << shown.toStdString();
    }
    // As before the first step.
    void ExpectUnmarked() {
        for (int row = grid_->FixedRows(); row < grid_->Rows(); ++row) {
            for (int col = 0; col < grid_->Cols(); ++col) {
                EXPECT_EQ(grid_->CellNote(row, col), QString()) << Where();
            }
        }
    }
    // The number that a person takes a text for; nothing when it is none.
    static std::optional<double> Figure(const QString& shown) {
        QString text = shown.trimmed();
        if (text.isEmpty() || text == QStringLiteral("$")) {
            return 0;
        }
        try {
            return platform::CDbl(text);
        } catch (const platform::RuntimeError&) {
            return std::nullopt;
        }
    }

    template <typename More>
    void ToTheEnd(Qt::Key key, More more) {
        constexpr int kFarTooOften = 100000;
        for (int i = 0; more() && i < kFarTooOften && !HasFailure(); ++i) {
            Press(key, Qt::ControlModifier);
            did_ = QStringLiteral("at the end, Ctrl+") + QChar(char16_t(key));
            Read();
        }
        Save();
    }

    QString AnyText() {
        static const std::array<const char*, 18> kTexts{
            "0",     "7",      "-12.5", "1250", "0.9",  "99.5", "12abc", "abc", "-0.25",
            "1,000", "-1,250", "(75)",  "$-40", "12,5", "1e3",  "9e99",  ".5",  "1 250"};
        return Below(3) == 0 ? QString::number(Below(99999))
                             : QString::fromLatin1(kTexts[std::size_t(Below(18))]);
    }
    static QString Words(const QString& what, const Cell& cell) {
        return QStringLiteral("%1 (%2, %3) ").arg(what).arg(cell.row).arg(cell.col);
    }
    std::string Where() const {
        return QStringLiteral("step %1: %2; ").arg(step_).arg(did_).toStdString();
    }

    std::mt19937 random_{WalkSeed()};
    const WalkedSheet* sheet_ = nullptr;
    vsFlexGrid* grid_ = nullptr;
    int step_ = 0;
    QString did_;
};
