// Where axes end.
#pragma once

#include "review/document.h"

namespace plots {

struct Scale {
    double least = 0;
    double most = 1;
};

// The next of 1, 2, 5, 10, ... times a power of ten; 0 for what is 0 or no number.
double RoundUp(double amount);

// One scale for all locations: it holds every total and 0, and ends at round figures.
Scale ScaleOf(const review::TotalsChart& chart);
// From 0, or from the largest loss, to the largest figure.
Scale ScaleOf(const review::BarChart& chart);

// Both ends are whole powers of ten.
Scale AcresOf(const review::CostChart& chart);
Scale CostsOf(const review::CostChart& chart);

}  // namespace plots
