// Bytes as text.
#pragma once

#include <span>
#include <string>

namespace rollup {

// Two small digits for each.
inline std::string Hexadecimal(std::span<const unsigned char> bytes) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (const unsigned char byte : bytes) {
        text += kDigits[byte >> 4];
        text += kDigits[byte & 15];
    }
    return text;
}

}  // namespace rollup
