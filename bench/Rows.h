// The rows that every task works on: the same for every peer and every run.
#pragma once

#include <algorithm>
#include <random>
#include <vector>

#include "bench/Peer.h"

namespace bench {

inline std::vector<Row> RowsInKeyOrder(std::size_t count) {
    std::mt19937 random(20260401);
    std::uniform_real_distribution<float> value(-900.0F, 900.0F);
    std::vector<Row> rows(count);
    for (std::size_t i = 0; i < count; ++i) {
        rows[i].location = static_cast<std::int32_t>(101 + i / 14);
        rows[i].resource = static_cast<std::int32_t>(1 + i % 14);
        for (float& level : rows[i].values) level = value(random);
    }
    return rows;
}

template <typename T>
std::vector<T> Shuffled(std::vector<T> rows) {
    std::mt19937 random(7);
    std::shuffle(rows.begin(), rows.end(), random);
    return rows;
}

// At most `most` of the rows, picked at random.
template <typename T>
std::vector<T> Sample(const std::vector<T>& rows, std::size_t most) {
    std::vector<T> sample = Shuffled(rows);
    if (sample.size() > most) sample.resize(most);
    return sample;
}

inline std::vector<Note> Notes(std::size_t count) {
    std::mt19937 random(11);
    std::vector<Note> notes(count);
    for (std::size_t i = 0; i < count; ++i) {
        notes[i].key = static_cast<std::int32_t>(i + 1);
        notes[i].name = u"Resource Management Area " + std::u16string(1 + random() % 10, u'n');
        notes[i].body = std::u16string(20 + random() % 300, u'o');
    }
    return notes;
}

}  // namespace bench
