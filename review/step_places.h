// Where the figures of a chart's steps find room: on no line and on no other figure.
#pragma once

#include <optional>
#include <vector>

namespace review {

// Lengths are in whatever the chart is drawn in; y grows downwards.
struct Area {
    double left = 0;
    double right = 0;
    double top = 0;
    double bottom = 0;
};

class StepPlaces {
public:
    explicit StepPlaces(const Area& bounds) : bounds_(bounds) {}
    void KeepFree(double x1, double y1, double x2, double y2);
    // Takes a place for words of this size, above or below a step from `left` to `right` at `line`
    // or beside that; none where all is taken.
    std::optional<Area> Take(double left, double right, double line, double wide, double high);

private:
    [[nodiscard]] bool IsFree(const Area& area) const;

    Area bounds_;
    std::vector<Area> taken_;
};

}  // namespace review
