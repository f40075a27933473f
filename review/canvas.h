// What charts are drawn on: lines, bars and words, without a word about pages or files. Lengths are
// in steps of which a letter of a chart is about 11 high; y grows downwards.
#pragma once

#include <cstddef>
#include <string>

#include "review/document.h"

namespace review {

enum class Stroke { kAxis, kGrid, kRiser, kStep, kOpenStep };
enum class Fill { kLoss, kGain };
enum class Anchor { kStart, kMiddle, kEnd };

struct Lettering {
    double size = 11;
    bool isBold = false;
    bool isUpright = false;  // turned about its place, read from below
};

class Canvas {
public:
    Canvas() = default;
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;
    virtual ~Canvas() = default;

    virtual void Line(double x1, double y1, double x2, double y2, Stroke stroke) = 0;
    virtual void Bar(double x, double y, double width, double height, Fill fill) = 0;
    // `x` and `y` are where the words' base line begins, has its middle, or ends.
    virtual void Words(double x, double y, const std::string& words, Anchor anchor,
                       Lettering look) = 0;
};

struct Extent {
    double width = 0;
    double height = 0;
};

// A chart consists of bands, one below the other, which may go to different pages: the rows of
// small charts or of bars. Other charts are one band.
std::size_t BandsOf(const CostChart& chart);
std::size_t BandsOf(const TotalsChart& chart);
std::size_t BandsOf(const BarChart& chart);
// How large so many bands are.
Extent ExtentOf(const CostChart& chart, std::size_t bands);
Extent ExtentOf(const TotalsChart& chart, std::size_t bands);
Extent ExtentOf(const BarChart& chart, std::size_t bands);
// Draws bands [first, last) from the canvas's top.
void Draw(Canvas& canvas, const CostChart& chart, std::size_t first, std::size_t last);
void Draw(Canvas& canvas, const TotalsChart& chart, std::size_t first, std::size_t last);
void Draw(Canvas& canvas, const BarChart& chart, std::size_t first, std::size_t last);

// How dark a value of a heat map is: 0 for nothing to kDarkestShade. Small amounts count as well: a
// digit more is a shade more.
inline constexpr int kDarkestShade = 8;
int ShadeOf(double value, double largest);

}  // namespace review
