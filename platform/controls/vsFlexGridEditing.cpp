// The grid's editing: one text box that lies over the edited cell.
#include <QAccessible>
#include <QApplication>
#include <QScopedValueRollback>

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
            FinishEdit();
        }
    });
}

void vsFlexGrid::EditCell() {
    const QModelIndex index = currentIndex();
    if (!index.isValid() || (Editing() && impl_->edited == index)) {
        return;
    }
    FinishEdit();
    const int row = index.row() + FixedRows();
    bool cancel = false;
    emit BeforeEdit(row, index.column(), &cancel);
    if (cancel || currentIndex() != index) {
        return;
    }
    const QString text = impl_->model->Text(row, index.column());
    const int length = impl_->maxLength > 0 ? impl_->maxLength : kUnlimited;
    FlexGridEditor* editor = impl_->editor;
    impl_->edited = index;
    impl_->textBefore = text;
    impl_->changed = false;
    impl_->unreported = false;
    // What the cell holds already is never cut off.
    editor->setMaxLength(std::max(length, static_cast<int>(text.size())));
    editor->setAlignment(impl_->model->Column(index.column()).alignment);
    editor->setAccessibleName(impl_->model->CellName(row, index.column()));
    editor->Load(text);
    scrollTo(index);
    PlaceEditor();
    editor->show();
    editor->setFocus();
}

void vsFlexGrid::FinishEdit() {
    if (!Editing() || impl_->finishing) {
        return;
    }
    const QScopedValueRollback finishing(impl_->finishing, true);
    if (impl_->unreported) {
        ReportKeyUp(0);
    }
    if (!Editing()) {
        return;
    }
    const int row = impl_->edited.row() + FixedRows();
    const int col = impl_->edited.column();
    const QString text = impl_->editor->text();
    CloseEditor();
    impl_->model->SetText(row, col, text);
    emit AfterEdit(row, col);
}

bool vsFlexGrid::Editing() const {
    return impl_->edited.isValid();
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
        const auto length = static_cast<int>(impl_->editor->text().size());
        impl_->editor->setMaxLength(characters > 0 ? std::max(characters, length) : kUnlimited);
    }
}

void vsFlexGrid::PlaceEditor() {
    if (impl_ != nullptr && Editing()) {
        // Inside the grid lines.
        impl_->editor->setGeometry(visualRect(impl_->edited).adjusted(0, 0, -1, -1));
    }
}

void vsFlexGrid::OnEdited() {
    if (!Editing()) {
        return;
    }
    impl_->changed = true;
    impl_->unreported = true;
    emit ChangeEdit();
    if (Editing() && !impl_->editor->KeyIsDown()) {
        ReportKeyUp(0);
    }
}

void vsFlexGrid::ReportKeyUp(int key) {
    if (Editing()) {
        impl_->unreported = false;
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
    const int row = impl_->edited.row() + FixedRows();
    const int col = impl_->edited.column();
    const bool changed = impl_->changed;
    CloseEditor();
    impl_->model->SetText(row, col, impl_->textBefore);
    if (changed) {
        emit EditCancelled(row, col);
    }
}
