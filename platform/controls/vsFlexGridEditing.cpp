// The grid's editing: one text box that lies over the edited cell.
#include <QAccessible>
#include <QApplication>
#include <QItemSelectionModel>

#include "platform/controls/vsFlexGridImpl.h"

namespace {

constexpr int kUnlimited = 32767;  // characters: the limit of every line edit

}  // namespace

void vsFlexGrid::ConnectEditor() {
    FlexGridEditor* editor = impl_->editor;
    editor->setObjectName(QStringLiteral("txtCellEditor"));
    editor->setAccessibleName(tr("Cell"));
    editor->SetKeyTaker([this](QKeyEvent* event) { return TakeEditorKey(event); });
    connect(editor, &FlexGridEditor::Edited, this, &vsFlexGrid::OnEdited);
    connect(editor, &FlexGridEditor::KeyTyped, this, [this](QChar key) {
        if (Editing()) {
            emit KeyPressEdit(impl_->edited.row() + FixedRows(), impl_->edited.column(), key);
        }
    });
    connect(editor, &FlexGridEditor::KeyReleased, this, &vsFlexGrid::ReportKeyUp);
    connect(editor, &FlexGridEditor::FocusLost, this, [this] {
        // The grid itself hands the focus back.
        if (!impl_->closing && QApplication::focusWidget() != this) {
            EndEdit();
        }
    });
    connect(editor, &FlexGridEditor::Dropped, this,
            [this](const QString& text) { Trapped([&] { SetEditSelText(text); }); });
}

void vsFlexGrid::EditCell() {
    const QModelIndex index = currentIndex();
    if (impl_->arriving || !index.isValid() || (Editing() && impl_->edited == index)) {
        return;
    }
    FinishEdit();
    const int row = index.row() + FixedRows();
    bool cancel = false;
    emit BeforeEdit(row, index.column(), &cancel);
    if (cancel || currentIndex() != index || !TakesText(row, index.column())) {
        return;
    }
    const QString text = impl_->model->Text(row, index.column());
    FlexGridEditor* editor = impl_->editor;
    impl_->edited = index;
    impl_->edit.Begin(text);
    editor->setAlignment(impl_->model->Column(index.column()).alignment);
    editor->setAccessibleName(impl_->model->CellName(row, index.column()));
    editor->Load(text, Longest(index.column()));
    selectionModel()->select(index, QItemSelectionModel::ClearAndSelect);
    scrollTo(index);
    PlaceEditor();
    editor->show();
    editor->setFocus();
    TellNote();
}

bool vsFlexGrid::TakesText(int row, int col) const {
    return !impl_->model->IsTableCell(row) ||
           Table()->CellTakes(impl_->model->TableRow(row), col) != GridTable::Takes::kNothing;
}

// Characters.
int vsFlexGrid::Longest(int col) const {
    const int length = Table() != nullptr ? Table()->MaxLength(col) : impl_->maxLength;
    return length > 0 ? length : kUnlimited;
}

void vsFlexGrid::FinishEdit() {
    if (!Editing() || impl_->finishing) {
        return;
    }
    const QScopedValueRollback finishing(impl_->finishing, true);
    if (impl_->edit.IsUnreported()) {
        ReportKeyUp(0);
    }
    if (!Editing()) {
        return;
    }
    const QPersistentModelIndex cell = impl_->edited;
    const QString text = impl_->editor->text();
    CloseEditor();
    if (Table() == nullptr) {
        impl_->model->SetText(cell.row() + FixedRows(), cell.column(), text);
    } else if (impl_->edit.IsChanged()) {
        SettleEdit(cell, text);
    }
    if (cell.isValid()) {
        emit AfterEdit(cell.row() + FixedRows(), cell.column());
    }
    EndAction();
    TellNote();
}

// The edit has ended with this text.
void vsFlexGrid::SettleEdit(const QPersistentModelIndex& cell, const QString& text) {
    if (impl_->edit.MustOffer(text)) {
        impl_->edit.Offered(text, Offer(cell.row() + FixedRows(), cell.column(), text));
    }
    TakeAnswer(cell, text, impl_->edit.LastAnswer());
}

bool vsFlexGrid::Editing() const {
    return impl_->edited.isValid();
}

bool vsFlexGrid::EditIsChanged() const {
    return Editing() && impl_->edit.IsChanged();
}

QString vsFlexGrid::EditText() const {
    return Editing() ? impl_->editor->text() : QString();
}

void vsFlexGrid::SetEditText(const QString& text) {
    if (Editing() && text != impl_->editor->text()) {
        impl_->editor->setText(text);
        OnEdited();
    }
}

QString vsFlexGrid::EditSelText() const {
    return Editing() ? impl_->editor->selectedText() : QString();
}

void vsFlexGrid::SetEditMaxLength(int characters) {
    impl_->maxLength = characters;
    if (Editing()) {
        impl_->editor->SetLongest(Longest(impl_->edited.column()));
    }
}

void vsFlexGrid::PlaceEditor() {
    if (impl_ != nullptr && Editing()) {
        // Inside the grid lines.
        impl_->editor->LieOver(visualRect(impl_->edited).adjusted(0, 0, -1, -1),
                               viewport()->rect());
    }
}

void vsFlexGrid::OnEdited() {
    if (!Editing()) {
        return;
    }
    if (impl_->edit.Change()) {
        BeginAction(tr("Typing"));
    }
    PlaceEditor();
    emit ChangeEdit();
    TellNote();
    if (Editing() && !impl_->editor->KeyIsDown()) {
        ReportKeyUp(0);
    }
}

void vsFlexGrid::ReportKeyUp(int key) {
    if (Editing()) {
        impl_->edit.Report();
        emit KeyUpEdit(impl_->edited.row() + FixedRows(), impl_->edited.column(), key);
    }
}

void vsFlexGrid::CloseEditor() {
    const QScopedValueRollback closing(impl_->closing, true);
    impl_->edited = QPersistentModelIndex();
    if (impl_->editor->hasFocus()) {
        setFocus();
    }
    impl_->editor->hide();
}

void vsFlexGrid::CancelEdit() {
    const QPersistentModelIndex cell = impl_->edited;
    const QString before = impl_->edit.TextBefore();
    CloseEditor();
    if (Table() == nullptr) {
        impl_->model->SetText(cell.row() + FixedRows(), cell.column(), before);
    } else if (impl_->edit.WasOffered()) {
        (void)Offer(cell.row() + FixedRows(), cell.column(), before);
    }
    if (impl_->edit.IsChanged() && cell.isValid()) {
        emit EditCancelled(cell.row() + FixedRows(), cell.column());
    }
    EndAction();
    TellNote();
}
