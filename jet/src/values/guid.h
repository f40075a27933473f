// How an identifier is stored.
#pragma once

#include <array>
#include <cstddef>

namespace jet {

// Where the byte of each pair of digits lies, as the text and the order have them: the first three
// groups are stored with the lowest byte first.
inline constexpr std::array<std::size_t, 16> kGuidTextOrder = {3, 2, 1,  0,  5,  4,  7,  6,
                                                               8, 9, 10, 11, 12, 13, 14, 15};

}  // namespace jet
