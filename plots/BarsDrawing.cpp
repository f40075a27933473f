// A bar for each figure, below each other, with its text at the right.
#include "plots/Chart.h"
#include "plots/Scale.h"
#include "plots/Ticks.h"

#include <algorithm>

namespace plots {

namespace {

constexpr double kHalfBar = 0.34;
constexpr double kPartForLabels = 0.4;
constexpr int kLeastLabel = 16;  // characters

QCPBars* AddBars(Chart& chart, QCPAxisRect& axes, double sign) {
    auto* bars = new QCPBars(axes.axis(QCPAxis::atLeft), axes.axis(QCPAxis::atBottom));
    bars->setWidth(2 * kHalfBar);
    bars->setBrush(chart.Fill(sign));
    bars->setPen(QPen(sign < 0 ? chart.Colors().loss : chart.Colors().gain, 1.4));
    return bars;
}

void ShapeDown(QCPAxis& axis, const review::BarChart& content, bool isLabel,
               const QFontMetrics& metrics, int room) {
    const QSharedPointer<QCPAxisTickerText> texts(new QCPAxisTickerText);
    for (std::size_t i = 0; i < content.bars.size(); ++i) {
        const QString text =
            QString::fromStdString(isLabel ? content.bars[i].label : content.bars[i].text);
        texts->addTick(static_cast<double>(i + 1),
                       isLabel ? metrics.elidedText(text, Qt::ElideMiddle, room) : text);
    }
    axis.setTicker(texts);
    // A tick without length still leaves a dot, which is read as a minus before the amount.
    axis.setTickLength(0);
    axis.setTickPen(Qt::NoPen);
    axis.setSubTicks(false);
    axis.grid()->setVisible(false);
    axis.setRangeReversed(true);
    axis.setRange(0.4, static_cast<double>(content.bars.size()) + 0.6);
    axis.setVisible(true);
    axis.setTickLabels(true);
}

}  // namespace

void Draw(Chart& chart, const review::BarChart& content) {
    const QFontMetrics metrics(chart.font());
    const int count = static_cast<int>(content.bars.size());
    const int row = metrics.height() + 4;
    const int least = kLeastLabel * metrics.averageCharWidth();
    int text = 0;
    for (const review::BarChart::Bar& bar : content.bars) {
        text = std::max(text, metrics.horizontalAdvance(QString::fromStdString(bar.text)));
    }
    chart.SetLeast({2 * least + text + 20, (std::max(count, 2) + 3) * row});
    if (count == 0) {
        chart.AddNothing(Describe(content));
        return;
    }
    QCPAxisRect& axes = chart.AddAxes(0, 0);
    const int room = std::max(least, static_cast<int>(kPartForLabels * chart.width()));
    ShapeDown(*axes.axis(QCPAxis::atLeft), content, true, metrics, room);
    ShapeDown(*axes.axis(QCPAxis::atRight), content, false, metrics, room);
    axes.axis(QCPAxis::atRight)->setBasePen(Qt::NoPen);
    const Scale scale = ScaleOf(content);
    QCPAxis* const across = axes.axis(QCPAxis::atBottom);
    across->setRange(scale.least, scale.most);
    const QSharedPointer<DollarTicks<QCPAxisTicker>> dollars(new DollarTicks<QCPAxisTicker>);
    dollars->setTickCount(3);
    across->setTicker(dollars);
    across->setSubTicks(false);
    QCPBars* const losses = AddBars(chart, axes, -1);
    QCPBars* const gains = AddBars(chart, axes, 1);
    for (int i = 0; i < count; ++i) {
        const double value = content.bars[static_cast<std::size_t>(i)].value;
        if (std::isfinite(value)) {
            (value < 0 ? losses : gains)->addData(i + 1, value);
        }
        chart.AddSpot(axes, QRectF(QPointF(scale.least, i + 0.5), QPointF(scale.most, i + 1.5)));
    }
}

}  // namespace plots
