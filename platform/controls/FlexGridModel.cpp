#include "platform/controls/FlexGridModel.h"

#include <algorithm>
#include <cmath>

#include "platform/RuntimeError.h"
#include "platform/controls/FlexGridNotes.h"
#include "platform/text/Numbers.h"

namespace platform {

namespace {

QString InOneLine(QString text) {
    text.replace(QStringLiteral("\r\n"), QStringLiteral(" "));
    return text.replace(u'\r', u' ').replace(u'\n', u' ');
}

double NumberOrInfinity(const QString& text) {
    try {
        return platform::Val(text);
    } catch (const platform::RuntimeError&) {
        return HUGE_VAL;
    }
}

}  // namespace

FlexGridModel::FlexGridModel(QObject* parent) : QAbstractTableModel(parent), rows_(1) {}

void FlexGridModel::SetRows(int rows) {
    const int wanted = std::max(rows, fixedRows_);
    const int has = Rows();
    if (wanted > has) {
        beginInsertRows({}, has - fixedRows_, wanted - fixedRows_ - 1);
        rows_.resize(static_cast<std::size_t>(wanted), EmptyRow());
        endInsertRows();
    } else if (wanted < has) {
        beginRemoveRows({}, wanted - fixedRows_, has - fixedRows_ - 1);
        rows_.resize(static_cast<std::size_t>(wanted));
        endRemoveRows();
    }
}

void FlexGridModel::SetCols(int cols) {
    const auto wanted = static_cast<std::size_t>(std::max(cols, 0));
    const int has = Cols();
    const auto resize = [&] {
        columns_.resize(wanted);
        for (GridRow& row : rows_) {
            row.cells.resize(wanted);
        }
    };
    if (cols > has) {
        beginInsertColumns({}, has, cols - 1);
        resize();
        endInsertColumns();
    } else if (static_cast<int>(wanted) < has) {
        beginRemoveColumns({}, static_cast<int>(wanted), has - 1);
        resize();
        endRemoveColumns();
    }
}

void FlexGridModel::SetFixedRows(int rows) {
    if (rows == fixedRows_ || rows < 0) {
        return;
    }
    beginResetModel();
    fixedRows_ = rows;
    if (Rows() < rows) {
        rows_.resize(static_cast<std::size_t>(rows), EmptyRow());
    }
    endResetModel();
}

void FlexGridModel::SetTable(GridTable* table) {
    table_ = table;
    SetRows(fixedRows_ + (table == nullptr ? 0 : table->RowCount()));
    if (rowCount() > 0) {
        RowsChanged(fixedRows_, Rows() - 1);
    }
}

bool FlexGridModel::IsTableCell(int row) const {
    return table_ != nullptr && row >= fixedRows_ && TableRow(row) <= table_->RowCount();
}

GridTable::Takes FlexGridModel::Takes(int row, int col) const {
    if (IsTableCell(row)) {
        return table_->CellTakes(TableRow(row), col);
    }
    return Column(col).number ? GridTable::Takes::kNumber : GridTable::Takes::kText;
}

bool FlexGridModel::TakesText(int row, int col) const {
    return Takes(row, col) != GridTable::Takes::kNothing;
}

QString FlexGridModel::Text(int row, int col) const {
    return IsTableCell(row)
               ? table_->Text(TableRow(row), col)
               : rows_[static_cast<std::size_t>(row)].cells[static_cast<std::size_t>(col)];
}

void FlexGridModel::SetText(int row, int col, const QString& text) {
    QString& cell = rows_[static_cast<std::size_t>(row)].cells[static_cast<std::size_t>(col)];
    if (cell == text) {
        return;
    }
    cell = text;
    if (row < fixedRows_) {
        emit headerDataChanged(Qt::Horizontal, col, col);
        return;
    }
    const QModelIndex changed = index(row - fixedRows_, col);
    emit dataChanged(changed, changed);
}

QString FlexGridModel::Shown(int row, int col) const {
    const QString text = Text(row, col);
    return row < fixedRows_ ? text : Formatted(col, text);
}

QString FlexGridModel::Formatted(int col, const QString& text) const {
    const FlexGridColumn& column = Column(col);
    // Only a text that is a number as a whole: "12abc" and "1,000" would be shown as something that
    // they are not read as.
    if (column.format.isEmpty() || !platform::IsPlainNumber(text)) {
        return text;
    }
    const double value = NumberOrInfinity(text);
    if (!std::isfinite(value)) {
        return text;
    }
    return platform::Format(value, column.format);
}

QString FlexGridModel::Note(int row, int col) const {
    return IsTableCell(row) ? Note(row, col, Text(row, col)) : QString();
}

QString FlexGridModel::Note(int row, int col, const QString& text) const {
    if (!IsTableCell(row)) {
        return {};
    }
    const QString stored = table_->Stored(TableRow(row), col);
    if (text == stored || (text.isEmpty() && FlexGridNotes::IsZero(stored)) ||
        Formatted(col, text) == Formatted(col, stored)) {
        return {};
    }
    return FlexGridNotes::StoredAs(stored);
}

int FlexGridModel::RowData(int row) const {
    return IsTableCell(row) ? table_->RowData(TableRow(row))
                            : rows_[static_cast<std::size_t>(row)].data;
}

void FlexGridModel::SetRowData(int row, int data) {
    rows_[static_cast<std::size_t>(row)].data = data;
}

const FlexGridColumn& FlexGridModel::Column(int col) const {
    return columns_[static_cast<std::size_t>(col)];
}

FlexGridColumn& FlexGridModel::Column(int col) {
    return columns_[static_cast<std::size_t>(col)];
}

void FlexGridModel::ColumnChanged(int col) {
    emit headerDataChanged(Qt::Horizontal, col, col);
    if (rowCount() > 0) {
        emit dataChanged(index(0, col), index(rowCount() - 1, col));
    }
}

void FlexGridModel::InsertRow(int row, const QStringList& texts) {
    beginInsertRows({}, row - fixedRows_, row - fixedRows_);
    GridRow added = EmptyRow();
    const auto count = std::min(static_cast<std::size_t>(texts.size()), added.cells.size());
    std::copy_n(texts.begin(), count, added.cells.begin());
    rows_.insert(rows_.begin() + row, std::move(added));
    endInsertRows();
}

void FlexGridModel::RemoveRow(int row) {
    beginRemoveRows({}, row - fixedRows_, row - fixedRows_);
    rows_.erase(rows_.begin() + row);
    endRemoveRows();
}

// Before the move `to` counts the rows as they are, as after it.
void FlexGridModel::MoveRow(int from, int to) {
    if (from == to) {
        return;
    }
    const int behind = to > from ? to + 1 : to;
    beginMoveRows({}, from - fixedRows_, from - fixedRows_, {}, behind - fixedRows_);
    const auto first = rows_.begin() + from;
    const auto place = rows_.begin() + to;
    if (to > from) {
        std::rotate(first, first + 1, place + 1);
    } else {
        std::rotate(place, first, first + 1);
    }
    endMoveRows();
}

void FlexGridModel::RowsChanged(int first, int last) {
    const int begin = std::max(first, fixedRows_);
    const int end = std::min(last, Rows() - 1);
    if (begin <= end && Cols() > 0) {
        emit dataChanged(index(begin - fixedRows_, 0), index(end - fixedRows_, Cols() - 1));
    }
}

void FlexGridModel::SortNumericAscending(int col) {
    std::vector<std::pair<double, GridRow>> sorted;
    for (int row = fixedRows_; row < Rows(); ++row) {
        sorted.emplace_back(NumberOrInfinity(Text(row, col)),
                            std::move(rows_[static_cast<std::size_t>(row)]));
    }
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    auto place = rows_.begin() + fixedRows_;
    for (auto& [number, row] : sorted) {
        *place++ = std::move(row);
    }
    if (rowCount() > 0 && columnCount() > 0) {
        emit dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
    }
}

void FlexGridModel::MarkRows(int first, int count) {
    for (int row = 0; row < Rows(); ++row) {
        const bool marked = row >= first && row - first < count;
        rows_[static_cast<std::size_t>(row)].mark = marked ? row - first : -1;
    }
}

int FlexGridModel::MarkedRow(int mark) const {
    const auto found = std::find_if(rows_.begin(), rows_.end(),
                                    [mark](const GridRow& row) { return row.mark == mark; });
    return found == rows_.end() ? -1 : static_cast<int>(found - rows_.begin());
}

QString FlexGridModel::Heading(int col) const {
    QStringList texts;
    for (int row = 0; row < fixedRows_; ++row) {
        const QString text = InOneLine(Text(row, col)).trimmed();
        if (!text.isEmpty() && !texts.contains(text)) {
            texts += text;
        }
    }
    return texts.join(QStringLiteral(", "));
}

QString FlexGridModel::CellName(int row, int col) const {
    const QString heading = SpokenHeading(col);
    const QString rowName = RowName(row, col);
    return heading.isEmpty() ? rowName : heading + QStringLiteral(", ") + rowName;
}

QString FlexGridModel::SpokenHeading(int col) const {
    const QString heading = Heading(col);
    return heading.isEmpty() ? Column(col).accessibleName : heading;
}

// What a row is called in that column: nothing is named after itself.
QString FlexGridModel::RowName(int row, int col) const {
    if (IsTableCell(row) && rowNameColumn_ != col) {
        const QString name = InOneLine(table_->RowName(TableRow(row))).trimmed();
        return name.isEmpty() ? tr("row %1").arg(row - fixedRows_ + 1) : name;
    }
    const bool named = rowNameColumn_ >= 0 && rowNameColumn_ < Cols() && rowNameColumn_ != col;
    const QString name = named ? InOneLine(Shown(row, rowNameColumn_)).trimmed() : QString();
    return name.isEmpty() ? tr("row %1").arg(row - fixedRows_ + 1) : name;
}

int FlexGridModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : Rows() - fixedRows_;
}

int FlexGridModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : Cols();
}

QVariant FlexGridModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) {
        return {};
    }
    const int row = index.row() + fixedRows_;
    switch (role) {
        case Qt::DisplayRole:
            return InOneLine(Shown(row, index.column()));
        case Qt::EditRole:
            return Text(row, index.column());
        case Qt::TextAlignmentRole:
            return static_cast<int>(Column(index.column()).alignment);
        case Qt::AccessibleTextRole: {
            const QString shown = InOneLine(Shown(row, index.column()));
            const QString name = CellName(row, index.column());
            return shown.isEmpty() ? name : name + QStringLiteral(": ") + shown;
        }
        case Qt::AccessibleDescriptionRole:
            return Note(row, index.column());
        case kFigureRole:
            return Column(index.column()).number ||
                   platform::IsPlainNumber(Text(row, index.column()));
        default:
            return {};
    }
}

QVariant FlexGridModel::headerData(int section, Qt::Orientation orientation, int role) const {
    const bool isText = role == Qt::DisplayRole || role == Qt::AccessibleTextRole;
    if (orientation == Qt::Horizontal && isText && section >= 0 && section < Cols()) {
        return role == Qt::AccessibleTextRole ? SpokenHeading(section) : Heading(section);
    }
    if (orientation == Qt::Vertical && role == Qt::AccessibleTextRole && section >= 0 &&
        section < rowCount()) {
        return RowName(section + fixedRows_, -1);
    }
    return {};
}

FlexGridModel::GridRow FlexGridModel::EmptyRow() const {
    GridRow row;
    row.cells.resize(columns_.size());
    return row;
}

}  // namespace platform
