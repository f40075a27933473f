#include "platform/controls/FlexGridPaste.h"

#include <QTableView>
#include <algorithm>

#include "platform/controls/FlexGridEditing.h"
#include "platform/controls/FlexGridEditor.h"
#include "platform/controls/FlexGridModel.h"
#include "platform/controls/FlexGridSelection.h"
#include "platform/dialogs/MsgBox.h"
#include "platform/system/Clipboard.h"

namespace platform {

namespace {

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
class FlexGridPaste::Ground : public FlexGridPastePlan::Ground {
public:
    explicit Ground(const FlexGridModel& model) : model_(model) {}

    [[nodiscard]] int RowCount() const override { return model_.Rows() - model_.FixedRows(); }
    [[nodiscard]] int RoomForRows() const override {
        return model_.Table() == nullptr ? 0 : model_.Table()->RoomForRows();
    }
    [[nodiscard]] int Cols() const override { return model_.Cols(); }
    [[nodiscard]] bool IsShown(int col) const override { return !model_.Column(col).hidden; }
    [[nodiscard]] GridTable::Takes Takes(int row, int col) const override {
        const bool number = model_.Column(col).number;
        if (model_.Table() == nullptr || RowCount() == 0) {
            return number ? GridTable::Takes::kNumber : GridTable::Takes::kText;
        }
        return model_.Table()->CellTakes(std::min(row, RowCount()), col);
    }
    [[nodiscard]] int MaxLength(int col) const override {
        return model_.Table() == nullptr ? 0 : model_.Table()->MaxLength(col);
    }
    [[nodiscard]] QString Text(int row, int col) const override {
        return model_.Text(row + model_.FixedRows() - 1, col);
    }

private:
    const FlexGridModel& model_;
};

void FlexGridPaste::Copy() const {
    platform::SetClipboardText(Clip());
}

void FlexGridPaste::Cut() {
    Copy();
    FlexGridEditing::Trapped([this] { Clear(); });
}

void FlexGridPaste::Paste() {
    FlexGridEditing::Trapped([this] { Put(platform::ClipboardText()); });
}

void FlexGridPaste::Put(const QString& text) {
    FlexGridEditing& editing = parts_.editing;
    const bool taken = editing.IsOpen() || !parts_.host.IsList();
    if (text.isEmpty() || !taken || !parts_.view.currentIndex().isValid()) {
        return;
    }
    const FlexGridClip::Block block = FlexGridClip::FromText(text);
    if (!IsOneCell(block)) {
        PutBlock(block);
        return;
    }
    const bool ownTexts = parts_.model.Table() == nullptr && parts_.selection.Cells().size() <= 1;
    if (ownTexts) {
        parts_.host.Enter();
    }
    if (editing.IsOpen()) {
        // The one cell without a spreadsheet's quotation marks and line end.
        const bool copiedCell = text.endsWith(u'\n') && !block.empty();
        PutIntoEditor(copiedCell ? block.front().front() : text);
    } else if (!block.empty()) {
        PutBlock(block);
    }
}

// As typing does.
void FlexGridPaste::PutIntoEditor(const QString& text) {
    FlexGridEditor& editor = parts_.editing.Editor();
    const QString whole = editor.text();
    const qsizetype start =
        editor.hasSelectedText() ? editor.selectionStart() : qsizetype(editor.cursorPosition());
    const qsizetype end = start + editor.selectedText().size();
    const int row = Row(parts_.editing.Cell());
    const int col = parts_.editing.Cell().column();
    const int longest = parts_.editing.Longest(col);
    const bool number = parts_.model.Takes(row, col) == GridTable::Takes::kNumber;
    const std::optional<QString> inserted =
        FlexGridPastePlan::Inserted(whole.left(start), text, whole.mid(end), number, longest);
    if (inserted) {
        editor.insert(*inserted);
        return;
    }
    const QString typed = FlexGridPastePlan::AsTyped(text, number, longest);
    const bool fits = start + typed.size() + whole.size() - end <= longest;
    ReportRefused(
        {{parts_.model.TableRow(row), col, text, fits ? Why::kNoNumber : Why::kTooLong, {}}});
}

void FlexGridPaste::Clear() {
    if (parts_.editing.IsOpen()) {
        parts_.editing.Editor().insert(QString());
        return;
    }
    const QModelIndexList selected = parts_.selection.Cells();
    const QList<QPersistentModelIndex> cells(selected.begin(), selected.end());
    std::vector<Refusal> refused;
    parts_.offers.Within(tr("Delete"), [&] {
        for (const QPersistentModelIndex& cell : cells) {
            if (cell.isValid() && parts_.model.TakesText(Row(cell), cell.column())) {
                PutCell(cell, QString(), refused);
            }
        }
    });
    SelectAgain(cells);
    parts_.offers.UpdateNote();
    ReportRefused(refused);
}

QString FlexGridPaste::Clip() const {
    if (parts_.editing.IsOpen()) {
        const QString selected = parts_.editing.Editor().selectedText();
        return selected.isEmpty() ? parts_.editing.Text() : selected;
    }
    FlexGridClip::Block block;
    int row = -1;
    for (const QModelIndex& cell : parts_.selection.Cells()) {
        if (cell.row() != row) {
            block.emplace_back();
            row = cell.row();
        }
        block.back() += parts_.model.Text(Row(cell), cell.column());
    }
    return FlexGridClip::ToText(block);
}

bool FlexGridPaste::CanChange() const {
    if (parts_.host.IsList()) {
        return false;
    }
    const QModelIndexList cells = parts_.selection.Cells();
    return std::any_of(cells.begin(), cells.end(), [this](const QModelIndex& cell) {
        return parts_.model.TakesText(Row(cell), cell.column());
    });
}

void FlexGridPaste::PutBlock(const FlexGridClip::Block& pasted) {
    parts_.editing.End();
    const QModelIndexList selected = parts_.selection.Cells();
    if (selected.isEmpty()) {
        return;
    }
    const Ground ground(parts_.model);
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
    parts_.offers.Within(tr("Paste"), [&] { CarryOut(plan); });
    SelectArea(plan.area);
    parts_.offers.UpdateNote();
    ReportRefused(plan.refusals);
}

bool FlexGridPaste::LeaveHeadingsOut(const QStringList& line) const {
    QStringList headings = line;
    headings.removeIf([](const QString& heading) { return heading.trimmed().isEmpty(); });
    const QString question =
        tr("The first line of what is pasted holds headings (%1) where numbers are wanted.")
            .arg(Shortened(headings.join(QStringLiteral(", "))));
    return IsWanted(question + platform::kNewLine + tr("Leave it out?"));
}

bool FlexGridPaste::AddsRows(int count) const {
    const QString question =
        count == 1 ? tr("What is pasted has 1 row more than there is room for.") +
                         platform::kNewLine + tr("Add 1 new row?")
                   : tr("What is pasted has %1 rows more than there is room for.").arg(count) +
                         platform::kNewLine + tr("Add %1 new rows?").arg(count);
    return IsWanted(question);
}

// Rows may be sorted as soon as a cell has its text; each line of the block stays with the row that
// it began in.
void FlexGridPaste::CarryOut(FlexGridPastePlan::Plan& plan) {
    FlexGridModel& model = parts_.model;
    if (plan.newRows > 0) {
        model.Table()->AppendRows(plan.newRows);
        // Whether or not they have been announced.
        const FlexGridSelection::Quiet quiet(parts_.selection);
        model.SetRows(model.FixedRows() + model.Table()->RowCount());
        parts_.selection.EnsureCurrent();
    }
    const int top = plan.area.top + model.FixedRows() - 1;
    model.MarkRows(top, plan.area.bottom - plan.area.top + 1);
    for (const FlexGridPastePlan::Cell& cell : plan.cells) {
        const int row = model.MarkedRow(cell.row - plan.area.top);
        if (row < 0) {
            plan.refusals.push_back({cell.row, cell.col, cell.text, Why::kBeyondTable, {}});
            continue;
        }
        PutCell(model.index(row - model.FixedRows(), cell.col), cell.text, plan.refusals);
    }
}

// A table is offered the text; without one the cell is edited as if it were typed, so that the
// handlers have their say.
void FlexGridPaste::PutCell(const QPersistentModelIndex& cell, const QString& text,
                            std::vector<Refusal>& refused) {
    if (parts_.model.Table() == nullptr) {
        TypeIntoCell(cell, text, refused);
        return;
    }
    const int row = parts_.model.TableRow(Row(cell));
    const int col = cell.column();
    const GridTable::Answer answer = parts_.offers.Offer(cell, text);
    if (answer.kind == GridTable::Answer::Kind::kRefused) {
        refused.push_back({row, col, text, Why::kRefused, answer.text});
    } else {
        parts_.offers.TakeAnswer(cell, text, answer);
    }
    if (cell.isValid()) {
        emit parts_.editing.AfterEdit(Row(cell), cell.column());
    }
}

void FlexGridPaste::TypeIntoCell(const QPersistentModelIndex& cell, const QString& text,
                                 std::vector<Refusal>& refused) {
    FlexGridEditing& editing = parts_.editing;
    const int row = Row(cell);
    const int col = cell.column();
    if (parts_.view.currentIndex() != cell) {
        editing.Finish();
        parts_.selection.MoveTo(row, col, false);
    }
    parts_.host.Enter();
    if (!editing.IsOpen()) {
        if (parts_.model.Text(row, col) != text) {
            refused.push_back({parts_.model.TableRow(row), col, text, Why::kNotEditable, {}});
        }
        return;
    }
    if (text.size() <= editing.Longest(col)) {
        editing.Editor().selectAll();
        editing.Editor().insert(text);
    } else {
        refused.push_back({parts_.model.TableRow(row), col, text, Why::kTooLong, {}});
    }
    editing.Finish();
}

void FlexGridPaste::SelectArea(const FlexGridPastePlan::Area& area) {
    const FlexGridModel& model = parts_.model;
    const QModelIndex first = model.index(area.top - 1, area.left);
    const QModelIndex last = model.index(std::min(area.bottom, model.rowCount()) - 1, area.right);
    if (first.isValid() && last.isValid()) {
        parts_.selection.SelectBlock(first, last);
    }
}

// The cells that were cleared stay selected, so that what is pasted next goes there.
void FlexGridPaste::SelectAgain(const QList<QPersistentModelIndex>& cells) {
    if (!cells.isEmpty() && cells.front().isValid() && cells.back().isValid()) {
        parts_.editing.End();
        parts_.selection.SelectBlock(cells.front(), cells.back());
    }
}

void FlexGridPaste::ReportRefused(const std::vector<Refusal>& refused) const {
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

QString FlexGridPaste::RefusedLine(const Refusal& refusal) const {
    const FlexGridModel& model = parts_.model;
    const int row = refusal.row + model.FixedRows() - 1;
    const bool there = row < model.Rows() && refusal.col >= 0;
    const QString name = there ? model.CellName(row, refusal.col) : tr("row %1").arg(refusal.row);
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
                .arg(parts_.editing.Longest(refusal.col));
        case Why::kNoNumber:
            return tr("%1: '%2' is not a number.").arg(name, text);
        case Why::kRefused:
            break;
    }
    return tr("%1: '%2'. %3").arg(name, text, refusal.reason);
}

int FlexGridPaste::Row(const QModelIndex& cell) const {
    return cell.row() + parts_.model.FixedRows();
}

}  // namespace platform
