// The door between TARN Review and its charts.
//
// The charts lie in a library of their own, which is loaded once the window is there; a window
// without charts is no less a window.
#pragma once

#include <QFont>
#include <QImage>
#include <QPalette>
#include <QString>
#include <QtPlugin>

#include <functional>
#include <optional>
#include <variant>

#include "review/document.h"

class QWidget;

namespace plots {

// What a chart can show. No content is a chart that says so.
using ChartContent = std::variant<std::monostate, review::CostChart, review::TotalsChart,
                                  review::HeatMap, review::BarChart>;

// One figure of a chart. Totals: panel and FIL, from 0. Heat map: row and FIL. Steps and bars:
// series 0 and the step or the bar.
struct ChartSpot {
    int series = 0;
    int item = 0;  // -1: all of the series
    bool operator==(const ChartSpot&) const = default;
};

// A chart in a window. It lives as long as its widget.
class ChartView {
public:
    using Listener = std::function<void(const QString& words)>;

    ChartView() = default;
    ChartView(const ChartView&) = delete;
    ChartView& operator=(const ChartView&) = delete;
    virtual ~ChartView() = default;

    virtual QWidget& Widget() = 0;
    // `place` is what all figures have in common, "Wet Prairie"; it stands before each of them.
    // `title` is shown above the chart and is its accessible name.
    virtual void Show(const ChartContent& content, const QString& title, const QString& place) = 0;
    // Marks a figure, or none.
    virtual void Mark(std::optional<ChartSpot> spot) = 0;
    // Called with the figure under the pointer, or under the arrow keys, and its place; with an
    // empty text when there is none.
    virtual void SetListener(Listener listener) = 0;
};

// How pictures of charts look.
struct ChartLook {
    QFont font;
    QPalette palette;
    double scale = 1;  // pixels of the screen for each
};

class ChartLibrary {
public:
    ChartLibrary() = default;
    ChartLibrary(const ChartLibrary&) = delete;
    ChartLibrary& operator=(const ChartLibrary&) = delete;
    virtual ~ChartLibrary() = default;

    // An empty chart; the parent owns its widget.
    virtual ChartView& MakeChart(QWidget& parent) = 0;
    // A chart of this width as a picture, and the height that it takes.
    virtual QImage Picture(const ChartContent& content, int width, const ChartLook& look) = 0;
    virtual int HeightOf(const ChartContent& content, int width) = 0;
};

}  // namespace plots

Q_DECLARE_INTERFACE(plots::ChartLibrary, "TARNPrep.ChartLibrary")
