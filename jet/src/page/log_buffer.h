// What one write brings into the log: bytes that are put together for it, and long ones that are
// written from where they lie, so that a large transaction needs no copy of its pages.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "page/types.h"

namespace jet {

class LogBuffer {
public:
    void Clear() noexcept;
    [[nodiscard]] std::size_t Size() const { return size_; }

    // Room at the end, filled with zeros; the caller fills it before the next call.
    MutableBytes Extend(std::size_t size);
    // Few are copied; many stay where they are and must not change before Clear.
    void Put(Bytes bytes);
    // A copy in any case.
    void PutCopy(Bytes bytes);
    // `size` bytes from `at` on, to be filled in later: nothing long comes before them.
    [[nodiscard]] MutableBytes At(std::size_t at, std::size_t size);

    // All of it, in order; valid until the buffer is changed.
    std::span<const Bytes> Pieces();
    // Of everything from `at` on, which nothing long comes before.
    [[nodiscard]] std::uint64_t ChecksumFrom(std::size_t at, std::uint64_t seed);

private:
    struct Piece {
        const std::byte* lent = nullptr;  // null: those of `own_` from `begin` on
        std::size_t begin = 0;
        std::size_t size = 0;
    };
    void AddOwn(std::size_t size);

    std::vector<std::byte> own_;
    std::vector<Piece> pieces_;
    std::vector<Bytes> view_;
    std::size_t size_ = 0;
};

}  // namespace jet
