// Next year's file, begun from this year's.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "season/season.h"

namespace review {

// A zone that is to be left out and is not there.
class UnknownZone : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The same season for another year (its two digits), in the current format: the year in the unit's
// name replaced, all zones of these names left out, and rows that belong to no live location too;
// keys are 1 to N in order, those of resources in the order of `sequence`. Everything else stays as
// it is. Throws UnknownZone.
season::Season NextYear(const season::Season& older, int year,
                        const std::vector<std::string>& droppedZones);

}  // namespace review
