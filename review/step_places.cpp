#include "review/step_places.h"

#include <algorithm>

namespace review {

namespace {

constexpr double kAir = 3;

bool Meet(const Area& a, const Area& b) {
    return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}

}  // namespace

void StepPlaces::KeepFree(double x1, double y1, double x2, double y2) {
    taken_.push_back({std::min(x1, x2) - 1, std::max(x1, x2) + 1, std::min(y1, y2) - 1.5,
                      std::max(y1, y2) + 1.5});
}

std::optional<Area> StepPlaces::Take(double left, double right, double line, double wide,
                                     double high) {
    const double middle = (left + right - wide) / 2;
    for (const double from :
         {middle, left + kAir, right - wide - kAir, right + kAir, left - wide - kAir}) {
        const double begin = std::max(from, bounds_.left);
        for (const double top : {line - kAir - high, line + kAir}) {
            const Area area{begin, begin + wide, top, top + high};
            if (IsFree(area)) {
                taken_.push_back(area);
                return area;
            }
        }
    }
    return std::nullopt;
}

bool StepPlaces::IsFree(const Area& area) const {
    return area.top >= bounds_.top && area.right <= bounds_.right &&
           area.bottom <= bounds_.bottom &&
           std::none_of(taken_.begin(), taken_.end(),
                        [&area](const Area& other) { return Meet(other, area); });
}

}  // namespace review
