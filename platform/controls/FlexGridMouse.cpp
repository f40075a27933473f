#include "platform/controls/FlexGridMouse.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QItemSelectionModel>
#include <QMenu>
#include <QMouseEvent>
#include <QTableView>
#include <algorithm>

#include "platform/EventTrap.h"
#include "platform/controls/FlexGridEditing.h"
#include "platform/controls/FlexGridEditor.h"
#include "platform/controls/FlexGridKeys.h"
#include "platform/controls/FlexGridModel.h"
#include "platform/controls/FlexGridPaste.h"
#include "platform/controls/FlexGridSelection.h"
#include "platform/system/Clipboard.h"

namespace platform {

void FlexGridMouse::Press(const QMouseEvent& event) {
    const QModelIndex index = parts_.view.indexAt(event.pos());
    if (!index.isValid()) {
        return;
    }
    if (event.button() == Qt::LeftButton) {
        PressCell(event.pos(), (event.modifiers() & Qt::ShiftModifier) != 0);
    } else {
        MarkCell(index);
    }
}

void FlexGridMouse::PressCell(QPoint place, bool extend) {
    FlexGridEditing& editing = parts_.editing;
    keys_.EndRun();
    if (editing.Cell() != parts_.view.indexAt(place)) {
        editing.End();
    }
    // What the edit led to may have moved the rows.
    const QModelIndex index = parts_.view.indexAt(place);
    if (!index.isValid()) {
        return;
    }
    pressed_ = true;
    clicked_ = index;
    if (editing.IsOpen() && !extend) {
        return;  // all of the open cell stays selected
    }
    editing.End();
    const bool same = index == parts_.view.currentIndex();
    MoveTo(index, extend);
    if (same && !extend) {
        parts_.host.Enter();
    }
}

// The other buttons work on what is selected, or else on the cell below them.
void FlexGridMouse::MarkCell(const QModelIndex& index) {
    FlexGridEditing& editing = parts_.editing;
    if (editing.Cell() == index ||
        (!editing.IsOpen() && parts_.view.selectionModel()->isSelected(index))) {
        return;
    }
    const QPersistentModelIndex target = index;
    editing.End();
    if (target.isValid()) {
        const FlexGridSelection::Quiet quiet(parts_.selection);
        MoveTo(target, false);
    }
}

void FlexGridMouse::MoveTo(const QModelIndex& index, bool extend) {
    parts_.selection.MoveTo(index.row() + parts_.model.FixedRows(), index.column(), extend);
}

void FlexGridMouse::Move(const QMouseEvent& event) {
    if (!pressed_ || !(event.buttons() & Qt::LeftButton)) {
        return;
    }
    const QRect room = parts_.view.viewport()->rect();
    const QPoint inside(std::clamp(event.pos().x(), room.left(), room.right()),
                        std::clamp(event.pos().y(), room.top(), room.bottom()));
    const QModelIndex index = parts_.view.indexAt(inside);
    if (index.isValid() && index != parts_.view.currentIndex()) {
        parts_.editing.End();
        MoveTo(index, true);
        parts_.view.scrollTo(index);
    }
}

void FlexGridMouse::Release(const QMouseEvent& event) {
    if (event.button() == Qt::MiddleButton) {
        Paste(event.pos());
        return;
    }
    if (event.button() == Qt::LeftButton && pressed_) {
        pressed_ = false;
        parts_.host.ClickRow(parts_.model.FixedRows() + parts_.view.currentIndex().row());
    }
}

// Two quick clicks count as a double click only when no key came between them: who types a number,
// goes on and comes back, does not ask for a caret.
void FlexGridMouse::DoubleClick(const QMouseEvent& event) {
    const QModelIndex index = parts_.view.indexAt(event.pos());
    const bool twice = index.isValid() && clicked_ == index;
    Press(event);
    if (twice && event.button() == Qt::LeftButton && parts_.editing.Cell() == index) {
        PutCaretAt(event.pos());
    }
}

void FlexGridMouse::PutCaretAt(QPoint place) {
    FlexGridEditor& editor = parts_.editing.Editor();
    editor.PutCaret(editor.cursorPositionAt(editor.mapFrom(parts_.view.viewport(), place)));
}

// X11 pastes what was selected last with the middle button.
void FlexGridMouse::Paste(QPoint place) {
    const QModelIndex index = parts_.view.indexAt(place);
    if (!index.isValid() || parts_.host.IsList()) {
        return;
    }
    const QClipboard& clipboard = *QGuiApplication::clipboard();
    const QString selected =
        clipboard.supportsSelection() ? clipboard.text(QClipboard::Selection) : QString();
    if (parts_.editing.Cell() == index && parts_.editing.Editor().HasCaret()) {
        PutCaretAt(place);
    }
    const QString text = selected.isEmpty() ? platform::ClipboardText() : selected;
    FlexGridEditing::Trapped([&] { paste_.Put(text); });
}

void FlexGridMouse::OpenMenu(const QContextMenuEvent& event) {
    const QModelIndex current = parts_.view.currentIndex();
    if (!current.isValid()) {
        return;
    }
    const bool byKey = event.reason() == QContextMenuEvent::Keyboard;
    const QPoint below = parts_.view.visualRect(current).bottomLeft();
    PopUp(byKey ? parts_.view.viewport()->mapToGlobal(below) : event.globalPos());
}

void FlexGridMouse::PopUp(QPoint place) {
    auto* menu = new QMenu(&parts_.view);
    menu->setObjectName(QStringLiteral("mnuCell"));
    menu->setAccessibleName(tr("Cell"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const auto add = [&](const char* name, const QString& text, bool enabled, auto command) {
        QAction* action = menu->addAction(text);
        action->setObjectName(QString::fromLatin1(name));
        action->setEnabled(enabled);
        QObject::connect(
            action, &QAction::triggered, &parts_.view,
            platform::EventTrap::Trapped("vsFlexGrid.Menu", [command](bool) { command(); }));
    };
    const bool changes = paste_.CanChange();
    add("mnuCellCut", tr("Cu&t"), changes, [this] { paste_.Cut(); });
    add("mnuCellCopy", tr("&Copy"), !paste_.Clip().isEmpty(), [this] { paste_.Copy(); });
    add("mnuCellPaste", tr("&Paste"), changes && !platform::ClipboardText().isEmpty(),
        [this] { paste_.Paste(); });
    add("mnuCellDelete", tr("&Delete"), changes, [this] { paste_.Clear(); });
    menu->addSeparator();
    add("mnuCellAll", tr("Select &All"), true, [this] { SelectAll(); });
    menu->popup(place);
}

void FlexGridMouse::SelectAll() {
    if (parts_.editing.IsOpen()) {
        parts_.editing.Editor().selectAll();
    } else {
        parts_.view.selectAll();
    }
}

}  // namespace platform
