#include "worksheets/TextBox.h"

#include <QFocusEvent>
#include <QKeyEvent>

#include "platform/controls/FlexGridPastePlan.h"

using platform::PasteBox;

namespace worksheets {

void TextBox::TakePasted(const QString& text) {
    if (!refused_) {
        PasteBox::TakePasted(text);
        return;
    }
    const int room = maxLength() - static_cast<int>(this->text().size() - selectedText().size());
    const QString typed = FlexGridPastePlan::AsTyped(text.trimmed(), true, room);
    if (typed.size() > room) {
        refused_();
    } else {
        insert(typed);
    }
}

void TextBox::focusInEvent(QFocusEvent* event) {
    PasteBox::focusInEvent(event);
    emit GotFocus();
}

void TextBox::keyPressEvent(QKeyEvent* event) {
    const bool shortcut = event->modifiers() & (Qt::ControlModifier | Qt::MetaModifier);
    if (takes_ && !shortcut && !takes_(event->text())) {
        event->accept();
        return;
    }
    PasteBox::keyPressEvent(event);
}

}  // namespace worksheets
