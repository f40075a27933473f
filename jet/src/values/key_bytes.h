// The bytes of an index key, and their order.
#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace jet {

using Key = std::vector<std::byte>;

// The order of the index. A vector's own `<` makes some compilers warn, where they optimize most,
// of a comparison without end.
struct KeyOrder {
    bool operator()(const Key& left, const Key& right) const {
        return std::lexicographical_compare(left.begin(), left.end(), right.begin(), right.end());
    }
};

}  // namespace jet
