#include "platform/controls/FlexGridDelegate.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QHelpEvent>
#include <QItemSelectionModel>
#include <QPainter>
#include <QToolTip>
#include <algorithm>

#include "platform/controls/FlexGridModel.h"
#include "platform/controls/FlexGridPaint.h"

namespace platform {

namespace {

bool IsOneCell(const QAbstractItemView& view) {
    const QItemSelection selection = view.selectionModel()->selection();
    return selection.size() == 1 && selection.first().width() == 1 &&
           selection.first().height() == 1;
}

bool IsMarked(const QModelIndex& index) {
    return !index.data(Qt::AccessibleDescriptionRole).toString().isEmpty();
}

// How wide a text may be before the style, which rounds its width up, cuts it.
int TextRoom(const QStyleOptionViewItem& cell) {
    const QStyle& style = cell.widget != nullptr ? *cell.widget->style() : *QApplication::style();
    const int margin = style.pixelMetric(QStyle::PM_FocusFrameHMargin, &cell, cell.widget) + 1;
    return cell.rect.width() - 2 * margin - 1;
}

bool IsCut(const QStyleOptionViewItem& cell) {
    return cell.fontMetrics.horizontalAdvance(cell.text) > TextRoom(cell);
}

QString FiguresForRoom(const QStyleOptionViewItem& cell) {
    const int one = std::max(cell.fontMetrics.horizontalAdvance(u'#'), 1);
    return QString(std::clamp(TextRoom(cell) / one, 1, 4), u'#');
}

}  // namespace

FlexGridDelegate::FlexGridDelegate(QObject* parent) : QStyledItemDelegate(parent) {}

// The current cell is framed in the text's color, which is plain to see on any palette and without
// colors; where the keyboard is elsewhere and it is all that is selected, the frame is all that
// shows.
void FlexGridDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                             const QModelIndex& index) const {
    const auto* view = qobject_cast<const QAbstractItemView*>(option.widget);
    const bool current = view != nullptr && view->currentIndex() == index;
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    if (current && !view->hasFocus() && IsOneCell(*view)) {
        cell.state &= ~QStyle::State_Selected;
        // The table has colored the selected cell already.
        painter->fillRect(cell.rect, cell.palette.brush(QPalette::Base));
    }
    const bool selected = (cell.state & QStyle::State_Selected) != 0;
    const bool marked = IsMarked(index);
    if (marked && !selected) {
        cell.backgroundBrush = FlexGridPaint::MarkGround(cell.palette);
        painter->fillRect(cell.rect, cell.backgroundBrush);
    }
    if (IsCut(cell) && index.data(FlexGridModel::kFigureRole).toBool()) {
        cell.text = FiguresForRoom(cell);
    }
    cell.state &= ~QStyle::State_HasFocus;
    cell.widget->style()->drawControl(QStyle::CE_ItemViewItem, &cell, painter, cell.widget);
    if (marked) {
        FlexGridPaint::DrawMark(*painter, cell.rect, cell.palette, selected);
    }
    FlexGridPaint::DrawEdges(
        *painter, cell.rect,
        FlexGridPaint::LineColor(cell.palette, QPalette::Base, QPalette::Text));
    if (current) {
        FlexGridPaint::DrawCurrent(*painter, cell.rect, cell.palette, view->hasFocus());
    }
}

QSize FlexGridDelegate::sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const {
    // The pixel that TextRoom keeps for rounding.
    return QStyledItemDelegate::sizeHint(option, index) + QSize(1, 0);
}

bool FlexGridDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view,
                                 const QStyleOptionViewItem& option, const QModelIndex& index) {
    if (event->type() != QEvent::ToolTip || !index.isValid()) {
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    }
    const QString note = index.data(Qt::AccessibleDescriptionRole).toString();
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    QStringList lines;
    if (IsCut(cell)) {
        lines += cell.text.toHtmlEscaped();
    }
    if (!note.isEmpty()) {
        lines += note.toHtmlEscaped();
    }
    if (lines.isEmpty()) {
        QToolTip::hideText();
    } else {
        QToolTip::showText(event->globalPos(), lines.join(QStringLiteral("<br>")), view);
    }
    return true;
}

}  // namespace platform
