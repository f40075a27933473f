// The text box in which a grid's cell is edited.
//
// It reports to the grid what happens in it and leaves all decisions there: each key press is
// offered to the grid first. Until something is typed or a caret is asked for, the whole text stays
// selected and the mouse is the grid's, so that what is typed always takes the place of what was
// there. A key release is reported only for a key that was pressed here, since the key that moved
// on from another cell is released in this one.
#pragma once

#include <QLineEdit>
#include <QSet>
#include <functional>

namespace platform {

class FlexGridLimit;

class FlexGridEditor : public QLineEdit {
    Q_OBJECT

public:
    explicit FlexGridEditor(QWidget* parent);

    // Gives true when the grid has taken the key.
    void SetKeyTaker(std::function<bool(QKeyEvent*)> taker) { taker_ = std::move(taker); }
    // Puts a new text in without reporting it, all selected. No more than `longest` characters can
    // be typed, whatever was there; what is longer already can only be made shorter.
    void Load(const QString& text, int longest);
    void SetLongest(int longest);
    // A caret, so that the text can be changed in part.
    void PutCaret(int position);
    void SelectWhole();
    [[nodiscard]] bool HasCaret() const { return caret_; }
    // The width with which the whole text shows; pixels.
    [[nodiscard]] int RoomForText() const;
    // Lies over `cell`, and over its neighbors as far as `room` when the text needs it. The mouse
    // in that part is the grid's: a click there is meant for the neighbor.
    void LieOver(const QRect& cell, const QRect& room);
    // What is said about the text that is being typed; empty when all is well.
    void SetNote(const QString& note);
    // Whether a key that was pressed here is still down, so that its release will follow.
    [[nodiscard]] bool KeyIsDown() const { return !down_.isEmpty(); }

signals:
    void Edited();  // the user, or a paste or cut, changed the text
    void KeyTyped(QChar key);
    void KeyReleased(int key);
    void Dropped(const QString& text);
    void FocusLost();

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void OnTextEdited();
    void SetMaxLength(const QString& text, int longest);
    [[nodiscard]] bool IsMine(const QMouseEvent& event) const;

    std::function<bool(QKeyEvent*)> taker_;
    QSet<int> down_;
    FlexGridLimit* limit_ = nullptr;
    bool caret_ = false;
    QRect own_;  // the part that lies over the edited cell
};

}  // namespace platform
