#include "platform/controls/FlexGridEditor.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QRegularExpression>
#include <QSignalBlocker>

#include "platform/controls/FlexGridPaint.h"

namespace {

bool IsModifier(int key) {
    return key == Qt::Key_Shift || key == Qt::Key_Control || key == Qt::Key_Alt ||
           key == Qt::Key_AltGr || key == Qt::Key_Meta || key == Qt::Key_CapsLock ||
           key == Qt::Key_NumLock;
}

bool IsTab(const QKeyEvent& key) {
    return key.key() == Qt::Key_Tab || key.key() == Qt::Key_Backtab;
}

bool IsClipboardKey(const QKeyEvent& key) {
    return key.matches(QKeySequence::Cut) || key.matches(QKeySequence::Copy) ||
           key.matches(QKeySequence::Paste);
}

// Focus that comes back by itself: a menu, a tool of the editor's own, another window.
bool ComesBack(Qt::FocusReason reason) {
    return reason == Qt::PopupFocusReason || reason == Qt::MenuBarFocusReason ||
           reason == Qt::ActiveWindowFocusReason;
}

}  // namespace

FlexGridEditor::FlexGridEditor(QWidget* parent) : QLineEdit(parent) {
    setFrame(false);
    setTextMargins(1, 0, 0, 0);  // where the cell shows it
    connect(this, &QLineEdit::textEdited, this, &FlexGridEditor::OnTextEdited);
}

void FlexGridEditor::Load(const QString& text) {
    const QSignalBlocker quiet(this);
    setText(text);
    // Selected backwards: of a text that is wider than its cell, the beginning shows.
    setSelection(static_cast<int>(text.size()), -static_cast<int>(text.size()));
    down_.clear();
}

void FlexGridEditor::SetNote(const QString& note) {
    if (note != accessibleDescription()) {
        setAccessibleDescription(note);
        setToolTip(note);
        update();
    }
}

bool FlexGridEditor::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride &&
        IsClipboardKey(*static_cast<QKeyEvent*>(event))) {
        // These belong to the program's menu.
        event->ignore();
        return true;
    }
    if (event->type() == QEvent::KeyPress && IsTab(*static_cast<QKeyEvent*>(event))) {
        // Before Qt moves the focus.
        return taker_ && taker_(static_cast<QKeyEvent*>(event));
    }
    return QLineEdit::event(event);
}

void FlexGridEditor::keyPressEvent(QKeyEvent* event) {
    if (taker_ && taker_(event)) {
        event->accept();
        return;
    }
    const QString text = event->text();
    if (text.size() == 1 && text[0].isPrint()) {
        emit KeyTyped(text[0]);
    }
    if (!IsModifier(event->key())) {
        down_.insert(event->key());
    }
    QLineEdit::keyPressEvent(event);
}

void FlexGridEditor::keyReleaseEvent(QKeyEvent* event) {
    QLineEdit::keyReleaseEvent(event);
    if (!event->isAutoRepeat() && down_.remove(event->key())) {
        emit KeyReleased(event->key());
    }
}

void FlexGridEditor::focusOutEvent(QFocusEvent* event) {
    down_.clear();
    if (ComesBack(event->reason())) {
        // A menu opened by keyboard must find the selection as it was.
        QFocusEvent asPopup(QEvent::FocusOut, Qt::PopupFocusReason);
        QLineEdit::focusOutEvent(&asPopup);
        return;
    }
    QLineEdit::focusOutEvent(event);
    emit FocusLost();
}

void FlexGridEditor::paintEvent(QPaintEvent* event) {
    QLineEdit::paintEvent(event);
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::Highlight));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
    if (!accessibleDescription().isEmpty()) {
        FlexGridPaint::DrawMark(painter, rect(), palette());
    }
}

// Spreadsheets put a line end behind a copied cell; a cell is one line without tabs.
void FlexGridEditor::OnTextEdited() {
    static const QRegularExpression kBreaks(QStringLiteral("[\\r\\n\\t]+"));
    if (text().contains(kBreaks)) {
        const QSignalBlocker quiet(this);
        const qsizetype behind = text().size() - cursorPosition();
        QString plain = text();
        plain.replace(kBreaks, QStringLiteral(" "));
        setText(plain.trimmed());
        setCursorPosition(static_cast<int>(std::max<qsizetype>(text().size() - behind, 0)));
    }
    emit Edited();
}
