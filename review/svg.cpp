#include "review/svg.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <string_view>

#include "review/canvas.h"
#include "review/figures.h"
#include "review/html.h"

namespace review {

namespace {

std::string At(double place) {
    std::array<char, 64> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), place,
                                   std::chars_format::fixed, 1);
    std::string text(buffer.data(), end.ptr);
    return text.ends_with(".0") ? text.substr(0, text.size() - 2) : text;
}

const char* LookOf(Stroke stroke) {
    switch (stroke) {
        case Stroke::kAxis:
            return "stroke=\"#333\" stroke-width=\"1\"";
        case Stroke::kGrid:
            return "stroke=\"#ccc\" stroke-width=\"1\"";
        case Stroke::kRiser:
            return "stroke=\"#222\" stroke-width=\"1\"";
        case Stroke::kStep:
            return "stroke=\"#222\" stroke-width=\"3\"";
        case Stroke::kOpenStep:
            break;
    }
    return "stroke=\"#222\" stroke-width=\"3\" stroke-dasharray=\"7 4\"";
}

const char* NameOf(Anchor anchor) {
    return anchor == Anchor::kStart ? "start" : anchor == Anchor::kMiddle ? "middle" : "end";
}

// What is drawn, in pixels from the top left.
class Picture : public Canvas {
public:
    // `left` is where the picture begins, below 0 where words need that room.
    Picture(Extent extent, const ChartWords& words, double left = 0)
        : text_("<svg xmlns=\"http://www.w3.org/2000/svg\" role=\"img\" viewBox=\"" + At(left) +
                " 0 " + At(extent.width) + " " + At(extent.height) + "\" width=\"" +
                At(extent.width) + "\" height=\"" + At(extent.height) +
                "\" font-family=\"Liberation Sans, Arial, sans-serif\" font-size=\"11\">\n<title>" +
                HtmlText(words.alternative) + "</title>\n") {}

    void Line(double x1, double y1, double x2, double y2, Stroke stroke) override {
        text_ += "<line x1=\"" + At(x1) + "\" y1=\"" + At(y1) + "\" x2=\"" + At(x2) + "\" y2=\"" +
                 At(y2) + "\" " + LookOf(stroke) + "/>\n";
    }
    void Bar(double x, double y, double width, double height, Fill fill) override {
        text_ += "<rect x=\"" + At(x) + "\" y=\"" + At(y) + "\" width=\"" + At(width) +
                 "\" height=\"" + At(height) + "\" fill=\"" +
                 (fill == Fill::kLoss ? "#b35806" : "#3a5a9b") + "\" stroke=\"#222\"/>\n";
    }
    void Words(double x, double y, const std::string& words, Anchor anchor,
               Lettering look) override {
        text_ +=
            "<text x=\"" + At(x) + "\" y=\"" + At(y) + "\" text-anchor=\"" + NameOf(anchor) + "\"";
        if (look.size != Lettering().size) {
            text_ += " font-size=\"" + At(look.size) + "\"";
        }
        text_ += look.isBold ? " font-weight=\"bold\"" : "";
        if (look.isUpright) {
            text_ += " transform=\"rotate(-90 " + At(x) + " " + At(y) + ")\"";
        }
        text_ += ">" + HtmlText(words) + "</text>\n";
    }
    void Add(const std::string& svg) { text_ += svg; }
    [[nodiscard]] std::string Finish() const { return text_ + "</svg>\n"; }

private:
    std::string text_;
};

template <typename Chart>
std::string PictureOf(const Chart& chart) {
    const std::size_t bands = BandsOf(chart);
    Picture picture(ExtentOf(chart, bands), chart.words);
    Draw(picture, chart, 0, bands);
    return picture.Finish();
}

std::string Color(int shade, bool isLoss) {
    const std::array<int, 3> darkest =
        isLoss ? std::array<int, 3>{153, 64, 0} : std::array<int, 3>{26, 58, 122};
    std::string color = "#";
    for (const int channel : darkest) {
        constexpr std::string_view kHex = "0123456789abcdef";
        const int mixed = 255 + (channel - 255) * shade / kDarkestShade;
        color += kHex[static_cast<std::size_t>(mixed >> 4)];
        color += kHex[static_cast<std::size_t>(mixed & 15)];
    }
    return color;
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

// At least as wide as these words are.
double RoughWidth(std::string_view words) {
    double width = 0;
    for (const char letter : words) {
        const bool isWide = letter == 'W' || letter == 'M' || letter == '@' || letter == '%';
        const bool isCapital = letter >= 'A' && letter <= 'Z';
        width += isWide ? 11 : isCapital ? 8 : 6.5;
    }
    return width;
}

// A report has thousands of maps: squares of one color are one path, texts share their look.
class MapParts {
public:
    void Add(std::size_t row, std::size_t level, double value, double largest) {
        const int shade = ShadeOf(value, largest);
        squares_[Color(shade, value < 0)] += SquareAt(row, level, 0);
        if (value > 0) {
            // Told from a loss without colors too.
            borders_ += SquareAt(row, level, 3);
        }
        std::string text = Fixed(static_cast<float>(value), 2);
        std::erase(text, ',');
        const int right = kCellsLeft + kCellWidth * static_cast<int>(level + 1) - 6;
        const int line = kCellsTop + kCellHeight * static_cast<int>(row) + 14;
        texts_[shade > kDarkestShade / 2] += "<text x=\"" + std::to_string(right) + "\" y=\"" +
                                             std::to_string(line) + "\">" + text + "</text>\n";
    }
    [[nodiscard]] std::string Svg() const {
        std::string svg;
        for (const auto& [color, path] : squares_) {
            svg.append("<path fill=\"").append(color).append("\" stroke=\"#999\" d=\"");
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
    double left = 0;
    for (const std::string& name : chart.rows) {
        left = std::min(left, kCellsLeft - 12 - RoughWidth(name));
    }
    Picture picture({kCellsLeft + 6 * kCellWidth + 2 - left,
                     kCellsTop + kCellHeight * static_cast<double>(chart.rows.size()) + 2},
                    chart.words, left);
    for (int fil = 1; fil <= 6; ++fil) {
        picture.Words(kCellsLeft + kCellWidth * (fil - 0.5), 13, "FIL " + std::to_string(fil),
                      Anchor::kMiddle, {.isBold = true});
    }
    MapParts parts;
    for (std::size_t row = 0; row < chart.rows.size(); ++row) {
        picture.Words(kCellsLeft - 6, kCellsTop + kCellHeight * static_cast<double>(row) + 14,
                      chart.rows[row], Anchor::kEnd, {});
        for (std::size_t level = 0; level < chart.values[row].size(); ++level) {
            parts.Add(row, level, chart.values[row][level], chart.largest);
        }
    }
    picture.Add(parts.Svg());
    return picture.Finish();
}

std::string SvgOf(const CostChart& chart) {
    return PictureOf(chart);
}

std::string SvgOf(const TotalsChart& chart) {
    return PictureOf(chart);
}

std::string SvgOf(const BarChart& chart) {
    return PictureOf(chart);
}

}  // namespace review
