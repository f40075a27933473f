// The cells that one action of a person changes, each with what it held before and after.
//
// For table objects: Begin and End belong into BeginAction and EndAction, Remember before each
// change of a cell. However often a cell is changed within the action (at every key while it is
// typed into), what it held first and last counts; a cell that ends as it began is left out.
//
// `Cell` is a plain value that can be compared: all that must be put back into the cell.
#pragma once

#include <QString>

#include <functional>
#include <map>
#include <utility>
#include <vector>

namespace undo {

template <typename Cell>
struct CellChange {
    int row = 0;
    int col = 0;
    Cell before;
    Cell after;
};

template <typename Cell>
class CellChanges {
public:
    void Begin(const QString& name) {
        before_.clear();
        name_ = name;
        running_ = true;
    }
    [[nodiscard]] bool IsRunning() const { return running_; }
    [[nodiscard]] const QString& Name() const { return name_; }

    // `held` is what the cell holds now, before it is changed.
    void Remember(int row, int col, const Cell& held) {
        if (running_) {
            before_.emplace(std::pair(row, col), held);
        }
    }
    // What a cell held when the action began; null while the action has not changed it.
    [[nodiscard]] const Cell* Before(int row, int col) const {
        const auto found = before_.find({row, col});
        return running_ && found != before_.end() ? &found->second : nullptr;
    }
    // Ends the action and gives the cells that hold something else than before, row by row.
    // `holds` gives what a cell holds now.
    std::vector<CellChange<Cell>> End(const std::function<Cell(int row, int col)>& holds) {
        std::vector<CellChange<Cell>> changes;
        for (const auto& [place, before] : std::exchange(before_, {})) {
            Cell after = holds(place.first, place.second);
            if (!(after == before)) {
                changes.push_back({place.first, place.second, before, std::move(after)});
            }
        }
        running_ = false;
        return changes;
    }

private:
    std::map<std::pair<int, int>, Cell> before_;
    QString name_;
    bool running_ = false;
};

}  // namespace undo
