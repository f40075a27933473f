#include "page/checksum.h"

#include <algorithm>
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

RunningChecksum::RunningChecksum(std::uint64_t seed)
    : seed_(seed), lanes_{seed ^ kOdd1, seed ^ kOdd2, seed + 1, ~seed} {}

// Four lanes, because a multiplication takes longer than reading the next word. Each has a variable
// of its own, since compilers keep an array in memory, where every step waits for the one before to
// be stored.
void RunningChecksum::AddBlocks(const std::byte* at, std::size_t count) {
    auto [first, second, third, fourth] = lanes_;
    for (; count > 0; --count, at += kBlock) {
        first = Mix(first, Load(at, 8));
        second = Mix(second, Load(at + 8, 8));
        third = Mix(third, Load(at + 16, 8));
        fourth = Mix(fourth, Load(at + 24, 8));
    }
    lanes_ = {first, second, third, fourth};
}

void RunningChecksum::Add(Bytes bytes) {
    size_ += bytes.size();
    if (restSize_ > 0) {
        const std::size_t taken = std::min(kBlock - restSize_, bytes.size());
        std::copy_n(bytes.begin(), taken, rest_.begin() + static_cast<std::ptrdiff_t>(restSize_));
        restSize_ += taken;
        bytes = bytes.subspan(taken);
        if (restSize_ < kBlock) return;
        AddBlocks(rest_.data(), 1);
        restSize_ = 0;
    }
    const std::size_t blocks = bytes.size() / kBlock;
    AddBlocks(bytes.data(), blocks);
    bytes = bytes.subspan(blocks * kBlock);
    std::copy(bytes.begin(), bytes.end(), rest_.begin());
    restSize_ = bytes.size();
}

std::uint64_t RunningChecksum::Result() const {
    std::uint64_t result = Mix(seed_, size_);
    const std::byte* at = rest_.data();
    std::size_t left = restSize_;
    for (; left >= 8; left -= 8, at += 8) result = Mix(result, Load(at, 8));
    if (left > 0) result = Mix(result, Load(at, left));
    for (const std::uint64_t lane : lanes_) result = Spread(Mix(result, lane));
    return result;
}

std::uint64_t Checksum(Bytes bytes, std::uint64_t seed) {
    RunningChecksum checksum(seed);
    checksum.Add(bytes);
    return checksum.Result();
}

}  // namespace jet
