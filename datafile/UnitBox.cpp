#include "datafile/UnitBox.h"

#include <QFocusEvent>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QValidator>

#include <algorithm>
#include <utility>

using platform::PasteBox;

namespace datafile {

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
    : PasteBox(parent), rule_(rule), length_(length) {
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

void UnitBox::TakePasted(const QString& text) {
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

void UnitBox::keyPressEvent(QKeyEvent* event) {
    const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::ShiftModifier;
    const QString text = event->text();
    if (event->key() == Qt::Key_Down) {
        emit DownPressed();
    } else if (modifiers != Qt::ControlModifier && !text.isEmpty() && text.front().isPrint()) {
        TakePasted(text);
    } else {
        PasteBox::keyPressEvent(event);
    }
}

void UnitBox::inputMethodEvent(QInputMethodEvent* event) {
    const QString committed = event->commitString();
    if (committed.isEmpty()) {
        PasteBox::inputMethodEvent(event);
        return;
    }
    QInputMethodEvent composing(event->preeditString(), event->attributes());
    PasteBox::inputMethodEvent(&composing);
    TakePasted(committed);
}

void UnitBox::focusInEvent(QFocusEvent* event) {
    PasteBox::focusInEvent(event);
    if (selectsTwo_ && event->reason() != Qt::PopupFocusReason) {
        setSelection(0, 2);
        clickedIn_ = event->reason() == Qt::MouseFocusReason;
    }
}

void UnitBox::mouseReleaseEvent(QMouseEvent* event) {
    PasteBox::mouseReleaseEvent(event);
    // The press that brought the focus has put the cursor where it was made.
    if (std::exchange(clickedIn_, false) && !hasSelectedText()) {
        setSelection(0, 2);
    }
}

}  // namespace datafile
