// The grid's shape, cells and columns. Editing and keys are in the files beside this one.
#include "platform/controls/vsFlexGrid.h"

#include <QHeaderView>
#include <QScrollBar>
#include <algorithm>

#include "platform/RuntimeError.h"
#include "platform/controls/FlexGridDelegate.h"
#include "platform/controls/vsFlexGridImpl.h"
#include "platform/text/Numbers.h"

namespace {

[[noreturn]] void ThrowSubscript() {
    throw platform::RuntimeError(platform::kSubscriptOutOfRange,
                                 QStringLiteral("Subscript out of range"));
}

}  // namespace

vsFlexGrid::vsFlexGrid(QWidget* parent) : QTableView(parent), impl_(std::make_unique<Impl>(*this)) {
    impl_->model = new FlexGridModel(this);
    impl_->header = new FlexGridHeader(*impl_->model, this);
    impl_->editor = new FlexGridEditor(viewport());
    impl_->editor->hide();
    setHorizontalHeader(impl_->header);
    setModel(impl_->model);
    setItemDelegate(new FlexGridDelegate(this));
    setEditTriggers(NoEditTriggers);
    setSelectionMode(ContiguousSelection);
    setTabKeyNavigation(false);
    setWordWrap(false);
    setShowGrid(false);  // the cells draw their lines themselves
    setCornerButtonEnabled(false);
    setHorizontalScrollMode(ScrollPerPixel);
    setVerticalScrollMode(ScrollPerPixel);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    ApplyFont();
    connect(impl_->header, &FlexGridHeader::Clicked, this, [this] {
        impl_->mouseRow = 0;
        emit Click();
    });
    connect(impl_->header, &QHeaderView::sectionResized, this,
            [this](int col, int, int pixels) { OnColumnResized(col, pixels); });
    connect(impl_->model, &QAbstractItemModel::rowsInserted, this,
            [this](const QModelIndex&, int first, int last) {
                FitFigures(first + FixedRows(), last + FixedRows());
            });
    connect(impl_->model, &QAbstractItemModel::dataChanged, this,
            [this](const QModelIndex& first, const QModelIndex& last) {
                FitFigures(first.row() + FixedRows(), last.row() + FixedRows());
            });
    ConnectEditor();
}

vsFlexGrid::~vsFlexGrid() {
    // The editor's going would otherwise end the edit, and nobody is left to hear of it.
    impl_->edited = QPersistentModelIndex();
    impl_->editor->disconnect(this);
}

int vsFlexGrid::Rows() const {
    return impl_->model->Rows();
}

void vsFlexGrid::SetRows(int rows) {
    FinishEdit();
    const Impl::Quiet quiet(*impl_);
    impl_->model->SetRows(rows);
    EnsureCurrent();
}

int vsFlexGrid::Cols() const {
    return impl_->model->Cols();
}

void vsFlexGrid::SetCols(int cols) {
    FinishEdit();
    const Impl::Quiet quiet(*impl_);
    const int had = Cols();
    impl_->model->SetCols(cols);
    for (int col = had; col < Cols(); ++col) {
        ApplyColumn(col);
    }
    EnsureCurrent();
}

int vsFlexGrid::FixedRows() const {
    return impl_->model->FixedRows();
}

void vsFlexGrid::SetFixedRows(int rows) {
    FinishEdit();
    const Impl::Quiet quiet(*impl_);
    impl_->model->SetFixedRows(rows);
    impl_->header->setVisible(rows > 0);
    EnsureCurrent();
}

void vsFlexGrid::SetFormatString(const QString& headings) {
    const QStringList texts = headings.split(u'|');
    SetCols(std::max(Cols(), static_cast<int>(texts.size())));
    for (int col = 0; col < texts.size() && FixedRows() > 0; ++col) {
        impl_->model->SetText(0, col, texts[col].trimmed());
    }
}

QString vsFlexGrid::TextMatrix(int row, int col) const {
    CheckCell(row, col);
    return impl_->model->Text(row, col);
}

void vsFlexGrid::SetTextMatrix(int row, int col, const QString& text) {
    CheckCell(row, col);
    if (impl_->model->IsTableCell(row)) {
        return;
    }
    impl_->model->SetText(row, col, text);
    const bool isEdited =
        Editing() && impl_->edited.row() == row - FixedRows() && impl_->edited.column() == col;
    if (isEdited && impl_->editor->text() != text) {
        impl_->editor->Load(text, Longest(col));
        PlaceEditor();
    }
}

QString vsFlexGrid::DisplayText(int row, int col) const {
    CheckCell(row, col);
    return impl_->model->Shown(row, col);
}

double vsFlexGrid::ValueMatrix(int row, int col) const {
    return platform::Val(TextMatrix(row, col));
}

int vsFlexGrid::RowData(int row) const {
    CheckCell(row, 0);
    return impl_->model->RowData(row);
}

void vsFlexGrid::SetRowData(int row, int number) {
    CheckCell(row, 0);
    impl_->model->SetRowData(row, number);
}

QRect vsFlexGrid::CellRect(int row, int col) {
    CheckCell(row, col);
    if (row >= FixedRows()) {
        const QModelIndex index = impl_->model->index(row - FixedRows(), col);
        scrollTo(index);
        return visualRect(index);
    }
    QRect rect = impl_->header->CellRect(row, col);
    QScrollBar* bar = horizontalScrollBar();
    const int missing = std::max(rect.right() - viewport()->width() + 1, 0);
    bar->setValue(bar->value() + (rect.left() < missing ? rect.left() : missing));
    rect = impl_->header->CellRect(row, col);
    return rect.translated(0, -impl_->header->height());
}

QString vsFlexGrid::CellName(int row, int col) const {
    CheckCell(row, col);
    return impl_->model->CellName(row, col);
}

void vsFlexGrid::SetRowNameColumn(int col) {
    impl_->model->SetRowNameColumn(col);
}

bool vsFlexGrid::ColHidden(int col) const {
    CheckCol(col);
    return impl_->model->Column(col).hidden;
}

void vsFlexGrid::SetColHidden(int col, bool hidden) {
    CheckCol(col);
    impl_->model->Column(col).hidden = hidden;
    ApplyColumn(col);
    const Impl::Quiet quiet(*impl_);
    EnsureCurrent();
}

void vsFlexGrid::SetColAlignment(int col, Qt::Alignment alignment) {
    CheckCol(col);
    const bool vertical = (alignment & Qt::AlignVertical_Mask) != 0;
    impl_->model->Column(col).alignment = vertical ? alignment : alignment | Qt::AlignVCenter;
    impl_->model->ColumnChanged(col);
}

void vsFlexGrid::SetFixedAlignment(int col, Qt::Alignment alignment) {
    CheckCol(col);
    const bool vertical = (alignment & Qt::AlignVertical_Mask) != 0;
    impl_->model->Column(col).fixedAlignment = vertical ? alignment : alignment | Qt::AlignVCenter;
    impl_->model->ColumnChanged(col);
}

void vsFlexGrid::SetColFormat(int col, const QString& pattern) {
    CheckCol(col);
    impl_->model->Column(col).format = pattern;
    impl_->model->ColumnChanged(col);
}

void vsFlexGrid::SetColDataType(int col, DataType type) {
    CheckCol(col);
    impl_->model->Column(col).number = type != DataType::kText;
    impl_->model->ColumnChanged(col);
}

void vsFlexGrid::SetColAccessibleName(int col, const QString& name) {
    CheckCol(col);
    impl_->model->Column(col).accessibleName = name;
}

void vsFlexGrid::SetMergeFixed(bool merge) {
    impl_->header->SetMerged(merge);
}

void vsFlexGrid::AddItem(const QString& texts, int row) {
    const int at = row < 0 ? Rows() : row;
    if (at < FixedRows() || at > Rows()) {
        ThrowSubscript();
    }
    FinishEdit();
    const Impl::Quiet quiet(*impl_);
    impl_->model->InsertRow(at, texts.split(u'\t'));
    EnsureCurrent();
}

void vsFlexGrid::RemoveItem(int row) {
    CheckCell(row, 0);
    if (row < FixedRows()) {
        ThrowSubscript();
    }
    if (Editing() && impl_->edited.row() == row - FixedRows()) {
        // The row takes its open edit along.
        CloseEditor();
    }
    FinishEdit();
    const Impl::Quiet quiet(*impl_);
    const int col = Col();
    const bool wasCurrent = row == Row();
    impl_->model->RemoveRow(row);
    EnsureCurrent();
    if (wasCurrent && Rows() > FixedRows()) {
        MoveTo(std::min(row, Rows() - 1), col, false);
    }
}

void vsFlexGrid::SortNumericAscending(int col) {
    CheckCol(col);
    FinishEdit();
    impl_->model->SortNumericAscending(col);
}

int vsFlexGrid::Row() const {
    return FixedRows() + currentIndex().row();
}

int vsFlexGrid::MouseRow() const {
    return impl_->mouseRow;
}

void vsFlexGrid::SetRow(int row) {
    Select(row, Col());
}

int vsFlexGrid::Col() const {
    return std::max(currentIndex().column(), 0);
}

void vsFlexGrid::SetCol(int col) {
    Select(Row(), col);
}

void vsFlexGrid::Select(int row, int col) {
    if (Rows() == FixedRows()) {
        return;
    }
    CheckCell(row, col);
    if (row < FixedRows() || (row == Row() && col == Col())) {
        return;
    }
    FinishEdit();
    MoveTo(row, col, false);
}

void vsFlexGrid::updateGeometries() {
    QTableView::updateGeometries();
    PlaceEditor();
}

void vsFlexGrid::scrollContentsBy(int dx, int dy) {
    QTableView::scrollContentsBy(dx, dy);
    PlaceEditor();
}

void vsFlexGrid::CheckCell(int row, int col) const {
    if (row < 0 || row >= Rows()) {
        ThrowSubscript();
    }
    CheckCol(col);
}

void vsFlexGrid::CheckCol(int col) const {
    if (col < 0 || col >= Cols()) {
        ThrowSubscript();
    }
}

// Without a current cell assistive technology and keyboard alike would have nothing to stand on.
void vsFlexGrid::EnsureCurrent() {
    const int col = impl_->navigation.NextCol(-1, 1);
    if (Rows() == FixedRows() || col < 0) {
        return;
    }
    const bool valid = currentIndex().isValid() && !ColHidden(currentIndex().column());
    if (!valid) {
        MoveTo(std::max(Row(), FixedRows()), col, false);
    } else if (!impl_->anchor.isValid()) {
        impl_->anchor = currentIndex();
    }
}
