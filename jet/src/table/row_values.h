// The new values of a row.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "jet/value.h"
#include "record/value_draft.h"

namespace jet {

// By the columns' positions in the definition; only those marked as given count.
struct RowValues {
    std::vector<Value> values;
    std::vector<bool> given;
    // Long values that came in pieces, in the place of those in `values`; fewer than columns, or
    // none.
    std::vector<std::shared_ptr<ValueDraft>> drafts = {};

    // The draft of a column, or null.
    [[nodiscard]] ValueDraft* DraftOf(std::size_t column) const {
        return column < drafts.size() ? drafts[column].get() : nullptr;
    }
    void SetDraft(std::size_t column, std::shared_ptr<ValueDraft> draft) {
        if (drafts.size() <= column) drafts.resize(column + 1);
        drafts[column] = std::move(draft);
    }
    // The whole value, in memory.
    [[nodiscard]] Value ValueOf(std::size_t column) const {
        const ValueDraft* draft = DraftOf(column);
        return draft != nullptr ? draft->Whole() : values[column];
    }
};

// Gives the value of a column, by its position in the definition.
using ColumnValue = std::function<Value(std::size_t column)>;

}  // namespace jet
