#include "reportpdf/sheet.h"

#include <QPen>

namespace reportpdf {

namespace {

using review::Stroke;

QPen PenOf(Stroke stroke, double scale) {
    const bool isStep = stroke == Stroke::kStep || stroke == Stroke::kOpenStep;
    QPen pen(stroke == Stroke::kGrid ? QColor(0xcc, 0xcc, 0xcc) : kRule, (isStep ? 3 : 1) * scale);
    pen.setCapStyle(Qt::FlatCap);
    if (stroke == Stroke::kOpenStep) {
        pen.setDashPattern({2.3, 1.3});
    }
    return pen;
}

}  // namespace

void Sheet::Text(double x, double base, const QString& line, Style style) {
    letters_.Add({x, base}, line, style);
}

void Sheet::TextToRight(double x, double base, const QString& line, Style style) {
    letters_.Add({x - WidthOf(line, style), base}, line, style);
}

QPainter& Sheet::Painter() {
    letters_.Flush();
    return painter_;
}

void Sheet::Boxes(const std::vector<QRectF>& boxes, const QColor& fill) {
    if (!boxes.empty()) {
        painter_.setPen(Qt::NoPen);
        painter_.setBrush(fill);
        painter_.drawRects(boxes.data(), static_cast<int>(boxes.size()));
        painter_.setPen(kInk);
    }
}

void Sheet::DashedBoxes(const std::vector<QRectF>& boxes, const QColor& edge) {
    if (!boxes.empty()) {
        QPen pen(edge, 0.5);
        pen.setDashPattern({3, 2});
        painter_.setPen(pen);
        painter_.setBrush(Qt::NoBrush);
        painter_.drawRects(boxes.data(), static_cast<int>(boxes.size()));
        painter_.setPen(kInk);
    }
}

void Sheet::Lines(const std::vector<QLineF>& lines, double width, const QColor& color) {
    if (!lines.empty()) {
        QPen pen(color, width);
        pen.setCapStyle(Qt::FlatCap);
        painter_.setPen(pen);
        painter_.drawLines(lines.data(), static_cast<int>(lines.size()));
        painter_.setPen(kInk);
    }
}

void SheetCanvas::Line(double x1, double y1, double x2, double y2, Stroke stroke) {
    QPainter& painter = sheet_.Painter();
    painter.setPen(PenOf(stroke, scale_));
    painter.drawLine(QLineF(Place(x1, y1), Place(x2, y2)));
    painter.setPen(kInk);
}

void SheetCanvas::Bar(double x, double y, double width, double height, review::Fill fill) {
    QPainter& painter = sheet_.Painter();
    painter.setPen(QPen(kInk, scale_));
    painter.setBrush(fill == review::Fill::kLoss ? QColor(0xb3, 0x58, 0x06)
                                                 : QColor(0x3a, 0x5a, 0x9b));
    painter.drawRect(QRectF(Place(x, y), QSizeF(width, height) * scale_));
}

void SheetCanvas::Words(double x, double y, const std::string& words, review::Anchor anchor,
                        review::Lettering look) {
    const Style style{look.isBold ? Face::kBold : Face::kPlain, look.size * scale_};
    const QString line = CleanLine(words);
    const double width = WidthOf(line, style);
    const double back = anchor == review::Anchor::kStart    ? 0
                        : anchor == review::Anchor::kMiddle ? width / 2
                                                            : width;
    const QPointF place = Place(x, y);
    if (!look.isUpright) {
        sheet_.Text(place.x() - back, place.y(), line, style);
        return;
    }
    QPainter& painter = sheet_.Painter();
    painter.save();
    painter.translate(place);
    painter.rotate(-90);
    sheet_.Text(-back, 0, line, style);
    sheet_.Finish();
    painter.restore();
}

}  // namespace reportpdf
