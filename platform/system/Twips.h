// The unit of all given sizes: 15 twips are one logical pixel.
#pragma once

namespace platform {

inline constexpr int kTwipsPerPixel = 15;
inline constexpr int ToTwips(int pixels) {
    return pixels * kTwipsPerPixel;
}
// Whole pixels, rounded down.
inline constexpr int ToPixels(int twips) {
    return twips / kTwipsPerPixel;
}

}  // namespace platform
