#include "index/leaf_edit.h"

#include <cstdint>
#include <cstring>

#include "page/bytes.h"

namespace jet {

namespace {

constexpr std::size_t kFreeAt = 2;

void WriteFree(MutableBytes page, const Format& format, std::size_t used) {
    WriteU16(page, kFreeAt, static_cast<std::uint16_t>(format.entryCapacity - used));
}

// The eight bits from `at` on; bits past the bitmap are 0.
unsigned BitsFrom(Bytes bitmap, std::size_t at) {
    const std::size_t byte = at / 8;
    unsigned bits = byte < bitmap.size() ? std::to_integer<unsigned>(bitmap[byte]) : 0;
    if (byte + 1 < bitmap.size()) bits |= std::to_integer<unsigned>(bitmap[byte + 1]) << 8;
    return bits >> at % 8 & 0xFFU;
}

// Eight bits that end before bit `end`, which may lie before the bitmap's start.
unsigned BitsBefore(Bytes bitmap, std::size_t end) {
    if (end >= 8) return BitsFrom(bitmap, end - 8);
    return BitsFrom(bitmap, 0) << (8 - end) & 0xFFU;
}

// Keeps the bits of `byte` up to and including number `last` of the bitmap, takes the rest from
// `bits`.
std::byte Keep(std::byte byte, std::size_t index, std::size_t last, unsigned bits) {
    const unsigned kept = index < last / 8 ? 0xFFU : index > last / 8 ? 0U : (2U << last % 8) - 1;
    return static_cast<std::byte>((std::to_integer<unsigned>(byte) & kept) |
                                  (bits & ~kept & 0xFFU));
}

}  // namespace

void InsertStored(MutableBytes page, const Format& format, std::size_t used, std::size_t at,
                  Bytes stored) {
    std::byte* area = &page[format.entryAreaAt];
    std::memmove(area + at + stored.size(), area + at, used - at);
    std::memcpy(area + at, stored.data(), stored.size());
    // The ends after `at` move up by the entry's size.
    const MutableBytes bitmap = page.subspan(format.entryBitmapAt, format.entryBitmapSize);
    for (std::size_t i = (used + stored.size()) / 8 + 1; i-- > at / 8;) {
        const std::size_t end = i * 8 + 8;
        const unsigned moved = end <= stored.size() ? 0 : BitsBefore(bitmap, end - stored.size());
        bitmap[i] = Keep(bitmap[i], i, at, moved);
    }
    // Among the moved bits the former end at `at` itself came along, to where the new entry ends;
    // on an empty page there was none.
    const std::size_t newEnd = at + stored.size();
    bitmap[newEnd / 8] |= static_cast<std::byte>(1U << newEnd % 8);
    for (std::size_t bit = at + 1; bit < newEnd; ++bit) {
        bitmap[bit / 8] &= static_cast<std::byte>(~(1U << bit % 8) & 0xFFU);
    }
    WriteFree(page, format, used + stored.size());
}

void EraseStored(MutableBytes page, const Format& format, std::size_t used, std::size_t at,
                 std::size_t end) {
    std::byte* area = &page[format.entryAreaAt];
    std::memmove(area + at, area + end, used - end);
    std::memset(area + used - (end - at), 0, end - at);
    const MutableBytes bitmap = page.subspan(format.entryBitmapAt, format.entryBitmapSize);
    for (std::size_t i = at / 8; i <= used / 8; ++i) {
        bitmap[i] = Keep(bitmap[i], i, at, BitsFrom(bitmap, i * 8 + (end - at)));
    }
    WriteFree(page, format, used - (end - at));
}

}  // namespace jet
