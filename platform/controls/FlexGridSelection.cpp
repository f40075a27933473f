#include "platform/controls/FlexGridSelection.h"

#include <QItemSelectionModel>
#include <QTableView>
#include <algorithm>

#include "platform/controls/FlexGridModel.h"

namespace platform {

// The row may have gone with what the end of the edit before led to.
bool FlexGridSelection::MoveTo(int row, int col, bool extend) {
    const QModelIndex target = model_.index(row - model_.FixedRows(), col);
    if (!target.isValid()) {
        return false;
    }
    if (!extend || !anchor_.isValid()) {
        anchor_ = extend ? view_.currentIndex() : target;
    }
    Select(anchor_, target);
    // A block is selected to be copied, not to be edited.
    quiet_ += extend ? 1 : 0;
    view_.selectionModel()->setCurrentIndex(target, QItemSelectionModel::NoUpdate);
    quiet_ -= extend ? 1 : 0;
    return true;
}

void FlexGridSelection::SelectBlock(const QModelIndex& first, const QModelIndex& last) {
    const Quiet quiet(*this);
    anchor_ = first;
    Select(first, last);
    view_.selectionModel()->setCurrentIndex(first, QItemSelectionModel::NoUpdate);
}

void FlexGridSelection::Select(const QModelIndex& one, const QModelIndex& other) {
    QItemSelectionModel::SelectionFlags flags = QItemSelectionModel::ClearAndSelect;
    if (view_.selectionBehavior() == QAbstractItemView::SelectRows) {
        flags |= QItemSelectionModel::Rows;
    }
    const auto [top, bottom] = std::minmax({one.row(), other.row()});
    const auto [left, right] = std::minmax({one.column(), other.column()});
    view_.selectionModel()->select(
        QItemSelection(model_.index(top, left), model_.index(bottom, right)), flags);
}

// Without a current cell assistive technology and keyboard alike would have nothing to stand on.
void FlexGridSelection::EnsureCurrent() {
    const int col = FirstShown();
    if (model_.Rows() == model_.FixedRows() || col < 0) {
        return;
    }
    const QModelIndex current = view_.currentIndex();
    if (!current.isValid() || model_.Column(current.column()).hidden) {
        MoveTo(model_.FixedRows() + std::max(current.row(), 0), col, false);
    } else if (!anchor_.isValid()) {
        anchor_ = current;
    }
}

int FlexGridSelection::FirstShown() const {
    for (int col = 0; col < model_.Cols(); ++col) {
        if (!model_.Column(col).hidden) {
            return col;
        }
    }
    return -1;
}

QModelIndexList FlexGridSelection::Cells() const {
    QModelIndexList cells = view_.selectionModel()->selectedIndexes();
    cells.removeIf([this](const QModelIndex& cell) { return model_.Column(cell.column()).hidden; });
    if (cells.isEmpty() && view_.currentIndex().isValid()) {
        cells += view_.currentIndex();
    }
    std::sort(cells.begin(), cells.end());
    return cells;
}

}  // namespace platform
