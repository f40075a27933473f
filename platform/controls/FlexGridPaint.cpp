#include "platform/controls/FlexGridPaint.h"

#include <QFontInfo>
#include <QFontMetrics>
#include <QPainter>
#include <QPolygon>
#include <algorithm>

namespace FlexGridPaint {
namespace {

constexpr double kSmallestScale = 0.4;
constexpr int kMiddle = 128;    // of the lightness
constexpr int kCorner = 6;      // pixels
constexpr double kStep = 0.25;  // points

int Mix(int ground, int text) {
    return (3 * ground + text) / 4;
}

}  // namespace

QColor LineColor(const QPalette& palette, QPalette::ColorRole ground, QPalette::ColorRole text) {
    const QColor below = palette.color(ground);
    const QColor above = palette.color(text);
    return {Mix(below.red(), above.red()), Mix(below.green(), above.green()),
            Mix(below.blue(), above.blue())};
}

QFont FittingFont(const QFont& font, const QStringList& lines, int room) {
    const auto fits = [&](const QFont& candidate) {
        const QFontMetrics metrics(candidate);
        return std::all_of(lines.begin(), lines.end(), [&](const QString& line) {
            return metrics.horizontalAdvance(line) <= room;
        });
    };
    QFont fitting = font;
    const double full = QFontInfo(font).pointSizeF();
    for (double size = full - kStep; !fits(fitting) && size >= full * kSmallestScale;
         size -= kStep) {
        fitting.setPointSizeF(size);
    }
    return fitting;
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

// The frame has the text's colour, which stands out from the ground whatever the palette.
void DrawMark(QPainter& painter, const QRect& rect, const QPalette& palette) {
    const QColor color = palette.color(QPalette::Text);
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

}  // namespace FlexGridPaint
