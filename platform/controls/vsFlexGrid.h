// The grid: fixed header rows above rows of cells that are edited in place.
//
// Rows and columns are numbered from 0, row 0 being the first fixed (header) row. A cell holds a
// text; its column's format decides how that text is shown. Row data is one number per row. Widths
// are twips. Column resizing by the user is kept.
//
// Editing. Entering a cell, by mouse or keyboard, emits EnterCell; a handler that wants the cell
// edited calls EditCell, which asks BeforeEdit (any handler may set *cancel) and opens the editor
// with the cell's unformatted text selected. Each change of the editor's text, pasting and cutting
// included, emits ChangeEdit; typed characters emit KeyPressEdit before and KeyUpEdit after the
// editor saw them. Enter, Tab, the arrows, Page keys, loss of focus, and FinishEdit end the edit at
// once: the text goes into the cell, then AfterEdit is emitted. Esc restores the cell and emits
// EditCancelled with the text the cell had when the edit began. A paste or cut that no key release
// follows emits KeyUpEdit too, so that handlers that store values there miss nothing. Nothing is
// emitted by the program's own SetTextMatrix.
#pragma once

#include <QRect>
#include <QString>
#include <QTableView>

#include <memory>

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
    void SetRowData(int row, int data);
    Q_INVOKABLE QRect CellRect(int row, int col);
    // The name of a cell for assistive technology and its editor: "FIL 3, Forage" by default
    // (heading, text of the row's first column); `SetRowNameColumn(-1)` leaves the heading and row
    // number.
    [[nodiscard]] QString CellName(int row, int col) const;
    void SetRowNameColumn(int col);

    // Columns.
    Q_INVOKABLE int ColWidth(int col) const;
    void SetColWidth(int col, int twips);
    Q_INVOKABLE bool ColHidden(int col) const;
    void SetColHidden(int col, bool hidden);
    void SetColAlignment(int col, Qt::Alignment alignment);
    void SetFixedAlignment(int col, Qt::Alignment alignment);
    void SetColFormat(int col, const QString& pattern);
    void SetColDataType(int col, DataType type);
    // Equal neighbouring texts of the fixed rows are drawn as one cell.
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

    // Editing.
    void EditCell();
    void FinishEdit();
    [[nodiscard]] bool Editing() const;
    [[nodiscard]] QString EditText() const;
    void SetEditText(const QString& text);
    [[nodiscard]] QString EditSelText() const;
    void SetEditSelText(const QString& text);  // replaces the editor's selection, as typing does
    void SetEditMaxLength(int characters);
    // The editor's selection while editing, else the selected cells as tab-separated lines.
    [[nodiscard]] QString Clip() const;

signals:
    void EnterCell();
    void BeforeEdit(int row, int col, bool* cancel);
    void ChangeEdit();
    void AfterEdit(int row, int col);
    void EditCancelled(int row, int col);
    void KeyPressEdit(int row, int col, QChar key);
    void KeyUpEdit(int row, int col, int key);
    void ColumnResized(int col);
    void Click();  // a mouse click on any cell; Row and Col tell which (header cells leave them)

private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};
