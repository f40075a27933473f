// The grid's copying, pasting and clearing.
#include <QToolTip>

#include "platform/controls/FlexGridClip.h"
#include "platform/controls/vsFlexGridImpl.h"

namespace {

constexpr int kTipTime = 12000;  // milliseconds, enough to read two lines

}  // namespace

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
        PasteText(copiedCell ? block.front().front() : text);
    }
}

// Where the text takes the place of the whole cell, it is taken as that of a block's cell is.
void vsFlexGrid::PasteText(const QString& text) {
    FlexGridEditor& editor = *impl_->editor;
    const bool isWhole = editor.selectedText() == editor.text();
    if (!isWhole || !impl_->model->Column(Col()).number) {
        editor.insert(text);
        return;
    }
    const QString number = AsTyped(Col(), text);
    if (number.size() > editor.maxLength()) {
        TellRefused(1);
        return;
    }
    editor.insert(number);
}

void vsFlexGrid::ClearClip() {
    if (Editing()) {
        impl_->editor->insert(QString());
        return;
    }
    if (Table() != nullptr) {
        ClearCells();
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

void vsFlexGrid::ClearCells() {
    const QModelIndexList selected = SelectedCells();
    const QList<QPersistentModelIndex> cells(selected.begin(), selected.end());
    BeginAction(tr("Delete"));
    for (const QPersistentModelIndex& cell : cells) {
        if (cell.isValid() && TakesText(cell.row() + FixedRows(), cell.column())) {
            OfferCell(cell, QString());
        }
    }
    EndAction();
    TellNote();
}

void vsFlexGrid::OfferCell(const QPersistentModelIndex& cell, const QString& text) {
    const GridTable::Answer answer = Offer(cell.row() + FixedRows(), cell.column(), text);
    TakeAnswer(cell, text, answer);
    if (cell.isValid()) {
        emit AfterEdit(cell.row() + FixedRows(), cell.column());
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

// Each cell is edited as if it were typed, so that the handlers have their say. They may sort the
// rows as soon as a cell is edited; each line of the block stays with the row that it began in.
void vsFlexGrid::PasteBlock(const std::vector<QStringList>& block) {
    if (!currentIndex().isValid()) {
        return;
    }
    const int top = Row();
    const int left = Col();
    const auto lines = static_cast<int>(block.size());
    impl_->model->MarkRows(top, lines);
    FinishEdit();
    BeginAction(tr("Paste"));
    int refused = 0;
    for (int line = 0; line < lines; ++line) {
        int col = left;
        for (const QString& text : block[static_cast<std::size_t>(line)]) {
            const int row = impl_->model->MarkedRow(line);
            if (row < 0 || col < 0) {
                refused += text.isEmpty() ? 0 : 1;
                continue;
            }
            refused += PasteCell(row, col, text) ? 0 : 1;
            col = NextCol(col, 1);
        }
    }
    Select(top, left);
    EndAction();
    TellNote();
    TellRefused(refused);
}

// False when the cell does not take the text as it is.
bool vsFlexGrid::PasteCell(int row, int col, const QString& text) {
    const QString wanted = AsTyped(col, text);
    if (impl_->model->IsTableCell(row)) {
        if (!TakesText(row, col) || wanted.size() > Longest(col)) {
            return impl_->model->Text(row, col) == wanted;
        }
        OfferCell(impl_->model->index(row - FixedRows(), col), wanted);
        return true;
    }
    if (!EditOnly(row, col)) {
        return impl_->model->Text(row, col) == wanted;
    }
    const bool fits = wanted.size() <= impl_->editor->maxLength();
    // A part of a number would be another number.
    if (fits || !impl_->model->Column(col).number) {
        impl_->editor->selectAll();
        impl_->editor->insert(wanted);
    }
    FinishEdit();
    return fits;
}

QString vsFlexGrid::AsTyped(int col, const QString& text) const {
    return impl_->model->Column(col).number ? FlexGridClip::PlainNumber(text) : text;
}

void vsFlexGrid::TellRefused(int cells) {
    if (cells == 0) {
        return;
    }
    const QString told = cells == 1
                             ? tr("One cell was not pasted, or not all of it:\n"
                                  "it lies beyond the table, is too long or cannot be changed.")
                             : tr("%1 cells were not pasted, or not all of them:\n"
                                  "they lie beyond the table, are too long or cannot be changed.")
                                   .arg(cells);
    const QPoint below = visualRect(currentIndex()).bottomLeft();
    QToolTip::showText(viewport()->mapToGlobal(below), told, this, {}, kTipTime);
}

// Makes a cell current and edits it; false when it must not be edited.
bool vsFlexGrid::EditOnly(int row, int col) {
    Select(row, col);
    if (!Editing()) {
        Enter();
    }
    return Editing();
}

void vsFlexGrid::ReplaceCell(int row, int col, const QString& text) {
    if (EditOnly(row, col)) {
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
