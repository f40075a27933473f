#include "shell/Scenery.h"

#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <QPixmap>

#include <array>
#include <cmath>

namespace {

// The width in pixels over which the hills repeat their main rise.
constexpr double kHillsAcross = 800;

// The outline of a chain of hills, from the left edge to the right one.
QPainterPath Ridge(const QRectF& area, double base, double height, double phase) {
    constexpr double kStep = 4;
    QPainterPath path(area.bottomLeft());
    for (double x = 0; x <= area.width() + kStep; x += kStep) {
        const double at = x / kHillsAcross;
        const double rise = 0.55 + 0.28 * std::sin(7.1 * at + phase) +
                            0.13 * std::sin(17.3 * at + 2.3 * phase) +
                            0.04 * std::sin(61 * at + phase);
        path.lineTo(area.left() + x, area.bottom() - area.height() * (base + height * rise));
    }
    path.lineTo(area.bottomRight());
    path.closeSubpath();
    return path;
}

}  // namespace

namespace Scenery {

void Paint(QPainter& painter, const QRectF& area, const QPalette& palette) {
    const QColor accent = palette.color(QPalette::Highlight);
    QLinearGradient sky(area.topLeft(), area.bottomRight());
    sky.setColorAt(0, accent.darker(165));
    sky.setColorAt(1, accent.darker(105));
    painter.fillRect(area, sky);
    // The glow of the evening, or of a fire, behind the hills.
    QRadialGradient glow(area.left() + 0.78 * area.width(), area.bottom(), 0.45 * area.width());
    glow.setColorAt(0, QColor(255, 170, 80, 220));
    glow.setColorAt(0.35, QColor(255, 130, 60, 110));
    glow.setColorAt(1, QColor(255, 130, 60, 0));
    painter.fillRect(area, glow);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    QColor hill = palette.color(QPalette::Window);
    for (const auto& [alpha, base, height, phase] :
         {std::array{0.14, 0.22, 0.5, 0.4}, std::array{0.24, 0.1, 0.42, 2.1},
          std::array{1.0, 0.02, 0.3, 4.2}}) {
        hill.setAlphaF(static_cast<float>(alpha));
        painter.setBrush(hill);
        painter.drawPath(Ridge(area, base, height, phase));
    }
}

QIcon Icon(const QPalette& palette) {
    constexpr int kSide = 64;
    constexpr double kCorner = 12;
    QPixmap picture(kSide, kSide);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath outline;
    outline.addRoundedRect(picture.rect(), kCorner, kCorner);
    painter.setClipPath(outline);
    // A stretch of the hills that is wide enough to show their shape.
    painter.scale(0.25, 0.5);
    Paint(painter, QRectF(0, 0, 4.0 * kSide, 2.0 * kSide), palette);
    return picture;
}

}  // namespace Scenery
