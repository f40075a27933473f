#include "datafile/UnitBox.h"

#include <QAction>
#include <QContextMenuEvent>
#include <QDropEvent>
#include <QFocusEvent>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMimeData>
#include <QMouseEvent>
#include <QValidator>

#include <algorithm>
#include <utility>

#include "platform/EventTrap.h"

namespace {

bool IsBetween(QChar character, char first, char last) {
    return character >= QLatin1Char(first) && character <= QLatin1Char(last);
}

}  // namespace

// For the ways in that bring a whole text rather than what is new in it, such as assistive
// technology: what the rule discards is dropped, and what comes last when there is no room for it.
class UnitBox::Filter : public QValidator {
public:
    explicit Filter(UnitBox& box) : QValidator(&box), box_(box) {}

    State validate(QString& input, int& cursor) const override {
        if (box_.byProgram_) {
            return Acceptable;
        }
        QString kept;
        int keptCursor = 0;
        for (int at = 0; at < input.size(); ++at) {
            const QChar character = Filtered(box_.rule_, input.at(at));
            if (!character.isNull()) {
                kept += character;
                keptCursor += at < cursor ? 1 : 0;
            }
        }
        const int excess = std::max(int(kept.size()) - box_.length_, 0);
        // What came in last stands before the cursor.
        keptCursor -= excess;
        if (keptCursor < 0) {
            return Invalid;
        }
        kept.remove(keptCursor, excess);
        input = kept;
        cursor = keptCursor;
        return Acceptable;
    }

private:
    UnitBox& box_;
};

UnitBox::UnitBox(Rule rule, int length, QWidget* parent)
    : QLineEdit(parent), rule_(rule), length_(length) {
    setValidator(new Filter(*this));
    setInputMethodHints(rule == Rule::kYear ? Qt::ImhDigitsOnly
                                            : Qt::ImhLatinOnly | Qt::ImhUppercaseOnly);
}

QChar UnitBox::Filtered(Rule rule, QChar character) {
    if (IsBetween(character, '0', '9')) {
        return rule == Rule::kState ? QChar() : character;
    }
    if (rule == Rule::kYear) {
        return {};
    }
    if (IsBetween(character, 'A', 'Z')) {
        return character;
    }
    return IsBetween(character, 'a', 'z') ? character.toUpper() : QChar();
}

void UnitBox::SetProgramText(const QString& text) {
    byProgram_ = true;
    setText(text);
    byProgram_ = false;
}

void UnitBox::InsertKept(const QString& text) {
    QString kept;
    for (const QChar character : text) {
        if (const QChar filtered = Filtered(rule_, character); !filtered.isNull()) {
            kept += filtered;
        }
    }
    kept.truncate(std::max(length_ - int(this->text().size() - selectedText().size()), 0));
    if (!kept.isEmpty()) {
        insert(kept);
    }
}

void UnitBox::Paste(QClipboard::Mode mode) {
    InsertKept(QGuiApplication::clipboard()->text(mode));
}

void UnitBox::keyPressEvent(QKeyEvent* event) {
    const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::ShiftModifier;
    const QString text = event->text();
    if (event->key() == Qt::Key_Down) {
        emit DownPressed();
    } else if (event->matches(QKeySequence::Paste)) {
        Paste(QClipboard::Clipboard);
    } else if (modifiers != Qt::ControlModifier && !text.isEmpty() && text.front().isPrint()) {
        InsertKept(text);
    } else {
        QLineEdit::keyPressEvent(event);
    }
}

void UnitBox::inputMethodEvent(QInputMethodEvent* event) {
    const QString committed = event->commitString();
    if (committed.isEmpty()) {
        QLineEdit::inputMethodEvent(event);
        return;
    }
    QInputMethodEvent composing(event->preeditString(), event->attributes());
    QLineEdit::inputMethodEvent(&composing);
    InsertKept(committed);
}

void UnitBox::dropEvent(QDropEvent* event) {
    setCursorPosition(cursorPositionAt(event->position().toPoint()));
    InsertKept(event->mimeData()->text());
    event->setDropAction(Qt::CopyAction);
    event->accept();
    setFocus();
}

void UnitBox::contextMenuEvent(QContextMenuEvent* event) {
    QMenu* menu = createStandardContextMenu();
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (QAction* entry : menu->actions()) {
        if (entry->text().startsWith(QLineEdit::tr("&Paste"))) {
            entry->disconnect(this);
            connect(entry, &QAction::triggered, this,
                    platform::EventTrap::Trapped("UnitBox.Paste",
                                                 [this](bool) { Paste(QClipboard::Clipboard); }));
        }
    }
    menu->popup(event->globalPos());
}

void UnitBox::focusInEvent(QFocusEvent* event) {
    QLineEdit::focusInEvent(event);
    if (selectsTwo_ && event->reason() != Qt::PopupFocusReason) {
        setSelection(0, 2);
        clickedIn_ = event->reason() == Qt::MouseFocusReason;
    }
}

void UnitBox::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::MiddleButton && QGuiApplication::clipboard()->supportsSelection()) {
        deselect();
        Paste(QClipboard::Selection);
        return;
    }
    QLineEdit::mouseReleaseEvent(event);
    // The press that brought the focus has put the cursor where it was made.
    if (std::exchange(clickedIn_, false) && !hasSelectedText()) {
        setSelection(0, 2);
    }
}
