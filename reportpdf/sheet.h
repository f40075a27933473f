// A page that is being drawn: lines, boxes and texts in points from its corner.
#pragma once

#include <QColor>
#include <QLineF>
#include <QPainter>
#include <QRectF>
#include <string>
#include <vector>

#include "reportpdf/lettering.h"
#include "review/canvas.h"

namespace reportpdf {

inline const QColor kInk{0x11, 0x11, 0x11};
inline const QColor kRule{0x44, 0x44, 0x44};
inline const QColor kFine{0x99, 0x99, 0x99};
inline const QColor kHeadFill{0xe8, 0xe8, 0xe8};

class Sheet {
public:
    explicit Sheet(QPainter& painter) : painter_(painter), letters_(painter) {}

    // `x` is where the line begins, or ends where it is aligned to the right.
    void Text(double x, double base, const QString& line, Style style);
    void TextToRight(double x, double base, const QString& line, Style style);
    // Texts are drawn together when their style changes: boxes go under all of them, so that those
    // of a table come first.
    void Boxes(const std::vector<QRectF>& boxes, const QColor& fill);
    void DashedBoxes(const std::vector<QRectF>& boxes, const QColor& edge);
    void Lines(const std::vector<QLineF>& lines, double width, const QColor& color);
    void Finish() { letters_.Flush(); }

    [[nodiscard]] QPainter& Painter();

private:
    QPainter& painter_;
    Letters letters_;
};

// A chart's canvas on a sheet: its corner is at `at`, its steps are that many points.
class SheetCanvas : public review::Canvas {
public:
    SheetCanvas(Sheet& sheet, QPointF at, double scale) : sheet_(sheet), at_(at), scale_(scale) {}
    void Line(double x1, double y1, double x2, double y2, review::Stroke stroke) override;
    void Bar(double x, double y, double width, double height, review::Fill fill) override;
    void Words(double x, double y, const std::string& words, review::Anchor anchor,
               review::Lettering look) override;

private:
    [[nodiscard]] QPointF Place(double x, double y) const { return at_ + QPointF(x, y) * scale_; }

    Sheet& sheet_;
    QPointF at_;
    double scale_;
};

}  // namespace reportpdf
