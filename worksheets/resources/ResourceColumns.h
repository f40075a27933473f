// The columns of the resources' grid. The last one is hidden and holds the record's key.
#pragma once

namespace ResourceColumns {

inline constexpr int kNumber = 0;
inline constexpr int kName = 1;
inline constexpr int kShortName = 2;
inline constexpr int kUnits = 3;
inline constexpr int kCost = 4;
inline constexpr int kVisible = 5;
inline constexpr int kKey = 5;

}  // namespace ResourceColumns
