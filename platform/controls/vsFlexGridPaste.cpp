// The grid's copying, pasting and clearing.
#include <QItemSelectionModel>

#include "platform/controls/FlexGridClip.h"
#include "platform/controls/FlexGridPastePlan.h"
#include "platform/controls/vsFlexGridImpl.h"
#include "platform/dialogs/MsgBox.h"
#include "platform/system/Host.h"

namespace {

using FlexGridPastePlan::Refusal;
using FlexGridPastePlan::Why;

constexpr std::size_t kMostListed = 12;
constexpr qsizetype kLongestShown = 40;

bool IsOneCell(const FlexGridClip::Block& block) {
    return block.empty() || (block.size() == 1 && block.front().size() <= 1);
}

bool IsWanted(const QString& question) {
    platform::MsgOptions options;
    options.icon = platform::MsgIcon::kQuestion;
    options.buttons = platform::MsgButtons::kYesNo;
    return platform::MsgBox(question, options) == platform::MsgAnswer::kYes;
}

QString Shortened(const QString& text) {
    const QString line = text.simplified();
    return line.size() <= kLongestShown ? line : line.left(kLongestShown) + QStringLiteral("...");
}

}  // namespace

// What the grid's cells take, for the plan of a paste. Rows are the table's.
class vsFlexGrid::PasteGround : public FlexGridPastePlan::Ground {
public:
    explicit PasteGround(const vsFlexGrid& grid) : grid_(grid) {}

    [[nodiscard]] int RowCount() const override { return grid_.Rows() - grid_.FixedRows(); }
    [[nodiscard]] int RoomForRows() const override {
        return grid_.Table() == nullptr ? 0 : grid_.Table()->RoomForRows();
    }
    [[nodiscard]] int Cols() const override { return grid_.Cols(); }
    [[nodiscard]] bool IsShown(int col) const override { return !grid_.ColHidden(col); }
    [[nodiscard]] GridTable::Takes Takes(int row, int col) const override {
        const bool number = grid_.impl_->model->Column(col).number;
        if (grid_.Table() == nullptr || RowCount() == 0) {
            return number ? GridTable::Takes::kNumber : GridTable::Takes::kText;
        }
        return grid_.Table()->CellTakes(std::min(row, RowCount()), col);
    }
    [[nodiscard]] int MaxLength(int col) const override {
        return grid_.Table() == nullptr ? 0 : grid_.Table()->MaxLength(col);
    }
    [[nodiscard]] QString Text(int row, int col) const override {
        return grid_.TextMatrix(row + grid_.FixedRows() - 1, col);
    }

private:
    const vsFlexGrid& grid_;
};

void vsFlexGrid::Copy() {
    platform::SetClipboardText(Clip());
}

void vsFlexGrid::Cut() {
    Copy();
    Trapped([this] { ClearClip(); });
}

void vsFlexGrid::Paste() {
    Trapped([this] { SetEditSelText(platform::ClipboardText()); });
}

void vsFlexGrid::SetEditSelText(const QString& text) {
    if (!currentIndex().isValid() || (!Editing() && IsList())) {
        return;
    }
    const FlexGridClip::Block block = FlexGridClip::FromText(text);
    if (!IsOneCell(block)) {
        PasteBlock(block);
        return;
    }
    const bool ownTexts = Table() == nullptr && SelectedCells().size() <= 1;
    if (!Editing() && ownTexts) {
        Enter();
    }
    if (Editing()) {
        // The one cell without a spreadsheet's quotation marks and line end.
        const bool copiedCell = text.endsWith(u'\n') && !block.empty();
        PasteText(copiedCell ? block.front().front() : text);
    } else if (!block.empty()) {
        PasteBlock(block);
    }
}

// Into the open editor, as typing does.
void vsFlexGrid::PasteText(const QString& text) {
    FlexGridEditor& editor = *impl_->editor;
    const QString whole = editor.text();
    const qsizetype start =
        editor.hasSelectedText() ? editor.selectionStart() : qsizetype(editor.cursorPosition());
    const qsizetype end = start + editor.selectedText().size();
    const int row = impl_->edited.row() + FixedRows();
    const int col = impl_->edited.column();
    const bool number = TakesNumber(row, col);
    const std::optional<QString> inserted =
        FlexGridPastePlan::Inserted(whole.left(start), text, whole.mid(end), number, Longest(col));
    if (inserted) {
        editor.insert(*inserted);
        return;
    }
    const QString typed = FlexGridPastePlan::AsTyped(text, number, Longest(col));
    const bool fits = start + typed.size() + whole.size() - end <= Longest(col);
    TellRefused({{row - FixedRows() + 1, col, text, fits ? Why::kNoNumber : Why::kTooLong, {}}});
}

bool vsFlexGrid::TakesNumber(int row, int col) const {
    return impl_->model->IsTableCell(row)
               ? Table()->CellTakes(impl_->model->TableRow(row), col) == GridTable::Takes::kNumber
               : impl_->model->Column(col).number;
}

void vsFlexGrid::ClearClip() {
    if (Editing()) {
        impl_->editor->insert(QString());
        return;
    }
    const QModelIndexList selected = SelectedCells();
    const QList<QPersistentModelIndex> cells(selected.begin(), selected.end());
    std::vector<Refusal> refused;
    BeginAction(tr("Delete"));
    Finally([&] {
        for (const QPersistentModelIndex& cell : cells) {
            if (cell.isValid() && TakesText(cell.row() + FixedRows(), cell.column())) {
                (void)PutCell(cell, QString(), refused);
            }
        }
    });
    RestoreSelection(cells);
    TellNote();
    TellRefused(refused);
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

void vsFlexGrid::PasteBlock(const FlexGridClip::Block& pasted) {
    EndEdit();
    const QModelIndexList selected = SelectedCells();
    if (selected.isEmpty()) {
        return;
    }
    const PasteGround ground(*this);
    const FlexGridPastePlan::Area area =
        FlexGridPastePlan::Begun(pasted, ground,
                                 {selected.front().row() + 1, selected.front().column(),
                                  selected.back().row() + 1, selected.back().column()});
    FlexGridClip::Block block = pasted;
    if (FlexGridPastePlan::HasHeadings(block, ground, area) && LeaveHeadingsOut(block.front())) {
        block.erase(block.begin());
    }
    FlexGridPastePlan::Plan plan = FlexGridPastePlan::Make(block, ground, area, true);
    if (plan.newRows > 0 && !AddsRows(plan.newRows)) {
        plan = FlexGridPastePlan::Make(block, ground, area, false);
    }
    BeginAction(tr("Paste"));
    Finally([&] { CarryOut(plan); });
    SelectArea(plan.area);
    TellNote();
    TellRefused(plan.refusals);
}

bool vsFlexGrid::LeaveHeadingsOut(const QStringList& line) const {
    const QString question =
        tr("The first line of what is pasted holds headings (%1) where numbers are wanted.")
            .arg(Shortened(line.join(QStringLiteral(", "))));
    return IsWanted(question + platform::kNewLine + tr("Leave it out?"));
}

bool vsFlexGrid::AddsRows(int count) const {
    const QString question =
        count == 1 ? tr("What is pasted has 1 row more than there is room for.") +
                         platform::kNewLine + tr("Add 1 new row?")
                   : tr("What is pasted has %1 rows more than there is room for.").arg(count) +
                         platform::kNewLine + tr("Add %1 new rows?").arg(count);
    return IsWanted(question);
}

// Rows may be sorted as soon as a cell has its text; each line of the block stays with the row that
// it began in.
void vsFlexGrid::CarryOut(FlexGridPastePlan::Plan& plan) {
    if (plan.newRows > 0) {
        Table()->AppendRows(plan.newRows);
        SyncRows();
    }
    const int top = plan.area.top + FixedRows() - 1;
    impl_->model->MarkRows(top, plan.area.bottom - plan.area.top + 1);
    for (const FlexGridPastePlan::Cell& cell : plan.cells) {
        const int row = impl_->model->MarkedRow(cell.row - plan.area.top);
        if (row < 0) {
            plan.refusals.push_back({cell.row, cell.col, cell.text, Why::kBeyondTable, {}});
            continue;
        }
        (void)PutCell(impl_->model->index(row - FixedRows(), cell.col), cell.text, plan.refusals);
    }
}

// A table is offered the text; without one the cell is edited as if it were typed, so that the
// handlers have their say.
bool vsFlexGrid::PutCell(const QPersistentModelIndex& cell, const QString& text,
                         std::vector<Refusal>& refused) {
    const int row = cell.row() + FixedRows();
    const int col = cell.column();
    if (Table() == nullptr) {
        return TypeIntoCell(row, col, text, refused);
    }
    const GridTable::Answer answer = Offer(row, col, text);
    if (answer.kind == GridTable::Answer::Kind::kRefused) {
        refused.push_back({row - FixedRows() + 1, col, text, Why::kRefused, answer.text});
    } else {
        TakeAnswer(cell, text, answer);
    }
    if (cell.isValid()) {
        emit AfterEdit(cell.row() + FixedRows(), cell.column());
    }
    return answer.kind != GridTable::Answer::Kind::kRefused;
}

bool vsFlexGrid::TypeIntoCell(int row, int col, const QString& text,
                              std::vector<Refusal>& refused) {
    const int tableRow = row - FixedRows() + 1;
    Select(row, col);
    if (!Editing()) {
        Enter();
    }
    if (!Editing()) {
        if (impl_->model->Text(row, col) != text) {
            refused.push_back({tableRow, col, text, Why::kNotEditable, {}});
        }
        return false;
    }
    const bool fits = text.size() <= Longest(col);
    if (fits) {
        impl_->editor->selectAll();
        impl_->editor->insert(text);
    } else {
        refused.push_back({tableRow, col, text, Why::kTooLong, {}});
    }
    FinishEdit();
    return fits;
}

// The action ends also when the body fails.
void vsFlexGrid::Finally(const std::function<void()>& body) {
    try {
        body();
    } catch (...) {
        EndAction();
        throw;
    }
    EndAction();
}

void vsFlexGrid::SelectArea(const FlexGridPastePlan::Area& area) {
    const QModelIndex first = impl_->model->index(area.top - 1, area.left);
    const QModelIndex last =
        impl_->model->index(std::min(area.bottom, impl_->model->rowCount()) - 1, area.right);
    if (!first.isValid() || !last.isValid()) {
        return;
    }
    const Impl::Quiet quiet(*impl_);
    impl_->anchor = first;
    SelectBlock(first, last);
    selectionModel()->setCurrentIndex(first, QItemSelectionModel::NoUpdate);
}

// The cells that were cleared stay selected, so that what is pasted next goes there.
void vsFlexGrid::RestoreSelection(const QList<QPersistentModelIndex>& cells) {
    if (cells.isEmpty() || !cells.front().isValid() || !cells.back().isValid()) {
        return;
    }
    EndEdit();
    const Impl::Quiet quiet(*impl_);
    impl_->anchor = cells.front();
    SelectBlock(cells.front(), cells.back());
    selectionModel()->setCurrentIndex(cells.front(), QItemSelectionModel::NoUpdate);
}

void vsFlexGrid::TellRefused(const std::vector<Refusal>& refused) {
    if (refused.empty()) {
        return;
    }
    QStringList lines{refused.size() == 1 ? tr("One cell was not pasted:")
                                          : tr("%1 cells were not pasted:").arg(refused.size())};
    for (std::size_t at = 0; at < std::min(refused.size(), kMostListed); ++at) {
        lines += RefusedLine(refused[at]);
    }
    if (refused.size() > kMostListed) {
        lines += tr("and %1 more").arg(refused.size() - kMostListed);
    }
    platform::MsgOptions options;
    options.icon = platform::MsgIcon::kExclamation;
    platform::MsgBox(lines.join(platform::kNewLine), options);
}

QString vsFlexGrid::RefusedLine(const Refusal& refusal) const {
    const int row = refusal.row + FixedRows() - 1;
    const bool there = row < Rows() && refusal.col >= 0;
    const QString name = there ? CellName(row, refusal.col) : tr("row %1").arg(refusal.row);
    const QString text = Shortened(refusal.text);
    switch (refusal.why) {
        case Why::kBeyondTable:
            return refusal.col < 0 ? tr("%1: '%2' lies beyond the last column.").arg(name, text)
                                   : tr("%1: '%2' lies beyond the last row.").arg(name, text);
        case Why::kNotEditable:
            return tr("%1: '%2'; this cell cannot be changed.").arg(name, text);
        case Why::kTooLong:
            return tr("%1: '%2' is longer than %3 characters.")
                .arg(name, text)
                .arg(Longest(refusal.col));
        case Why::kNoNumber:
            return tr("%1: '%2' is not a number.").arg(name, text);
        case Why::kRefused:
            break;
    }
    return tr("%1: '%2'. %3").arg(name, text, refusal.reason);
}

// In reading order, without hidden columns.
QModelIndexList vsFlexGrid::SelectedCells() const {
    QModelIndexList cells = selectedIndexes();
    cells.removeIf([this](const QModelIndex& cell) { return ColHidden(cell.column()); });
    if (cells.isEmpty() && currentIndex().isValid()) {
        cells += currentIndex();
    }
    std::sort(cells.begin(), cells.end());
    return cells;
}
