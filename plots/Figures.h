// What the figures of a chart say, each with its place, and what the chart says as a whole.
#pragma once

#include <QString>

#include <vector>

#include "plots/ChartLibrary.h"

namespace plots {

struct Figure {
    ChartSpot spot;
    QString words;  // "Wet Prairie, location 2, FIL 3: -$1,250 per acre"
};

// In the order in which keys go through them: series by series.
std::vector<Figure> FiguresOf(const ChartContent& content, const QString& place);

// The chart for those who do not see it.
QString Describe(const ChartContent& content);

// "-$1,250"
QString Dollars(double dollars);
// Shorter where there is little room: "-1.3k".
QString ShortDollars(double dollars);
// "-1250.00", as the worksheet shows a value.
QString Value(double value);

}  // namespace plots
