// A grid's copying, pasting and clearing, with the questions and refusals that belong to them.
#pragma once

#include <QCoreApplication>
#include <QPersistentModelIndex>
#include <QString>
#include <QStringList>
#include <vector>

#include "platform/controls/FlexGridClip.h"
#include "platform/controls/FlexGridParts.h"
#include "platform/controls/FlexGridPastePlan.h"

namespace platform {

class FlexGridPaste {
    Q_DECLARE_TR_FUNCTIONS(FlexGridPaste)

public:
    explicit FlexGridPaste(const FlexGridParts& parts) : parts_(parts) {}

    // With the clipboard; errors are reported.
    void Copy() const;
    void Cut();
    void Paste();

    // The editor's selection when there is one, else the selected cells: a single one as it is, a
    // block as tab-separated lines.
    [[nodiscard]] QString Clip() const;
    // Empties what Clip gives; cells stay selected.
    void Clear();
    // Into the open editor, or into the cells from the top left of the selection on.
    void Put(const QString& text);
    // Whether any selected cell takes a text.
    [[nodiscard]] bool CanChange() const;

private:
    using Refusal = FlexGridPastePlan::Refusal;

    class Ground;

    void PutIntoEditor(const QString& text);
    void PutBlock(const FlexGridClip::Block& pasted);
    [[nodiscard]] bool LeaveHeadingsOut(const QStringList& line) const;
    [[nodiscard]] bool AddsRows(int count) const;
    void CarryOut(FlexGridPastePlan::Plan& plan);
    void PutCell(const QPersistentModelIndex& cell, const QString& text,
                 std::vector<Refusal>& refused);
    void TypeIntoCell(const QPersistentModelIndex& cell, const QString& text,
                      std::vector<Refusal>& refused);
    void SelectArea(const FlexGridPastePlan::Area& area);
    void SelectAgain(const QList<QPersistentModelIndex>& cells);
    void ReportRefused(const std::vector<Refusal>& refused) const;
    [[nodiscard]] QString RefusedLine(const Refusal& refusal) const;
    [[nodiscard]] int Row(const QModelIndex& cell) const;

    FlexGridParts parts_;
};

}  // namespace platform
