// The grid's mouse and its menu.
#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QItemSelectionModel>
#include <QMenu>
#include <QMouseEvent>
#include <algorithm>

#include "platform/EventTrap.h"
#include "platform/controls/vsFlexGridImpl.h"
#include "platform/system/Host.h"

void vsFlexGrid::mousePressEvent(QMouseEvent* event) {
    const QModelIndex index = indexAt(event->pos());
    if (!index.isValid()) {
        return;
    }
    if (event->button() == Qt::LeftButton) {
        PressCell(event->pos(), (event->modifiers() & Qt::ShiftModifier) != 0);
    } else {
        MarkCell(index);
    }
}

void vsFlexGrid::PressCell(QPoint place, bool extend) {
    impl_->navigation.EndRun();
    if (Editing() && impl_->edited != indexAt(place)) {
        EndEdit();
    }
    // What the edit led to may have moved the rows.
    const QModelIndex index = indexAt(place);
    if (!index.isValid()) {
        return;
    }
    impl_->pressed = true;
    impl_->clicked = index;
    if (Editing() && !extend) {
        return;  // all of the open cell stays selected
    }
    EndEdit();
    const bool same = index == currentIndex();
    MoveTo(index.row() + FixedRows(), index.column(), extend);
    if (same && !extend) {
        Enter();
    }
}

// The other buttons work on what is selected, or else on the cell below them.
void vsFlexGrid::MarkCell(const QModelIndex& index) {
    if (impl_->edited == index || (!Editing() && selectionModel()->isSelected(index))) {
        return;
    }
    const QPersistentModelIndex target = index;
    EndEdit();
    if (target.isValid()) {
        const Impl::Quiet quiet(*impl_);
        MoveTo(target.row() + FixedRows(), target.column(), false);
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
        EndEdit();
        MoveTo(index.row() + FixedRows(), index.column(), true);
        scrollTo(index);
    }
}

void vsFlexGrid::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::MiddleButton) {
        PasteWithMouse(event->pos());
        return;
    }
    if (event->button() == Qt::LeftButton && impl_->pressed) {
        impl_->pressed = false;
        impl_->mouseRow = Row();
        emit Click();
    }
}

// Two quick clicks count as a double click only when no key came between them: who types a number,
// goes on and comes back, does not ask for a caret.
void vsFlexGrid::mouseDoubleClickEvent(QMouseEvent* event) {
    const QModelIndex index = indexAt(event->pos());
    const bool twice = index.isValid() && impl_->clicked == index;
    mousePressEvent(event);
    if (twice && event->button() == Qt::LeftButton && Editing() && impl_->edited == index) {
        const QPoint place = impl_->editor->mapFrom(viewport(), event->pos());
        impl_->editor->PutCaret(impl_->editor->cursorPositionAt(place));
    }
}

// X11 pastes what was selected last with the middle button.
void vsFlexGrid::PasteWithMouse(QPoint place) {
    const QModelIndex index = indexAt(place);
    if (!index.isValid() || IsList()) {
        return;
    }
    const QClipboard& clipboard = *QGuiApplication::clipboard();
    const QString selected =
        clipboard.supportsSelection() ? clipboard.text(QClipboard::Selection) : QString();
    if (Editing() && impl_->edited == index && impl_->editor->HasCaret()) {
        const QPoint inEditor = impl_->editor->mapFrom(viewport(), place);
        impl_->editor->PutCaret(impl_->editor->cursorPositionAt(inEditor));
    }
    const QString text = selected.isEmpty() ? platform::ClipboardText() : selected;
    Trapped([&] { SetEditSelText(text); });
}

void vsFlexGrid::contextMenuEvent(QContextMenuEvent* event) {
    QPoint place = event->globalPos();
    if (event->reason() == QContextMenuEvent::Keyboard && currentIndex().isValid()) {
        place = viewport()->mapToGlobal(visualRect(currentIndex()).bottomLeft());
    }
    if (currentIndex().isValid()) {
        OpenMenu(place);
    }
}

void vsFlexGrid::OpenMenu(QPoint place) {
    auto* menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("mnuCell"));
    menu->setAccessibleName(tr("Cell"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const bool changes = CanChangeSelection();
    const auto add = [&](const char* name, const QString& text, bool enabled, auto command) {
        QAction* action = menu->addAction(text);
        action->setObjectName(QString::fromLatin1(name));
        action->setEnabled(enabled);
        connect(action, &QAction::triggered, this,
                platform::EventTrap::Trapped("vsFlexGrid.Menu",
                                             [this, command](bool) { (this->*command)(); }));
    };
    add("mnuCellCut", tr("Cu&t"), changes, &vsFlexGrid::Cut);
    add("mnuCellCopy", tr("&Copy"), !Clip().isEmpty(), &vsFlexGrid::Copy);
    add("mnuCellPaste", tr("&Paste"), changes && !platform::ClipboardText().isEmpty(),
        &vsFlexGrid::Paste);
    add("mnuCellDelete", tr("&Delete"), changes, &vsFlexGrid::ClearClip);
    menu->addSeparator();
    add("mnuCellAll", tr("Select &All"), true, &vsFlexGrid::SelectAllText);
    menu->popup(place);
}

void vsFlexGrid::SelectAllText() {
    if (Editing()) {
        impl_->editor->selectAll();
    } else {
        selectAll();
    }
}

bool vsFlexGrid::CanChangeSelection() const {
    if (IsList()) {
        return false;
    }
    const QModelIndexList cells = SelectedCells();
    return std::any_of(cells.begin(), cells.end(), [this](const QModelIndex& cell) {
        return TakesText(cell.row() + FixedRows(), cell.column());
    });
}
