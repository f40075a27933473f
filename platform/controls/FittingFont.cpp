#include "platform/controls/FittingFont.h"

#include <QFontInfo>
#include <QFontMetrics>
#include <algorithm>

namespace {

constexpr double kSmallest = 0.75;
constexpr double kStep = 0.5;  // points

bool Fits(const QFont& font, const QStringList& texts, int width) {
    const QFontMetrics metrics(font);
    return std::all_of(texts.begin(), texts.end(), [&](const QString& text) {
        return metrics.horizontalAdvance(text) <= width;
    });
}

}  // namespace

namespace platform {

QFont FittingFont(const QFont& font, const QStringList& texts, int width) {
    const double size = QFontInfo(font).pointSizeF();
    QFont fitting = font;
    for (double smaller = size - kStep; smaller >= size * kSmallest && !Fits(fitting, texts, width);
         smaller -= kStep) {
        fitting.setPointSizeF(smaller);
    }
    return fitting;
}

}  // namespace platform
