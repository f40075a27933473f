// The two versions of the format as one table of constants. Code asks the table, not the version.
#pragma once

#include <cstdint>

#include "jet/schema.h"

namespace jet {

// How a data page begins. Rows of usage maps lie on such pages, too.
inline constexpr std::uint16_t kDataPageType = 0x0101;

struct Format {
    Version version;
    std::uint32_t pageSize;
    // Data pages.
    std::uint32_t rowCountAt;
    std::uint32_t rowDirectoryAt;
    std::uint32_t largestRow;  // limit that is enforced for a whole row
    // Width of column count, variable offsets and variable count in a row.
    std::uint32_t countWidth;
    // Table definitions.
    std::uint32_t tdefHeaderSize;
    std::uint32_t indexStatisticsSize;
    std::uint32_t columnBlockSize;
    std::uint32_t realIndexBlockSize;
    std::uint32_t logicalIndexBlockSize;
    std::uint32_t nameLengthWidth;
    std::uint32_t bytesPerCharacter;
    // Usage maps.
    std::uint32_t initialMapRow;
    // Long values.
    std::uint32_t longValueInRow;    // largest plain length kept in the row
    std::uint32_t longValueOnePage;  // largest length kept as one row on a page
    std::uint32_t longValueChunk;    // data bytes of a full page in a chain
    // Index pages.
    std::uint32_t entryBitmapAt;
    std::uint32_t entryBitmapSize;
    std::uint32_t entryAreaAt;
    std::uint32_t entryCapacity;
    std::uint32_t previousPageAt;
    std::uint32_t nextPageAt;
    std::uint32_t tailPageAt;
    std::uint32_t prefixAt;
    std::uint32_t prefixWidth;
    std::uint32_t levelAt;
    std::uint8_t indexFlagAlways;  // 0x80 in Jet 4
};

inline constexpr Format kJet3Format{.version = Version::kJet3,
                                    .pageSize = 2048,
                                    .rowCountAt = 8,
                                    .rowDirectoryAt = 10,
                                    .largestRow = 2012,
                                    .countWidth = 1,
                                    .tdefHeaderSize = 43,
                                    .indexStatisticsSize = 8,
                                    .columnBlockSize = 18,
                                    .realIndexBlockSize = 39,
                                    .logicalIndexBlockSize = 20,
                                    .nameLengthWidth = 1,
                                    .bytesPerCharacter = 1,
                                    .initialMapRow = 133,
                                    .longValueInRow = 32,
                                    .longValueOnePage = 2032,
                                    .longValueChunk = 2032,
                                    .entryBitmapAt = 0x16,
                                    .entryBitmapSize = 226,
                                    .entryAreaAt = 0xF8,
                                    .entryCapacity = 1800,
                                    .previousPageAt = 0x08,
                                    .nextPageAt = 0x0C,
                                    .tailPageAt = 0x10,
                                    .prefixAt = 0x14,
                                    .prefixWidth = 1,
                                    .levelAt = 0x15,
                                    .indexFlagAlways = 0};

inline constexpr Format kJet4Format{.version = Version::kJet4,
                                    .pageSize = 4096,
                                    .rowCountAt = 12,
                                    .rowDirectoryAt = 14,
                                    .largestRow = 4060,
                                    .countWidth = 2,
                                    .tdefHeaderSize = 63,
                                    .indexStatisticsSize = 12,
                                    .columnBlockSize = 25,
                                    .realIndexBlockSize = 52,
                                    .logicalIndexBlockSize = 28,
                                    .nameLengthWidth = 2,
                                    .bytesPerCharacter = 2,
                                    .initialMapRow = 69,
                                    .longValueInRow = 64,
                                    .longValueOnePage = 4076,
                                    .longValueChunk = 4072,
                                    .entryBitmapAt = 0x1B,
                                    .entryBitmapSize = 453,
                                    .entryAreaAt = 0x1E0,
                                    .entryCapacity = 3616,
                                    .previousPageAt = 0x0C,
                                    .nextPageAt = 0x10,
                                    .tailPageAt = 0x14,
                                    .prefixAt = 0x18,
                                    .prefixWidth = 2,
                                    .levelAt = 0x1A,
                                    .indexFlagAlways = 0x80};

}  // namespace jet
