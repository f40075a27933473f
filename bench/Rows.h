// The rows that every task works on: the same for every peer and every run, each made from its
// number alone, so that no task has to keep them all.
#pragma once

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <random>
#include <vector>

#include "bench/Peer.h"

namespace bench {

// Numbers that look random and depend on nothing but where they begin.
class Mixer {
public:
    explicit Mixer(std::uint64_t start) : state_(start * 0x9E3779B97F4A7C15) {}
    std::uint32_t Next() {
        state_ += 0x9E3779B97F4A7C15;
        std::uint64_t bits = state_;
        bits = (bits ^ bits >> 30) * 0xBF58476D1CE4E5B9;
        bits = (bits ^ bits >> 27) * 0x94D049BB133111EB;
        return static_cast<std::uint32_t>(bits >> 32);
    }

private:
    std::uint64_t state_;
};

inline void MakeRow(std::size_t number, Row& row) {
    row.location = static_cast<std::int32_t>(101 + number / 14);
    row.resource = static_cast<std::int32_t>(1 + number % 14);
    Mixer mixer(number);
    for (float& level : row.values) level = static_cast<float>(mixer.Next() % 180000) / 100 - 900;
}

inline void MakeRow(std::size_t number, Note& note) {
    Mixer mixer(number);
    note.key = static_cast<std::int32_t>(number + 1);
    note.name = u"Resource Management Area ";
    note.name.append(1 + mixer.Next() % 10, u'n');
    note.body.assign(20 + mixer.Next() % 300, u'o');
}

template <typename T>
std::vector<T> RowsOf(const std::vector<std::size_t>& numbers) {
    std::vector<T> rows(numbers.size());
    for (std::size_t i = 0; i < rows.size(); ++i) MakeRow(numbers[i], rows[i]);
    return rows;
}

inline std::vector<std::size_t> InOrder(std::size_t count) {
    std::vector<std::size_t> numbers(count);
    std::iota(numbers.begin(), numbers.end(), std::size_t{0});
    return numbers;
}

inline std::vector<std::size_t> Shuffled(std::size_t count) {
    std::vector<std::size_t> numbers = InOrder(count);
    std::mt19937 random(7);
    std::shuffle(numbers.begin(), numbers.end(), random);
    return numbers;
}

// At most `most` of the rows, picked at random.
template <typename T>
std::vector<T> Sample(std::size_t count, std::size_t most) {
    std::vector<std::size_t> numbers = Shuffled(count);
    numbers.resize(std::min(count, most));
    return RowsOf<T>(numbers);
}

// Hands the rows of these numbers to `visit`, some thousands at a time.
template <typename T, typename Visit>
void InBatches(const std::vector<std::size_t>& numbers, Visit visit) {
    constexpr std::size_t kBatch = 10000;
    for (std::size_t begin = 0; begin < numbers.size(); begin += kBatch) {
        const std::size_t end = std::min(numbers.size(), begin + kBatch);
        const auto first = numbers.begin() + static_cast<std::ptrdiff_t>(begin);
        visit(RowsOf<T>({first, first + static_cast<std::ptrdiff_t>(end - begin)}));
    }
}

}  // namespace bench
