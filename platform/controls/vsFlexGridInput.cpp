// The grid's keys, mouse and focus.
#include <QAccessible>
#include <QApplication>
#include <QFocusEvent>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QMetaMethod>
#include <QMouseEvent>
#include <algorithm>

#include "platform/controls/vsFlexGridImpl.h"
#include "platform/system/Host.h"

namespace {

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

}  // namespace

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
    if (MoveByKey(*event) || (IsList() && KeyInList(*event))) {
        return;
    }
    KeyInCell(event);
}

// Keys while no edit is open.
void vsFlexGrid::KeyInCell(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy)) {
        platform::SetClipboardText(Clip());
    } else if (event->matches(QKeySequence::Cut)) {
        platform::SetClipboardText(Clip());
        ClearClip();
    } else if (event->matches(QKeySequence::Paste)) {
        SetEditSelText(platform::ClipboardText());
    } else if (event->matches(QKeySequence::SelectAll)) {
        selectAll();
    } else if (event->key() == Qt::Key_F2) {
        Enter();
    } else if (event->key() == Qt::Key_Delete) {
        ClearClip();
    } else if (IsTyping(*event)) {
        Enter();
        if (Editing()) {
            QCoreApplication::sendEvent(impl_->editor, event);
        }
    } else {
        event->ignore();
    }
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
    if (IsTab(*event)) {
        const bool leaves = (event->modifiers() & Qt::ControlModifier) != 0;
        FinishEdit();
        if (leaves || !MoveByTab(IsForward(*event))) {
            QTableView::focusNextPrevChild(IsForward(*event));
        }
        return true;
    }
    const FlexGridEditor& editor = *impl_->editor;
    const bool all = editor.selectedText() == editor.text();
    const bool atStart = all || (editor.cursorPosition() == 0 && !editor.hasSelectedText());
    const bool atEnd =
        all || (editor.cursorPosition() == editor.text().size() && !editor.hasSelectedText());
    const bool plain = (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
    const bool control = (event->modifiers() & Qt::ControlModifier) != 0;
    switch (event->key()) {
        case Qt::Key_Escape:
            CancelEdit();
            return true;
        case Qt::Key_F2:
            all ? impl_->editor->end(false) : impl_->editor->selectAll();
            return true;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            if (!MoveByKey(*event)) {
                FinishEdit();
            }
            return true;
        case Qt::Key_Left:
            return plain && atStart && MoveByKey(*event);
        case Qt::Key_Right:
            return plain && atEnd && MoveByKey(*event);
        case Qt::Key_Home:
        case Qt::Key_End:
            return control && MoveByKey(*event);
        case Qt::Key_Up:
        case Qt::Key_Down:
        case Qt::Key_PageUp:
        case Qt::Key_PageDown:
            MoveByKey(*event);
            return true;
        default:
            return false;
    }
}

// True when the key is one that moves and there was room to move.
bool vsFlexGrid::MoveByKey(const QKeyEvent& event) {
    const bool extend = (event.modifiers() & Qt::ShiftModifier) && !IsEnter(event);
    const bool control = (event.modifiers() & Qt::ControlModifier) != 0;
    const int last = Rows() - 1;
    int row = Row();
    int col = Col();
    switch (event.key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            if (IsList()) {
                return false;
            }
            row += (event.modifiers() & Qt::ShiftModifier) ? -1 : 1;
            break;
        case Qt::Key_Up:
            row = control ? FixedRows() : row - 1;
            break;
        case Qt::Key_Down:
            row = control ? last : row + 1;
            break;
        case Qt::Key_PageUp:
            row = std::max(row - PageRows(), FixedRows());
            break;
        case Qt::Key_PageDown:
            row = std::min(row + PageRows(), last);
            break;
        case Qt::Key_Left:
            col = NextCol(col, -1);
            break;
        case Qt::Key_Right:
            col = NextCol(col, 1);
            break;
        case Qt::Key_Home:
            col = NextCol(-1, 1);
            row = control ? FixedRows() : row;
            break;
        case Qt::Key_End:
            col = NextCol(Cols(), -1);
            row = control ? last : row;
            break;
        default:
            return false;
    }
    const bool inside = row >= FixedRows() && row <= last && col >= 0;
    if (!inside || (row == Row() && col == Col())) {
        return false;
    }
    FinishEdit();
    return MoveTo(row, col, extend);
}

bool vsFlexGrid::MoveByTab(bool forward) {
    if (!currentIndex().isValid()) {
        return false;
    }
    const int step = forward ? 1 : -1;
    int row = Row();
    int col = NextCol(Col(), step);
    if (col < 0) {
        row += step;
        col = forward ? NextCol(-1, 1) : NextCol(Cols(), -1);
    }
    return row >= FixedRows() && row < Rows() && col >= 0 && MoveTo(row, col, false);
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
    QItemSelectionModel::SelectionFlags flags = QItemSelectionModel::ClearAndSelect;
    if (selectionBehavior() == SelectRows) {
        flags |= QItemSelectionModel::Rows;
    }
    const QModelIndex anchor = impl_->anchor;
    selectionModel()->select(
        QItemSelection(impl_->model->index(std::min(anchor.row(), target.row()),
                                           std::min(anchor.column(), target.column())),
                       impl_->model->index(std::max(anchor.row(), target.row()),
                                           std::max(anchor.column(), target.column()))),
        flags);
    // A block is selected to be copied, not to be edited.
    impl_->quiet += extend ? 1 : 0;
    selectionModel()->setCurrentIndex(target, QItemSelectionModel::NoUpdate);
    impl_->quiet -= extend ? 1 : 0;
    return true;
}

void vsFlexGrid::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    FinishEdit();
    QTableView::currentChanged(current, previous);
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

void vsFlexGrid::mousePressEvent(QMouseEvent* event) {
    const QModelIndex index = indexAt(event->pos());
    if (event->button() != Qt::LeftButton || !index.isValid()) {
        return;
    }
    FinishEdit();
    impl_->pressed = true;
    const bool extend = (event->modifiers() & Qt::ShiftModifier) != 0;
    const bool same = index == currentIndex();
    MoveTo(index.row() + FixedRows(), index.column(), extend);
    if (same && !extend) {
        Enter();
    }
}

void vsFlexGrid::mouseMoveEvent(QMouseEvent* event) {
    if (!impl_->pressed || !(event->buttons() & Qt::LeftButton)) {
        return;
    }
    const QRect room = viewport()->rect();
    const QPoint inside(std::clamp(event->pos().x(), room.left(), room.right()),
                        std::clamp(event->pos().y(), room.top(), room.bottom()));
    const QModelIndex index = indexAt(inside);
    if (index.isValid() && index != currentIndex()) {
        FinishEdit();
        MoveTo(index.row() + FixedRows(), index.column(), true);
        scrollTo(index);
    }
}

void vsFlexGrid::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && impl_->pressed) {
        impl_->pressed = false;
        impl_->mouseRow = Row();
        emit Click();
    }
}

void vsFlexGrid::mouseDoubleClickEvent(QMouseEvent* event) {
    mousePressEvent(event);
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
        Enter();
        AnnounceEditor();
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

// The next column that is shown, or -1.
int vsFlexGrid::NextCol(int from, int step) const {
    for (int col = from + step; col >= 0 && col < Cols(); col += step) {
        if (!ColHidden(col)) {
            return col;
        }
    }
    return -1;
}

int vsFlexGrid::PageRows() const {
    return std::max(viewport()->height() / verticalHeader()->defaultSectionSize() - 1, 1);
}
