// The log file: what its bytes mean.
//
// A log belongs to one state of one data file, the one that it began with, and holds what has been
// done to it since. It is a header and any number of records, each record good only after the one
// before it: its checksum is seeded with theirs.
//
//   header                            64 bytes
//   0   8  "JetLog1" and a zero byte
//   8   4  page size
//   12  4  pages of the data file when the log began
//   16  8  salt, another one for each log
//   24  2  the data file's commit counter when the log began
//   26  2  version of this format, 4; version 3 had no entries of base 6, version 2 none of bases
//          3 to 5, version 1 no records of kind 4 either
//   28  8  the other counters of page 0, as one number
//   36  20 zeros
//   56  8  checksum of the 56 bytes before
//
//   record
//   0   4  length of the whole record
//   4   4  kind: 1 a commit, 2 a checkpoint, 3 a part of the transaction that the next commit ends,
//          4 whole pages as they are by then, which leave the memory
//   8   8  number of the transaction in this log, from 1 (checkpoint: of the last one)
//   16  4  pages of the data file after it; checkpoint: commit counter
//   20  4  number of page entries
//   24     page entries
//   end 8  checksum of everything before, seeded with the checksum before
//
//   page entry
//   0   4  page
//   4   2  base, see below
//   6   2  number of ranges
//   8      bases 1, 3, 5: what the base brings along
//          each range: u16 offset, u16 length, bases 3 and 4: the former bytes, the new bytes
//
//   base   says of the page             brings along
//   0      is in the log, all of it     -
//   1      is not, or by changes only   the page as it was before this entry
//   2      was new and zero             -
//   3      is not in the log yet        the checksum of the page as it was
//   4      is in the log by changes     -
//   5      is not in the log yet        checksums of its 512-byte pieces; one range, the whole page
//   6      is in the log, all of it,    u16 to, u16 from, u16 length
//          and so many bytes move
//          before the ranges
//
// What is logged of a page when it changes for the first time serves two ends. It tells this data
// file from any other: each byte of the page has to be there, as the log began with or as it left
// it. And it mends a page of which only a part was written when the power failed: such a page is a
// mixture of pieces of 512 bytes, each as before or as after. Neither takes the whole former page.
// - Small changes: bytes outside the ranges are the same before and after, so no mixture differs
//   there, and writing the ranges once more mends the page. With the former bytes put back into the
//   ranges the page must have the checksum that it had.
// - A page that changed by much is there anew as a whole, which mends it whatever the mixture is.
//   Each piece must have its former checksum or else be made of bytes that the log put there. The
//   end of a process can cut one write at any byte: while a checkpoint goes on, one piece of all
//   may begin with bytes of the log and end with former ones, which no checksum tells.
//
// A transaction is one commit record, written by one write. One that outgrows the memory that it
// may take writes whole pages in parts before it; parts that no commit follows count for nothing.
//
// A checkpoint record says: from here on everything above may be in the data file, and once all of
// it is, the file's commit counter has this value.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "page/log_buffer.h"
#include "page/types.h"

namespace jet {

inline constexpr std::size_t kLogHeaderSize = 64;
inline constexpr std::size_t kLogRecordHead = 24;
inline constexpr std::size_t kLogChecksumSize = 8;
inline constexpr std::size_t kLogEntryHead = 8;
inline constexpr std::uint32_t kLargestLogRecord = 1U << 30;
inline constexpr std::uint16_t kLogVersion = 4;
inline constexpr std::size_t kLogPiece = 512;
inline constexpr std::size_t kLogMoveSize = 6;

enum class LogRecordKind : std::uint32_t { kCommit = 1, kCheckpoint = 2, kPart = 3, kMoved = 4 };
enum class LogBase : std::uint16_t {
    kInLog = 0,
    kImage = 1,
    kZero = 2,
    kSum = 3,
    kInLogByChanges = 4,
    kPieces = 5,
    kMovedInLog = 6,
};
// What the log says of a page so far.
enum class LoggedAs : std::uint8_t { kNothing, kChanges, kWhole };
// After an entry with this base.
LoggedAs LoggedAfter(LogBase base);
// The size of what the base brings along.
std::size_t SizeOfBase(LogBase base, std::size_t pageSize);
// Whether ranges hold the former bytes too.
inline bool HasFormerBytes(LogBase base) {
    return base == LogBase::kSum || base == LogBase::kInLogByChanges;
}

struct LogHeader {
    std::uint32_t pageSize = 0;
    std::uint32_t pageCount = 0;
    std::uint64_t salt = 0;
    std::uint16_t commitCounter = 0;
    std::uint16_t version = kLogVersion;
    std::uint64_t otherCounters = 0;
};

// Writes the 64 bytes at the end of `out` and gives their checksum, the seed of the first record.
std::uint64_t AppendLogHeader(LogBuffer& out, const LogHeader& header);

struct CheckedLogHeader {
    LogHeader header;
    std::uint64_t checksum = 0;
};
// Whether the bytes begin a log of a later version.
bool IsLaterLog(Bytes bytes);
// Nothing when the bytes are no whole header of a log.
std::optional<CheckedLogHeader> ParseLogHeader(Bytes bytes);

struct PageChange {
    PageNumber page;
    bool fresh = false;  // made by this operation, `before` is all zeros
    Bytes before;        // counts from `from` on, before `end`: all else is as in `after`
    Bytes after;
    std::size_t from = 0;  // where they differ first; `end` where they are the same
    std::size_t end = 0;
};

struct LogRange {
    std::uint16_t begin = 0;
    std::uint16_t end = 0;  // past the last byte
};
// Bytes that lie elsewhere on the page than before.
struct LogMove {
    std::uint16_t to = 0;
    std::uint16_t from = 0;
    std::uint16_t length = 0;
};
// The base that takes the least room for these ranges.
LogBase BaseFor(const PageChange& change, LoggedAs state, const std::vector<LogRange>& ranges);
// The same for an entry with all bytes of the page.
LogBase BaseForWhole(const PageChange& change, LoggedAs state);

// Builds one record in `out`, which holds nothing else but the log's header. The new bytes of pages
// must not change before the record is written.
class LogRecordWriter {
public:
    LogRecordWriter(LogBuffer& out, LogRecordKind kind, std::uint64_t operation,
                    std::uint32_t value);
    void AddPage(const PageChange& change, LogBase base, const std::vector<LogRange>& ranges);
    // Of a page that is in the log, all of it: what else is new than the bytes that moved.
    void AddMovedPage(const PageChange& change, LogMove move, const std::vector<LogRange>& ranges);
    // Adds all bytes of the page as it is now, and gives their place in `out`.
    std::size_t AddWholePage(const PageChange& change, LogBase base);
    // Completes the record and gives its checksum. kRecordTooLarge.
    std::uint64_t Finish(std::uint64_t seed);

private:
    void StartEntry(const PageChange& change, LogBase base, std::size_t ranges);
    void AddRange(const PageChange& change, LogBase base, LogRange range);

    LogBuffer& out_;
    std::size_t start_;
    std::uint32_t entries_ = 0;
};

}  // namespace jet
