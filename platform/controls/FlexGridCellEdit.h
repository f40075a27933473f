// The open edit of a cell and what becomes of its text, without a window.
//
// The text box reports every change to it. It knows whether anything was typed, what the form's
// handlers have heard of, and what the table has been offered, so that the last text always
// reaches both, once.
#pragma once

#include <QString>
#include <optional>

#include "platform/controls/GridTable.h"

namespace platform {

class FlexGridCellEdit {
public:
    // Opens an edit of a cell that holds this text.
    void Begin(const QString& text);

    // The text was changed by a key, a paste or a drop. True for the first change of the edit.
    bool Change();
    [[nodiscard]] bool IsChanged() const { return changed_; }
    // Key releases report changes to handlers.
    void Report() { unreported_ = false; }
    [[nodiscard]] bool IsUnreported() const { return unreported_; }

    // The table was given this text and gave this answer.
    void Offered(const QString& text, const GridTable::Answer& answer);
    [[nodiscard]] bool WasOffered() const { return offered_.has_value(); }
    // Whether the table has yet to be given the text with which the edit ends. Keys that only move
    // through cells are no typing; a text that was typed counts also when it equals the one before.
    [[nodiscard]] bool MustOffer(const QString& text) const;
    [[nodiscard]] const GridTable::Answer& LastAnswer() const { return answer_; }
    [[nodiscard]] const QString& TextBefore() const { return before_; }

    // Whether an editor may go from one text to another: not to one that is longer than `longest`
    // characters (0: any length), unless only characters of it were deleted.
    [[nodiscard]] static bool Allows(const QString& from, const QString& to, int longest);

private:
    QString before_;
    bool changed_ = false;
    bool unreported_ = false;
    std::optional<QString> offered_;
    GridTable::Answer answer_;
};

}  // namespace platform
