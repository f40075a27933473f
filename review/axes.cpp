#include "review/axes.h"

#include <algorithm>

namespace review {

namespace {

double RoundUp(double amount) {
    if (amount <= 0) {
        return 0;
    }
    const double power = std::pow(10, std::floor(std::log10(amount)));
    for (const double step : {1.0, 1.5, 2.0, 3.0, 4.0, 5.0, 6.0, 8.0}) {
        if (amount <= step * power) {
            return step * power;
        }
    }
    return 10 * power;
}

}  // namespace

LogAxis::LogAxis(double least, double most, double from, double to)
    : first_(std::floor(std::log10(least))),
      last_(std::max(first_ + 1, std::ceil(std::log10(most)))),
      from_(from),
      to_(to) {}

double LogAxis::Place(double value) const {
    return from_ + (std::log10(value) - first_) / (last_ - first_) * (to_ - from_);
}

TotalsScale ScaleOf(const TotalsChart& chart) {
    TotalsScale scale;
    for (const TotalsChart::Panel& panel : chart.panels) {
        for (const double total : panel.totals) {
            scale.least = std::min(scale.least, total);
            scale.most = std::max(scale.most, total);
        }
    }
    scale = {-RoundUp(-scale.least), RoundUp(scale.most)};
    if (scale.least == scale.most) {
        scale.most = 1;
    }
    return scale;
}

}  // namespace review
