#include "review/canvas.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

struct Area {
    double left = 0;
    double right = 0;
    double top = 0;
    double bottom = 0;
    std::string words;
};

bool Meet(const Area& a, const Area& b) {
    return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}

// Notes where words and the steps' lines lie. A digit of size 11 is 6.1 wide in common fonts.
class Notes : public review::Canvas {
public:
    void Line(double x1, double y1, double x2, double y2, review::Stroke stroke) override {
        if (stroke == review::Stroke::kStep || stroke == review::Stroke::kOpenStep ||
            stroke == review::Stroke::kRiser) {
            steps.push_back({std::min(x1, x2), std::max(x1, x2), std::min(y1, y2) - 1,
                             std::max(y1, y2) + 1, "a line"});
        }
    }
    void Bar(double, double, double, double, review::Fill) override {}
    void Words(double x, double y, const std::string& text, review::Anchor anchor,
               review::Lettering look) override {
        if (look.isUpright) {
            return;
        }
        const double wide = 6.1 * static_cast<double>(text.size());
        const double left = anchor == review::Anchor::kStart    ? x
                            : anchor == review::Anchor::kMiddle ? x - wide / 2
                                                                : x - wide;
        words.push_back({left, left + wide, y - 8, y, text});
    }

    std::vector<Area> words;
    std::vector<Area> steps;
};

std::string Collisions(const Notes& notes) {
    std::string found;
    for (std::size_t i = 0; i < notes.words.size(); ++i) {
        for (std::size_t k = i + 1; k < notes.words.size(); ++k) {
            if (Meet(notes.words[i], notes.words[k])) {
                found += notes.words[i].words + " on " + notes.words[k].words + "; ";
            }
        }
        for (const Area& step : notes.steps) {
            if (Meet(notes.words[i], step)) {
                found += notes.words[i].words + " on a line; ";
            }
        }
    }
    return found;
}

void DrawSteps(Notes& notes, const std::vector<review::CostChart::Step>& steps) {
    review::CostChart chart;
    chart.steps = steps;
    review::Draw(notes, chart, 0, 1);
}

TEST(CostChart, NineNarrowSteps_KeepTheirFiguresApart) {
    Notes notes;
    DrawSteps(notes, {{0, 0.25, 7208},
                      {0.25, 1, 6751},
                      {1, 3.25, 3780},
                      {3.25, 24.75, 1607},
                      {24.75, 206, 1472},
                      {206, 1976.75, 808},
                      {1976.75, 8551.5, 730},
                      {8551.5, 46661.25, 437},
                      {46661.25, 0, 343}});
    EXPECT_EQ(Collisions(notes), "");
    std::vector<std::string> words;
    for (const Area& area : notes.words) {
        words.push_back(area.words);
    }
    EXPECT_THAT(words, testing::IsSupersetOf({"$7,208", "$6,751", "$3,780", "$1,607", "$1,472",
                                              "$808", "$730", "$437", "$343", "1M"}));
}

TEST(CostChart, StepsThatLieTooClose_AreNotWrittenOnEachOther) {
    std::vector<review::CostChart::Step> steps;
    for (int i = 0; i < 9; ++i) {
        steps.push_back({1 + i * 0.01, 1.01 + i * 0.01, 1000.0 + i});
    }
    steps.back().to = 1e6;
    Notes notes;
    DrawSteps(notes, steps);
    EXPECT_EQ(Collisions(notes), "");
}

}  // namespace
