#include "index/leaf_edit.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#include "index/index_page.h"
#include "page/bytes.h"

namespace jet {

namespace {

constexpr std::size_t kWordBits = 64;

void WriteFree(MutableBytes page, const Format& format, std::size_t used) {
    WriteU16(page, kFreeFieldAt, static_cast<std::uint16_t>(format.entryCapacity - used));
}

// The words of a page's bitmap from that of one bit to that of another, taken out so that bits can
// be moved many at a time.
class Ends {
public:
    Ends(MutableBytes page, const Format& format, std::size_t first, std::size_t last)
        : firstBit_(first % kWordBits), count_(last / kWordBits - first / kWordBits + 1) {
        const MutableBytes bitmap = page.subspan(format.entryBitmapAt, format.entryBitmapSize);
        const std::size_t begin = first / kWordBits * kWordBytes;
        bytes_ = bitmap.subspan(begin, std::min(count_ * kWordBytes, bitmap.size() - begin));
        for (std::size_t i = 0; i < count_; ++i) words_[i] = Load(i * kWordBytes);
    }

    // Moves the bits above the first one up by `distance`, and puts an end where the new entry
    // ends.
    void MoveUp(std::size_t distance) {
        const std::size_t far = distance / kWordBits;
        const std::size_t near = distance % kWordBits;
        const std::uint64_t below = words_[0] & ~Above(firstBit_);
        words_[0] &= Above(firstBit_);
        for (std::size_t i = count_; i-- > far + 1;) {
            words_[i] = Joined(words_[i - far - 1], words_[i - far], kWordBits - near);
        }
        if (far < count_) words_[far] = words_[0] << near;
        std::fill_n(words_.begin(), std::min(far, count_), 0);
        words_[0] |= below;
        const std::size_t end = firstBit_ + distance;
        words_[end / kWordBits] |= std::uint64_t{1} << end % kWordBits;
    }

    // Moves those that are farther above it than `distance` down by that; those between go.
    void MoveDown(std::size_t distance) {
        const std::size_t far = distance / kWordBits;
        const std::size_t near = distance % kWordBits;
        const std::uint64_t below = words_[0] & ~Above(firstBit_);
        const std::size_t end = firstBit_ + distance;
        std::fill_n(words_.begin(), end / kWordBits, 0);
        words_[end / kWordBits] &= Above(end % kWordBits);
        const std::size_t kept = count_ - std::min(far, count_);
        for (std::size_t i = 0; i + 1 < kept; ++i) {
            words_[i] = Joined(words_[i + far], words_[i + far + 1], near);
        }
        if (kept > 0) words_[kept - 1] = words_[count_ - 1] >> near;
        std::fill_n(words_.begin() + static_cast<std::ptrdiff_t>(kept), count_ - kept, 0);
        words_[0] |= below;
    }

    void Store() {
        for (std::size_t i = 0; i < count_; ++i) words_[i] = LowestFirst(words_[i]);
        std::memcpy(bytes_.data(), words_.data(), bytes_.size());
    }

private:
    static constexpr std::size_t kWordBytes = kWordBits / 8;

    // The bits of a word above number `bit`. Twice, since moving by the whole width at once is
    // undefined.
    static std::uint64_t Above(std::size_t bit) { return ~std::uint64_t{0} << bit << 1; }

    // The word that begins at bit `from` of two that follow each other. Twice, as above.
    static std::uint64_t Joined(std::uint64_t low, std::uint64_t high, std::size_t from) {
        return from == kWordBits ? high : low >> from | high << 1 << (kWordBits - 1 - from);
    }

    // The last word reaches beyond the bitmap.
    [[nodiscard]] std::uint64_t Load(std::size_t at) const {
        if (at + kWordBytes <= bytes_.size()) return ReadU64(bytes_, at);
        std::array<std::byte, kWordBytes> bytes{};
        std::copy(bytes_.begin() + static_cast<std::ptrdiff_t>(at), bytes_.end(), bytes.begin());
        return ReadU64(bytes, 0);
    }

    MutableBytes bytes_;
    std::size_t firstBit_;
    std::size_t count_;
    std::array<std::uint64_t, (kJet4Format.entryBitmapSize + 7) / 8> words_{};
};

}  // namespace

void InsertStored(MutableBytes page, const Format& format, std::size_t used, std::size_t at,
                  Bytes stored) {
    std::byte* area = &page[format.entryAreaAt];
    std::memmove(area + at + stored.size(), area + at, used - at);
    std::memcpy(area + at, stored.data(), stored.size());
    Ends ends(page, format, at, used + stored.size());
    ends.MoveUp(stored.size());
    ends.Store();
    WriteFree(page, format, used + stored.size());
}

void EraseStored(MutableBytes page, const Format& format, std::size_t used, std::size_t at,
                 std::size_t end) {
    std::byte* area = &page[format.entryAreaAt];
    std::memmove(area + at, area + end, used - end);
    std::memset(area + used - (end - at), 0, end - at);
    Ends ends(page, format, at, used);
    ends.MoveDown(end - at);
    ends.Store();
    WriteFree(page, format, used - (end - at));
}

}  // namespace jet
