// The current cell of a grid and the block that is selected around it.
//
// Rows and columns are numbered as in the grid. Moving the current cell is reported by the view as
// always; IsQuiet then says whether the user moved or the program.
#pragma once

#include <QModelIndexList>
#include <QPersistentModelIndex>

class QTableView;

namespace platform {

class FlexGridModel;

class FlexGridSelection {
public:
    FlexGridSelection(QTableView& view, FlexGridModel& model) : view_(view), model_(model) {}

    // Makes a cell current; `extend` selects from where the block began. False when there is no
    // such cell.
    bool MoveTo(int row, int col, bool extend);
    // Selects a block without entering it, its first cell current.
    void SelectBlock(const QModelIndex& first, const QModelIndex& last);
    // Makes a cell current if none is.
    void EnsureCurrent();
    // What is selected, else the current cell, in reading order and without hidden columns.
    [[nodiscard]] QModelIndexList Cells() const;

    // While one lives, the program is changing rows or cells: nobody has entered a cell.
    class Quiet {
    public:
        explicit Quiet(FlexGridSelection& selection) : selection_(selection) {
            ++selection_.quiet_;
        }
        ~Quiet() { --selection_.quiet_; }
        Quiet(const Quiet&) = delete;
        Quiet& operator=(const Quiet&) = delete;

    private:
        FlexGridSelection& selection_;
    };
    [[nodiscard]] bool IsQuiet() const { return quiet_ > 0; }

private:
    void Select(const QModelIndex& one, const QModelIndex& other);
    [[nodiscard]] int FirstShown() const;

    QTableView& view_;
    FlexGridModel& model_;
    QPersistentModelIndex anchor_;  // where the selected block begins
    int quiet_ = 0;
};

}  // namespace platform
