// The library's entrance.
#include <QObject>

#include "platform/plots/PlotLibrary.h"
#include "plots/Chart.h"
#include "plots/LivePlots.h"

class PlotsPlugin : public QObject, public PlotLibrary, public ChartLibrary {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "TARNPrep.PlotLibrary")
    Q_INTERFACES(PlotLibrary ChartLibrary)

public:
    LivePlot& MakePlot(QWidget& parent) override { return plots::MakeLivePlot(parent); }
    ChartView& MakeChart(QWidget& parent) override { return *new plots::Chart(&parent); }
    QImage Picture(const ChartContent& content, int width, const ChartLook& look) override {
        plots::Chart chart(nullptr);
        chart.setFont(look.font);
        chart.setPalette(look.palette);
        chart.resize(width, chart.height());
        chart.Show(content, {}, {});
        return chart.toPixmap(width, chart.minimumSizeHint().height(), look.scale).toImage();
    }
    int HeightOf(const ChartContent& content, int width) override {
        plots::Chart chart(nullptr);
        chart.resize(width, chart.height());
        chart.Show(content, {}, {});
        return chart.minimumSizeHint().height();
    }
};

#include "PlotsPlugin.moc"
