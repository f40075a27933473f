#include "worksheets/resources/RowOrder.h"

#include <algorithm>
#include <cmath>

#include "platform/RuntimeError.h"
#include "platform/text/Numbers.h"

namespace {

// The default rounding mode takes halves to the even neighbor.
int Held(double place, int last) {
    return int(std::clamp(std::nearbyint(place), 1.0, double(std::max(last, 1))));
}

}  // namespace

namespace RowOrder {

std::optional<int> Place(const QString& text, int count) {
    try {
        return Held(platform::CDbl(text), count);
    } catch (const platform::RuntimeError&) {
        return std::nullopt;
    }
}

int NewPlace(const QString& text, int count) {
    return Held(platform::Val(text), count + 1);
}

}  // namespace RowOrder
