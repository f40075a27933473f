// Small steps that the forms with a grid share.
#pragma once

class QWidget;
class vsFlexGrid;

namespace GridParts {

// Makes a cell current, edits it and gives it the focus, also when it was current before.
void EnterAndEdit(vsFlexGrid& grid, int row, int col);
// Makes a cell of the grid's table current without editing it. The row counts as the table's.
void Show(vsFlexGrid& grid, int row, int col);
// A control that keeps its place while it is hidden, so that nothing moves when it shows.
void KeepPlace(QWidget& control);
// Keeps the grid no higher than its rows, so that what stands below it stands at its end.
void EndAtLastRow(vsFlexGrid& grid);

}  // namespace GridParts
