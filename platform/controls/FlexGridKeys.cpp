#include "platform/controls/FlexGridKeys.h"

#include <QCoreApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QTableView>
#include <algorithm>
#include <optional>

#include "platform/controls/FlexGridEditing.h"
#include "platform/controls/FlexGridEditor.h"
#include "platform/controls/FlexGridModel.h"
#include "platform/controls/FlexGridPaste.h"
#include "platform/controls/FlexGridSelection.h"

namespace platform {

namespace {

using Way = FlexGridNavigation::Move;

bool IsForward(const QKeyEvent& key) {
    return key.key() == Qt::Key_Tab && !(key.modifiers() & Qt::ShiftModifier);
}

bool IsEnter(const QKeyEvent& key) {
    return key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter;
}

bool IsTyping(const QKeyEvent& key) {
    const QString text = key.text();
    return !text.isEmpty() && text[0].isPrint() &&
           !(key.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
}

// The way that a key leads; nothing for a key that does not move. The frame's own keys, Ctrl with
// the Page keys and whatever is pressed with Alt, are left to it.
std::optional<Way> WayOf(const QKeyEvent& key) {
    const bool control = (key.modifiers() & Qt::ControlModifier) != 0;
    if ((key.modifiers() & (Qt::AltModifier | Qt::MetaModifier)) != 0) {
        return std::nullopt;
    }
    switch (key.key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            return (key.modifiers() & Qt::ShiftModifier) ? Way::kEnterUp : Way::kEnter;
        case Qt::Key_Up:
            return control ? Way::kFirstRow : Way::kUp;
        case Qt::Key_Down:
            return control ? Way::kLastRow : Way::kDown;
        case Qt::Key_Left:
            return Way::kLeft;
        case Qt::Key_Right:
            return Way::kRight;
        case Qt::Key_Home:
            return control ? Way::kFirstCell : Way::kRowStart;
        case Qt::Key_End:
            return control ? Way::kLastCell : Way::kRowEnd;
        case Qt::Key_PageUp:
            return control ? std::nullopt : std::optional(Way::kPageUp);
        case Qt::Key_PageDown:
            return control ? std::nullopt : std::optional(Way::kPageDown);
        default:
            return std::nullopt;
    }
}

}  // namespace

int FlexGridKeys::Ground::FirstRow() const {
    return parts_.model.FixedRows();
}

int FlexGridKeys::Ground::LastRow() const {
    return parts_.model.Rows() - 1;
}

int FlexGridKeys::Ground::Cols() const {
    return parts_.model.Cols();
}

bool FlexGridKeys::Ground::IsShown(int col) const {
    return !parts_.model.Column(col).hidden;
}

bool FlexGridKeys::Ground::TabStops(int row, int col) const {
    const GridTable* table = parts_.model.Table();
    return table == nullptr || !parts_.model.IsTableCell(row) ||
           (table->TabStops(col) && parts_.model.TakesText(row, col));
}

int FlexGridKeys::Ground::PageRows() const {
    const int row = parts_.view.verticalHeader()->defaultSectionSize();
    return std::max(parts_.view.viewport()->height() / row - 1, 1);
}

bool FlexGridKeys::IsTab(const QKeyEvent& key) {
    return key.key() == Qt::Key_Tab || key.key() == Qt::Key_Backtab;
}

void FlexGridKeys::PressTab(const QKeyEvent& event) {
    const bool leaves = (event.modifiers() & Qt::ControlModifier) || parts_.host.IsList();
    if (leaves || !MoveByTab(IsForward(event))) {
        parts_.host.Leave(IsForward(event));
    }
}

void FlexGridKeys::Press(QKeyEvent* event) {
    event->accept();
    const bool list = parts_.host.IsList();
    if (IsEnter(*event) && !list) {
        // A cell that is marked only is opened; one that cannot be is passed.
        parts_.host.Enter();
        if (!parts_.editing.IsOpen()) {
            Move(*event);
        }
        return;
    }
    const bool moves = !IsEnter(*event) && Move(*event);
    if (!moves && !(list && PressInList(*event))) {
        PressInCell(event);
    }
}

void FlexGridKeys::PressInCell(QKeyEvent* event) {
    if (PressClipboardKey(*event)) {
        return;
    }
    FlexGridEditing& editing = parts_.editing;
    if (event->matches(QKeySequence::SelectAll)) {
        parts_.view.selectAll();
    } else if (event->key() == Qt::Key_F2) {
        parts_.host.Enter();
        if (editing.IsOpen()) {
            editing.Editor().PutCaret(static_cast<int>(editing.Text().size()));
        }
    } else if (event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace) {
        FlexGridEditing::Trapped([this] { paste_.Clear(); });
    } else if (IsTyping(*event)) {
        parts_.host.Enter();
        if (editing.IsOpen()) {
            QCoreApplication::sendEvent(&editing.Editor(), event);
        }
    } else {
        event->ignore();
    }
}

// With and without an open edit these keys do what the menu does.
bool FlexGridKeys::PressClipboardKey(const QKeyEvent& event) {
    if (event.matches(QKeySequence::Copy)) {
        paste_.Copy();
    } else if (event.matches(QKeySequence::Cut)) {
        paste_.Cut();
    } else if (event.matches(QKeySequence::Paste)) {
        paste_.Paste();
    } else {
        return false;
    }
    return true;
}

bool FlexGridKeys::PressInList(const QKeyEvent& event) {
    if (IsEnter(event) || event.key() == Qt::Key_Space) {
        if (parts_.view.currentIndex().isValid()) {
            parts_.host.ClickRow(Current().row);
        }
        return true;
    }
    if (IsTyping(event)) {
        parts_.view.keyboardSearch(event.text());
        return true;
    }
    return false;
}

bool FlexGridKeys::PressInEditor(QKeyEvent* event) {
    if (!parts_.editing.IsOpen()) {
        return false;
    }
    if (IsTab(*event)) {
        const bool leaves = (event->modifiers() & Qt::ControlModifier) != 0;
        parts_.editing.End();
        if (leaves || !MoveByTab(IsForward(*event))) {
            parts_.host.Leave(IsForward(*event));
        }
        return true;
    }
    if (PressClipboardKey(*event)) {
        return true;
    }
    switch (event->key()) {
        case Qt::Key_Escape:
            FlexGridEditing::Trapped([this] { parts_.editing.Cancel(); });
            return true;
        case Qt::Key_F2:
            PressF2InEditor();
            return true;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            if (!Move(*event)) {
                parts_.editing.End();
            }
            return true;
        case Qt::Key_Up:
        case Qt::Key_Down:
        case Qt::Key_PageUp:
        case Qt::Key_PageDown:
            return Move(*event) || WayOf(*event).has_value();
        default:
            return LeavesCell(*event) && Move(*event);
    }
}

void FlexGridKeys::PressF2InEditor() {
    FlexGridEditor& editor = parts_.editing.Editor();
    if (editor.HasCaret() && !editor.hasSelectedText()) {
        editor.SelectWhole();
    } else {
        editor.PutCaret(static_cast<int>(editor.text().size()));
    }
}

// Left, Right, Home and End move through the text where there is a caret in it, and from cell to
// cell where there is none.
bool FlexGridKeys::LeavesCell(const QKeyEvent& event) const {
    const FlexGridEditor& editor = parts_.editing.Editor();
    const bool plain = (event.modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
    const bool control = (event.modifiers() & Qt::ControlModifier) != 0;
    const bool all = plain && editor.selectedText() == editor.text();
    const bool inText = editor.HasCaret();
    const bool none = plain && !editor.hasSelectedText();
    switch (event.key()) {
        case Qt::Key_Left:
            return !inText || all || (none && editor.cursorPosition() == 0);
        case Qt::Key_Right:
            return !inText || all || (none && editor.cursorPosition() == editor.text().size());
        case Qt::Key_Home:
        case Qt::Key_End:
            return !inText || control;
        default:
            return false;
    }
}

// True when the key is one that moves and there was room to move. The row may be another when the
// end of the edit has moved it; Enter then stays with it.
bool FlexGridKeys::Move(const QKeyEvent& event) {
    const std::optional<Way> way = WayOf(event);
    if (!way || !parts_.view.currentIndex().isValid()) {
        return false;
    }
    const QPersistentModelIndex from = parts_.view.currentIndex();
    const FlexGridNavigation::Place place = Current();
    const std::optional<FlexGridNavigation::Place> target = navigation_.Lead(*way, place);
    if (!target) {
        return false;
    }
    parts_.editing.End();
    const bool moved = from.isValid() && from.row() + parts_.model.FixedRows() != place.row;
    if (moved) {
        return true;
    }
    const bool extend = (event.modifiers() & Qt::ShiftModifier) && !IsEnter(event);
    return parts_.selection.MoveTo(target->row, target->col, extend);
}

bool FlexGridKeys::MoveByTab(bool forward) {
    if (!parts_.view.currentIndex().isValid()) {
        return false;
    }
    const std::optional<FlexGridNavigation::Place> target =
        navigation_.Lead(forward ? Way::kTab : Way::kBacktab, Current());
    return target && parts_.selection.MoveTo(target->row, target->col, false);
}

FlexGridNavigation::Place FlexGridKeys::Current() const {
    const QModelIndex current = parts_.view.currentIndex();
    return {parts_.model.FixedRows() + current.row(), std::max(current.column(), 0)};
}

}  // namespace platform
