// Bitmaps as the format keeps them: lowest bit of the first byte first.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <optional>

#include "page/types.h"

namespace jet {

inline bool TestBit(Bytes bits, std::size_t at) {
    return (bits[at / 8] >> (at % 8) & std::byte{1}) != std::byte{0};
}

inline void SetBit(MutableBytes bits, std::size_t at) {
    bits[at / 8] |= std::byte{1} << (at % 8);
}

inline void ClearBit(MutableBytes bits, std::size_t at) {
    bits[at / 8] &= ~(std::byte{1} << (at % 8));
}

// The first set bit from `from` on.
inline std::optional<std::size_t> NextBit(Bytes bits, std::size_t from) {
    std::size_t byte = from / 8;
    if (byte >= bits.size()) return std::nullopt;
    const unsigned first = static_cast<unsigned>(bits[byte]) >> (from % 8);
    if (first != 0) return from + static_cast<unsigned>(std::countr_zero(first));
    ++byte;
    while (byte + 8 <= bits.size()) {
        std::uint64_t word = 0;
        std::memcpy(&word, bits.data() + byte, 8);
        if (word != 0) break;
        byte += 8;
    }
    for (; byte < bits.size(); ++byte) {
        const auto value = static_cast<unsigned>(bits[byte]);
        if (value != 0) return byte * 8 + static_cast<unsigned>(std::countr_zero(value));
    }
    return std::nullopt;
}

// The last set bit before `end`.
inline std::optional<std::size_t> LastBit(Bytes bits, std::size_t end) {
    std::size_t byte = end / 8;
    if (byte >= bits.size()) {
        byte = bits.size();
    } else {
        const unsigned last = static_cast<unsigned>(bits[byte]) & ((1U << (end % 8)) - 1);
        if (last != 0) return byte * 8 + static_cast<unsigned>(std::bit_width(last)) - 1;
    }
    while (byte >= 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, bits.data() + byte - 8, 8);
        if (word != 0) break;
        byte -= 8;
    }
    while (byte-- > 0) {
        const auto value = static_cast<unsigned>(bits[byte]);
        if (value != 0) return byte * 8 + static_cast<unsigned>(std::bit_width(value)) - 1;
    }
    return std::nullopt;
}

}  // namespace jet
