// Where a finding is: the table and the chart of its place, and what of them to mark.
//
// It has no window, so that a test can ask what a person is shown.
#pragma once

#include <optional>

#include "plots/ChartLibrary.h"
#include "review/document.h"
#include "review/finding.h"
#include "season/season.h"

namespace tarnreview {

struct PlaceView {
    QString title;
    review::Table table;
    int row = -1;    // of the table, from 0; -1: none
    int column = 0;  // of the table
    plots::ChartContent chart;
    QString chartTitle;
    QString chartPlace;
    std::optional<plots::ChartSpot> spot;
};

PlaceView PlaceOfFinding(const season::Season& season, const review::Finding& finding);

// The zone that a place names; null for none.
const season::Zone* ZoneAt(const season::Season& season, const review::Place& place);
// What costs what, the dearest first.
review::BarChart ResourceCosts(const season::Season& season);
// The step of the chart that a class is drawn as; nothing when it is not.
std::optional<plots::ChartSpot> StepOf(const review::CostChart& chart, const season::Zone& zone,
                                       int sizeClass);
// The row of an NVC resource of this name, from 0; -1 for none.
int RowOfResource(const season::Season& season, const std::string& name);

}  // namespace tarnreview
