#include "platform/controls/FlexGridDelegate.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QHelpEvent>
#include <QItemSelectionModel>
#include <QPainter>
#include <QToolTip>

namespace {

bool IsOneCell(const QAbstractItemView& view) {
    const QItemSelection selection = view.selectionModel()->selection();
    return selection.size() == 1 && selection.first().width() == 1 &&
           selection.first().height() == 1;
}

}  // namespace

FlexGridDelegate::FlexGridDelegate(QObject* parent) : QStyledItemDelegate(parent) {}

// The current cell is framed, so that it is told from the other cells of a selected block; where
// the keyboard is elsewhere and it is all that is selected, the frame is all that shows.
void FlexGridDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                             const QModelIndex& index) const {
    const auto* view = qobject_cast<const QAbstractItemView*>(option.widget);
    const bool current = view != nullptr && view->currentIndex() == index;
    QStyleOptionViewItem cell = option;
    if (current && !view->hasFocus() && IsOneCell(*view)) {
        cell.state &= ~QStyle::State_Selected;
    }
    QStyledItemDelegate::paint(painter, cell, index);
    if (!current) {
        return;
    }
    const bool selected = (cell.state & QStyle::State_Selected) != 0;
    painter->save();
    painter->setPen(
        QPen(cell.palette.color(selected ? QPalette::HighlightedText : QPalette::Highlight), 1,
             selected ? Qt::DotLine : Qt::SolidLine));
    painter->drawRect(cell.rect.adjusted(0, 0, -1, -1));
    painter->restore();
}

bool FlexGridDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view,
                                 const QStyleOptionViewItem& option, const QModelIndex& index) {
    if (event->type() != QEvent::ToolTip || !index.isValid()) {
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    }
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    const QRect room =
        view->style()->subElementRect(QStyle::SE_ItemViewItemText, &cell, cell.widget);
    const int margin = view->style()->pixelMetric(QStyle::PM_FocusFrameHMargin, &cell, view) + 1;
    if (cell.fontMetrics.horizontalAdvance(cell.text) > room.width() - 2 * margin) {
        QToolTip::showText(event->globalPos(), cell.text.toHtmlEscaped(), view);
    } else {
        QToolTip::hideText();
    }
    return true;
}
