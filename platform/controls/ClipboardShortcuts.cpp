#include "platform/controls/ClipboardShortcuts.h"

#include <QApplication>
#include <QFocusEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>

namespace platform {
namespace {

// Redo has this key on other systems only; there are users who know no other.
bool IsRedoKey(const QKeyEvent& key) {
    return key.key() == Qt::Key_Y && key.modifiers() == Qt::ControlModifier;
}

bool Redo(QObject* watched) {
    if (auto* line = qobject_cast<QLineEdit*>(watched)) {
        line->redo();
        return true;
    }
    if (auto* lines = qobject_cast<QPlainTextEdit*>(watched)) {
        lines->redo();
        return true;
    }
    return false;
}

// Those that a worksheet takes for all its controls.
bool IsUndoKey(const QKeyEvent& key) {
    const Qt::KeyboardModifiers shifted = Qt::ControlModifier | Qt::ShiftModifier;
    return IsRedoKey(key) || (key.key() == Qt::Key_Z && (key.modifiers() == Qt::ControlModifier ||
                                                         key.modifiers() == shifted));
}

class ClipboardShortcutFilter : public QObject {
public:
    explicit ClipboardShortcutFilter(QObject* parent) : QObject(parent) {}

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::ShortcutOverride && IsTextBox(watched)) {
            auto* key = static_cast<QKeyEvent*>(event);
            if (IsClipboardKey(*key) || IsUndoKey(*key)) {
                key->ignore();
                return true;
            }
        }
        if (event->type() == QEvent::KeyPress && IsRedoKey(*static_cast<QKeyEvent*>(event)) &&
            Redo(watched)) {
            return true;
        }
        if (event->type() == QEvent::FocusOut &&
            KeepsSelection(*static_cast<QFocusEvent*>(event))) {
            if (auto* box = qobject_cast<QLineEdit*>(watched)) {
                QFocusEvent asPopup(QEvent::FocusOut, Qt::PopupFocusReason);
                static_cast<QObject*>(box)->event(&asPopup);
                return true;
            }
        }
        return false;
    }

private:
    static bool IsTextBox(const QObject* object) {
        return qobject_cast<const QLineEdit*>(object) != nullptr ||
               qobject_cast<const QPlainTextEdit*>(object) != nullptr;
    }

    static bool KeepsSelection(const QFocusEvent& event) {
        return event.reason() == Qt::MenuBarFocusReason;
    }
};

}  // namespace

bool IsClipboardKey(const QKeyEvent& key) {
    return key.matches(QKeySequence::Cut) || key.matches(QKeySequence::Copy) ||
           key.matches(QKeySequence::Paste);
}

void InstallClipboardShortcutFilter() {
    static QPointer<ClipboardShortcutFilter> filter;
    if (filter == nullptr) {
        filter = new ClipboardShortcutFilter(qApp);
        qApp->installEventFilter(filter);
    }
}

}  // namespace platform
