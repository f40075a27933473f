// What a paste means: which cells get which texts and which are refused and why, computed before
// anything is changed, without a window.
//
// Rows are the table's, from 1 on; those beyond its end are rows that would have to be added.
#pragma once

#include <QString>
#include <optional>
#include <vector>

#include "platform/controls/FlexGridClip.h"
#include "platform/controls/GridTable.h"

namespace FlexGridPastePlan {

// The selected block of cells; corners included.
struct Area {
    int top = 1;
    int left = 0;
    int bottom = 1;
    int right = 0;
    [[nodiscard]] bool IsOneCell() const { return top == bottom && left == right; }
};

// What is pasted into.
class Ground {
public:
    Ground() = default;
    Ground(const Ground&) = delete;
    Ground& operator=(const Ground&) = delete;
    virtual ~Ground() = default;

    [[nodiscard]] virtual int RowCount() const = 0;
    [[nodiscard]] virtual int RoomForRows() const = 0;
    [[nodiscard]] virtual int Cols() const = 0;
    [[nodiscard]] virtual bool IsShown(int col) const = 0;
    // Of a row beyond the end: what it would take once it has been added.
    [[nodiscard]] virtual platform::GridTable::Takes Takes(int row, int col) const = 0;
    [[nodiscard]] virtual int MaxLength(int col) const = 0;  // 0: any length
    [[nodiscard]] virtual QString Text(int row, int col) const = 0;
};

struct Cell {
    int row = 0;
    int col = 0;
    QString text;
};
enum class Why { kBeyondTable, kNotEditable, kTooLong, kNoNumber, kRefused };
struct Refusal {
    int row = 0;
    int col = 0;  // -1: beyond the last column
    QString text;
    Why why = Why::kBeyondTable;
    QString reason;  // of kRefused
};
struct Plan {
    std::vector<Cell> cells;  // in reading order
    std::vector<Refusal> refusals;
    int newRows = 0;  // to be added at the end first
    Area area;        // what the block covers, as far as the table and the new rows go
};

// Where a block goes that is pasted over the whole table: without names, one that is as wide as the
// columns of figures goes to these, and never over the names. Any other selection stays as it is.
Area Begun(const FlexGridClip::Block& block, const Ground& ground, const Area& selected);
// Whether the first line holds headings: words where numbers are wanted, with numbers below them.
bool HasHeadings(const FlexGridClip::Block& block, const Ground& ground, const Area& selected);
// The block begins at the top left of the selection; a single value fills all of it. Without
// `addRows` what lies beyond the last row is refused.
Plan Make(const FlexGridClip::Block& block, const Ground& ground, const Area& selected,
          bool addRows);

// The text that a cell gets for a pasted one: in one line, and a number as it would be typed.
QString AsTyped(const QString& text, bool number, int longest);
// The text of an open cell after pasting between `before` and `behind`, or nothing when not all of
// it would fit or the whole would not be a number where one is wanted.
std::optional<QString> Inserted(const QString& before, const QString& text, const QString& behind,
                                bool number, int longest);

}  // namespace FlexGridPastePlan
