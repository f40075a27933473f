// Cost per acre over fire size, in steps; both axes are logarithmic.
#include "plots/Chart.h"
#include "plots/Scale.h"
#include "plots/Ticks.h"
#include "review/step_places.h"

#include <QCoreApplication>

#include <algorithm>
#include <optional>

namespace plots {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(CostDrawing)
};

constexpr double kStepWidth = 3;

void ShapeAxis(QCPAxis& axis, const Scale& scale, const QSharedPointer<QCPAxisTickerLog>& ticker,
               const QString& label) {
    axis.setScaleType(QCPAxis::stLogarithmic);
    ticker->setSubTickCount(8);
    axis.setTicker(ticker);
    axis.setRange(scale.least, scale.most);
    axis.setLabel(label);
}

QCPItemLine* AddLine(Chart& chart, QCPAxisRect& axes, QPointF from, QPointF to) {
    auto* line = new QCPItemLine(&chart);
    for (const auto& [position, at] : {std::pair(line->start, from), std::pair(line->end, to)}) {
        position->setAxisRect(&axes);
        position->setAxes(axes.axis(QCPAxis::atBottom), axes.axis(QCPAxis::atLeft));
        position->setCoords(at);
    }
    line->setPen(QPen(chart.Colors().text, 1));
    return line;
}

void DrawSteps(Chart& chart, QCPAxisRect& axes, const review::CostChart& content,
               const Scale& acres, const Scale& costs) {
    double before = 0;
    for (const review::CostChart::Step& step : content.steps) {
        const double left = std::clamp(step.from, acres.least, acres.most);
        const double right = step.to > 0 ? step.to : acres.most;
        if (before > 0) {
            AddLine(chart, axes, {left, before}, {left, step.cost});
        }
        AddLine(chart, axes, {left, step.cost}, {right, step.cost})
            ->setPen(QPen(chart.Colors().text, kStepWidth,
                          step.to > 0 ? Qt::SolidLine : Qt::DashLine, Qt::FlatCap));
        chart.AddSpot(axes, QRectF(QPointF(left, costs.most), QPointF(right, costs.least)));
        before = step.cost;
    }
}

// A figure without a place is found under the pointer and in the table.
void WriteCosts(Chart& chart, QCPAxisRect& axes, const review::CostChart& content,
                const Scale& acres) {
    chart.LayOut();
    QCPAxis& across = *axes.axis(QCPAxis::atBottom);
    QCPAxis& up = *axes.axis(QCPAxis::atLeft);
    const QFontMetrics metrics(chart.font());
    const auto leftOf = [&](const review::CostChart::Step& step) {
        return across.coordToPixel(std::clamp(step.from, acres.least, acres.most));
    };
    const auto rightOf = [&](const review::CostChart::Step& step) {
        return across.coordToPixel(step.to > 0 ? step.to : acres.most);
    };
    review::StepPlaces places({static_cast<double>(axes.left() + 2),
                               static_cast<double>(chart.width()),
                               static_cast<double>(axes.top()) - metrics.height() / 2.0,
                               static_cast<double>(axes.bottom())});
    double before = -1;
    for (const review::CostChart::Step& step : content.steps) {
        const double y = up.coordToPixel(step.cost);
        if (before >= 0) {
            places.KeepFree(leftOf(step), before, leftOf(step), y);
        }
        places.KeepFree(leftOf(step), y, rightOf(step), y);
        before = y;
    }
    for (const review::CostChart::Step& step : content.steps) {
        const QString words = Dollars(step.cost);
        const std::optional<review::Area> place =
            places.Take(leftOf(step), rightOf(step), up.coordToPixel(step.cost),
                        metrics.horizontalAdvance(words) + 2, metrics.ascent());
        if (place) {
            chart.AddText(axes,
                          QPointF(across.pixelToCoord((place->left + place->right) / 2),
                                  up.pixelToCoord((place->top + place->bottom) / 2)),
                          words, Qt::AlignHCenter | Qt::AlignVCenter, chart.Colors().text);
        }
    }
}

}  // namespace

void Draw(Chart& chart, const review::CostChart& content) {
    const QFontMetrics metrics(chart.font());
    chart.SetLeast(
        {17 * metrics.horizontalAdvance(QStringLiteral("00")) / 2 + 40, 11 * metrics.height()});
    if (content.steps.empty()) {
        chart.AddNothing(Describe(content));
        return;
    }
    QCPAxisRect& axes = chart.AddAxes(0, 0);
    const Scale acres = AcresOf(content);
    const Scale costs = CostsOf(content);
    ShapeAxis(*axes.axis(QCPAxis::atBottom), acres,
              QSharedPointer<AcreTicks<QCPAxisTickerLog>>::create(),
              Texts::tr("Fire size in acres"));
    ShapeAxis(*axes.axis(QCPAxis::atLeft), costs,
              QSharedPointer<DollarTicks<QCPAxisTickerLog>>::create(),
              Texts::tr("Dollars per acre"));
    // The last mark's label stands half outside.
    axes.setMinimumMargins(QMargins(0, metrics.height() / 2, metrics.averageCharWidth() * 4, 0));
    DrawSteps(chart, axes, content, acres, costs);
    WriteCosts(chart, axes, content, acres);
}

}  // namespace plots
