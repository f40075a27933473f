// A line edit in which all ways of pasting are one and the same: the keys, the box's own menu, the
// middle mouse button and dropped text all hand what they bring to TakePasted. A clipboard without
// text leaves the box as it is.
#pragma once

#include <QClipboard>
#include <QLineEdit>
#include <QString>

namespace platform {

class PasteBox : public QLineEdit {
    Q_OBJECT

public:
    using QLineEdit::QLineEdit;

protected:
    // Puts the text in the place of the selection, cut to the room that the box has.
    virtual void TakePasted(const QString& text);

    void keyPressEvent(QKeyEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    void Paste(QClipboard::Mode mode);
};

}  // namespace platform
