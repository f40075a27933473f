// The library's entrance.
#pragma once

#include <QObject>

#include "platform/plots/PlotLibrary.h"
#include "plots/ChartLibrary.h"

namespace plots {

class PlotsPlugin : public QObject, public platform::PlotLibrary, public ChartLibrary {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "TARNPrep.PlotLibrary")
    Q_INTERFACES(platform::PlotLibrary plots::ChartLibrary)

public:
    platform::LivePlot& MakePlot(QWidget& parent) override;
    ChartView& MakeChart(QWidget& parent) override;
    QImage Picture(const ChartContent& content, int width, const ChartLook& look) override;
    int HeightOf(const ChartContent& content, int width) override;
};

}  // namespace plots
