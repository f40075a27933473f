// The narrow way between a grid and the object that owns what it shows.
//
// A table has no window. It owns typed values (zones, costs, resources) and decides what a typed
// text means; the grid shows its texts and offers it what a person typed, pasted or cleared. Data
// rows count from 1, the first row below the headings; columns count from 0 as in the grid.
//
// Two texts of a cell. `Text` is what the cell shows while nobody edits it, before the column's
// format is applied. `Stored` is what the file is going to hold. They differ while a cell shows
// what was typed although only its leading number was kept; the grid then marks the cell.
//
// Actions. Everything a person sees as one step (one edit of a cell from opening to leaving it, one
// paste of a block, one clearing) runs between BeginAction and EndAction, however many cells it
// offers, so that it can be saved as one and taken back as one. They do not nest.
#pragma once

#include <QString>

namespace platform {

class GridTable {
public:
    struct Answer {
        enum class Kind {
            kStored,   // kept as it was typed
            kChanged,  // kept, but as `text`: what the cell is to show from now on
            kRefused,  // not kept, and the cell is as before; `text` says why in a sentence
        };
        Kind kind = Kind::kStored;
        QString text;
    };
    // What a cell takes.
    enum class Takes { kNothing, kText, kNumber };

    GridTable() = default;
    GridTable(const GridTable&) = delete;
    GridTable& operator=(const GridTable&) = delete;
    virtual ~GridTable() = default;

    [[nodiscard]] virtual int RowCount() const = 0;
    [[nodiscard]] virtual QString Text(int row, int col) const = 0;
    [[nodiscard]] virtual QString Stored(int row, int col) const { return Text(row, col); }
    // What assistive technology and notes call the row, such as the name of its resource.
    [[nodiscard]] virtual QString RowName(int row) const = 0;
    // A number that belongs to the row, such as the key of its record; 0 for none.
    [[nodiscard]] virtual int RowData(int /*row*/) const { return 0; }
    [[nodiscard]] virtual Takes CellTakes(int row, int col) const = 0;
    // The most characters that can be typed into a cell of this column.
    [[nodiscard]] virtual int MaxLength(int col) const = 0;
    // Whether Tab stops in the column; a column that is filled now and then only is passed over.
    [[nodiscard]] virtual bool TabStops(int col) const {
        return CellTakes(1, col) != Takes::kNothing;
    }

    // Never throws for what was typed: a number that is too large is refused with a sentence.
    virtual Answer Offer(int row, int col, const QString& typed) = 0;

    // How many rows may be added at the end by pasting below it; 0 when none.
    [[nodiscard]] virtual int RoomForRows() const { return 0; }
    // Adds empty rows at the end, within an action. Throws what storing them throws.
    virtual void AppendRows(int /*count*/) {}

    // `name` is what undoing calls the action, such as "Paste".
    virtual void BeginAction(const QString& name) = 0;
    virtual void EndAction() = 0;
};

}  // namespace platform
