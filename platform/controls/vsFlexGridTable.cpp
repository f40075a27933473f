// The grid and the table that owns what it shows.
#include <QAccessible>

#include "platform/controls/FlexGridNotes.h"
#include "platform/controls/vsFlexGridImpl.h"
#include "platform/text/Numbers.h"

void vsFlexGrid::SetTable(GridTable* table) {
    FinishEdit();
    const Impl::Quiet quiet(*impl_);
    impl_->model->SetTable(table);
    impl_->notes.Forget();
    EnsureCurrent();
    TellNote();
}

GridTable* vsFlexGrid::Table() const {
    return impl_->model->Table();
}

// What was typed belonged to the rows as they were.
void vsFlexGrid::Refresh() {
    if (Table() == nullptr) {
        return;
    }
    if (Editing() && !impl_->offering) {
        CloseEditor();
        EndAction();
    }
    const Impl::Quiet quiet(*impl_);
    impl_->model->SetRows(FixedRows() + Table()->RowCount());
    impl_->model->RowsChanged(FixedRows(), Rows() - 1);
    if (!impl_->offering) {
        impl_->notes.Forget();
    }
    EnsureCurrent();
    TellNote();
}

void vsFlexGrid::RowsChanged(int first, int last) {
    const int above = FixedRows() - 1;
    impl_->model->RowsChanged(first + above, last + above);
    TellNote();
}

// The grid may have counted the table's rows already.
void vsFlexGrid::RowInserted(int row) {
    if (Rows() - FixedRows() >= Table()->RowCount()) {
        RowsChanged(row, Table()->RowCount());
        return;
    }
    const Impl::Quiet quiet(*impl_);
    impl_->model->InsertRow(row + FixedRows() - 1, {});
    EnsureCurrent();
    TellNote();
}

void vsFlexGrid::RowRemoved(int row) {
    if (Rows() - FixedRows() > Table()->RowCount()) {
        RemoveItem(row + FixedRows() - 1);
    }
    TellNote();
}

// Rows that came or went at the end, whether or not they have been announced.
void vsFlexGrid::SyncRows() {
    const Impl::Quiet quiet(*impl_);
    impl_->model->SetRows(FixedRows() + Table()->RowCount());
    EnsureCurrent();
}

// The current cell and the open edit go along with their row.
void vsFlexGrid::RowMoved(int from, int to) {
    const int above = FixedRows() - 1;
    const Impl::Quiet quiet(*impl_);
    impl_->model->MoveRow(from + above, to + above);
    impl_->model->RowsChanged(std::min(from, to) + above, std::max(from, to) + above);
    TellNote();
}

GridTable::Answer vsFlexGrid::OfferEdit() {
    GridTable::Answer answer;
    if (!Editing() || Table() == nullptr || !impl_->edit.IsChanged()) {
        return answer;
    }
    const QPersistentModelIndex cell = impl_->edited;
    const QString text = impl_->editor->text();
    answer = Offer(cell.row() + FixedRows(), cell.column(), text);
    impl_->edit.Offered(text, answer);
    TellNote();
    return answer;
}

// The row is the grid's. What else shows something new afterwards, the table's owner announces.
GridTable::Answer vsFlexGrid::Offer(int row, int col, const QString& text) {
    const QScopedValueRollback offering(impl_->offering, true);
    const QPersistentModelIndex cell = impl_->model->index(row - FixedRows(), col);
    const GridTable::Answer answer = Table()->Offer(impl_->model->TableRow(row), col, text);
    if (cell.isValid()) {
        impl_->model->RowsChanged(cell.row() + FixedRows(), cell.row() + FixedRows());
    }
    return answer;
}

// Rows may have moved while the table took the text.
void vsFlexGrid::TakeAnswer(const QModelIndex& cell, const QString& typed,
                            const GridTable::Answer& answer) {
    if (!cell.isValid()) {
        return;
    }
    const int row = cell.row() + FixedRows();
    impl_->model->RowsChanged(row, row);
    const FlexGridNotes::Cell named = NamedCell(cell);
    using Kind = GridTable::Answer::Kind;
    if (answer.kind == Kind::kRefused) {
        impl_->notes.told = FlexGridNotes::Refused(named, answer.text);
        emit Refused(row, cell.column(), impl_->notes.told);
    } else if (answer.kind == Kind::kChanged && answer.text != typed &&
               !FlexGridNotes::SameNumber(typed, answer.text)) {
        impl_->notes.told = ReadAs(cell, typed, answer.text);
    }
    if (!impl_->model->Note(row, cell.column()).isEmpty()) {
        impl_->notes.cells.removeOne(cell);
        impl_->notes.cells.append(cell);
    }
}

// Actions do not nest: what a paste leads to belongs to it.
void vsFlexGrid::BeginAction(const QString& name) {
    if (Table() != nullptr && !impl_->inAction) {
        impl_->inAction = true;
        impl_->notes.told.clear();
        Table()->BeginAction(name);
    }
}

void vsFlexGrid::EndAction() {
    if (std::exchange(impl_->inAction, false) && Table() != nullptr) {
        Table()->EndAction();
    }
}

QString vsFlexGrid::CellNote(int row, int col) const {
    CheckCell(row, col);
    const bool edited =
        Editing() && impl_->edited.row() == row - FixedRows() && impl_->edited.column() == col;
    return edited && impl_->edit.IsChanged() ? impl_->model->Note(row, col, impl_->editor->text())
                                             : impl_->model->Note(row, col);
}

// What is being typed comes first, then what became of the last action, then the cell that is
// current, then the latest one that is still marked.
QString vsFlexGrid::Note() const {
    if (Table() == nullptr) {
        return {};
    }
    if (Editing() && impl_->edit.IsChanged()) {
        const QString text = impl_->editor->text();
        const int row = impl_->edited.row() + FixedRows();
        const int col = impl_->edited.column();
        const bool marked = !impl_->model->Note(row, col, text).isEmpty();
        if (marked && !FlexGridNotes::MayBecomeNumber(text)) {
            return ReadAs(impl_->edited, text, Table()->Stored(impl_->model->TableRow(row), col));
        }
    }
    if (!impl_->notes.told.isEmpty()) {
        return impl_->notes.told;
    }
    const QString ofCurrent = NoteOf(currentIndex());
    if (!ofCurrent.isEmpty()) {
        return ofCurrent;
    }
    for (auto cell = impl_->notes.cells.crbegin(); cell != impl_->notes.cells.crend(); ++cell) {
        const QString note = NoteOf(*cell);
        if (!note.isEmpty()) {
            return note;
        }
    }
    return {};
}

QString vsFlexGrid::NoteOf(const QModelIndex& cell) const {
    const bool edited = Editing() && impl_->edited == cell;
    if (!cell.isValid() || edited ||
        impl_->model->Note(cell.row() + FixedRows(), cell.column()).isEmpty()) {
        return {};
    }
    const int row = cell.row() + FixedRows();
    return ReadAs(cell, impl_->model->Text(row, cell.column()),
                  Table()->Stored(impl_->model->TableRow(row), cell.column()));
}

QString vsFlexGrid::ReadAs(const QModelIndex& cell, const QString& typed,
                           const QString& stored) const {
    const int row = impl_->model->TableRow(cell.row() + FixedRows());
    const bool number = Table()->CellTakes(row, cell.column()) == GridTable::Takes::kNumber;
    return FlexGridNotes::ReadAs(NamedCell(cell), typed, stored, number,
                                 Table()->MaxLength(cell.column()));
}

FlexGridNotes::Cell vsFlexGrid::NamedCell(const QModelIndex& cell) const {
    const int row = impl_->model->TableRow(cell.row() + FixedRows());
    const QString name = row <= Table()->RowCount() ? Table()->RowName(row).trimmed() : QString();
    return {name.isEmpty() ? tr("row %1").arg(row) : name,
            impl_->model->SpokenHeading(cell.column())};
}

void vsFlexGrid::TellNote() {
    const QString note = Note();
    if (note != impl_->notes.shown) {
        impl_->notes.shown = note;
        emit NoteChanged(note);
    }
    if (Editing()) {
        impl_->editor->SetNote(CellNote(impl_->edited.row() + FixedRows(), impl_->edited.column()));
    }
}
