// Small steps that the forms with a grid share.
#pragma once

class vsFlexGrid;

namespace GridParts {

// Makes a cell current, edits it and gives it the focus, also when it was current before.
void EnterAndEdit(vsFlexGrid& grid, int row, int col);
// Keeps the grid no higher than its rows, so that what stands below it stands at its end.
void EndAtLastRow(vsFlexGrid& grid);

}  // namespace GridParts
