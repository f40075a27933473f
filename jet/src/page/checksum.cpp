#include "page/checksum.h"

#include <array>
#include <bit>
#include <cstring>

namespace jet {

namespace {

constexpr std::uint64_t kOdd1 = 0x9E3779B97F4A7C15;
constexpr std::uint64_t kOdd2 = 0xC2B2AE3D27D4EB4F;

std::uint64_t Mix(std::uint64_t state, std::uint64_t word) {
    return std::rotl((state ^ word) * kOdd1, 29);
}

std::uint64_t Load(const std::byte* from, std::size_t size) {
    std::uint64_t word = 0;
    std::memcpy(&word, from, size);
    return word;
}

std::uint64_t Spread(std::uint64_t value) {
    value = (value ^ (value >> 33)) * kOdd2;
    value = (value ^ (value >> 29)) * kOdd1;
    return value ^ (value >> 32);
}

}  // namespace

std::uint64_t Checksum(Bytes bytes, std::uint64_t seed) {
    // Four lanes, because a multiplication takes longer than reading the next word.
    std::array<std::uint64_t, 4> lanes = {seed ^ kOdd1, seed ^ kOdd2, seed + 1, ~seed};
    const std::byte* at = bytes.data();
    std::size_t left = bytes.size();
    for (; left >= 32; left -= 32, at += 32) {
        for (std::size_t lane = 0; lane < 4; ++lane) {
            lanes[lane] = Mix(lanes[lane], Load(at + 8 * lane, 8));
        }
    }
    std::uint64_t result = Mix(seed, bytes.size());
    for (; left >= 8; left -= 8, at += 8) result = Mix(result, Load(at, 8));
    if (left > 0) result = Mix(result, Load(at, left));
    for (const std::uint64_t lane : lanes) result = Spread(Mix(result, lane));
    return result;
}

}  // namespace jet
