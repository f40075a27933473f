// The charts of a season, each with the words that stand for it.
#pragma once

#include <vector>

#include "review/difference.h"
#include "review/document.h"
#include "season/season.h"

namespace review {

// No steps where no class with a cost is in use.
CostChart CostChartOf(const season::Zone& zone);
TotalsChart TotalsChartOf(const season::Zone& zone);
// `largest` is the amount that is darkest, the same for all maps of a report.
HeatMap HeatMapOf(const season::Season& season, const season::Zone& zone, int location,
                  double largest);
// The largest amount among the values of all live locations.
double LargestAmount(const season::Season& season);
// The largest changes of values and costs, in dollars per acre.
BarChart LargestChanges(const std::vector<Difference>& differences);

}  // namespace review
