#include "datafile/UnitBox.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QValidator>

#include <algorithm>
#include <utility>

namespace {

bool IsBetween(QChar character, char first, char last) {
    return character >= QLatin1Char(first) && character <= QLatin1Char(last);
}

}  // namespace

// Works on the whole text after each change, since pasting and dropping bring no key presses.
class UnitBox::Filter : public QValidator {
public:
    Filter(UnitBox& box, Rule rule, int length)
        : QValidator(&box), box_(box), rule_(rule), length_(length) {}

    State validate(QString& input, int& cursor) const override {
        if (box_.byProgram_) {
            return Acceptable;
        }
        QString kept;
        int keptCursor = 0;
        for (int at = 0; at < input.size(); ++at) {
            const QChar character = Filtered(rule_, input.at(at));
            if (!character.isNull()) {
                kept += character;
                keptCursor += at < cursor ? 1 : 0;
            }
        }
        const int excess = std::max(int(kept.size()) - length_, 0);
        // What came in last stands before the cursor: its end goes when there is no room for it.
        keptCursor -= excess;
        if (keptCursor < 0) {
            return Invalid;
        }
        kept.remove(keptCursor, excess);
        if (kept == box_.former_) {
            return Invalid;  // as if the key had not been pressed
        }
        input = kept;
        cursor = keptCursor;
        return Acceptable;
    }

private:
    UnitBox& box_;
    Rule rule_;
    int length_;
};

UnitBox::UnitBox(Rule rule, int length, QWidget* parent) : QLineEdit(parent) {
    setValidator(new Filter(*this, rule, length));
    connect(this, &QLineEdit::textChanged, this, [this](const QString& text) { former_ = text; });
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

void UnitBox::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Down) {
        emit DownPressed();
        return;
    }
    QLineEdit::keyPressEvent(event);
}

void UnitBox::focusInEvent(QFocusEvent* event) {
    QLineEdit::focusInEvent(event);
    if (selectsTwo_ && event->reason() != Qt::PopupFocusReason) {
        setSelection(0, 2);
        clickedIn_ = event->reason() == Qt::MouseFocusReason;
    }
}

void UnitBox::mouseReleaseEvent(QMouseEvent* event) {
    QLineEdit::mouseReleaseEvent(event);
    // The press that brought the focus has put the cursor where it was made.
    if (std::exchange(clickedIn_, false) && !hasSelectedText()) {
        setSelection(0, 2);
    }
}
