#include "worksheets/GridParts.h"

#include <algorithm>

#include "platform/controls/vsFlexGrid.h"

namespace GridParts {

void EnterAndEdit(vsFlexGrid& grid, int row, int col) {
    grid.Select(row, col);
    if (!grid.Editing()) {
        grid.EditCell();
    }
}

void LimitEdit(vsFlexGrid& grid, int row, int col, int characters) {
    grid.SetEditMaxLength(std::max(characters, int(grid.TextMatrix(row, col).size())));
}

}  // namespace GridParts
