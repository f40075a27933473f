#include "platform/controls/FlexGridPaint.h"

#include <QPainter>
#include <QPolygon>
#include <QRegion>

namespace FlexGridPaint {
namespace {

constexpr int kMiddle = 128;  // of the lightness
constexpr int kCorner = 6;    // pixels
constexpr int kThick = 2;

int Mix(int ground, int text) {
    return (3 * ground + text) / 4;
}

// Filled rather than drawn with a pen, whose lines are not as thick on every screen.
void DrawRing(QPainter& painter, const QRect& rect, int thick, const QColor& color) {
    const QRect inner = rect.adjusted(thick, thick, -thick, -thick);
    for (const QRect& side : QRegion(rect).subtracted(inner)) {
        painter.fillRect(side, color);
    }
}

}  // namespace

QColor LineColor(const QPalette& palette, QPalette::ColorRole ground, QPalette::ColorRole text) {
    const QColor below = palette.color(ground);
    const QColor above = palette.color(text);
    return {Mix(below.red(), above.red()), Mix(below.green(), above.green()),
            Mix(below.blue(), above.blue())};
}

void DrawEdges(QPainter& painter, const QRect& rect, const QColor& color) {
    painter.setPen(color);
    painter.drawLine(rect.topRight(), rect.bottomRight());
    painter.drawLine(rect.bottomLeft(), rect.bottomRight());
}

QColor MarkGround(const QPalette& palette) {
    const QColor base = palette.color(QPalette::Base);
    const bool dark = base.lightness() < kMiddle;
    return dark ? QColor(74, 54, 0) : QColor(255, 236, 179);
}

// The frame has the text's color, which stands out from the ground whatever the palette.
void DrawMark(QPainter& painter, const QRect& rect, const QPalette& palette, bool selected) {
    const QColor color = palette.color(selected ? QPalette::HighlightedText : QPalette::Text);
    const QRect frame = rect.adjusted(1, 1, -2, -2);
    painter.save();
    painter.setPen(QPen(color, 1, Qt::DashLine));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(frame);
    const QPolygon corner({frame.topRight() - QPoint(kCorner, 0), frame.topRight() + QPoint(1, 0),
                           frame.topRight() + QPoint(1, kCorner + 1)});
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawPolygon(corner);
    painter.restore();
}

// The thin line within has the ground's color, so that the frame stands out from a selected cell
// too, whatever color that has.
void DrawCurrent(QPainter& painter, const QRect& rect, const QPalette& palette, bool keyboard) {
    const int thick = keyboard ? kThick : 1;
    const QRect outer = rect.adjusted(0, 0, -1, -1);
    DrawRing(painter, outer, thick, palette.color(QPalette::Text));
    DrawRing(painter, outer.adjusted(thick, thick, -thick, -thick), 1,
             palette.color(QPalette::Base));
}

}  // namespace FlexGridPaint
