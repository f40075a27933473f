// The parts of a grid and the state of its editing.
#pragma once

#include <QPersistentModelIndex>

#include "platform/controls/FlexGridEditor.h"
#include "platform/controls/FlexGridHeader.h"
#include "platform/controls/FlexGridModel.h"
#include "platform/controls/vsFlexGrid.h"

class vsFlexGrid::Impl {
public:
    FlexGridModel* model = nullptr;
    FlexGridHeader* header = nullptr;
    FlexGridEditor* editor = nullptr;

    QPersistentModelIndex edited;  // invalid: no edit is open
    QString textBefore;            // what the cell held when the edit began
    int maxLength = 0;             // 0: any length
    bool changed = false;          // the user changed the text since the edit began
    bool unreported = false;       // ... and no KeyUpEdit has been emitted since
    bool finishing = false;
    bool closing = false;

    QPersistentModelIndex anchor;  // where the selected block begins
    int mouseRow = -1;             // the row of the last click, header rows included
    bool pressed = false;          // the left mouse button went down in a cell
    int quiet = 0;                 // the program is changing rows: no EnterCell
    bool sizing = false;           // the program is setting widths

    // No EnterCell while it lives.
    class Quiet {
    public:
        explicit Quiet(Impl& impl) : impl_(impl) { ++impl_.quiet; }
        ~Quiet() { --impl_.quiet; }
        Quiet(const Quiet&) = delete;
        Quiet& operator=(const Quiet&) = delete;

    private:
        Impl& impl_;
    };
};
