#include "worksheets/cost/LowerBound.h"

#include <cmath>

#include "platform/text/Numbers.h"

namespace {

constexpr float kOpenEnded = 9999999;  // the largest size that a "To" cell takes

bool RoundsToNineTenths(float top) {
    return platform::Val(platform::Format(double{top}, QStringLiteral("#.0"))) == 0.9;
}

double Next(float top) {
    if (RoundsToNineTenths(top)) {
        return 1;
    }
    if (top < 1) {
        return double{top} + 0.01;
    }
    if (top == 9) {
        return 10;
    }
    if (top < 10) {
        return double{top} + 0.1;
    }
    return std::floor(double{top} + 1);
}

}  // namespace

QString NextLowerBound(float top) {
    if (!(top > 0 && top < kOpenEnded)) {
        return {};
    }
    return platform::Str(Next(top));
}
