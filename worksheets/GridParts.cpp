#include "worksheets/GridParts.h"

#include <QHeaderView>
#include <QScrollBar>

#include "platform/controls/vsFlexGrid.h"

namespace {

void FitHeight(vsFlexGrid& grid) {
    const int headings = grid.horizontalHeader()->sizeHint().height();
    const int rows = grid.verticalHeader()->length();
    const QScrollBar& bar = *grid.horizontalScrollBar();
    const int scrolling = bar.maximum() > bar.minimum() ? bar.sizeHint().height() : 0;
    grid.setMaximumHeight(headings + rows + scrolling + 2 * grid.frameWidth());
}

}  // namespace

namespace GridParts {

void EnterAndEdit(vsFlexGrid& grid, int row, int col) {
    grid.Select(row, col);
    if (!grid.Editing()) {
        grid.EditCell();
    }
    grid.setFocus();
}

void Show(vsFlexGrid& grid, int row, int col) {
    grid.Select(row + grid.FixedRows() - 1, col);
    grid.FinishEdit();
}

void KeepPlace(QWidget& control) {
    QSizePolicy policy = control.sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    control.setSizePolicy(policy);
}

void EndAtLastRow(vsFlexGrid& grid) {
    const auto fit = [&grid] { FitHeight(grid); };
    QObject::connect(grid.horizontalHeader(), &QHeaderView::geometriesChanged, &grid, fit);
    QObject::connect(grid.verticalHeader(), &QHeaderView::sectionCountChanged, &grid, fit);
    QObject::connect(grid.verticalHeader(), &QHeaderView::geometriesChanged, &grid, fit);
    QObject::connect(grid.horizontalScrollBar(), &QScrollBar::rangeChanged, &grid, fit);
    fit();
}

}  // namespace GridParts
