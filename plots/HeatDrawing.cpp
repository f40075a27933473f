// The values of a location: a cell for each, the stronger its color, the larger the amount.
#include "plots/Chart.h"
#include "review/canvas.h"

#include <algorithm>
#include <cmath>

namespace plots {

namespace {

constexpr int kLevels = 6;
constexpr double kStrongest = 0.85;
constexpr double kHalf = 0.5;

QColor Shade(const Ink& ink, double value, double largest) {
    if (!std::isfinite(value) || largest <= 0) {
        return ink.ground;
    }
    // In the same steps as in the report.
    const double part = kStrongest * review::ShadeOf(value, largest) / review::kDarkestShade;
    const QColor& end = value < 0 ? ink.loss : ink.gain;
    return QColor::fromRgbF(
        float(ink.ground.redF() + (end.redF() - ink.ground.redF()) * part),
        float(ink.ground.greenF() + (end.greenF() - ink.ground.greenF()) * part),
        float(ink.ground.blueF() + (end.blueF() - ink.ground.blueF()) * part));
}

double Luminance(const QColor& color) {
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

// Black or white, whichever is read better on it.
QColor TextOn(const QColor& ground) {
    const double light = Luminance(ground) + 0.05;
    return 1.05 / light > light / 0.05 ? Qt::white : Qt::black;
}

void AddCell(Chart& chart, QCPAxisRect& axes, const QRectF& area, double value, double largest) {
    const Ink& ink = chart.Colors();
    auto* cell = new QCPItemRect(&chart);
    for (const auto& [position, at] : {std::pair(cell->topLeft, area.topLeft()),
                                       std::pair(cell->bottomRight, area.bottomRight())}) {
        position->setAxisRect(&axes);
        position->setAxes(axes.axis(QCPAxis::atBottom), axes.axis(QCPAxis::atLeft));
        position->setCoords(at);
    }
    const QColor shade = Shade(ink, value, largest);
    cell->setBrush(shade);
    cell->setPen(QPen(ink.grid));
    if (value > 0) {
        const QRectF inner(area.topLeft() + QPointF(0.05, 0.1),
                           area.bottomRight() - QPointF(0.05, 0.1));
        chart.AddFrame(axes, inner, QPen(TextOn(shade), 1, Qt::DashLine));
    }
    chart.AddText(axes, QPointF(area.right() - 0.06, area.center().y()), Value(value),
                  Qt::AlignRight | Qt::AlignVCenter, TextOn(shade));
    chart.AddSpot(axes, area);
}

void ShapeAxes(const Chart& chart, QCPAxisRect& axes, const review::HeatMap& content) {
    QCPAxis* const across = axes.axis(QCPAxis::atTop);
    const QSharedPointer<QCPAxisTickerText> levels(new QCPAxisTickerText);
    for (int level = 1; level <= kLevels; ++level) {
        levels->addTick(level, QStringLiteral("FIL %1").arg(level));
    }
    across->setTicker(levels);
    across->setVisible(true);
    across->setTickLabels(true);
    across->setRange(kHalf, kLevels + kHalf);
    axes.axis(QCPAxis::atBottom)->setRange(kHalf, kLevels + kHalf);
    axes.axis(QCPAxis::atBottom)->setVisible(false);
    QCPAxis* const down = axes.axis(QCPAxis::atLeft);
    const QSharedPointer<QCPAxisTickerText> rows(new QCPAxisTickerText);
    for (std::size_t row = 0; row < content.rows.size(); ++row) {
        rows->addTick(static_cast<double>(row + 1), QString::fromStdString(content.rows[row]));
    }
    down->setTicker(rows);
    down->setRangeReversed(true);
    down->setRange(kHalf, static_cast<double>(content.rows.size()) + kHalf);
    for (QCPAxis* axis : {across, down}) {
        axis->setTickLength(0);
        axis->setSubTicks(false);
        axis->grid()->setVisible(false);
        axis->setBasePen(QPen(chart.Colors().grid));
    }
}

}  // namespace

void Draw(Chart& chart, const review::HeatMap& content) {
    if (content.rows.empty()) {
        chart.AddNothing(Describe(content));
        return;
    }
    const QFontMetrics metrics(chart.font());
    int label = 0;
    int figure = metrics.horizontalAdvance(QStringLiteral("-1250.00"));
    for (std::size_t row = 0; row < content.rows.size(); ++row) {
        label =
            std::max(label, metrics.horizontalAdvance(QString::fromStdString(content.rows[row])));
        for (const double value : content.values[row]) {
            figure = std::max(figure, metrics.horizontalAdvance(Value(value)));
        }
    }
    const int rows = static_cast<int>(content.rows.size());
    chart.SetLeast({label + kLevels * (figure + 14) + 24,
                    (rows + 1) * (metrics.height() + 3) + 2 * metrics.height() + 8});
    QCPAxisRect& axes = chart.AddAxes(0, 0);
    ShapeAxes(chart, axes, content);
    for (int row = 0; row < rows; ++row) {
        for (int level = 0; level < kLevels; ++level) {
            const QRectF area(QPointF(level + kHalf, row + kHalf),
                              QPointF(level + 1 + kHalf, row + 1 + kHalf));
            AddCell(chart, axes, area,
                    content.values[static_cast<std::size_t>(row)][static_cast<std::size_t>(level)],
                    content.largest);
        }
    }
}

}  // namespace plots
