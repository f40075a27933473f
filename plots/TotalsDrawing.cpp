// Totals by FIL: a small chart for each location, all on one scale.
#include "plots/Chart.h"
#include "plots/Scale.h"
#include "plots/Ticks.h"

#include <algorithm>
#include <cmath>

namespace plots {

namespace {

constexpr double kHalfTotal = 0.38;
constexpr int kTextsAcross = 15;  // widths of a figure that a panel wants, its axis included
constexpr int kAroundAxis = 16;
constexpr int kAroundBars = 12;
constexpr int kFireLevels = 6;

struct Bars {
    QCPBars* losses;
    QCPBars* gains;
};

QCPBars* AddTotals(Chart& chart, QCPAxisRect& axes, double sign) {
    auto* bars = new QCPBars(axes.axis(QCPAxis::atBottom), axes.axis(QCPAxis::atLeft));
    bars->setWidth(2 * kHalfTotal);
    bars->setBrush(chart.Fill(sign));
    bars->setPen(QPen(sign < 0 ? chart.Colors().loss : chart.Colors().gain, 1.4));
    return bars;
}

// "-$1,250", or "-1.3k" where the bars need the room.
class LevelTicks : public QCPAxisTicker {
public:
    explicit LevelTicks(bool isShort) : isShort_(isShort) {}

protected:
    QString getTickLabel(double tick, const QLocale& /*locale*/, QChar /*form*/,
                         int /*precision*/) override {
        return isShort_ ? ShortDollars(tick) : DollarTick(tick);
    }

private:
    bool isShort_;
};

// What a panel cannot do without: a bar is as wide as its FIL's digit and some air. Whoever wants
// the figures finds them under the pointer and in the table.
int LeastWidth(const QFontMetrics& metrics) {
    return metrics.horizontalAdvance(QStringLiteral("-88k")) + kAroundAxis +
           kFireLevels * metrics.horizontalAdvance(QStringLiteral("8")) * 4 / 3 + kAroundBars;
}

void ShapeAxes(Chart& chart, QCPAxisRect& axes, const Scale& scale, bool isNarrow) {
    QCPAxis* const across = axes.axis(QCPAxis::atBottom);
    across->setRange(0.4, 6.6);
    across->grid()->setVisible(false);
    const QSharedPointer<QCPAxisTickerText> levels(new QCPAxisTickerText);
    for (int level = 1; level <= 6; ++level) {
        levels->addTick(level, QString::number(level));
    }
    across->setTicker(levels);
    across->setTickLength(0);
    QCPAxis* const up = axes.axis(QCPAxis::atLeft);
    // Room for the figures at the bars' ends.
    const double air = 0.16 * (scale.most - scale.least);
    up->setRange(scale.least < 0 ? scale.least - air : 0, scale.most > 0 ? scale.most + air : air);
    const QSharedPointer<LevelTicks> dollars(new LevelTicks(isNarrow));
    dollars->setTickCount(4);
    up->setTicker(dollars);
    up->setSubTicks(false);
    up->grid()->setZeroLinePen(QPen(chart.Colors().axis, 1.4));
}

// The figure as it has room over a bar; empty where it has none.
QString Fitting(const Chart& chart, double total, int room) {
    const QFontMetrics metrics(chart.font());
    for (const QString& text : {Dollars(total), ShortDollars(total)}) {
        if (metrics.horizontalAdvance(text) <= room) {
            return text;
        }
    }
    return {};
}

void DrawPanel(Chart& chart, QCPAxisRect& axes, const review::TotalsChart::Panel& panel,
               int roomForText) {
    QCPBars* const losses = AddTotals(chart, axes, -1);
    QCPBars* const gains = AddTotals(chart, axes, 1);
    const QCPRange range = axes.axis(QCPAxis::atLeft)->range();
    for (int level = 1; level <= 6; ++level) {
        const double total = panel.totals[static_cast<std::size_t>(level - 1)];
        if (std::isfinite(total)) {
            (total < 0 ? losses : gains)->addData(level, total);
            const QString text = Fitting(chart, total, roomForText);
            chart.AddText(axes, QPointF(level, total), text,
                          Qt::AlignHCenter | (total < 0 ? Qt::AlignTop : Qt::AlignBottom),
                          chart.Colors().text);
        }
        chart.AddSpot(
            axes, QRectF(QPointF(level - 0.48, range.upper), QPointF(level + 0.48, range.lower)));
    }
}

void AddTitle(Chart& chart, int row, int column, const QString& title, bool isMarked) {
    QFont look = chart.font();
    look.setBold(isMarked);
    auto* text =
        new QCPTextElement(&chart, isMarked ? QStringLiteral("\u25b6 ") + title : title, look);
    text->setTextColor(chart.Colors().text);
    text->setMargins(QMargins(2, 2, 2, 0));
    chart.Body().addElement(row, column, text);
}

}  // namespace

void Draw(Chart& chart, const review::TotalsChart& content) {
    const int count = static_cast<int>(content.panels.size());
    const QFontMetrics metrics(chart.font());
    const int figure = metrics.horizontalAdvance(QStringLiteral("-$1,250"));
    const int panelHeight = 9 * metrics.height();
    const int panelWidth = kTextsAcross * figure / 4;
    const int least = LeastWidth(metrics);
    chart.SetLeast({least, panelHeight});
    if (count == 0) {
        chart.AddNothing(Describe(content));
        return;
    }
    const int columns = std::clamp(chart.width() / panelWidth, 1, count);
    const int rows = (count + columns - 1) / columns;
    chart.SetLeast({least, rows * panelHeight + 3 * metrics.height()});
    const Scale scale = ScaleOf(content);
    const bool isNarrow = chart.width() < panelWidth;
    const QString longest = isNarrow ? ShortDollars(scale.least) : Dollars(scale.least);
    const int axisWidth = metrics.horizontalAdvance(longest) + kAroundAxis;
    const int room = (chart.width() / columns - axisWidth - kAroundBars) / kFireLevels;
    // A row without anything in it would take its share of the room.
    const int titles = content.panels.front().title.empty() ? 0 : 1;
    for (int i = 0; i < count; ++i) {
        const auto& panel = content.panels[static_cast<std::size_t>(i)];
        const int row = (1 + titles) * (i / columns);
        const bool isMarked = chart.Marked() && chart.Marked()->series == i && count > 1;
        if (titles > 0) {
            AddTitle(chart, row, i % columns, QString::fromStdString(panel.title), isMarked);
        }
        QCPAxisRect& axes = chart.AddAxes(row + titles, i % columns);
        axes.setMarginGroup(QCP::msLeft | QCP::msBottom, &chart.Sides());
        ShapeAxes(chart, axes, scale, isNarrow);
        if (i / columns == rows - 1) {
            axes.axis(QCPAxis::atBottom)->setLabel(QStringLiteral("FIL"));
        }
        DrawPanel(chart, axes, panel, room);
    }
    chart.Body().setRowSpacing(0);
}

}  // namespace plots
