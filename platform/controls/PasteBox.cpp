#include "platform/controls/PasteBox.h"

#include <QAction>
#include <QContextMenuEvent>
#include <QDropEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QMimeData>
#include <QMouseEvent>

#include "platform/EventTrap.h"

namespace platform {

void PasteBox::TakePasted(const QString& text) {
    insert(text);
}

// Qt would put nothing in the place of the selection when there is no text, and so delete it.
void PasteBox::Paste(QClipboard::Mode mode) {
    const QString text = QGuiApplication::clipboard()->text(mode);
    if (!text.isEmpty()) {
        TakePasted(text);
    }
}

void PasteBox::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Paste)) {
        Paste(QClipboard::Clipboard);
    } else {
        QLineEdit::keyPressEvent(event);
    }
}

void PasteBox::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::MiddleButton && QGuiApplication::clipboard()->supportsSelection()) {
        deselect();
        Paste(QClipboard::Selection);
        return;
    }
    QLineEdit::mouseReleaseEvent(event);
}

void PasteBox::dropEvent(QDropEvent* event) {
    setCursorPosition(cursorPositionAt(event->position().toPoint()));
    TakePasted(event->mimeData()->text());
    event->setDropAction(Qt::CopyAction);
    event->accept();
    setFocus();
}

void PasteBox::contextMenuEvent(QContextMenuEvent* event) {
    QMenu* menu = createStandardContextMenu();
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (QAction* entry : menu->actions()) {
        if (entry->text().startsWith(QLineEdit::tr("&Paste"))) {
            entry->disconnect(this);
            connect(entry, &QAction::triggered, this,
                    platform::EventTrap::Trapped("PasteBox.Paste",
                                                 [this](bool) { Paste(QClipboard::Clipboard); }));
        }
    }
    menu->popup(event->globalPos());
}

}  // namespace platform
