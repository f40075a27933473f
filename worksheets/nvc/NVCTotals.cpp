#include "worksheets/nvc/NVCTotals.h"

#include <QCoreApplication>

#include <cmath>
#include <numeric>

#include "platform/text/Numbers.h"

namespace NVCTotals {

double Loaded(std::span<const float> values) {
    return double{std::accumulate(values.begin(), values.end(), 0.0F)};
}

double Typed(std::span<const double> values) {
    return std::accumulate(values.begin(), values.end(), 0.0);
}

QString Text(double total) {
    if (!std::isfinite(total)) {
        return QCoreApplication::translate("NVCTotals", "too large");
    }
    return platform::Format(total, QStringLiteral("$#,0"));
}

}  // namespace NVCTotals
