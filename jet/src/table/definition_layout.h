// Offsets within the blocks of a table definition, for both versions.
#pragma once

#include <cstdint>

#include "page/format.h"

namespace jet {

inline constexpr std::uint16_t kDefinitionPageType = 0x0102;
inline constexpr std::uint16_t kJet3DefinitionMark = 0x4356;  // "VC"
inline constexpr std::uint32_t kDefinitionPageHead = 8;
inline constexpr std::uint32_t kDefinitionConstant = 0x659;
inline constexpr std::uint32_t kRealIndexConstant = 0x783;
inline constexpr std::uint8_t kUserTable = 0x4E;
inline constexpr std::uint8_t kSystemTable = 0x53;
inline constexpr std::uint16_t kNoColumn = 0xFFFF;
inline constexpr std::size_t kMostIndexParts = 10;
inline constexpr std::uint32_t kMostColumns = 255;
// Relationships count too, and real files hold tables with many of them.
inline constexpr std::uint32_t kMostIndexes = 255;
inline constexpr std::uint32_t kLargestPageSize = 4096;
// All columns and indexes that a table can have, with the longest names, take less.
inline constexpr std::uint32_t kLongestDefinition = 1U << 18;

inline constexpr std::uint8_t kFixedColumn = 0x01;
inline constexpr std::uint8_t kAnyColumn = 0x02;
inline constexpr std::uint8_t kAutoNumberColumn = 0x04;
inline constexpr std::uint8_t kSystemColumn = 0x10;
inline constexpr std::uint8_t kSecurityColumn = 0x20;
inline constexpr std::uint8_t kAutoGuidColumn = 0x40;

struct DefinitionLayout {
    const Format& format;
    std::size_t rowCount;
    std::size_t lastAutoNumber;
    std::size_t kind;
    std::size_t columnNumber;
    std::size_t columnLanguage;
    std::size_t columnFlags;
    std::size_t columnOffset;
    std::size_t realParts;
    std::size_t realFlags;
    std::size_t logicalFields;
};

inline DefinitionLayout LayoutOf(const Format& format) {
    const bool narrow = format.version == Version::kJet3;
    return {.format = format,
            .rowCount = narrow ? 12U : 16U,
            .lastAutoNumber = narrow ? 16U : 20U,
            .kind = narrow ? 20U : 40U,
            .columnNumber = narrow ? 1U : 5U,
            .columnLanguage = narrow ? 9U : 11U,
            .columnFlags = narrow ? 13U : 15U,
            .columnOffset = narrow ? 14U : 21U,
            .realParts = narrow ? 0U : 4U,
            .realFlags = narrow ? 38U : 46U,
            .logicalFields = narrow ? 0U : 4U};
}

}  // namespace jet
