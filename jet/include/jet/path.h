// Paths as text.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace jet {

// The path that a text in UTF-8 names. A path that is made of a std::string otherwise takes it for
// text in whatever the system holds for its own. Where names are bytes, they stay as they are.
inline std::filesystem::path PathOf(std::string_view text) {
    return std::u8string(text.begin(), text.end());
}

}  // namespace jet
