#include "platform/controls/FlexGridDelegate.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QHelpEvent>
#include <QItemSelectionModel>
#include <QPainter>
#include <QToolTip>

#include "platform/controls/FlexGridPaint.h"
#include "platform/text/Numbers.h"

namespace {

constexpr int kLongestCode = 4;  // characters

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
        // The table has coloured the selected cell already.
        painter->fillRect(cell.rect, cell.palette.brush(QPalette::Base));
    }
    const bool marked = IsMarked(index);
    if (marked && (cell.state & QStyle::State_Selected) == 0) {
        cell.backgroundBrush = FlexGridPaint::MarkGround(cell.palette);
        painter->fillRect(cell.rect, cell.backgroundBrush);
    }
    QStyledItemDelegate::paint(painter, cell, index);
    if (marked) {
        QPalette palette = cell.palette;
        if ((cell.state & QStyle::State_Selected) != 0) {
            palette.setColor(QPalette::Text, palette.color(QPalette::HighlightedText));
        }
        FlexGridPaint::DrawMark(*painter, cell.rect, palette);
    }
    painter->save();
    FlexGridPaint::DrawEdges(
        *painter, cell.rect,
        FlexGridPaint::LineColor(cell.palette, QPalette::Base, QPalette::Text));
    painter->restore();
    if (!current) {
        return;
    }
    const bool selected = (cell.state & QStyle::State_Selected) != 0;
    painter->save();
    painter->setPen(
        QPen(cell.palette.color(selected ? QPalette::HighlightedText : QPalette::Highlight), 1,
             selected ? Qt::DotLine : Qt::SolidLine));
    painter->drawRect(cell.rect.adjusted(0, 0, -2, -2));
    painter->restore();
}

// A number or a code cut short would be another one: it is set smaller instead.
void FlexGridDelegate::initStyleOption(QStyleOptionViewItem* option,
                                       const QModelIndex& index) const {
    QStyledItemDelegate::initStyleOption(option, index);
    const QString text = index.data(Qt::EditRole).toString();
    if (text.size() <= kLongestCode || platform::IsPlainNumber(text)) {
        const int room = TextRoom(*option);
        option->font = FlexGridPaint::FittingFont(option->font, {option->text}, room);
        option->fontMetrics = QFontMetrics(option->font);
    }
}

bool FlexGridDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view,
                                 const QStyleOptionViewItem& option, const QModelIndex& index) {
    if (event->type() != QEvent::ToolTip || !index.isValid()) {
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    }
    const QString note = index.data(Qt::AccessibleDescriptionRole).toString();
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    if (!note.isEmpty()) {
        QToolTip::showText(event->globalPos(), note.toHtmlEscaped(), view);
    } else if (cell.fontMetrics.horizontalAdvance(cell.text) > TextRoom(cell)) {
        QToolTip::showText(event->globalPos(), cell.text.toHtmlEscaped(), view);
    } else {
        QToolTip::hideText();
    }
    return true;
}
