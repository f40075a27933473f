#include "worksheets/GridParts.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QScrollBar>
#include <QVBoxLayout>

#include "platform/EventTrap.h"
#include "platform/controls/vsFlexGrid.h"
#include "worksheets/CopyHint.h"
#include "worksheets/NoteLine.h"

using worksheets::CopyHint;
using worksheets::NoteLine;

namespace {

constexpr int kMostOfTheRoom = 1000;

int ShownBar(const QScrollBar& bar, int thickness) {
    return bar.maximum() > bar.minimum() ? thickness : 0;
}

void FitFrame(vsFlexGrid& grid) {
    const QScrollBar& across = *grid.horizontalScrollBar();
    const QScrollBar& down = *grid.verticalScrollBar();
    const int frame = 2 * grid.frameWidth();
    const int headings = grid.horizontalHeader()->sizeHint().height();
    grid.setMaximumSize(
        grid.horizontalHeader()->length() + ShownBar(down, down.sizeHint().width()) + frame,
        headings + grid.verticalHeader()->length() + ShownBar(across, across.sizeHint().height()) +
            frame);
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

void AddFramed(QVBoxLayout& body, vsFlexGrid& grid, QWidget* beside) {
    auto* line = new QHBoxLayout;
    line->addWidget(&grid, kMostOfTheRoom);
    if (beside != nullptr) {
        line->addWidget(beside, 1);
    } else {
        line->addStretch(1);
    }
    body.addLayout(line, kMostOfTheRoom);
    const auto fitAfter = [&grid](auto* part, auto signal) {
        QObject::connect(part, signal, &grid,
                         platform::EventTrap::Trapped("GridParts.FitFrame",
                                                      [&grid](auto&&...) { FitFrame(grid); }));
    };
    for (QHeaderView* header : {grid.horizontalHeader(), grid.verticalHeader()}) {
        fitAfter(header, &QHeaderView::geometriesChanged);
        fitAfter(header, &QHeaderView::sectionCountChanged);
        fitAfter(header, &QHeaderView::sectionResized);
    }
    for (QScrollBar* bar : {grid.horizontalScrollBar(), grid.verticalScrollBar()}) {
        fitAfter(bar, &QScrollBar::rangeChanged);
    }
    FitFrame(grid);
}

// In one line, each with a place that it keeps, so that neither moves anything when it comes.
void AddNote(QVBoxLayout& body, NoteLine& note, QWidget* beside) {
    KeepPlace(note);
    auto* line = new QGridLayout;
    line->addWidget(&note, 0, 0);
    line->addWidget(new CopyHint(note, note.parentWidget()), 0, 0, Qt::AlignLeft | Qt::AlignTop);
    line->setColumnStretch(0, 1);
    if (beside != nullptr) {
        KeepPlace(*beside);
        line->addWidget(beside, 0, 1, Qt::AlignTop);
    }
    body.addLayout(line);
}

}  // namespace GridParts
