// What a worksheet offers to the worksheet manager, and what it is offered.
#pragma once

class QString;
class QWidget;

namespace worksheets {

class Worksheet {
public:
    virtual ~Worksheet() = default;

    // The form. It writes its load entry when it is made.
    virtual QWidget& Form() = 0;
    // The set-up operation: positions the form, checks its menu item, sets the worksheet id, fills.
    virtual void SetUp() = 0;
    // All save operations in their order. May be called at any time, also twice in a row. Ends an
    // edit that is still open in a cell editor first.
    virtual void Save() {}
    // The unload handler: what the form does last, its unload entry included. The manager calls it
    // once, just before it destroys the form.
    virtual void Unload() = 0;
};

class WorksheetHost {
public:
    virtual ~WorksheetHost() = default;

    virtual void PositionWorksheet(QWidget& form) = 0;
    // Checks the menu item of the worksheet of this id and makes the id the current one.
    virtual void BecomeCurrent(const QString& id) = 0;
    // The main frame: what dialogs are placed over.
    virtual QWidget& Frame() = 0;
    // Where forms live: the frame's client area.
    virtual QWidget& ClientArea() = 0;
};

}  // namespace worksheets
