#include "platform/controls/FlexGridPaint.h"

#include <QFontInfo>
#include <QFontMetrics>
#include <QPainter>
#include <algorithm>

namespace FlexGridPaint {
namespace {

constexpr double kSmallestScale = 0.4;
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

}  // namespace FlexGridPaint
