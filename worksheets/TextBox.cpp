#include "worksheets/TextBox.h"

#include <QFocusEvent>
#include <QKeyEvent>

void TextBox::focusInEvent(QFocusEvent* event) {
    QLineEdit::focusInEvent(event);
    emit GotFocus();
}

void TextBox::keyPressEvent(QKeyEvent* event) {
    const bool shortcut = event->modifiers() & (Qt::ControlModifier | Qt::MetaModifier);
    if (takes_ && !shortcut && !takes_(event->text())) {
        event->accept();
        return;
    }
    QLineEdit::keyPressEvent(event);
}
