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
//   26  2  version of this format, 2; version 1 had no records of kind 4
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
//   4   2  base: 0 the page is in the log already, 1 its former bytes follow, 2 it was new and zero
//   6   2  number of ranges
//   8      base 1: the page as it was
//          each range: u16 offset, u16 length, the new bytes
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

#include "page/types.h"

namespace jet {

inline constexpr std::size_t kLogHeaderSize = 64;
inline constexpr std::size_t kLogRecordHead = 24;
inline constexpr std::size_t kLogChecksumSize = 8;
inline constexpr std::size_t kLogEntryHead = 8;
inline constexpr std::uint32_t kLargestLogRecord = 1U << 30;
inline constexpr std::uint16_t kLogVersion = 2;

enum class LogRecordKind : std::uint32_t { kCommit = 1, kCheckpoint = 2, kPart = 3, kMoved = 4 };
enum class LogBase : std::uint16_t { kInLog = 0, kImage = 1, kZero = 2 };

struct LogHeader {
    std::uint32_t pageSize = 0;
    std::uint32_t pageCount = 0;
    std::uint64_t salt = 0;
    std::uint16_t commitCounter = 0;
    std::uint16_t version = kLogVersion;
    std::uint64_t otherCounters = 0;
};

// Writes the 64 bytes at the end of `out` and gives their checksum, the seed of the first record.
std::uint64_t AppendLogHeader(std::vector<std::byte>& out, const LogHeader& header);

struct CheckedLogHeader {
    LogHeader header;
    std::uint64_t checksum = 0;
};
// Nothing when the bytes are no whole header of a log.
std::optional<CheckedLogHeader> ParseLogHeader(Bytes bytes);

struct PageChange {
    PageNumber page;
    bool fresh = false;  // made by this operation, `before` is all zeros
    Bytes before;
    Bytes after;
    std::size_t firstDifference = 0;  // from FirstDifference; the page's size where there is none
};

// The first place from `from` on where two pages differ, or their size.
std::size_t FirstDifference(Bytes a, Bytes b, std::size_t from);

// Builds one record at the end of `out`, which is reused from record to record.
class LogRecordWriter {
public:
    LogRecordWriter(std::vector<std::byte>& out, LogRecordKind kind, std::uint64_t operation,
                    std::uint32_t value);
    void AddPage(const PageChange& change, LogBase base);
    // Adds all bytes of the page as it is now, and gives their place in `out`.
    std::size_t AddWholePage(const PageChange& change, LogBase base);
    // Completes the record and gives its checksum. kRecordTooLarge.
    std::uint64_t Finish(std::uint64_t seed);

private:
    // The entry's head, to be completed by EndEntry, and the former bytes.
    std::size_t StartEntry(const PageChange& change, LogBase base);
    void EndEntry(std::size_t head, const PageChange& change, LogBase base, std::uint16_t ranges);
    void AddRange(const PageChange& change, std::size_t begin, std::size_t end);

    std::vector<std::byte>& out_;
    std::size_t start_;
    std::uint32_t entries_ = 0;
};

}  // namespace jet
