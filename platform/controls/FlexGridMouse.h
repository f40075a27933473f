// What the mouse does in a grid, and the menu of its cells.
#pragma once

#include <QCoreApplication>
#include <QPersistentModelIndex>
#include <QPoint>

#include "platform/controls/FlexGridParts.h"

class QContextMenuEvent;
class QMouseEvent;

namespace platform {

class FlexGridKeys;
class FlexGridPaste;

class FlexGridMouse {
    Q_DECLARE_TR_FUNCTIONS(FlexGridMouse)

public:
    FlexGridMouse(const FlexGridParts& parts, FlexGridPaste& paste, FlexGridKeys& keys)
        : parts_(parts), paste_(paste), keys_(keys) {}

    void Press(const QMouseEvent& event);
    void Move(const QMouseEvent& event);
    void Release(const QMouseEvent& event);
    void DoubleClick(const QMouseEvent& event);
    void OpenMenu(const QContextMenuEvent& event);
    // A key came: the next click is not the second of a double click.
    void ForgetClick() { clicked_ = QPersistentModelIndex(); }

private:
    void PressCell(QPoint place, bool extend);
    void MarkCell(const QModelIndex& index);
    void Paste(QPoint place);
    void PopUp(QPoint place);
    void SelectAll();
    void PutCaretAt(QPoint place);
    void MoveTo(const QModelIndex& index, bool extend);

    FlexGridParts parts_;
    FlexGridPaste& paste_;
    FlexGridKeys& keys_;
    QPersistentModelIndex clicked_;  // the cell of the last press, until a key comes
    bool pressed_ = false;           // the left button went down in a cell
};

}  // namespace platform
