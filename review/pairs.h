// Which record of one season is which of another.
//
// Names pair what they name, trimmed and without regard to case, in order among equals. Keys and
// the order of records mean nothing: both change when a file is made anew.
#pragma once

#include <utility>
#include <vector>

#include "season/season.h"

namespace review {

template <typename Record>
struct Pair {
    const Record* older = nullptr;  // null: added
    const Record* newer = nullptr;  // null: removed
};

// How much two figures may differ, as a part of the larger one, and still count as equal.
inline constexpr double kUsualTolerance = 1e-6;

// Null counts as 0; infinite numbers and such that are none equal their like.
bool SameFigure(const season::Single& a, const season::Single& b, double tolerance);

// In the order of the newer season; what was removed follows.
std::vector<Pair<season::Goal>> PairGoals(const season::Season& older, const season::Season& newer);
std::vector<Pair<season::Resource>> PairResources(const season::Season& older,
                                                  const season::Season& newer);
// Zones that no name pairs are one zone renamed when nine tenths of their figures are equal.
std::vector<Pair<season::Zone>> PairZones(const season::Season& older, const season::Season& newer,
                                          double tolerance = kUsualTolerance);

// Whether all costs of two zones and all values of their live locations are the same.
bool SameFigures(const season::Zone& a, const season::Zone& b, double tolerance = kUsualTolerance);

}  // namespace review
