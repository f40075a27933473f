#include "plots/LivePlots.h"

#include "plots/Chart.h"
#include "review/report_charts.h"

#include <QCoreApplication>

using platform::LivePlot;

namespace plots {

namespace {

season::Zone ZoneOf(const std::vector<LivePlot::SizeClass>& classes) {
    season::Zone zone;
    for (std::size_t i = 0; i < classes.size(); ++i) {
        season::CostClass& row = zone.classes.emplace_back();
        row.number = static_cast<std::int32_t>(i + 1);
        row.topSize = static_cast<float>(classes[i].topSize);
        row.cost = static_cast<float>(classes[i].cost);
    }
    return zone;
}

class Live : public QObject, public LivePlot {
    Q_DECLARE_TR_FUNCTIONS(plots::Live)

public:
    explicit Live(Chart* chart) : QObject(chart), chart_(chart) {}

    QWidget& Widget() override { return *chart_; }
    void ShowTotals(const QString& place, const std::array<double, 6>& totals) override {
        review::TotalsChart content;
        content.panels.push_back({{}, totals});
        QStringList words;
        for (const double total : totals) {
            words += Dollars(total);
        }
        content.words.alternative =
            tr("Totals from FIL 1 to 6: %1.").arg(words.join(QStringLiteral(", "))).toStdString();
        chart_->Show(content, tr("Total per acre by FIL"), place);
    }
    void ShowCosts(const QString& place, const std::vector<SizeClass>& classes) override {
        chart_->Show(review::CostChartOf(ZoneOf(classes)), tr("Cost per acre by fire size"), place);
    }
    void ShowNothing() override { chart_->Show(std::monostate(), {}, {}); }

private:
    Chart* chart_;
};

}  // namespace

LivePlot& MakeLivePlot(QWidget& parent) {
    return *new Live(new Chart(&parent));
}

}  // namespace plots
