// The parts of a grid and the state of its editing.
#pragma once

#include <QList>
#include <QPersistentModelIndex>
#include <QScopedValueRollback>

#include "platform/controls/FlexGridCellEdit.h"
#include "platform/controls/FlexGridEditor.h"
#include "platform/controls/FlexGridHeader.h"
#include "platform/controls/FlexGridModel.h"
#include "platform/controls/FlexGridNavigation.h"
#include "platform/controls/vsFlexGrid.h"

class vsFlexGrid::Impl {
public:
    explicit Impl(const vsFlexGrid& grid) : keyGround(grid) {}

    FlexGridModel* model = nullptr;
    FlexGridHeader* header = nullptr;
    FlexGridEditor* editor = nullptr;

    QPersistentModelIndex edited;  // invalid: no edit is open
    FlexGridCellEdit edit;
    int maxLength = 0;  // 0: any length
    bool finishing = false;
    bool closing = false;
    bool arriving = false;  // the keyboard comes to the grid: its cell is marked, not opened

    QPersistentModelIndex anchor;   // where the selected block begins
    QPersistentModelIndex clicked;  // the cell of the last press of the mouse, until a key comes
    int mouseRow = -1;              // the row of the last click, header rows included
    bool pressed = false;           // the left mouse button went down in a cell
    int quiet = 0;                  // the program is changing rows: no EnterCell
    bool sizing = false;            // the program is setting widths
    double scale = 1;               // of sizes that are given in twips
    int digitWidth = 8;
    int fills = -1;         // the column that takes what room is left
    bool inAction = false;  // the table has been told of an action that has not ended
    bool offering = false;  // the table is being offered a text

    struct Notes {
        QString told;                        // what became of the last action, if not as typed
        QList<QPersistentModelIndex> cells;  // the cells that were marked, the latest last
        QString shown;
        // What shows stays until it is told otherwise.
        void Forget() {
            told.clear();
            cells.clear();
        }
    };
    Notes notes;

    // What keys move over.
    class KeyGround : public FlexGridNavigation::Ground {
    public:
        explicit KeyGround(const vsFlexGrid& grid) : grid_(grid) {}
        [[nodiscard]] int FirstRow() const override { return grid_.FixedRows(); }
        [[nodiscard]] int LastRow() const override { return grid_.Rows() - 1; }
        [[nodiscard]] int Cols() const override { return grid_.Cols(); }
        [[nodiscard]] bool IsShown(int col) const override { return !grid_.ColHidden(col); }
        [[nodiscard]] bool TabStops(int row, int col) const override;
        [[nodiscard]] int PageRows() const override;

    private:
        const vsFlexGrid& grid_;
    };
    KeyGround keyGround;
    FlexGridNavigation navigation{keyGround};

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
