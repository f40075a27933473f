// The grid itself: a thin face before its parts, each of which is in a file of its own.
#include "platform/controls/vsFlexGrid.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QMetaMethod>
#include <QMouseEvent>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <algorithm>

#include "platform/RuntimeError.h"
#include "platform/controls/FlexGridColumns.h"
#include "platform/controls/FlexGridDelegate.h"
#include "platform/controls/FlexGridEditing.h"
#include "platform/controls/FlexGridEditor.h"
#include "platform/controls/FlexGridHeader.h"
#include "platform/controls/FlexGridKeys.h"
#include "platform/controls/FlexGridModel.h"
#include "platform/controls/FlexGridMouse.h"
#include "platform/controls/FlexGridPaste.h"
#include "platform/controls/FlexGridSelection.h"
#include "platform/text/Numbers.h"

using platform::FlexGridColumns;
using platform::FlexGridDelegate;
using platform::FlexGridEditing;
using platform::FlexGridHeader;
using platform::FlexGridHost;
using platform::FlexGridKeys;
using platform::FlexGridModel;
using platform::FlexGridMouse;
using platform::FlexGridOffers;
using platform::FlexGridParts;
using platform::FlexGridPaste;
using platform::FlexGridSelection;
using platform::GridTable;

namespace {

using Quiet = FlexGridSelection::Quiet;

[[noreturn]] void ThrowSubscript() {
    throw platform::RuntimeError(platform::kSubscriptOutOfRange,
                                 QStringLiteral("Subscript out of range"));
}

}  // namespace

class vsFlexGrid::Impl : public FlexGridHost {
public:
    explicit Impl(vsFlexGrid& grid)
        : grid_(grid),
          model(new FlexGridModel(&grid)),
          header(new FlexGridHeader(*model, &grid)),
          columns(grid, *model, *header),
          selection(grid, *model),
          offers(*model, [this] { return State(); }),
          editing(grid, *model, offers),
          paste(Parts()),
          keys(Parts(), paste),
          mouse(Parts(), paste, keys) {}

    [[nodiscard]] bool IsList() const override {
        static const QMetaMethod kEnterCell = QMetaMethod::fromSignal(&vsFlexGrid::EnterCell);
        return !grid_.isSignalConnected(kEnterCell);
    }
    void Enter() override {
        if (grid_.currentIndex().isValid() && !editing.IsOpen()) {
            emit grid_.EnterCell();
        }
    }
    void ClickRow(int row) override {
        mouseRow = row;
        emit grid_.Click();
    }
    void Leave(bool forward) override { grid_.QTableView::focusNextPrevChild(forward); }

private:
    [[nodiscard]] FlexGridParts Parts() {
        return {*this, grid_, *model, selection, offers, editing};
    }
    [[nodiscard]] FlexGridOffers::State State() const {
        return {grid_.currentIndex(), editing.Cell(), editing.IsChanged(), editing.Text()};
    }

    vsFlexGrid& grid_;

public:
    FlexGridModel* model;
    FlexGridHeader* header;
    FlexGridColumns columns;
    FlexGridSelection selection;
    FlexGridOffers offers;
    FlexGridEditing editing;
    FlexGridPaste paste;
    FlexGridKeys keys;
    FlexGridMouse mouse;
    int mouseRow = -1;      // the row of the last click, header rows included
    bool arriving = false;  // the keyboard comes to the grid: its cell is marked, not opened
};

vsFlexGrid::vsFlexGrid(QWidget* parent) : QTableView(parent), impl_(std::make_unique<Impl>(*this)) {
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
    impl_->columns.ApplyFont();
    ConnectParts();
}

vsFlexGrid::~vsFlexGrid() = default;

void vsFlexGrid::ConnectParts() {
    connect(impl_->header, &FlexGridHeader::Clicked, this, [this] { impl_->ClickRow(0); });
    connect(impl_->header, &QHeaderView::sectionResized, this,
            [this](int col, int, int pixels) { OnColumnResized(col, pixels); });
    connect(&impl_->offers, &FlexGridOffers::Refused, this, &vsFlexGrid::Refused);
    connect(&impl_->offers, &FlexGridOffers::NoteChanged, this, &vsFlexGrid::NoteChanged);
    const FlexGridEditing* editing = &impl_->editing;
    connect(editing, &FlexGridEditing::BeforeEdit, this, &vsFlexGrid::BeforeEdit);
    connect(editing, &FlexGridEditing::ChangeEdit, this, &vsFlexGrid::ChangeEdit);
    connect(editing, &FlexGridEditing::AfterEdit, this, &vsFlexGrid::AfterEdit);
    connect(editing, &FlexGridEditing::EditCancelled, this, &vsFlexGrid::EditCancelled);
    connect(editing, &FlexGridEditing::KeyPressEdit, this, &vsFlexGrid::KeyPressEdit);
    connect(editing, &FlexGridEditing::KeyUpEdit, this, &vsFlexGrid::KeyUpEdit);
    connect(editing, &FlexGridEditing::Dropped, this, [this](const QString& text) {
        FlexGridEditing::Trapped([&] { SetEditSelText(text); });
    });
    impl_->editing.Editor().SetKeyTaker([this](QKeyEvent* event) {
        impl_->mouse.ForgetClick();
        return impl_->keys.PressInEditor(event);
    });
}

int vsFlexGrid::Rows() const {
    return impl_->model->Rows();
}

void vsFlexGrid::SetRows(int rows) {
    FinishEdit();
    const Quiet quiet(impl_->selection);
    impl_->model->SetRows(rows);
    impl_->selection.EnsureCurrent();
}

int vsFlexGrid::Cols() const {
    return impl_->model->Cols();
}

void vsFlexGrid::SetCols(int cols) {
    FinishEdit();
    const Quiet quiet(impl_->selection);
    const int had = Cols();
    impl_->model->SetCols(cols);
    for (int col = had; col < Cols(); ++col) {
        impl_->columns.Apply(col);
    }
    impl_->selection.EnsureCurrent();
}

int vsFlexGrid::FixedRows() const {
    return impl_->model->FixedRows();
}

void vsFlexGrid::SetFixedRows(int rows) {
    FinishEdit();
    const Quiet quiet(impl_->selection);
    impl_->model->SetFixedRows(rows);
    impl_->header->setVisible(rows > 0);
    impl_->selection.EnsureCurrent();
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
    if (IsEdited(row, col)) {
        impl_->editing.Show(text);
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

int vsFlexGrid::ColWidth(int col) const {
    CheckCol(col);
    return impl_->model->Column(col).twips;
}

void vsFlexGrid::SetColWidth(int col, int twips) {
    CheckCol(col);
    impl_->columns.SetWidth(col, twips);
}

void vsFlexGrid::SetColRoom(int col, int pixels) {
    CheckCol(col);
    impl_->columns.SetRoom(col, pixels);
}

void vsFlexGrid::FitHeadings() {
    impl_->columns.FitHeadings();
}

void vsFlexGrid::SetColFills(int col) {
    CheckCol(col);
    impl_->columns.SetFills(col);
}

std::map<int, int> vsFlexGrid::WidthsByUser() const {
    return impl_->columns.WidthsByUser();
}

void vsFlexGrid::SetWidthsByUser(const std::map<int, int>& widths) {
    impl_->columns.SetWidthsByUser(widths);
}

void vsFlexGrid::OnColumnResized(int col, int pixels) {
    if (impl_->columns.Resized(col, pixels)) {
        emit WidthSetByUser();
    }
    impl_->editing.Place();
    emit ColumnResized(col);
}

bool vsFlexGrid::ColHidden(int col) const {
    CheckCol(col);
    return impl_->model->Column(col).hidden;
}

void vsFlexGrid::SetColHidden(int col, bool hidden) {
    CheckCol(col);
    impl_->columns.SetHidden(col, hidden);
    const Quiet quiet(impl_->selection);
    impl_->selection.EnsureCurrent();
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
    const Quiet quiet(impl_->selection);
    impl_->model->InsertRow(at, texts.split(u'\t'));
    impl_->selection.EnsureCurrent();
}

void vsFlexGrid::RemoveItem(int row) {
    CheckCell(row, 0);
    if (row < FixedRows()) {
        ThrowSubscript();
    }
    if (Editing() && impl_->editing.Cell().row() == row - FixedRows()) {
        // The row takes its open edit along.
        impl_->editing.Close();
    }
    FinishEdit();
    const Quiet quiet(impl_->selection);
    const int col = Col();
    const bool wasCurrent = row == Row();
    impl_->model->RemoveRow(row);
    impl_->selection.EnsureCurrent();
    if (wasCurrent && Rows() > FixedRows()) {
        impl_->selection.MoveTo(std::min(row, Rows() - 1), col, false);
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
    impl_->selection.MoveTo(row, col, false);
}

void vsFlexGrid::EditCell() {
    if (!impl_->arriving) {
        impl_->editing.Begin();
    }
}

void vsFlexGrid::FinishEdit() {
    impl_->editing.Finish();
}

bool vsFlexGrid::Editing() const {
    return impl_->editing.IsOpen();
}

bool vsFlexGrid::EditIsChanged() const {
    return impl_->editing.IsChanged();
}

QString vsFlexGrid::EditText() const {
    return impl_->editing.Text();
}

void vsFlexGrid::SetEditText(const QString& text) {
    impl_->editing.SetText(text);
}

QString vsFlexGrid::EditSelText() const {
    return Editing() ? impl_->editing.Editor().selectedText() : QString();
}

void vsFlexGrid::SetEditSelText(const QString& text) {
    impl_->paste.Put(text);
}

void vsFlexGrid::ClearClip() {
    impl_->paste.Clear();
}

QString vsFlexGrid::Clip() const {
    return impl_->paste.Clip();
}

void vsFlexGrid::SetEditMaxLength(int characters) {
    impl_->editing.SetLongest(characters);
}

void vsFlexGrid::SetTable(GridTable* table) {
    FinishEdit();
    const Quiet quiet(impl_->selection);
    impl_->model->SetTable(table);
    impl_->offers.Forget();
    impl_->selection.EnsureCurrent();
    impl_->offers.UpdateNote();
}

GridTable* vsFlexGrid::Table() const {
    return impl_->model->Table();
}

// What was typed belonged to the rows as they were.
void vsFlexGrid::Refresh() {
    if (Table() == nullptr) {
        return;
    }
    if (Editing() && !impl_->offers.IsOffering()) {
        impl_->editing.Close();
        impl_->offers.EndAction();
    }
    const Quiet quiet(impl_->selection);
    impl_->model->SetRows(FixedRows() + Table()->RowCount());
    impl_->model->RowsChanged(FixedRows(), Rows() - 1);
    if (!impl_->offers.IsOffering()) {
        impl_->offers.Forget();
    }
    impl_->selection.EnsureCurrent();
    impl_->offers.UpdateNote();
}

void vsFlexGrid::RowsChanged(int first, int last) {
    const int above = FixedRows() - 1;
    impl_->model->RowsChanged(first + above, last + above);
    impl_->offers.UpdateNote();
}

// The grid may have counted the table's rows already.
void vsFlexGrid::RowInserted(int row) {
    if (Rows() - FixedRows() >= Table()->RowCount()) {
        RowsChanged(row, Table()->RowCount());
        return;
    }
    const Quiet quiet(impl_->selection);
    impl_->model->InsertRow(row + FixedRows() - 1, {});
    impl_->selection.EnsureCurrent();
    impl_->offers.UpdateNote();
}

void vsFlexGrid::RowRemoved(int row) {
    if (Rows() - FixedRows() > Table()->RowCount()) {
        RemoveItem(row + FixedRows() - 1);
    }
    impl_->offers.UpdateNote();
}

// The current cell and the open edit go along with their row.
void vsFlexGrid::RowMoved(int from, int to) {
    const int above = FixedRows() - 1;
    const Quiet quiet(impl_->selection);
    impl_->model->MoveRow(from + above, to + above);
    impl_->model->RowsChanged(std::min(from, to) + above, std::max(from, to) + above);
    impl_->offers.UpdateNote();
}

GridTable::Answer vsFlexGrid::OfferEdit() {
    return impl_->editing.Offer();
}

QString vsFlexGrid::CellNote(int row, int col) const {
    CheckCell(row, col);
    return impl_->offers.CellNote(impl_->model->index(row - FixedRows(), col));
}

QString vsFlexGrid::Note() const {
    return impl_->offers.Note();
}

bool vsFlexGrid::event(QEvent* event) {
    if (event->type() == QEvent::KeyPress && impl_ != nullptr) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (FlexGridKeys::IsTab(*key)) {
            impl_->keys.PressTab(*key);
            return true;
        }
    }
    return QTableView::event(event);
}

void vsFlexGrid::keyPressEvent(QKeyEvent* event) {
    impl_->mouse.ForgetClick();
    impl_->keys.Press(event);
}

void vsFlexGrid::mousePressEvent(QMouseEvent* event) {
    impl_->mouse.Press(*event);
}

void vsFlexGrid::mouseMoveEvent(QMouseEvent* event) {
    impl_->mouse.Move(*event);
}

void vsFlexGrid::mouseReleaseEvent(QMouseEvent* event) {
    impl_->mouse.Release(*event);
}

void vsFlexGrid::mouseDoubleClickEvent(QMouseEvent* event) {
    impl_->mouse.DoubleClick(*event);
}

void vsFlexGrid::contextMenuEvent(QContextMenuEvent* event) {
    impl_->mouse.OpenMenu(*event);
}

// What an input method has composed is typed, too.
void vsFlexGrid::inputMethodEvent(QInputMethodEvent* event) {
    if (!event->commitString().isEmpty() || !event->preeditString().isEmpty()) {
        impl_->Enter();
        if (Editing()) {
            QCoreApplication::sendEvent(&impl_->editing.Editor(), event);
        }
    }
}

void vsFlexGrid::focusInEvent(QFocusEvent* event) {
    if (Editing()) {
        impl_->editing.TakeFocus();
        return;
    }
    QTableView::focusInEvent(event);
    const Qt::FocusReason reason = event->reason();
    const bool byKeyboardOrProgram =
        reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason ||
        reason == Qt::ShortcutFocusReason || reason == Qt::OtherFocusReason;
    if (byKeyboardOrProgram && !impl_->editing.IsClosing()) {
        const QScopedValueRollback arriving(impl_->arriving, true);
        impl_->Enter();
    }
}

void vsFlexGrid::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    impl_->editing.End();
    QTableView::currentChanged(current, previous);
    setAttribute(Qt::WA_InputMethodEnabled, current.isValid() && !impl_->IsList());
    if (current.isValid() && !impl_->selection.IsQuiet()) {
        scrollTo(current);
        emit EnterCell();
    }
    impl_->offers.UpdateNote();
}

void vsFlexGrid::changeEvent(QEvent* event) {
    QTableView::changeEvent(event);
    if (event->type() == QEvent::FontChange && impl_ != nullptr) {
        impl_->columns.ApplyFont();
    }
}

void vsFlexGrid::resizeEvent(QResizeEvent* event) {
    QTableView::resizeEvent(event);
    impl_->columns.FillRoom();
}

void vsFlexGrid::updateGeometries() {
    QTableView::updateGeometries();
    if (impl_ != nullptr) {
        impl_->editing.Place();
    }
}

void vsFlexGrid::scrollContentsBy(int dx, int dy) {
    QTableView::scrollContentsBy(dx, dy);
    impl_->editing.Place();
}

QSize vsFlexGrid::minimumSizeHint() const {
    constexpr int kLeastRows = 2;
    const int headings =
        horizontalHeader()->isVisibleTo(this) ? horizontalHeader()->sizeHint().height() : 0;
    const int rows = kLeastRows * verticalHeader()->defaultSectionSize();
    const QScrollBar& across = *horizontalScrollBar();
    const int bar = across.maximum() > across.minimum() ? across.sizeHint().height() : 0;
    const QSize least = QTableView::minimumSizeHint();
    return {least.width(), std::max(least.height(), headings + rows + bar + 2 * frameWidth())};
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

bool vsFlexGrid::IsEdited(int row, int col) const {
    const QPersistentModelIndex& cell = impl_->editing.Cell();
    return cell.isValid() && cell.row() == row - FixedRows() && cell.column() == col;
}
