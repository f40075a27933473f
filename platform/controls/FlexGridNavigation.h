// Where a key leads from a cell, without a window.
//
// Rows are those below the headings; both rows and columns are numbered as in the grid.
#pragma once

#include <optional>

namespace platform {

class FlexGridNavigation {
public:
    enum class Move {
        kUp,
        kDown,
        kLeft,
        kRight,
        kPageUp,
        kPageDown,
        kFirstRow,  // in the same column
        kLastRow,
        kRowStart,
        kRowEnd,
        kFirstCell,
        kLastCell,
        kTab,
        kBacktab,
        kEnter,
        kEnterUp,
    };
    struct Place {
        int row = 0;
        int col = 0;
        bool operator==(const Place& other) const = default;
    };
    // What the keys move over.
    class Ground {
    public:
        Ground() = default;
        Ground(const Ground&) = delete;
        Ground& operator=(const Ground&) = delete;
        virtual ~Ground() = default;

        [[nodiscard]] virtual int FirstRow() const = 0;
        [[nodiscard]] virtual int LastRow() const = 0;  // below FirstRow when there is no row
        [[nodiscard]] virtual int Cols() const = 0;
        [[nodiscard]] virtual bool IsShown(int col) const = 0;
        // Whether Tab stops at a cell; only cells that a person fills are worth a stop.
        [[nodiscard]] virtual bool TabStops(int row, int col) const = 0;
        [[nodiscard]] virtual int PageRows() const = 0;
    };

    explicit FlexGridNavigation(const Ground& ground) : ground_(ground) {}

    // Where the move leads; nothing when there is no room to move that way. A run of Tabs begins in
    // the column of the first; Enter after it leads to the next row of that column.
    [[nodiscard]] std::optional<Place> Lead(Move move, Place from);
    // The current cell was changed in another way, so that a run of Tabs is over.
    void EndRun() { runCol_.reset(); }

    // The next column that is shown, or -1.
    [[nodiscard]] int NextCol(int from, int step) const;

private:
    [[nodiscard]] Place Target(Move move, Place from) const;
    [[nodiscard]] std::optional<Place> NextStop(Place from, int step) const;

    const Ground& ground_;
    std::optional<int> runCol_;
};

}  // namespace platform
