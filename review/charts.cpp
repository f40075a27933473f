// Charts, drawn on whatever they are asked for.
#include <algorithm>
#include <cmath>
#include <optional>
#include <string>

#include "review/axes.h"
#include "review/canvas.h"
#include "review/figures.h"
#include "review/step_places.h"
#include "review/tables.h"

namespace review {

namespace {

constexpr double kCostWidth = 460;
constexpr double kCostHeight = 240;
constexpr double kCostLeft = 74;
constexpr double kCostRight = kCostWidth - 30;
constexpr double kCostTop = 20;
constexpr double kCostBottom = 197;

std::string PowerText(double power) {
    constexpr double kMost = 1e6;
    return power >= kMost ? ShortFigure(power)
           : power >= 1   ? Fixed(power, 0)
                          : Figure(static_cast<float>(power));
}

// Long figures have no room in charts.
std::string ShortDollars(double dollars) {
    constexpr double kMost = 1e6;
    if (std::abs(dollars) < kMost) {
        return DollarsText(dollars);
    }
    return (dollars < 0 ? "-$" : "$") + ShortFigure(std::abs(dollars));
}

// About as wide as these words are.
double RoughWidth(const std::string& words) {
    return 6.5 * static_cast<double>(words.size());
}

void DrawSteps(Canvas& canvas, const CostChart& chart, const LogAxis& acres,
               const LogAxis& dollars) {
    const auto leftOf = [&acres](const CostChart::Step& step) {
        return acres.Place(std::max(step.from, acres.Least()));
    };
    const auto rightOf = [&acres](const CostChart::Step& step) {
        return acres.Place(step.to > 0 ? step.to : acres.Most());
    };
    double lastY = -1;
    StepPlaces places({kCostLeft + 3, kCostWidth, 0, kCostBottom});
    for (const CostChart::Step& step : chart.steps) {
        const double left = leftOf(step);
        const double y = dollars.Place(step.cost);
        if (lastY >= 0) {
            canvas.Line(left, lastY, left, y, Stroke::kRiser);
            places.KeepFree(left, lastY, left, y);
        }
        canvas.Line(left, y, rightOf(step), y, step.to > 0 ? Stroke::kStep : Stroke::kOpenStep);
        places.KeepFree(left, y, rightOf(step), y);
        lastY = y;
    }
    // A figure without a place is left to the table.
    for (const CostChart::Step& step : chart.steps) {
        const std::string words = ShortDollars(step.cost);
        const std::optional<Area> place =
            places.Take(leftOf(step), rightOf(step), dollars.Place(step.cost), RoughWidth(words),
                        Lettering().size);
        if (place) {
            canvas.Words((place->left + place->right) / 2, place->bottom - 1, words,
                         Anchor::kMiddle, {});
        }
    }
}

}  // namespace

std::size_t BandsOf(const CostChart&) {
    return 1;
}

Extent ExtentOf(const CostChart&, std::size_t) {
    return {kCostWidth, kCostHeight};
}

void Draw(Canvas& canvas, const CostChart& chart, std::size_t, std::size_t) {
    double leastAcres = 1;
    double mostAcres = 10;
    double leastCost = chart.steps.empty() ? 1 : chart.steps.front().cost;
    double mostCost = leastCost;
    for (const CostChart::Step& step : chart.steps) {
        leastAcres = step.to > 0 ? std::min(leastAcres, step.to / 2) : leastAcres;
        mostAcres = std::max({mostAcres, step.to, step.to > 0 ? step.to : step.from * 5});
        leastCost = std::min(leastCost, step.cost);
        mostCost = std::max(mostCost, step.cost);
    }
    const LogAxis acres(leastAcres, mostAcres, kCostLeft, kCostRight);
    const LogAxis dollars(leastCost, mostCost * 1.2, kCostBottom, kCostTop);
    acres.EachPower([&](double power) {
        const double x = acres.Place(power);
        canvas.Line(x, kCostTop, x, kCostBottom, Stroke::kGrid);
        canvas.Words(x, kCostBottom + 15, PowerText(power), Anchor::kMiddle, {});
    });
    dollars.EachPower([&](double power) {
        const double y = dollars.Place(power);
        canvas.Line(kCostLeft, y, kCostRight, y, Stroke::kGrid);
        canvas.Words(kCostLeft - 6, y + 4, "$" + PowerText(power), Anchor::kEnd, {});
    });
    canvas.Line(kCostLeft, kCostBottom, kCostRight, kCostBottom, Stroke::kAxis);
    canvas.Line(kCostLeft, kCostTop, kCostLeft, kCostBottom, Stroke::kAxis);
    canvas.Words((kCostLeft + kCostRight) / 2, kCostHeight - 10, "Fire size in acres",
                 Anchor::kMiddle, {});
    canvas.Words(14, (kCostBottom + kCostTop) / 2, "Dollars per acre", Anchor::kMiddle,
                 {.isUpright = true});
    DrawSteps(canvas, chart, acres, dollars);
}

namespace {

constexpr double kPanelWidth = 180;
constexpr double kPanelHeight = 135;
constexpr std::size_t kPanelsInARow = 4;

void DrawPanel(Canvas& canvas, const TotalsChart::Panel& panel, const TotalsScale& scale,
               double left, double top) {
    constexpr double kHigh = 90;
    constexpr double kBar = 16;
    constexpr double kScale = 48;
    const double bottom = top + 18 + kHigh;
    const auto place = [&](double value) {
        return bottom - (value - scale.least) / (scale.most - scale.least) * kHigh;
    };
    canvas.Words(left + kScale, top + 11, panel.title, Anchor::kStart, {.isBold = true});
    for (const double mark : {scale.least, 0.0, scale.most}) {
        canvas.Line(left + kScale, place(mark), left + kScale + 6 * (kBar + 4), place(mark),
                    mark == 0 ? Stroke::kAxis : Stroke::kGrid);
        if (mark == 0 || std::abs(place(mark) - place(0)) > 12) {
            canvas.Words(left + kScale - 4, place(mark) + 4, ShortDollars(mark), Anchor::kEnd,
                         {.size = 10});
        }
    }
    for (std::size_t i = 0; i < panel.totals.size(); ++i) {
        const double total = panel.totals[i];
        const double x = left + kScale + 2 + static_cast<double>(i) * (kBar + 4);
        if (total != 0) {
            canvas.Bar(x, std::min(place(total), place(0)), kBar, std::abs(place(total) - place(0)),
                       total < 0 ? Fill::kLoss : Fill::kGain);
        }
        canvas.Words(x + kBar / 2, bottom + 13, std::to_string(i + 1), Anchor::kMiddle,
                     {.size = 10});
    }
}

}  // namespace

std::size_t BandsOf(const TotalsChart& chart) {
    return (chart.panels.size() + kPanelsInARow - 1) / kPanelsInARow;
}

Extent ExtentOf(const TotalsChart& chart, std::size_t bands) {
    const std::size_t columns = std::clamp<std::size_t>(chart.panels.size(), 1, kPanelsInARow);
    return {kPanelWidth * static_cast<double>(columns),
            kPanelHeight * static_cast<double>(bands) + 4};
}

void Draw(Canvas& canvas, const TotalsChart& chart, std::size_t first, std::size_t last) {
    const TotalsScale scale = ScaleOf(chart);
    const std::size_t end = std::min(last * kPanelsInARow, chart.panels.size());
    for (std::size_t i = first * kPanelsInARow; i < end; ++i) {
        const std::size_t band = i / kPanelsInARow - first;
        DrawPanel(canvas, chart.panels[i], scale,
                  kPanelWidth * static_cast<double>(i % kPanelsInARow),
                  kPanelHeight * static_cast<double>(band));
    }
}

namespace {

constexpr double kBarsWidth = 720;
constexpr double kBarBand = 38;

double LargestOf(const BarChart& chart) {
    double most = 0;
    for (const BarChart::Bar& bar : chart.bars) {
        most = std::max(most, std::abs(bar.value));
    }
    return most;
}

}  // namespace

std::size_t BandsOf(const BarChart& chart) {
    return chart.bars.size();
}

Extent ExtentOf(const BarChart&, std::size_t bands) {
    return {kBarsWidth, kBarBand * static_cast<double>(bands) + 6};
}

// The label stands above its bar, where long names have room. What falls goes to the left of the
// line in the middle, what rises to the right.
void Draw(Canvas& canvas, const BarChart& chart, std::size_t first, std::size_t last) {
    constexpr double kMiddle = kBarsWidth / 2;
    constexpr double kLongest = 200;
    const double most = LargestOf(chart);
    for (std::size_t i = first; i < std::min(last, chart.bars.size()); ++i) {
        const BarChart::Bar& bar = chart.bars[i];
        const double top = 3 + kBarBand * static_cast<double>(i - first);
        const double length = most > 0 ? std::abs(bar.value) / most * kLongest : 0;
        const bool falls = bar.value < 0;
        canvas.Words(kMiddle, top + 11, bar.label, Anchor::kMiddle, {});
        canvas.Bar(falls ? kMiddle - length : kMiddle, top + 17, std::max(length, 1.0), 14,
                   falls ? Fill::kLoss : Fill::kGain);
        canvas.Words(falls ? kMiddle - length - 6 : kMiddle + length + 6, top + 28, bar.text,
                     falls ? Anchor::kEnd : Anchor::kStart, {});
        canvas.Line(kMiddle, top + 15, kMiddle, top + 33, Stroke::kAxis);
    }
}

int ShadeOf(double value, double largest) {
    // The comparison also leaves out what is no number.
    if (!(std::abs(value) > 0) || !(largest > 0)) {
        return 0;
    }
    const double part = std::min(1.0, std::log1p(std::abs(value)) / std::log1p(largest));
    return std::max(1, static_cast<int>(std::lround(part * kDarkestShade)));
}

}  // namespace review
