#include "platform/controls/FlexGridDelegate.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

FlexGridDelegate::FlexGridDelegate(QObject* parent) : QStyledItemDelegate(parent) {}

// The current cell is framed as well, so that it is told from the other cells of a selected block.
void FlexGridDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                             const QModelIndex& index) const {
    QStyledItemDelegate::paint(painter, option, index);
    const auto* view = qobject_cast<const QAbstractItemView*>(option.widget);
    if (view == nullptr || view->currentIndex() != index) {
        return;
    }
    const bool selected = (option.state & QStyle::State_Selected) != 0;
    painter->save();
    painter->setPen(
        QPen(option.palette.color(selected ? QPalette::HighlightedText : QPalette::Highlight), 1,
             selected ? Qt::DotLine : Qt::SolidLine));
    painter->drawRect(option.rect.adjusted(0, 0, -1, -1));
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
