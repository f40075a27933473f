// The middle of many amounts, found by counting, is the middle of them all.
#include "rollup/amount_counts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace {

using rollup::Amount;
using rollup::AmountCounts;

double MiddleOf(std::vector<double> numbers) {
    std::sort(numbers.begin(), numbers.end());
    return (numbers[(numbers.size() - 1) / 2] + numbers[numbers.size() / 2]) / 2;
}

// The way that holds them all.
rollup::Usual Plainly(std::vector<float> amounts, const std::vector<float>& without) {
    for (const float each : without) {
        amounts.erase(std::find(amounts.begin(), amounts.end(), each));
    }
    std::vector<double> numbers;
    for (const float amount : amounts) numbers.push_back(std::log10(double{amount}));
    rollup::Usual usual{amounts.size()};
    if (!numbers.empty()) {
        usual.median = MiddleOf(numbers);
        for (double& number : numbers) number = std::abs(number - usual.median);
        usual.distance = MiddleOf(numbers);
    }
    return usual;
}

std::vector<Amount> Amounts(const std::vector<float>& numbers) {
    std::vector<Amount> amounts;
    for (const float number : numbers) amounts.push_back(*rollup::AmountOf(-double{number}));
    return amounts;
}

class Counted {
public:
    explicit Counted(const std::vector<float>& numbers) : amounts_(Amounts(numbers)) {
        for (const Amount amount : amounts_) counts_.Add(amount);
    }
    rollup::Usual Without(const std::vector<float>& numbers) {
        const std::vector<Amount> without = Amounts(numbers);
        auto found = counts_.Find(without);
        if (!found) {
            counts_.Want(without);
            for (const Amount amount : amounts_) counts_.AddWanted(amount);
            EXPECT_TRUE(counts_.EndLook());
            ++looks;
            found = counts_.Find(without);
        }
        EXPECT_TRUE(found.has_value());
        return found.value_or(rollup::Usual());
    }
    int looks = 0;

private:
    std::vector<Amount> amounts_;
    AmountCounts counts_;
};

void ExpectSame(const std::vector<float>& amounts, const std::vector<float>& without) {
    const rollup::Usual wanted = Plainly(amounts, without);
    const rollup::Usual found = Counted(amounts).Without(without);
    EXPECT_EQ(found.count, wanted.count);
    EXPECT_DOUBLE_EQ(found.median, wanted.median) << amounts.size();
    EXPECT_NEAR(found.distance, wanted.distance, 1e-12) << amounts.size();
}

TEST(AmountCounts, OfAnyAmounts_GiveTheirMiddle) {
    std::mt19937 random(7);
    std::lognormal_distribution<float> spread(3, 4);
    std::uniform_int_distribution<int> place(0, 3);
    for (const std::size_t count : {1, 2, 3, 20, 21, 999, 30000, 30001}) {
        std::vector<float> wide(count);
        std::vector<float> alike(count);
        std::vector<float> apart(count);
        for (std::size_t i = 0; i < count; ++i) {
            wide[i] = spread(random);
            alike[i] = place(random) == 0 ? 120.0F : 119.5F;
            apart[i] = i % 2 == 0 ? std::numeric_limits<float>::denorm_min()
                                  : std::numeric_limits<float>::max();
        }
        for (const std::vector<float>& amounts : {wide, alike, apart}) {
            ExpectSame(amounts, {});
            ExpectSame(amounts, {amounts.begin(), amounts.begin() + static_cast<int>(count / 3)});
        }
    }
    ExpectSame({7.0F}, {7.0F});
}

TEST(AmountCounts, ForManyFiles_LookOnceAgain) {
    std::mt19937 random(7);
    std::lognormal_distribution<float> spread(3, 4);
    std::vector<float> amounts(60000);
    for (float& amount : amounts) amount = spread(random);
    Counted counted(amounts);
    for (int file = 0; file < 10; ++file) {
        const auto begin = amounts.begin() + file * 400;
        const std::vector<float> own(begin, begin + 400);
        EXPECT_DOUBLE_EQ(counted.Without(own).median, Plainly(amounts, own).median);
    }
    EXPECT_EQ(counted.looks, 1);
}

TEST(AmountCounts, OfOthersInTheSecondLook_SaySo) {
    AmountCounts counts;
    counts.Add(*rollup::AmountOf(3));
    counts.Add(*rollup::AmountOf(3));
    counts.Want({});
    counts.AddWanted(*rollup::AmountOf(3));
    EXPECT_FALSE(counts.EndLook());
}

TEST(AmountCounts, OfNoAmounts_AreNone) {
    for (const double none : {0.0, -0.0, std::nan(""), HUGE_VAL, 1e300, 1e-300}) {
        EXPECT_FALSE(rollup::AmountOf(none).has_value()) << none;
    }
    EXPECT_EQ(Counted({}).Without({}).count, 0U);
}

}  // namespace
