// Small value types that the folders of the engine share.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <span>

namespace jet {

using Bytes = std::span<const std::byte>;
using MutableBytes = std::span<std::byte>;

// The number of a page in the file; page 0 is the header, so 0 also means "none".
struct PageNumber {
    std::uint32_t value = 0;
    auto operator<=>(const PageNumber&) const = default;
    explicit operator bool() const { return value != 0; }
};

// Page and slot: the place of a row. Stored as `page << 8 | slot`; 0 means "none".
struct RowId {
    PageNumber page;
    std::uint8_t slot = 0;
    auto operator<=>(const RowId&) const = default;
    explicit operator bool() const { return page.value != 0; }
    [[nodiscard]] std::uint32_t Packed() const { return page.value << 8 | slot; }
    static RowId FromPacked(std::uint32_t packed) {
        return {PageNumber{packed >> 8}, static_cast<std::uint8_t>(packed & 0xFF)};
    }
};

}  // namespace jet
