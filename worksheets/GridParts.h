// Small steps that the forms with a grid share.
#pragma once

class QVBoxLayout;
class QWidget;
class vsFlexGrid;

namespace worksheets {
class NoteLine;
}

namespace GridParts {

// Makes a cell current, edits it and gives it the focus, also when it was current before.
void EnterAndEdit(vsFlexGrid& grid, int row, int col);
// Makes a cell of the grid's table current without editing it. The row counts as the table's.
void Show(vsFlexGrid& grid, int row, int col);
// A control that keeps its place while it is hidden, so that nothing moves when it shows.
void KeepPlace(QWidget& control);
// Puts a grid into a page, with most of the room. Its frame ends where its rows and columns end:
// what stands below it stands at its end, and what lies beside it is plain.
// `beside` takes the room to its right.
void AddFramed(QVBoxLayout& body, vsFlexGrid& grid, QWidget* beside = nullptr);
// Puts the line below it: the grid's note, and how to copy the grid while there is none. `beside`
// has a place of its own at the line's end.
void AddNote(QVBoxLayout& body, worksheets::NoteLine& note, QWidget* beside = nullptr);

}  // namespace GridParts
