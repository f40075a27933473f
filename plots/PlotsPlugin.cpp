#include "plots/PlotsPlugin.h"

#include "plots/Chart.h"
#include "plots/LivePlots.h"

using platform::LivePlot;

namespace plots {

LivePlot& PlotsPlugin::MakePlot(QWidget& parent) {
    return plots::MakeLivePlot(parent);
}

ChartView& PlotsPlugin::MakeChart(QWidget& parent) {
    return *new plots::Chart(&parent);
}

QImage PlotsPlugin::Picture(const ChartContent& content, int width, const ChartLook& look) {
    plots::Chart chart(nullptr);
    chart.setFont(look.font);
    chart.setPalette(look.palette);
    chart.resize(width, chart.height());
    chart.Show(content, {}, {});
    return chart.toPixmap(width, chart.minimumSizeHint().height(), look.scale).toImage();
}

int PlotsPlugin::HeightOf(const ChartContent& content, int width) {
    plots::Chart chart(nullptr);
    chart.resize(width, chart.height());
    chart.Show(content, {}, {});
    return chart.minimumSizeHint().height();
}

}  // namespace plots
