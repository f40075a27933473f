// Charts as pictures within a page. Each says in words what it shows, tells losses from gains also
// without colors, and writes its figures as text.
#pragma once

#include <string>

#include "review/document.h"

namespace review {

std::string SvgOf(const CostChart& chart);
std::string SvgOf(const TotalsChart& chart);
std::string SvgOf(const HeatMap& chart);
std::string SvgOf(const BarChart& chart);

}  // namespace review
