// Sizes that are given in twips hold for ordinary fonts. For people who read with larger ones they
// grow with the letters, so that what had room keeps it.
#pragma once

class QFont;

namespace platform {

// Up to this size of the font, in points, given sizes hold as they are.
inline constexpr double kStandardPoints = 10;

// By how much given sizes grow with a font: 1 up to the standard size, and from there on in
// proportion to the height of a line.
[[nodiscard]] double FontScale(const QFont& font);

// A size of so many pixels at the standard font, with this one.
[[nodiscard]] int ScaledPixels(int pixels, const QFont& font);

}  // namespace platform
