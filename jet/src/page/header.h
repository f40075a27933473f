// Page 0: what kind of file this is.
//
//   +--------------------+ 0x00  00 01 00 00
//   | signature, version | 0x04  "Standard Jet DB" and a zero byte; 0x14: 0 is Jet 3, 1 is Jet 4
//   +--------------------+ 0x18
//   | masked part        |       126 bytes (Jet 3) or 128 (Jet 4), XOR-ed with a constant
//   +--------------------+ 0x98  constants, then zeros
//   | counters           | 0x600 (Jet 3) / 0xE00 (Jet 4): 256 numbers of 2 bytes, to the page's end
//   +--------------------+
//
// Offset (unmasked)  Size       Meaning
// 18                 4          row pointer of the global map of free pages: page 1, row 0
// 1C                 4          row pointer of a second global map: page 1, row 1
// 20 24 28 2C        4 each     definitions of MSysObjects, MSysACEs, MSysQueries,
//                               MSysRelationships
// 3A / 6E            2          language of the sort order
// 3C                 2          code page
// 3E                 4          key of the page cipher, 0 for none
// 42                 20 / 40    password; in Jet 4 XOR-ed with the creation day once more
// 56 / 6A            4          build of the engine that made the file
// 72                 8          Jet 4: creation date
//
// The first counter belongs to whoever has the file exclusively and is raised whenever changes have
// been written to the file, so it distinguishes one state of a file from the next.
#pragma once

#include <cstdint>

#include "page/format.h"
#include "page/types.h"

namespace jet {

struct FileHeader {
    Version version = Version::kJet4;
    RowId freePages;
    RowId secondMap;
    PageNumber objects;
    PageNumber accessControl;
    PageNumber queries;
    PageNumber relationships;
    std::uint16_t sortVersion = 0;  // repeated in every column block
    std::uint16_t language = 0;
    std::uint16_t codePage = 0;
    double creationDate = 0;  // Jet 4
};

// What the first bytes of a file must say.
inline constexpr std::uint32_t kHeaderPrefix = 0x18 + 128;
inline constexpr std::uint32_t kSmallestPageCount = 6;

const Format& FormatOf(Version version);
// Pages that the format's size limit allows.
std::uint32_t LargestPageCount(const Format& format);

// Reads page 0, or its first kHeaderPrefix bytes. Errors: kNotADatabase, kUnsupportedVersion,
// kEncrypted.
FileHeader ReadFileHeader(Bytes page);
// Page 0 of a new file; `page` is zeroed.
void WriteFileHeader(MutableBytes page, Version version);
// Page 1 of a new file, the two global maps with pages 0 and 1 in use; `page` is zeroed.
void WriteGlobalMapsPage(MutableBytes page, const Format& format);

// The first counter.
std::uint16_t ReadCommitCounter(Bytes page, const Format& format);
void WriteCommitCounter(MutableBytes page, const Format& format, std::uint16_t value);
std::uint16_t NextCommitCounter(std::uint16_t value);
// All other counters as one number. They belong to programs that share the file, and are raised
// when one of them commits.
std::uint64_t OtherCounters(Bytes page, const Format& format);
std::uint32_t CommitCounterOffset(const Format& format);

}  // namespace jet
