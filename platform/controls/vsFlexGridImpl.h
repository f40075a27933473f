// The parts of a grid and the state of its editing.
#pragma once

#include <QList>
#include <QPersistentModelIndex>
#include <QScopedValueRollback>

#include "platform/controls/FlexGridCellEdit.h"
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
    FlexGridCellEdit edit;
    int maxLength = 0;  // 0: any length
    bool finishing = false;
    bool closing = false;

    QPersistentModelIndex anchor;  // where the selected block begins
    int mouseRow = -1;             // the row of the last click, header rows included
    bool pressed = false;          // the left mouse button went down in a cell
    int quiet = 0;                 // the program is changing rows: no EnterCell
    bool sizing = false;           // the program is setting widths
    bool inAction = false;         // the table has been told of an action that has not ended
    bool offering = false;         // the table is being offered a text

    struct Notes {
        QString told;  // what became of the last action; empty when all is well
        QList<QPersistentModelIndex> cells;  // the cells that were marked, the latest last
        QString shown;
        // What shows stays until it is told otherwise.
        void Forget() {
            told.clear();
            cells.clear();
        }
    };
    Notes notes;

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
