// What the grid of net value change shows and takes: the names of the resources in column 0, the
// values of one representative location in columns 1 to 6. It has no window.
//
// A value cell goes on showing what was typed into it until another table, or the same one anew, is
// shown, although only the leading number of it is stored: "abc" is stored as 0, "1,000" as 1. A
// number too large for the file is refused, and the cell is as it was before the action.
//
// Rows are resources and columns levels, so that both count from 1 here as in c34NVCTable.
#pragma once

#include <QString>

#include <array>
#include <functional>
#include <memory>
#include <vector>

#include "datafile/ZoneKeys.h"
#include "platform/controls/GridTable.h"
#include "worksheets/nvc/NVCResourceNames.h"
#include "worksheets/nvc/c34NVCTable.h"
#include "worksheets/undo/CellChanges.h"

namespace worksheets {

class NVCGridTable : public platform::GridTable {
public:
    static constexpr int kName = 0;  // the column of the names

    // What a cell shows and, of a value cell, what is stored for it and what it adds to the total.
    struct Cell {
        QString text;
        float value = 0;
        double number = 0;  // as the text says it, without the rounding to a single
        bool operator==(const Cell&) const = default;
    };
    using Changes = std::vector<undo::CellChange<Cell>>;
    // Called with each action once it has ended; `changes` is empty when all is as it was before.
    using Done = std::function<void(const QString& name, const Changes& changes)>;

    explicit NVCGridTable(Done done) : done_(std::move(done)) {}

    // The names are the same for all tables; SaveNames writes those that were changed.
    void LoadNames() { names_.Load(); }
    void SaveNames() { names_.Save(); }
    // Shows a table, which takes typing. The texts that were typed before are forgotten.
    void Show(std::unique_ptr<c34NVCTable> table);
    // The table that is shown; null, and all values are empty, before the first.
    [[nodiscard]] c34NVCTable* Table() const { return table_.get(); }
    // What is still shown although it is not what was chosen takes nothing, until Show.
    void StopTyping() { takesTyping_ = false; }

    // The totals of a level: of the stored values as singles, or of the numbers that the cells show
    // in double precision.
    [[nodiscard]] double LoadedTotal(int level) const;
    [[nodiscard]] double ShownTotal(int level) const;
    // The number that a value cell shows.
    [[nodiscard]] double Value(int row, int level) const;

    // Puts back what a cell held before or after an action.
    void Put(int row, int col, const Cell& cell);

    [[nodiscard]] int RowCount() const override { return ZoneKeys::kResources; }
    [[nodiscard]] QString Text(int row, int col) const override;
    [[nodiscard]] QString Stored(int row, int col) const override;
    [[nodiscard]] QString RowName(int row) const override { return names_.Name(row); }
    [[nodiscard]] Takes CellTakes(int row, int col) const override;
    [[nodiscard]] int MaxLength(int col) const override;
    [[nodiscard]] bool TabStops(int col) const override { return col != kName; }
    Answer Offer(int row, int col, const QString& typed) override;
    void BeginAction(const QString& name) override;
    void EndAction() override;

private:
    static std::size_t Position(int row, int col);
    [[nodiscard]] Cell Held(int row, int col) const;

    Done done_;
    NVCResourceNames names_;
    std::unique_ptr<c34NVCTable> table_;
    std::array<Cell, std::size_t{ZoneKeys::kResources} * ZoneKeys::kFilLevels> cells_;
    undo::CellChanges<Cell> action_;
    bool takesTyping_ = true;
};

}  // namespace worksheets
