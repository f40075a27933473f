#include "review/svg.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <map>
#include <string_view>

#include "review/figures.h"
#include "review/html.h"

namespace review {

namespace {

constexpr const char* kLoss = "#b35806";
constexpr const char* kGain = "#3a5a9b";

std::string At(double place) {
    std::array<char, 64> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), place,
                                   std::chars_format::fixed, 1);
    std::string text(buffer.data(), end.ptr);
    return text.ends_with(".0") ? text.substr(0, text.size() - 2) : text;
}

// What is drawn, in pixels from the top left.
class Picture {
public:
    Picture(double width, double height, const ChartWords& words)
        : text_("<svg xmlns=\"http://www.w3.org/2000/svg\" role=\"img\" viewBox=\"0 0 " +
                At(width) + " " + At(height) + "\" width=\"" + At(width) + "\" height=\"" +
                At(height) +
                "\" font-family=\"Liberation Sans, Arial, sans-serif\" font-size=\"11\">\n<title>" +
                HtmlText(words.alternative) + "</title>\n") {}

    void Line(double x1, double y1, double x2, double y2, const char* look) {
        text_ += "<line x1=\"" + At(x1) + "\" y1=\"" + At(y1) + "\" x2=\"" + At(x2) + "\" y2=\"" +
                 At(y2) + "\" " + look + "/>\n";
    }
    void Box(double x, double y, double width, double height, const std::string& look) {
        text_ += "<rect x=\"" + At(x) + "\" y=\"" + At(y) + "\" width=\"" + At(width) +
                 "\" height=\"" + At(height) + "\" " + look + "/>\n";
    }
    // `anchor` is start, middle or end.
    void Words(double x, double y, const std::string& words, const char* anchor,
               const std::string& look = {}) {
        text_ += "<text x=\"" + At(x) + "\" y=\"" + At(y) + "\" text-anchor=\"" + anchor + "\"" +
                 (look.empty() ? "" : " " + look) + ">" + HtmlText(words) + "</text>\n";
    }
    void Add(const std::string& svg) { text_ += svg; }
    [[nodiscard]] std::string Finish() const { return text_ + "</svg>\n"; }

private:
    std::string text_;
};

constexpr const char* kAxis = "stroke=\"#333\" stroke-width=\"1\"";
constexpr const char* kGridLine = "stroke=\"#ccc\" stroke-width=\"1\"";

// A logarithmic axis between whole powers of ten.
class LogAxis {
public:
    LogAxis(double least, double most, double from, double to)
        : first_(std::floor(std::log10(least))),
          last_(std::max(first_ + 1, std::ceil(std::log10(most)))),
          from_(from),
          to_(to) {}
    [[nodiscard]] double Place(double value) const {
        return from_ + (std::log10(value) - first_) / (last_ - first_) * (to_ - from_);
    }
    [[nodiscard]] double Least() const { return std::pow(10, first_); }
    [[nodiscard]] double Most() const { return std::pow(10, last_); }
    template <typename Mark>
    void EachPower(const Mark& mark) const {
        for (double power = first_; power <= last_; power += 1) {
            mark(std::pow(10, power));
        }
    }

private:
    double first_;
    double last_;
    double from_;
    double to_;
};

std::string PowerText(double power) {
    return power >= 1 ? Fixed(power, 0) : Figure(static_cast<float>(power));
}

std::string DollarText(double dollars) {
    const std::string figure = Fixed(dollars, 0);
    return figure.starts_with('-') ? "-$" + figure.substr(1) : "$" + figure;
}

const char* FillOf(double value) {
    return value < 0 ? kLoss : kGain;
}

void DrawSteps(Picture& picture, const CostChart& chart, const LogAxis& acres,
               const LogAxis& dollars) {
    double lastY = -1;
    for (const CostChart::Step& step : chart.steps) {
        const double left = acres.Place(std::max(step.from, acres.Least()));
        const double right = acres.Place(step.to > 0 ? step.to : acres.Most());
        const double y = dollars.Place(step.cost);
        if (lastY >= 0) {
            picture.Line(left, lastY, left, y, "stroke=\"#222\" stroke-width=\"1\"");
        }
        picture.Line(left, y, right, y,
                     step.to > 0 ? "stroke=\"#222\" stroke-width=\"3\""
                                 : "stroke=\"#222\" stroke-width=\"3\" stroke-dasharray=\"7 4\"");
        picture.Words((left + right) / 2, y - 5, DollarText(step.cost), "middle");
        lastY = y;
    }
}

}  // namespace

std::string SvgOf(const CostChart& chart) {
    constexpr double kWidth = 640;
    constexpr double kHeight = 260;
    constexpr double kLeft = 70;
    constexpr double kRight = kWidth - 35;
    constexpr double kBottom = 215;
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
    const LogAxis acres(leastAcres, mostAcres, kLeft, kRight);
    const LogAxis dollars(leastCost, mostCost * 1.2, kBottom, 15);
    Picture picture(kWidth, kHeight, chart.words);
    acres.EachPower([&](double power) {
        picture.Line(acres.Place(power), 15, acres.Place(power), kBottom, kGridLine);
        picture.Words(acres.Place(power), kBottom + 15, PowerText(power), "middle");
    });
    dollars.EachPower([&](double power) {
        picture.Line(kLeft, dollars.Place(power), kRight, dollars.Place(power), kGridLine);
        picture.Words(kLeft - 6, dollars.Place(power) + 4, "$" + PowerText(power), "end");
    });
    picture.Line(kLeft, kBottom, kRight, kBottom, kAxis);
    picture.Line(kLeft, 15, kLeft, kBottom, kAxis);
    picture.Words((kLeft + kRight) / 2, kHeight - 10, "Fire size in acres", "middle");
    picture.Words(14, (kBottom + 15) / 2, "Dollars per acre", "middle",
                  "transform=\"rotate(-90 14 " + At((kBottom + 15) / 2) + ")\"");
    DrawSteps(picture, chart, acres, dollars);
    return picture.Finish();
}

namespace {

// A scale of round figures that holds all totals and 0.
struct TotalsScale {
    double least = 0;
    double most = 0;
};

double RoundUp(double amount) {
    if (amount <= 0) {
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

void DrawPanel(Picture& picture, const TotalsChart::Panel& panel, const TotalsScale& scale,
               double left, double top) {
    constexpr double kHigh = 105;
    constexpr double kBar = 16;
    const double bottom = top + 18 + kHigh;
    const auto place = [&](double value) {
        return bottom - (value - scale.least) / (scale.most - scale.least) * kHigh;
    };
    picture.Words(left + 48, top + 11, panel.title, "start", "font-weight=\"bold\"");
    for (const double mark : {scale.least, 0.0, scale.most}) {
        picture.Line(left + 48, place(mark), left + 48 + 6 * (kBar + 4), place(mark),
                     mark == 0 ? kAxis : kGridLine);
        if (mark == 0 || std::abs(place(mark) - place(0)) > 12) {
            picture.Words(left + 44, place(mark) + 4, DollarText(mark), "end", "font-size=\"10\"");
        }
    }
    for (std::size_t i = 0; i < panel.totals.size(); ++i) {
        const double total = panel.totals[i];
        const double x = left + 50 + static_cast<double>(i) * (kBar + 4);
        picture.Box(x, std::min(place(total), place(0)), kBar, std::abs(place(total) - place(0)),
                    std::string("fill=\"") + FillOf(total) + "\" stroke=\"#222\"");
        picture.Words(x + kBar / 2, bottom + 13, std::to_string(i + 1), "middle",
                      "font-size=\"10\"");
    }
}

}  // namespace

std::string SvgOf(const TotalsChart& chart) {
    constexpr double kPanelWidth = 180;
    constexpr double kPanelHeight = 150;
    constexpr std::size_t kInARow = 4;
    const std::size_t columns = std::clamp<std::size_t>(chart.panels.size(), 1, kInARow);
    const std::size_t rows = (chart.panels.size() + kInARow - 1) / kInARow;
    Picture picture(kPanelWidth * static_cast<double>(columns),
                    kPanelHeight * static_cast<double>(rows) + 4, chart.words);
    const TotalsScale scale = ScaleOf(chart);
    for (std::size_t i = 0; i < chart.panels.size(); ++i) {
        const std::size_t row = i / kInARow;
        DrawPanel(picture, chart.panels[i], scale, kPanelWidth * static_cast<double>(i % kInARow),
                  kPanelHeight * static_cast<double>(row));
    }
    return picture.Finish();
}

namespace {

// How dark: 0 for nothing to kDarkest. Small amounts count as well: a digit more is a shade more.
constexpr int kDarkest = 8;

int ShadeOf(double value, double largest) {
    if (value == 0 || largest <= 0) {
        return 0;
    }
    const double part = std::min(1.0, std::log1p(std::abs(value)) / std::log1p(largest));
    return std::max(1, static_cast<int>(std::lround(part * kDarkest)));
}

std::string Colour(int shade, bool isLoss) {
    const std::array<int, 3> darkest =
        isLoss ? std::array<int, 3>{153, 64, 0} : std::array<int, 3>{26, 58, 122};
    std::string colour = "#";
    for (const int channel : darkest) {
        constexpr std::string_view kHex = "0123456789abcdef";
        const int mixed = 255 + (channel - 255) * shade / kDarkest;
        colour += kHex[static_cast<std::size_t>(mixed >> 4)];
        colour += kHex[static_cast<std::size_t>(mixed & 15)];
    }
    return colour;
}

constexpr int kCellsLeft = 170;
constexpr int kCellWidth = 74;
constexpr int kCellHeight = 20;
constexpr int kCellsTop = 18;

std::string SquareAt(std::size_t row, std::size_t level, int margin) {
    const int left = kCellsLeft + kCellWidth * static_cast<int>(level) + margin;
    const int top = kCellsTop + kCellHeight * static_cast<int>(row) + margin;
    const std::string width = std::to_string(kCellWidth - 2 * margin);
    return "M" + std::to_string(left) + " " + std::to_string(top) + "h" + width + "v" +
           std::to_string(kCellHeight - 2 * margin) + "h-" + width + "z";
}

// A report has thousands of maps: squares of one colour are one path, texts share their look.
class MapParts {
public:
    void Add(std::size_t row, std::size_t level, double value, double largest) {
        const int shade = ShadeOf(value, largest);
        squares_[Colour(shade, value < 0)] += SquareAt(row, level, 0);
        if (value > 0) {
            // Told from a loss without colours too.
            borders_ += SquareAt(row, level, 3);
        }
        std::string text = Fixed(static_cast<float>(value), 2);
        std::erase(text, ',');
        const int right = kCellsLeft + kCellWidth * static_cast<int>(level + 1) - 6;
        const int line = kCellsTop + kCellHeight * static_cast<int>(row) + 14;
        texts_[shade > kDarkest / 2] += "<text x=\"" + std::to_string(right) + "\" y=\"" +
                                        std::to_string(line) + "\">" + text + "</text>\n";
    }
    [[nodiscard]] std::string Svg() const {
        std::string svg;
        for (const auto& [colour, path] : squares_) {
            svg.append("<path fill=\"").append(colour).append("\" stroke=\"#999\" d=\"");
            svg.append(path).append("\"/>\n");
        }
        if (!borders_.empty()) {
            svg += "<path fill=\"none\" stroke=\"#1a3a7a\" stroke-dasharray=\"3 2\" d=\"" +
                   borders_ + "\"/>\n";
        }
        for (const auto& [isOnDark, texts] : texts_) {
            svg += std::string("<g text-anchor=\"end\" fill=\"") + (isOnDark ? "#fff" : "#111") +
                   "\">\n" + texts + "</g>\n";
        }
        return svg;
    }

private:
    std::map<std::string, std::string> squares_;
    std::string borders_;
    std::map<bool, std::string> texts_;
};

}  // namespace

std::string SvgOf(const HeatMap& chart) {
    Picture picture(kCellsLeft + 6 * kCellWidth + 2,
                    kCellsTop + kCellHeight * static_cast<double>(chart.rows.size()) + 2,
                    chart.words);
    for (int fil = 1; fil <= 6; ++fil) {
        picture.Words(kCellsLeft + kCellWidth * (fil - 0.5), 13, "FIL " + std::to_string(fil),
                      "middle", "font-weight=\"bold\"");
    }
    MapParts parts;
    for (std::size_t row = 0; row < chart.rows.size(); ++row) {
        picture.Words(kCellsLeft - 6, kCellsTop + kCellHeight * static_cast<double>(row) + 14,
                      chart.rows[row], "end");
        for (std::size_t level = 0; level < chart.values[row].size(); ++level) {
            parts.Add(row, level, chart.values[row][level], chart.largest);
        }
    }
    picture.Add(parts.Svg());
    return picture.Finish();
}

std::string SvgOf(const BarChart& chart) {
    constexpr double kLabels = 330;
    constexpr double kBars = 260;
    constexpr double kHigh = 22;
    double most = 0;
    for (const BarChart::Bar& bar : chart.bars) {
        most = std::max(most, std::abs(bar.value));
    }
    Picture picture(kLabels + kBars + 110, kHigh * static_cast<double>(chart.bars.size()) + 6,
                    chart.words);
    for (std::size_t i = 0; i < chart.bars.size(); ++i) {
        const BarChart::Bar& bar = chart.bars[i];
        const double top = 3 + kHigh * static_cast<double>(i);
        const double length = most > 0 ? std::abs(bar.value) / most * kBars : 0;
        picture.Words(kLabels - 6, top + 15, bar.label, "end");
        picture.Box(kLabels, top + 3, std::max(length, 1.0), kHigh - 8,
                    std::string("fill=\"") + FillOf(bar.value) + "\" stroke=\"#222\"");
        picture.Words(kLabels + length + 6, top + 15, bar.text, "start");
    }
    return picture.Finish();
}

}  // namespace review
