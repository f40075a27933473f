#include "index/leaf_edit.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#include "page/bytes.h"

namespace jet {

namespace {

constexpr std::size_t kFreeAt = 2;
constexpr std::size_t kWordBits = 64;

void WriteFree(MutableBytes page, const Format& format, std::size_t used) {
    WriteU16(page, kFreeAt, static_cast<std::uint16_t>(format.entryCapacity - used));
}

// The bitmap of a page, taken out as words so that its bits can be moved many at a time.
class Ends {
public:
    Ends(MutableBytes page, const Format& format)
        : bitmap_(page.subspan(format.entryBitmapAt, format.entryBitmapSize)) {
        std::array<std::byte, sizeof words_> bytes{};
        std::copy(bitmap_.begin(), bitmap_.end(), bytes.begin());
        for (std::size_t i = 0; i < words_.size(); ++i) words_[i] = ReadU64(bytes, 8 * i);
    }

    // Moves the bits above `at` by `distance`, and puts an end where the new entry ends.
    void MoveUp(std::size_t at, std::size_t distance) {
        const std::size_t far = distance / kWordBits;
        const std::size_t near = distance % kWordBits;
        const Words above = Above(at);
        for (std::size_t i = at / kWordBits; i < words_.size(); ++i) {
            std::uint64_t moved = i >= far ? above[i - far] << near : 0;
            if (near != 0 && i > far) moved |= above[i - far - 1] >> (kWordBits - near);
            words_[i] = (words_[i] & ~above[i]) | moved;
        }
        const std::size_t end = at + distance;
        words_[end / kWordBits] |= std::uint64_t{1} << end % kWordBits;
    }

    // Moves the bits above `at + distance` down; those between go.
    void MoveDown(std::size_t at, std::size_t distance) {
        const std::size_t far = distance / kWordBits;
        const std::size_t near = distance % kWordBits;
        const Words above = Above(at);
        const Words kept = Above(at + distance);
        const auto word = [&kept](std::size_t i) { return i < kept.size() ? kept[i] : 0; };
        for (std::size_t i = at / kWordBits; i < words_.size(); ++i) {
            std::uint64_t moved = word(i + far) >> near;
            if (near != 0) moved |= word(i + far + 1) << (kWordBits - near);
            words_[i] = (words_[i] & ~above[i]) | moved;
        }
    }

    void Store() {
        std::array<std::byte, sizeof words_> bytes{};
        for (std::size_t i = 0; i < words_.size(); ++i) WriteU64(bytes, 8 * i, words_[i]);
        std::copy_n(bytes.begin(), bitmap_.size(), bitmap_.begin());
    }

private:
    using Words = std::array<std::uint64_t, (kJet4Format.entryBitmapSize + 7) / 8>;

    // The bits above number `at` alone.
    [[nodiscard]] Words Above(std::size_t at) const {
        Words above = words_;
        const std::size_t word = at / kWordBits;
        std::fill_n(above.begin(), std::min(word, above.size()), 0);
        // Twice, since moving by the whole width at once is undefined.
        if (word < above.size()) above[word] &= ~std::uint64_t{0} << at % kWordBits << 1;
        return above;
    }

    MutableBytes bitmap_;
    Words words_{};
};

}  // namespace

void InsertStored(MutableBytes page, const Format& format, std::size_t used, std::size_t at,
                  Bytes stored) {
    std::byte* area = &page[format.entryAreaAt];
    std::memmove(area + at + stored.size(), area + at, used - at);
    std::memcpy(area + at, stored.data(), stored.size());
    Ends ends(page, format);
    ends.MoveUp(at, stored.size());
    ends.Store();
    WriteFree(page, format, used + stored.size());
}

void EraseStored(MutableBytes page, const Format& format, std::size_t used, std::size_t at,
                 std::size_t end) {
    std::byte* area = &page[format.entryAreaAt];
    std::memmove(area + at, area + end, used - end);
    std::memset(area + used - (end - at), 0, end - at);
    Ends ends(page, format);
    ends.MoveDown(at, end - at);
    ends.Store();
    WriteFree(page, format, used - (end - at));
}

}  // namespace jet
