// Small steps that the forms with a grid share.
#pragma once

class vsFlexGrid;

namespace GridParts {

// Makes a cell current and edits it, also when it was current before.
void EnterAndEdit(vsFlexGrid& grid, int row, int col);
// Sets how many characters the editor of this cell takes. A stored text that is longer is not cut:
// walking over a cell must not change it.
void LimitEdit(vsFlexGrid& grid, int row, int col, int characters);

}  // namespace GridParts
