// Rows of usage maps: finding, adding and resizing them on their page.
//
// A usage map is a row without columns on a data page; the directory of such a page is that of
// every data page. Rows lie packed from the page's end downward, in slot order.
//
//   inline map      00 | u32 start page | bitmap, a bit for each page from the start page on
//   reference map   01 | u32 page of map pages, one for each range; 0 for none
//   map page        05 01 00 00 | bitmap to the page's end
#pragma once

#include <cstdint>

#include "page/format.h"
#include "page/types.h"

namespace jet {

inline constexpr std::uint8_t kInlineMap = 0;
inline constexpr std::uint8_t kReferenceMap = 1;
inline constexpr std::uint32_t kInlineMapHead = 5;
inline constexpr std::uint32_t kMapPageHead = 4;
inline constexpr std::uint16_t kMapPageType = 0x0105;

// Pages that one map page stands for.
inline std::uint32_t PagesOfMapPage(const Format& format) {
    return 8 * (format.pageSize - kMapPageHead);
}

struct RowExtent {
    std::uint32_t start = 0;
    std::uint32_t length = 0;
};

// Where the map lies on its page. kDamaged when there is no live row of at least one byte.
RowExtent FindMapRow(Bytes page, const Format& format, std::uint8_t slot);
// Appends a zeroed row; false when the page has no room for it.
bool AppendMapRow(MutableBytes page, const Format& format, std::uint32_t length);
// Lengthens a row, keeping its bytes and filling the rest; false when the page has no room.
bool LengthenMapRow(MutableBytes page, const Format& format, std::uint8_t slot,
                    std::uint32_t length, std::byte fill);
// Makes a zeroed page an empty page for map rows.
void StartMapRowPage(MutableBytes page, const Format& format);

// True when the page can be used as a map page (type 5).
bool IsMapPage(Bytes page);

}  // namespace jet
