// What the grid of suppression costs shows and takes: for each class of fire sizes where it starts
// (column 0), where it ends (1) and what an acre costs (2). It has no window.
//
// "From" is computed from the class before and takes nothing; it follows when the edit of that
// class's "To" ends, not while it is typed. A typed text is read as its leading number and stored
// at once; the cells show what is stored. "To" shows sizes above 0 only. A number too large for the
// file is refused, and the cell is as it was before the action.
//
// Rows are classes, counted from 1 here as in c35AACTable.
#pragma once

#include <QString>

#include <array>
#include <functional>
#include <memory>
#include <vector>

#include "datafile/ZoneKeys.h"
#include "platform/controls/GridTable.h"
#include "worksheets/cost/c35AACTable.h"
#include "worksheets/undo/CellChanges.h"

namespace worksheets {

class CostGridTable : public platform::GridTable {
public:
    static constexpr int kFrom = 0;
    static constexpr int kTo = 1;
    static constexpr int kCost = 2;
    static constexpr int kColumns = 3;

    using Changes = std::vector<undo::CellChange<float>>;
    // Called with each action once it has ended; `changes` is empty when all is as it was before.
    using Done = std::function<void(const QString& name, const Changes& changes)>;

    explicit CostGridTable(Done done) : done_(std::move(done)) {}

    // Shows a zone's table.
    void Show(std::unique_ptr<c35AACTable> table);
    // The table that is shown; null, and all cells are empty, before the first.
    [[nodiscard]] c35AACTable* Table() const { return table_.get(); }

    // Sets the "From" of a class, given where the class before it ends.
    void SetNextLowerBound(int row, float top);
    // The stored number of a "To" or cost cell; 0 while no table is shown.
    [[nodiscard]] float Value(int row, int col) const;
    // Stores a number there: what the cell held before or after an action.
    void Put(int row, int col, float value);

    [[nodiscard]] int RowCount() const override { return ZoneKeys::kCostClasses; }
    [[nodiscard]] QString Text(int row, int col) const override;
    [[nodiscard]] QString Stored(int row, int col) const override;
    [[nodiscard]] QString RowName(int row) const override;
    [[nodiscard]] Takes CellTakes(int row, int col) const override;
    [[nodiscard]] int MaxLength(int col) const override;
    Answer Offer(int row, int col, const QString& typed) override;
    void BeginAction(const QString& name) override;
    void EndAction() override;

private:
    Done done_;
    std::unique_ptr<c35AACTable> table_;
    std::array<QString, ZoneKeys::kCostClasses> from_;
    undo::CellChanges<float> action_;
};

}  // namespace worksheets
