// The grid's keys and focus.
#include <QAccessible>
#include <QApplication>
#include <QFocusEvent>
#include <QHeaderView>
#include <QInputMethodEvent>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QMetaMethod>
#include <algorithm>
#include <optional>

#include "platform/EventTrap.h"
#include "platform/controls/vsFlexGridImpl.h"
#include "platform/system/Host.h"

namespace {

using Move = FlexGridNavigation::Move;

bool IsTab(const QKeyEvent& key) {
    return key.key() == Qt::Key_Tab || key.key() == Qt::Key_Backtab;
}

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
std::optional<Move> MoveOf(const QKeyEvent& key) {
    const bool control = (key.modifiers() & Qt::ControlModifier) != 0;
    if ((key.modifiers() & (Qt::AltModifier | Qt::MetaModifier)) != 0) {
        return std::nullopt;
    }
    switch (key.key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            return (key.modifiers() & Qt::ShiftModifier) ? Move::kEnterUp : Move::kEnter;
        case Qt::Key_Up:
            return control ? Move::kFirstRow : Move::kUp;
        case Qt::Key_Down:
            return control ? Move::kLastRow : Move::kDown;
        case Qt::Key_Left:
            return Move::kLeft;
        case Qt::Key_Right:
            return Move::kRight;
        case Qt::Key_Home:
            return control ? Move::kFirstCell : Move::kRowStart;
        case Qt::Key_End:
            return control ? Move::kLastCell : Move::kRowEnd;
        case Qt::Key_PageUp:
            return control ? std::nullopt : std::optional(Move::kPageUp);
        case Qt::Key_PageDown:
            return control ? std::nullopt : std::optional(Move::kPageDown);
        default:
            return std::nullopt;
    }
}

}  // namespace

bool vsFlexGrid::Impl::KeyGround::TabStops(int row, int col) const {
    const GridTable* table = grid_.Table();
    return table == nullptr || !grid_.impl_->model->IsTableCell(row) ||
           (table->TabStops(col) && grid_.TakesText(row, col));
}

int vsFlexGrid::Impl::KeyGround::PageRows() const {
    const int row = grid_.verticalHeader()->defaultSectionSize();
    return std::max(grid_.viewport()->height() / row - 1, 1);
}

bool vsFlexGrid::event(QEvent* event) {
    if (event->type() == QEvent::KeyPress && IsTab(*static_cast<QKeyEvent*>(event))) {
        const auto* key = static_cast<QKeyEvent*>(event);
        const bool leaves = (key->modifiers() & Qt::ControlModifier) || IsList();
        if (leaves || !MoveByTab(IsForward(*key))) {
            QTableView::focusNextPrevChild(IsForward(*key));
        }
        return true;
    }
    return QTableView::event(event);
}

void vsFlexGrid::keyPressEvent(QKeyEvent* event) {
    event->accept();
    impl_->clicked = QPersistentModelIndex();
    if (IsEnter(*event) && !IsList()) {
        // A cell that is marked only is opened; one that cannot be is passed.
        Enter();
        if (!Editing()) {
            MoveByKey(*event);
        }
        return;
    }
    const bool listEnter = IsEnter(*event) && IsList();
    if ((!listEnter && MoveByKey(*event)) || (IsList() && KeyInList(*event))) {
        return;
    }
    KeyInCell(event);
}

// Keys while no edit is open.
void vsFlexGrid::KeyInCell(QKeyEvent* event) {
    if (TakeClipboardKey(*event)) {
        return;
    }
    if (event->matches(QKeySequence::SelectAll)) {
        selectAll();
    } else if (event->key() == Qt::Key_F2) {
        Enter();
        if (Editing()) {
            impl_->editor->PutCaret(static_cast<int>(impl_->editor->text().size()));
        }
    } else if (event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace) {
        Trapped([this] { ClearClip(); });
    } else if (IsTyping(*event)) {
        Enter();
        if (Editing()) {
            QCoreApplication::sendEvent(impl_->editor, event);
        }
    } else {
        event->ignore();
    }
}

// With and without an open edit these keys do what the menu does.
bool vsFlexGrid::TakeClipboardKey(const QKeyEvent& event) {
    if (event.matches(QKeySequence::Copy)) {
        Copy();
    } else if (event.matches(QKeySequence::Cut)) {
        Cut();
    } else if (event.matches(QKeySequence::Paste)) {
        Paste();
    } else {
        return false;
    }
    return true;
}

bool vsFlexGrid::KeyInList(const QKeyEvent& event) {
    if (IsEnter(event) || event.key() == Qt::Key_Space) {
        if (currentIndex().isValid()) {
            impl_->mouseRow = Row();
            emit Click();
        }
        return true;
    }
    if (IsTyping(event)) {
        keyboardSearch(event.text());
        return true;
    }
    return false;
}

// Keys in the open editor that end the edit.
bool vsFlexGrid::TakeEditorKey(QKeyEvent* event) {
    if (!Editing()) {
        return false;
    }
    impl_->clicked = QPersistentModelIndex();
    if (IsTab(*event)) {
        const bool leaves = (event->modifiers() & Qt::ControlModifier) != 0;
        EndEdit();
        if (leaves || !MoveByTab(IsForward(*event))) {
            QTableView::focusNextPrevChild(IsForward(*event));
        }
        return true;
    }
    if (TakeClipboardKey(*event)) {
        return true;
    }
    switch (event->key()) {
        case Qt::Key_Escape:
            Trapped([this] { CancelEdit(); });
            return true;
        case Qt::Key_F2:
            if (impl_->editor->HasCaret() && !impl_->editor->hasSelectedText()) {
                impl_->editor->SelectWhole();
            } else {
                impl_->editor->PutCaret(static_cast<int>(impl_->editor->text().size()));
            }
            return true;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            if (!MoveByKey(*event)) {
                EndEdit();
            }
            return true;
        case Qt::Key_Up:
        case Qt::Key_Down:
        case Qt::Key_PageUp:
        case Qt::Key_PageDown:
            return MoveByKey(*event) || MoveOf(*event).has_value();
        default:
            return LeavesCell(*event) && MoveByKey(*event);
    }
}

// Left, Right, Home and End move through the text where there is a caret in it, and from cell to
// cell where there is none.
bool vsFlexGrid::LeavesCell(const QKeyEvent& event) const {
    const FlexGridEditor& editor = *impl_->editor;
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
bool vsFlexGrid::MoveByKey(const QKeyEvent& event) {
    const std::optional<Move> move = MoveOf(event);
    if (!move || !currentIndex().isValid()) {
        return false;
    }
    const QPersistentModelIndex from = currentIndex();
    const FlexGridNavigation::Place place{Row(), Col()};
    const std::optional<FlexGridNavigation::Place> target = impl_->navigation.Lead(*move, place);
    if (!target) {
        return false;
    }
    EndEdit();
    const bool moved = from.isValid() && from.row() + FixedRows() != place.row;
    if (moved) {
        return true;
    }
    const bool extend = (event.modifiers() & Qt::ShiftModifier) && !IsEnter(event);
    return MoveTo(target->row, target->col, extend);
}

bool vsFlexGrid::MoveByTab(bool forward) {
    if (!currentIndex().isValid()) {
        return false;
    }
    const std::optional<FlexGridNavigation::Place> target =
        impl_->navigation.Lead(forward ? Move::kTab : Move::kBacktab, {Row(), Col()});
    return target && MoveTo(target->row, target->col, false);
}

// The row may have gone with what the end of the edit before led to.
bool vsFlexGrid::MoveTo(int row, int col, bool extend) {
    const QModelIndex target = impl_->model->index(row - FixedRows(), col);
    if (!target.isValid()) {
        return false;
    }
    if (!extend || !impl_->anchor.isValid()) {
        impl_->anchor = extend ? currentIndex() : target;
    }
    SelectBlock(impl_->anchor, target);
    // A block is selected to be copied, not to be edited.
    impl_->quiet += extend ? 1 : 0;
    selectionModel()->setCurrentIndex(target, QItemSelectionModel::NoUpdate);
    impl_->quiet -= extend ? 1 : 0;
    return true;
}

void vsFlexGrid::SelectBlock(const QModelIndex& one, const QModelIndex& other) {
    QItemSelectionModel::SelectionFlags flags = QItemSelectionModel::ClearAndSelect;
    if (selectionBehavior() == SelectRows) {
        flags |= QItemSelectionModel::Rows;
    }
    selectionModel()->select(
        QItemSelection(impl_->model->index(std::min(one.row(), other.row()),
                                           std::min(one.column(), other.column())),
                       impl_->model->index(std::max(one.row(), other.row()),
                                           std::max(one.column(), other.column()))),
        flags);
}

void vsFlexGrid::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    EndEdit();
    QTableView::currentChanged(current, previous);
    setAttribute(Qt::WA_InputMethodEnabled, current.isValid() && !IsList());
    if (current.isValid() && impl_->quiet == 0) {
        scrollTo(current);
        emit EnterCell();
    }
    TellNote();
}

void vsFlexGrid::Enter() {
    if (currentIndex().isValid() && !Editing()) {
        emit EnterCell();
    }
}

// What an input method has composed is typed, too.
void vsFlexGrid::inputMethodEvent(QInputMethodEvent* event) {
    if (!event->commitString().isEmpty() || !event->preeditString().isEmpty()) {
        Enter();
        if (Editing()) {
            QCoreApplication::sendEvent(impl_->editor, event);
        }
    }
}

void vsFlexGrid::focusInEvent(QFocusEvent* event) {
    if (Editing()) {
        impl_->editor->setFocus();
        AnnounceEditor();
        return;
    }
    QTableView::focusInEvent(event);
    const Qt::FocusReason reason = event->reason();
    const bool byKeyboardOrProgram =
        reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason ||
        reason == Qt::ShortcutFocusReason || reason == Qt::OtherFocusReason;
    if (byKeyboardOrProgram && !impl_->closing) {
        const QScopedValueRollback arriving(impl_->arriving, true);
        Enter();
    }
}

// Who gave the grid the focus tells assistive technology so when this is over, although the editor
// has it by then.
void vsFlexGrid::AnnounceEditor() {
    const auto announce = [this] {
        if (impl_->editor->hasFocus()) {
            QAccessibleEvent focus(impl_->editor, QAccessible::Focus);
            QAccessible::updateAccessibility(&focus);
        }
    };
    if (QAccessible::isActive()) {
        QMetaObject::invokeMethod(this, announce, Qt::QueuedConnection);
    }
}

bool vsFlexGrid::IsList() const {
    static const QMetaMethod kEnterCell = QMetaMethod::fromSignal(&vsFlexGrid::EnterCell);
    return !isSignalConnected(kEnterCell);
}

void vsFlexGrid::Trapped(const std::function<void()>& body) {
    platform::EventTrap::Run("vsFlexGrid.FinishEdit", body);
}

// Errors of storing what was typed are told at once; the key or click that ended the edit goes on.
void vsFlexGrid::EndEdit() {
    if (Editing()) {
        Trapped([this] { FinishEdit(); });
    }
}
