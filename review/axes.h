// The scales of charts.
#pragma once

#include <cmath>
#include <string>

#include "review/document.h"

namespace review {

// A logarithmic axis between whole powers of ten, from one place on the page to another.
class LogAxis {
public:
    LogAxis(double least, double most, double from, double to);
    [[nodiscard]] double Place(double value) const;
    [[nodiscard]] double Least() const { return std::pow(10, first_); }
    [[nodiscard]] double Most() const { return std::pow(10, last_); }
    // Calls `mark(power)` for each power of ten, or for every so many where they are too many to
    // be told apart.
    template <typename Mark>
    void EachPower(const Mark& mark) const {
        constexpr double kMost = 8;
        const double step = std::ceil((last_ - first_) / kMost);
        for (double power = first_; power <= last_; power += step) {
            mark(std::pow(10, power));
        }
    }

private:
    double first_;
    double last_;
    double from_;
    double to_;
};

// A scale of round figures that holds all totals and 0.
struct TotalsScale {
    double least = 0;
    double most = 0;
};
TotalsScale ScaleOf(const TotalsChart& chart);

}  // namespace review
