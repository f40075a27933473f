// Rows of a list as a grid counts them, from 1 on; each has a record's key.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace ListRows {

template <class Rows>
auto& At(Rows& rows, int row) {
    return rows.at(static_cast<std::size_t>(row - 1));
}

// The row of a record, or nothing.
template <class Rows>
std::optional<int> Of(const Rows& rows, std::int32_t key) {
    const auto found =
        std::find_if(rows.begin(), rows.end(), [key](const auto& one) { return one.key == key; });
    return found == rows.end() ? std::nullopt
                               : std::optional(static_cast<int>(found - rows.begin()) + 1);
}

}  // namespace ListRows
