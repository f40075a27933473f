// Numbers in bytes, lowest byte first, always within bounds: a place outside the span is damage in
// the file, reported as such.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "page/types.h"

namespace jet {

[[noreturn]] void ThrowOutOfBounds();
[[noreturn]] void ThrowDamaged(const char* sentence);

inline void RequireRange(std::size_t size, std::size_t offset, std::size_t length) {
    if (offset > size || length > size - offset) ThrowOutOfBounds();
}

inline Bytes Slice(Bytes bytes, std::size_t offset, std::size_t length) {
    RequireRange(bytes.size(), offset, length);
    return bytes.subspan(offset, length);
}

inline MutableBytes Slice(MutableBytes bytes, std::size_t offset, std::size_t length) {
    RequireRange(bytes.size(), offset, length);
    return bytes.subspan(offset, length);
}

inline bool Equal(Bytes left, Bytes right) {
    return left.size() == right.size() &&
           (left.empty() || std::memcmp(left.data(), right.data(), left.size()) == 0);
}

// From the machine's order of bytes to that of the file, and back.
inline std::uint32_t LowestFirst(std::uint32_t value) {
    if constexpr (std::endian::native == std::endian::little) return value;
    return __builtin_bswap32(value);
}
inline std::uint64_t LowestFirst(std::uint64_t value) {
    if constexpr (std::endian::native == std::endian::little) return value;
    return __builtin_bswap64(value);
}

inline std::uint8_t ReadU8(Bytes bytes, std::size_t offset) {
    RequireRange(bytes.size(), offset, 1);
    return static_cast<std::uint8_t>(bytes[offset]);
}

inline std::uint16_t ReadU16(Bytes bytes, std::size_t offset) {
    RequireRange(bytes.size(), offset, 2);
    const std::byte* from = bytes.data() + offset;
    return static_cast<std::uint16_t>(static_cast<unsigned>(from[0]) |
                                      static_cast<unsigned>(from[1]) << 8);
}

inline std::uint32_t ReadU32(Bytes bytes, std::size_t offset) {
    RequireRange(bytes.size(), offset, 4);
    std::uint32_t value = 0;
    std::memcpy(&value, bytes.data() + offset, sizeof value);
    return LowestFirst(value);
}

inline std::uint64_t ReadU64(Bytes bytes, std::size_t offset) {
    RequireRange(bytes.size(), offset, 8);
    std::uint64_t value = 0;
    std::memcpy(&value, bytes.data() + offset, sizeof value);
    return LowestFirst(value);
}

// The same with the highest byte first, which orders numbers as their bytes.
inline std::uint64_t ReadBigU64(Bytes bytes, std::size_t offset) {
    return __builtin_bswap64(ReadU64(bytes, offset));
}

inline void WriteU8(MutableBytes bytes, std::size_t offset, std::uint8_t value) {
    RequireRange(bytes.size(), offset, 1);
    bytes[offset] = static_cast<std::byte>(value);
}

inline void WriteU16(MutableBytes bytes, std::size_t offset, std::uint16_t value) {
    RequireRange(bytes.size(), offset, 2);
    bytes[offset] = static_cast<std::byte>(value & 0xFF);
    bytes[offset + 1] = static_cast<std::byte>(value >> 8);
}

inline void WriteU32(MutableBytes bytes, std::size_t offset, std::uint32_t value) {
    RequireRange(bytes.size(), offset, 4);
    for (std::size_t i = 0; i < 4; ++i) {
        bytes[offset + i] = static_cast<std::byte>(value >> (8 * i) & 0xFF);
    }
}

inline void WriteU64(MutableBytes bytes, std::size_t offset, std::uint64_t value) {
    RequireRange(bytes.size(), offset, 8);
    const std::uint64_t stored = LowestFirst(value);
    std::memcpy(bytes.data() + offset, &stored, sizeof stored);
}

}  // namespace jet
