// The door between a worksheet and the chart beside it.
//
// The charts lie in a library of their own, which is loaded when the program has shown its first
// frame; without it worksheets have no charts and are otherwise the same.
#pragma once

#include <QString>
#include <QtPlugin>

#include <array>
#include <vector>

class QWidget;

namespace platform {

// A chart that follows what is typed. It lives as long as its widget.
class LivePlot {
public:
    struct SizeClass {
        double topSize = 0;  // acres; 0: all larger fires
        double cost = 0;     // dollars per acre
    };

    LivePlot() = default;
    LivePlot(const LivePlot&) = delete;
    LivePlot& operator=(const LivePlot&) = delete;
    virtual ~LivePlot() = default;

    virtual QWidget& Widget() = 0;
    // `place` is what the figures belong to: "Wet Prairie, location 2".
    virtual void ShowTotals(const QString& place, const std::array<double, 6>& totals) = 0;
    // The nine classes of a zone; those with neither size nor cost are not in use.
    virtual void ShowCosts(const QString& place, const std::vector<SizeClass>& classes) = 0;
    virtual void ShowNothing() = 0;
};

class PlotLibrary {
public:
    PlotLibrary() = default;
    PlotLibrary(const PlotLibrary&) = delete;
    PlotLibrary& operator=(const PlotLibrary&) = delete;
    virtual ~PlotLibrary() = default;

    // An empty chart; the parent owns its widget.
    virtual LivePlot& MakePlot(QWidget& parent) = 0;
};

}  // namespace platform

Q_DECLARE_INTERFACE(platform::PlotLibrary, "TARNPrep.PlotLibrary")
