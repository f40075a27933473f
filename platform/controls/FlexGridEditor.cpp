#include "platform/controls/FlexGridEditor.h"

#include <QContextMenuEvent>
#include <QDropEvent>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QRegularExpression>
#include <QSignalBlocker>
#include <QValidator>
#include <algorithm>

#include "platform/controls/ClipboardShortcuts.h"
#include "platform/controls/FlexGridCellEdit.h"
#include "platform/controls/FlexGridPaint.h"

namespace platform {

namespace {

bool IsModifier(int key) {
    return key == Qt::Key_Shift || key == Qt::Key_Control || key == Qt::Key_Alt ||
           key == Qt::Key_AltGr || key == Qt::Key_Meta || key == Qt::Key_CapsLock ||
           key == Qt::Key_NumLock;
}

bool IsTab(const QKeyEvent& key) {
    return key.key() == Qt::Key_Tab || key.key() == Qt::Key_Backtab;
}

// Focus that comes back by itself: a menu, a tool of the editor's own, another window.
bool ComesBack(Qt::FocusReason reason) {
    return reason == Qt::PopupFocusReason || reason == Qt::MenuBarFocusReason ||
           reason == Qt::ActiveWindowFocusReason;
}

}  // namespace

// Undoes whatever would make a text longer than may be typed, from wherever it came.
class FlexGridLimit : public QValidator {
public:
    explicit FlexGridLimit(QObject* parent) : QValidator(parent) {}

    void Begin(const QString& text, int longest) {
        last_ = text;
        longest_ = longest;
    }

    State validate(QString& text, int& /*position*/) const override {
        if (!FlexGridCellEdit::Allows(last_, text, longest_)) {
            return Invalid;
        }
        last_ = text;
        return Acceptable;
    }

private:
    mutable QString last_;
    int longest_ = 0;
};

FlexGridEditor::FlexGridEditor(QWidget* parent)
    : QLineEdit(parent), limit_(new FlexGridLimit(this)) {
    setValidator(limit_);
    setFrame(false);
    setTextMargins(1, 0, 1, 0);  // where the cell shows it
    connect(this, &QLineEdit::textEdited, this, &FlexGridEditor::OnTextEdited);
}

void FlexGridEditor::Load(const QString& text, int longest) {
    const QSignalBlocker quiet(this);
    limit_->Begin(text, longest);
    SetMaxLength(text, longest);
    setText(text);
    SelectWhole();
    down_.clear();
}

void FlexGridEditor::SetLongest(int longest) {
    limit_->Begin(text(), longest);
    SetMaxLength(text(), longest);
}

// What the cell holds already is never cut off.
void FlexGridEditor::SetMaxLength(const QString& text, int longest) {
    constexpr int kLongest = 32767;  // the limit of every line edit
    setMaxLength(longest > 0 ? std::max(longest, static_cast<int>(text.size())) : kLongest);
}

// Selected backwards: of a text that is wider than its cell, the beginning shows.
void FlexGridEditor::SelectWhole() {
    setSelection(static_cast<int>(text().size()), -static_cast<int>(text().size()));
    caret_ = false;
}

void FlexGridEditor::PutCaret(int position) {
    deselect();
    setCursorPosition(position);
    caret_ = true;
}

int FlexGridEditor::RoomForText() const {
    constexpr int kBesideText = 8;  // the box's own margins and the caret
    return fontMetrics().horizontalAdvance(text()) + kBesideText;
}

// It grows away from the side on which the text begins to show.
void FlexGridEditor::LieOver(const QRect& cell, const QRect& room) {
    const int missing =
        std::clamp(RoomForText() - cell.width(), 0, std::max(room.width() - cell.width(), 0));
    const int roomLeft = std::max(cell.left() - room.left(), 0);
    const int roomRight = std::max(room.right() - cell.right(), 0);
    const bool toLeft = (alignment() & Qt::AlignRight) != 0;
    const int left = std::min(toLeft ? missing : std::max(missing - roomRight, 0), roomLeft);
    const QRect place = cell.adjusted(-left, 0, std::min(missing - left, roomRight), 0);
    own_ = cell.translated(-place.topLeft());
    setGeometry(place);
}

bool FlexGridEditor::IsMine(const QMouseEvent& event) const {
    return caret_ && own_.contains(event.pos());
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

// What is left alone here goes on to the grid below.
void FlexGridEditor::mousePressEvent(QMouseEvent* event) {
    if (!IsMine(*event) || event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    QLineEdit::mousePressEvent(event);
}

void FlexGridEditor::mouseMoveEvent(QMouseEvent* event) {
    if (!caret_ || !(event->buttons() & Qt::LeftButton)) {
        event->ignore();
        return;
    }
    QLineEdit::mouseMoveEvent(event);
}

void FlexGridEditor::mouseReleaseEvent(QMouseEvent* event) {
    if (!caret_ || event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    QLineEdit::mouseReleaseEvent(event);
}

// A line edit would select one word here, and take the next click for the third of a row: what is
// typed then would run into the rest of the old number.
void FlexGridEditor::mouseDoubleClickEvent(QMouseEvent* event) {
    if (!IsMine(*event) || event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    PutCaret(cursorPositionAt(event->pos()));
}

void FlexGridEditor::contextMenuEvent(QContextMenuEvent* event) {
    event->ignore();
}

// Dropped text is pasted: all of it or nothing.
void FlexGridEditor::dropEvent(QDropEvent* event) {
    if (!event->mimeData()->hasText()) {
        return;
    }
    if (caret_) {
        PutCaret(cursorPositionAt(event->position().toPoint()));
    } else {
        SelectWhole();
    }
    event->acceptProposedAction();
    emit Dropped(event->mimeData()->text());
}

void FlexGridEditor::paintEvent(QPaintEvent* event) {
    QLineEdit::paintEvent(event);
    QPainter painter(this);
    FlexGridPaint::DrawCurrent(painter, rect().adjusted(0, 0, 1, 1), palette(), true);
    if (!accessibleDescription().isEmpty()) {
        FlexGridPaint::DrawMark(painter, rect().adjusted(2, 2, -1, -1), palette(), false);
    }
}

// Spreadsheets put a line end behind a copied cell; a cell is one line without tabs.
void FlexGridEditor::OnTextEdited() {
    caret_ = true;
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

}  // namespace platform
