#include "worksheets/nvc/ColumnTotals.h"

#include <QEvent>
#include <QHeaderView>
#include <QScrollBar>

#include "base/Handle.h"
#include "platform/controls/SSPanel.h"
#include "platform/controls/vsFlexGrid.h"

using base::Entry;
using base::Handle;
using worksheets::ColumnTotals;

namespace {

constexpr int kPadding = 8;  // above and below the text, together

}  // namespace

ColumnTotals::ColumnTotals(vsFlexGrid& grid, std::vector<SSPanel*> panels, QWidget* parent)
    : QWidget(parent), grid_(grid), panels_(std::move(panels)) {
    for (SSPanel* panel : panels_) {
        panel->setParent(this);
    }
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    grid_.viewport()->installEventFilter(this);
    Handle<&ColumnTotals::Arrange, Entry::kOwn>(&grid_, &vsFlexGrid::ColumnResized, this);
    Handle<&ColumnTotals::Arrange, Entry::kOwn>(grid_.horizontalHeader(),
                                                &QHeaderView::sectionResized, this);
    Handle<&ColumnTotals::Arrange, Entry::kOwn>(grid_.horizontalScrollBar(),
                                                &QScrollBar::valueChanged, this);
}

QSize ColumnTotals::sizeHint() const {
    return {0, fontMetrics().height() + kPadding};
}

bool ColumnTotals::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize || event->type() == QEvent::Move) {
        Arrange();
    }
    return QWidget::eventFilter(watched, event);
}

void ColumnTotals::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    Arrange();
}

void ColumnTotals::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        updateGeometry();
    }
}

void ColumnTotals::Arrange() {
    const int origin = mapFromGlobal(grid_.viewport()->mapToGlobal(QPoint(0, 0))).x();
    for (std::size_t column = 0; column < panels_.size(); ++column) {
        const int left = grid_.columnViewportPosition(int(column));
        panels_[column]->setGeometry(origin + left, 0, grid_.columnWidth(int(column)), height());
    }
}
