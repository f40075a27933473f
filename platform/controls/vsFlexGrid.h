// The grid: fixed header rows above rows of cells that are edited in place.
//
// Rows and columns are numbered from 0, row 0 being the first fixed (header) row. A cell holds a
// text; its column's format decides how that text is shown. Row data is one number per row. Widths
// are twips. Column resizing by the user is kept.
//
// The current cell. While there are data rows one of them is current. EnterCell reports that the
// user or Select, SetRow and SetCol moved to another cell, that the focus came to the grid by
// keyboard, or that the user asks to edit the current cell (Enter, F2, a typed character, a click).
// Where the focus came, the cell is only marked: EditCell then does nothing, so that a stray key at
// least shows what it does.
//
// Editing. A handler of EnterCell that wants the cell edited calls EditCell, which asks BeforeEdit
// (any handler may set *cancel) and opens the editor with the cell's unformatted text selected. All
// of it stays selected, also when the cell is clicked, until something is typed; F2, a double click
// or a click after that gives a caret.
// Each change of the editor's text, pasting and cutting included, emits ChangeEdit; typed
// characters emit KeyPressEdit before and KeyUpEdit after the editor saw them. Enter, Tab, Up,
// Down, the Page keys, Left and Right at the text's ends, loss of focus, and FinishEdit end the
// edit at once: the text goes into the cell, then AfterEdit is emitted. Esc restores the cell and,
// when something had been changed, emits EditCancelled with the cell holding again what it held
// when the edit began. A change that no key release follows (a paste, a key that was still down
// when the edit ended) emits KeyUpEdit too, so that handlers that store values there miss nothing.
// Nothing is emitted by the program's own SetTextMatrix; an open editor of that cell shows the new
// text.
//
// Tables. A grid that has a table (SetTable) shows that table's texts and keeps none of its own;
// SetTextMatrix then sets headings only. The table decides which cells are edited and how long a
// text may be. An action begins with the first change of an edit, before ChangeEdit, and ends after
// AfterEdit or EditCancelled; pasting and clearing offer their cells to the table without an editor
// and emit AfterEdit for each. Handlers of ChangeEdit and KeyUpEdit that want the table to have a
// text at once call OfferEdit; the grid offers the last text when the edit ends, unless that is
// what was offered last, and after Esc offers again what the cell held. A cell that shows another
// value than the stored one is marked. Note is the sentence for the line under the grid: connect
// NoteChanged. The table's owner announces what changes otherwise (Refresh and the Row functions).
//
// A grid with no handler for EnterCell is a list: it cannot be edited, Tab leaves it, and Space and
// Enter emit Click.
#pragma once

#include <QRect>
#include <QString>
#include <QTableView>
#include <map>
#include <memory>

#include "platform/controls/GridTable.h"

class vsFlexGrid : public QTableView {
    Q_OBJECT
    Q_PROPERTY(int Rows READ Rows WRITE SetRows)
    Q_PROPERTY(int Cols READ Cols WRITE SetCols)
    Q_PROPERTY(int FixedRows READ FixedRows WRITE SetFixedRows)
    Q_PROPERTY(int Row READ Row WRITE SetRow)
    Q_PROPERTY(int Col READ Col WRITE SetCol)
    Q_PROPERTY(QString EditText READ EditText WRITE SetEditText)
    Q_PROPERTY(QString Clip READ Clip)
    Q_PROPERTY(bool Editing READ Editing)

public:
    enum class DataType { kText, kLong, kSingle, kCurrency };

    explicit vsFlexGrid(QWidget* parent = nullptr);
    ~vsFlexGrid() override;

    // Shape. All counts include the fixed rows.
    [[nodiscard]] int Rows() const;
    void SetRows(int rows);
    [[nodiscard]] int Cols() const;
    void SetCols(int cols);
    [[nodiscard]] int FixedRows() const;
    void SetFixedRows(int rows);
    // "text|text|..." : a heading for each column of row 0; trailing blanks are dropped.
    void SetFormatString(const QString& headings);

    // Cells. Row or column outside the grid: subscript out of range (9).
    Q_INVOKABLE QString TextMatrix(int row, int col) const;
    void SetTextMatrix(int row, int col, const QString& text);
    Q_INVOKABLE QString DisplayText(int row, int col) const;
    [[nodiscard]] double ValueMatrix(int row, int col) const;  // the leading number of the text
    Q_INVOKABLE int RowData(int row) const;
    void SetRowData(int row, int number);
    Q_INVOKABLE QRect CellRect(int row, int col);
    // The name of a cell for assistive technology and its editor: "FIL 3, Forage" by default
    // (heading, text of the row's first column); `SetRowNameColumn(-1)` leaves the heading and row
    // number.
    [[nodiscard]] QString CellName(int row, int col) const;
    void SetRowNameColumn(int col);

    // Columns.
    // Widths hold for fonts of up to 10 points and grow with larger ones; a column of numbers also
    // grows until its longest figure shows whole, unless the user has set its width. ColWidth is
    // what was set.
    Q_INVOKABLE int ColWidth(int col) const;
    void SetColWidth(int col, int twips);
    // What something outside the grid, such as a total below the column, needs at least; pixels.
    void SetColRoom(int col, int pixels);
    // Gives each column the room of its heading's longest word, which some languages need more for.
    void FitHeadings();
    // Lets the column take what room the others leave, unless the user has set its width.
    void SetColFills(int col);
    // The widths, in twips, of the columns that the user has resized: to be kept while the form is
    // unloaded and set again after the columns have been set up.
    [[nodiscard]] std::map<int, int> WidthsByUser() const;
    void SetWidthsByUser(const std::map<int, int>& widths);
    Q_INVOKABLE bool ColHidden(int col) const;
    void SetColHidden(int col, bool hidden);
    void SetColAlignment(int col, Qt::Alignment alignment);
    void SetFixedAlignment(int col, Qt::Alignment alignment);
    void SetColFormat(int col, const QString& pattern);
    void SetColDataType(int col, DataType type);
    // What assistive technology calls a column that has no heading.
    void SetColAccessibleName(int col, const QString& name);
    // Equal neighboring texts of the fixed rows are drawn as one cell.
    void SetMergeFixed(bool merge);

    // Rows.
    // Inserts a row of tab-separated texts at `row`, or at the end when it is -1.
    void AddItem(const QString& texts, int row = -1);
    void RemoveItem(int row);
    void SortNumericAscending(int col);

    // The current cell. Row is below FixedRows only when there is no data row.
    [[nodiscard]] int Row() const;
    void SetRow(int row);
    [[nodiscard]] int Col() const;
    void SetCol(int col);
    void Select(int row, int col);
    // The row of the last Click, a header row too; -1 before the first.
    [[nodiscard]] int MouseRow() const;

    // Editing.
    void EditCell();
    void FinishEdit();
    [[nodiscard]] bool Editing() const;
    // Whether something was typed into, pasted into or cut from the open editor.
    [[nodiscard]] bool EditIsChanged() const;
    [[nodiscard]] QString EditText() const;
    void SetEditText(const QString& text);
    [[nodiscard]] QString EditSelText() const;
    // Pastes: replaces the editor's selection, as typing does; outside an edit the selected cells'
    // texts. A block of cells as a spreadsheet copies it begins at the top left of the selection.
    // Numbers arrive as the spreadsheet meant them; what does not fit, or is no number where one is
    // wanted, is refused, and a message lists it with its cells. Headings above numbers are left
    // out if the user agrees, rows beyond the end added if the table has room. An empty text, as a
    // clipboard without one gives, changes nothing.
    void SetEditSelText(const QString& text);
    // Empties what Clip gives: the editor's selection, or the selected cells, which stay selected.
    void ClearClip();
    void SetEditMaxLength(int characters);
    // The editor's selection when there is one, else the selected cells: a single one as it is, a
    // block as tab-separated lines.
    [[nodiscard]] QString Clip() const;

    // The table that owns what the rows below the headings show; null for none. An open edit ends
    // first. The table is not taken over and must stay as long as it is set.
    void SetTable(platform::GridTable* table);
    [[nodiscard]] platform::GridTable* Table() const;
    // What the table's owner announces; rows count as the table's. All of it may have changed:
    void Refresh();  // an edit that is open is given up
    void RowsChanged(int first, int last);
    void RowInserted(int row);
    void RowRemoved(int row);
    void RowMoved(int from, int to);  // `to`: its place when it has been moved
    // Gives the table the text of the open edit as it stands, if it was changed. kStored when there
    // is nothing to offer. A refusal is reported once, when the edit ends.
    platform::GridTable::Answer OfferEdit();
    // "Stored as 1" for a cell that shows, or whose editor holds, something else; else empty.
    Q_INVOKABLE QString CellNote(int row, int col) const;
    // The sentence to be read under the grid; empty while there is nothing to say.
    [[nodiscard]] QString Note() const;

    // Room for the headings and two rows.
    [[nodiscard]] QSize minimumSizeHint() const override;

signals:
    void EnterCell();
    void BeforeEdit(int row, int col, bool* cancel);
    void ChangeEdit();
    void AfterEdit(int row, int col);
    void EditCancelled(int row, int col);
    void KeyPressEdit(int row, int col, QChar key);
    void KeyUpEdit(int row, int col, int key);
    void NoteChanged(const QString& note);
    // The table refused a text; the sentence says why and names the cell.
    void Refused(int row, int col, const QString& sentence);
    void ColumnResized(int col);
    void WidthSetByUser();
    void Click();  // a mouse click on any cell; Row and Col say which (header cells leave them)

protected:
    bool event(QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void resizeEvent(QResizeEvent* event) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;

protected slots:
    void updateGeometries() override;

private:
    class Impl;

    void CheckCell(int row, int col) const;
    void CheckCol(int col) const;
    void ConnectParts();
    void OnColumnResized(int col, int pixels);
    [[nodiscard]] bool IsEdited(int row, int col) const;

    std::unique_ptr<Impl> impl_;
};
