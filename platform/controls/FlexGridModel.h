// What a grid holds: its fixed rows, its rows of cells, and what is set for each column.
//
// Rows and columns are numbered from 0, row 0 being the first fixed row; the model's own index 0 is
// the first row below the fixed ones. Callers give rows and columns that exist.
//
// With a table the texts of the rows below the fixed ones come from there each time they are asked
// for; the model then keeps only what is the grid's own, a row's data and mark, and the table's
// owner announces rows that come, go and move.
#pragma once

#include <QAbstractTableModel>
#include <QString>
#include <QStringList>
#include <vector>

#include "platform/controls/GridTable.h"

namespace platform {

struct FlexGridColumn {
    int twips = 960;
    bool hidden = false;
    Qt::Alignment alignment = Qt::AlignLeft | Qt::AlignVCenter;
    Qt::Alignment fixedAlignment = Qt::AlignCenter;
    QString format;
    bool number = false;
    bool byUser = false;     // the user set the width
    int given = 0;           // pixels that something outside the grid needs
    int room = 0;            // pixels that the longest figure needs
    QString accessibleName;  // of a column without a heading
};

class FlexGridModel : public QAbstractTableModel {
    Q_OBJECT

public:
    // Whether a cell shows a figure, of which a part would be another figure.
    static constexpr int kFigureRole = Qt::UserRole;

    explicit FlexGridModel(QObject* parent);

    [[nodiscard]] int Rows() const { return static_cast<int>(rows_.size()); }
    [[nodiscard]] int Cols() const { return static_cast<int>(columns_.size()); }
    [[nodiscard]] int FixedRows() const { return fixedRows_; }
    void SetRows(int rows);
    void SetCols(int cols);
    void SetFixedRows(int rows);

    // Null: the model's own texts. The table must live as long as it is set.
    void SetTable(GridTable* table);
    [[nodiscard]] GridTable* Table() const { return table_; }
    // The number of a row in the table.
    [[nodiscard]] int TableRow(int row) const { return row - fixedRows_ + 1; }
    [[nodiscard]] bool IsTableCell(int row) const;
    // What a cell takes: the table's word, else the column's.
    [[nodiscard]] GridTable::Takes Takes(int row, int col) const;
    [[nodiscard]] bool TakesText(int row, int col) const;

    [[nodiscard]] QString Text(int row, int col) const;
    // Of a row that has no table only.
    void SetText(int row, int col, const QString& text);
    // The text as its column shows it: a number by the column's format, all else as it is.
    [[nodiscard]] QString Shown(int row, int col) const;
    // A text as the column shows it.
    [[nodiscard]] QString Formatted(int col, const QString& text) const;
    // What is said about a cell that shows another value than the stored one; empty when all is
    // well. The second takes the text that is being typed for that of the cell.
    [[nodiscard]] QString Note(int row, int col) const;
    [[nodiscard]] QString Note(int row, int col, const QString& text) const;
    [[nodiscard]] int RowData(int row) const;
    void SetRowData(int row, int data);
    [[nodiscard]] const FlexGridColumn& Column(int col) const;
    FlexGridColumn& Column(int col);
    // Announces that a column's way of showing its texts has changed.
    void ColumnChanged(int col);

    void InsertRow(int row, const QStringList& texts);
    void RemoveRow(int row);
    void MoveRow(int from, int to);
    // The texts of these rows have changed.
    void RowsChanged(int first, int last);
    void SortNumericAscending(int col);
    // Numbers rows from 0 on, so that they are found again wherever they have been sorted to.
    void MarkRows(int first, int count);
    // The row of that number, or -1.
    [[nodiscard]] int MarkedRow(int mark) const;

    // The heading in one line: the different texts of the fixed rows.
    [[nodiscard]] QString Heading(int col) const;
    [[nodiscard]] QString CellName(int row, int col) const;
    [[nodiscard]] QString SpokenHeading(int col) const;
    void SetRowNameColumn(int col) { rowNameColumn_ = col; }

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

private:
    struct GridRow {
        std::vector<QString> cells;
        int data = 0;
        int mark = -1;
    };

    [[nodiscard]] GridRow EmptyRow() const;
    [[nodiscard]] QString RowName(int row, int col) const;

    std::vector<GridRow> rows_;
    std::vector<FlexGridColumn> columns_;
    GridTable* table_ = nullptr;
    int fixedRows_ = 1;
    int rowNameColumn_ = 0;
};

}  // namespace platform
