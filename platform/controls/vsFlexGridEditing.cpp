// The grid's editing: one text box that lies over the edited cell.
#include <QAccessible>
#include <QApplication>
#include <QScopedValueRollback>

#include "platform/controls/FlexGridClip.h"
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

void vsFlexGrid::SetEditSelText(const QString& text) {
    const FlexGridClip::Block block = FlexGridClip::FromText(text);
    if (block.size() > 1 || (block.size() == 1 && block.front().size() > 1)) {
        PasteBlock(block);
        return;
    }
    if (!Editing()) {
        Enter();
    }
    if (Editing()) {
        // The one cell without a spreadsheet's quotation marks and line end.
        const bool copiedCell = text.endsWith(u'\n') && !block.empty();
        impl_->editor->insert(copiedCell ? block.front().front() : text);
    }
}

void vsFlexGrid::ClearClip() {
    if (Editing()) {
        impl_->editor->insert(QString());
        return;
    }
    const QModelIndex current = currentIndex();
    for (const QPersistentModelIndex cell : SelectedCells()) {
        ReplaceCell(cell.row() + FixedRows(), cell.column(), QString());
    }
    if (current.isValid()) {
        Select(current.row() + FixedRows(), current.column());
    }
}

void vsFlexGrid::SetEditMaxLength(int characters) {
    impl_->maxLength = characters;
    if (Editing()) {
        const auto length = static_cast<int>(impl_->editor->text().size());
        impl_->editor->setMaxLength(characters > 0 ? std::max(characters, length) : kUnlimited);
    }
}

QString vsFlexGrid::Clip() const {
    if (Editing()) {
        const QString selected = impl_->editor->selectedText();
        return selected.isEmpty() ? impl_->editor->text() : selected;
    }
    FlexGridClip::Block block;
    int row = -1;
    for (const QModelIndex& cell : SelectedCells()) {
        if (cell.row() != row) {
            block.emplace_back();
            row = cell.row();
        }
        block.back() += impl_->model->Text(row + FixedRows(), cell.column());
    }
    return FlexGridClip::ToText(block);
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

// Each cell is edited as if it were typed, so that the handlers have their say.
void vsFlexGrid::PasteBlock(const std::vector<QStringList>& block) {
    if (!currentIndex().isValid()) {
        return;
    }
    const int top = Row();
    const int left = Col();
    int row = top;
    for (const QStringList& texts : block) {
        int col = left;
        for (const QString& text : texts) {
            if (row < Rows() && col >= 0) {
                ReplaceCell(row, col, text);
                col = NextCol(col, 1);
            }
        }
        ++row;
    }
    Select(top, left);
}

void vsFlexGrid::ReplaceCell(int row, int col, const QString& text) {
    Select(row, col);
    if (!Editing()) {
        Enter();
    }
    if (Editing()) {
        impl_->editor->selectAll();
        impl_->editor->insert(text);
        FinishEdit();
    }
}

// In reading order, without hidden columns.
QModelIndexList vsFlexGrid::SelectedCells() const {
    QModelIndexList cells = selectedIndexes();
    if (cells.isEmpty() && currentIndex().isValid()) {
        cells += currentIndex();
    }
    std::sort(cells.begin(), cells.end());
    return cells;
}
