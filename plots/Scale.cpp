#include "plots/Scale.h"

#include <algorithm>
#include <cmath>

namespace plots {

namespace {

// How much further than its last bound an open class is drawn.
constexpr double kBeyond = 5;

Scale Around(double least, double most) {
    const double first = std::floor(std::log10(least));
    const double last = std::max(first + 1, std::ceil(std::log10(most)));
    return {std::pow(10, first), std::pow(10, last)};
}

bool IsPositive(double number) {
    return std::isfinite(number) && number > 0;
}

Scale Rounded(Scale held) {
    held = {-RoundUp(-held.least), RoundUp(held.most)};
    if (held.least == held.most) {
        held.most = 1;
    }
    return held;
}

void Hold(Scale& scale, double value) {
    if (std::isfinite(value)) {
        scale.least = std::min(scale.least, value);
        scale.most = std::max(scale.most, value);
    }
}

}  // namespace

double RoundUp(double amount) {
    if (!IsPositive(amount)) {
        return 0;
    }
    const double power = std::pow(10, std::floor(std::log10(amount)));
    for (const double step : {1.0, 2.0, 5.0}) {
        if (amount <= step * power) {
            return step * power;
        }
    }
    return 10 * power;
}

Scale ScaleOf(const review::TotalsChart& chart) {
    Scale scale{0, 0};
    for (const review::TotalsChart::Panel& panel : chart.panels) {
        for (const double total : panel.totals) {
            Hold(scale, total);
        }
    }
    return Rounded(scale);
}

Scale ScaleOf(const review::BarChart& chart) {
    Scale scale{0, 0};
    for (const review::BarChart::Bar& bar : chart.bars) {
        Hold(scale, bar.value);
    }
    return Rounded(scale);
}

Scale AcresOf(const review::CostChart& chart) {
    double least = 1;
    double most = 10;
    for (const review::CostChart::Step& step : chart.steps) {
        if (IsPositive(step.to)) {
            least = std::min(least, step.to / 2);
            most = std::max(most, step.to);
        } else if (IsPositive(step.from)) {
            most = std::max(most, step.from * kBeyond);
        }
    }
    return Around(least, most);
}

Scale CostsOf(const review::CostChart& chart) {
    double least = 0;
    double most = 0;
    for (const review::CostChart::Step& step : chart.steps) {
        if (IsPositive(step.cost)) {
            least = least > 0 ? std::min(least, step.cost) : step.cost;
            most = std::max(most, step.cost);
        }
    }
    return least > 0 ? Around(least, most * 1.2) : Scale{1, 10};
}

}  // namespace plots
