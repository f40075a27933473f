// A 64-bit checksum against accidental damage: torn, lost, misplaced and stale writes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "page/types.h"

namespace jet {

// `seed` ties the result to what came before, so that a record is good only in its place.
std::uint64_t Checksum(Bytes bytes, std::uint64_t seed);

// The same of bytes that come in several pieces, however they are cut.
class RunningChecksum {
public:
    explicit RunningChecksum(std::uint64_t seed);
    void Add(Bytes bytes);
    [[nodiscard]] std::uint64_t Result() const;

private:
    static constexpr std::size_t kBlock = 32;
    void AddBlocks(const std::byte* at, std::size_t count);

    std::uint64_t seed_;
    std::array<std::uint64_t, 4> lanes_;
    std::uint64_t size_ = 0;
    std::array<std::byte, kBlock> rest_{};  // what makes no whole block yet
    std::size_t restSize_ = 0;
};

}  // namespace jet
