// A table that is only read: rows of texts for a grid.
#pragma once

#include <QStringList>

#include <utility>
#include <vector>

#include "platform/controls/GridTable.h"

namespace tarnreview {

class TextTable : public platform::GridTable {
public:
    void SetRows(std::vector<QStringList> rows) { rows_ = std::move(rows); }
    // The column whose text names a row.
    void SetNameColumn(int column) { nameColumn_ = column; }

    [[nodiscard]] int RowCount() const override { return static_cast<int>(rows_.size()); }
    [[nodiscard]] QString Text(int row, int col) const override {
        return rows_.at(static_cast<std::size_t>(row - 1)).value(col);
    }
    [[nodiscard]] QString RowName(int row) const override { return Text(row, nameColumn_); }
    [[nodiscard]] Takes CellTakes(int /*row*/, int /*col*/) const override {
        return Takes::kNothing;
    }
    [[nodiscard]] int MaxLength(int /*col*/) const override { return 0; }
    Answer Offer(int /*row*/, int /*col*/, const QString& /*typed*/) override {
        return {Answer::Kind::kRefused, {}};
    }
    void BeginAction(const QString& /*name*/) override {}
    void EndAction() override {}

private:
    std::vector<QStringList> rows_;
    int nameColumn_ = 0;
};

}  // namespace tarnreview
