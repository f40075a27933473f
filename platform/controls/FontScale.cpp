#include "platform/controls/FontScale.h"

#include <QFont>
#include <QFontInfo>
#include <QFontMetricsF>

#include <algorithm>
#include <cmath>

namespace platform {

double FontScale(const QFont& font) {
    if (QFontInfo(font).pointSizeF() <= kStandardPoints) {
        return 1;
    }
    QFont standard = font;
    standard.setPointSizeF(kStandardPoints);
    return std::max(QFontMetricsF(font).height() / QFontMetricsF(standard).height(), 1.0);
}

int ScaledPixels(int pixels, const QFont& font) {
    return static_cast<int>(std::lround(pixels * FontScale(font)));
}

}  // namespace platform
