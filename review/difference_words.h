// A difference in the words of those who read reports: costs and values as the worksheets show
// them, no names of fields.
#pragma once

#include <string>

#include "review/difference.h"

namespace review {

struct DifferenceWords {
    std::string what;   // "value", "cost", "zone", ...
    std::string place;  // "Wet Prairie, class 3, largest size"
    std::string older;
    std::string newer;
    bool isFigure = false;
};
DifferenceWords WordsOf(const Difference& difference);

}  // namespace review
