#include "page/log_format.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "jet/error.h"
#include "page/bytes.h"
#include "page/checksum.h"

namespace jet {

namespace {

constexpr char kMagic[8] = "JetLog1";
constexpr std::size_t kVersionAt = 26;

bool BeginsLog(Bytes bytes) {
    return bytes.size() >= kLogHeaderSize && std::memcmp(bytes.data(), kMagic, sizeof kMagic) == 0;
}

// The page as it was, in pieces, from one byte to another.
std::array<Bytes, 3> FormerPieces(const PageChange& change, std::size_t begin, std::size_t past) {
    const std::size_t from = std::clamp(change.from, begin, past);
    const std::size_t end = std::clamp(change.end, from, past);
    return {change.after.subspan(begin, from - begin), change.before.subspan(from, end - from),
            change.after.subspan(end, past - end)};
}

std::uint64_t FormerChecksum(const PageChange& change, std::size_t begin, std::size_t past) {
    RunningChecksum checksum(0);
    for (const Bytes piece : FormerPieces(change, begin, past)) checksum.Add(piece);
    return checksum.Result();
}

}  // namespace

LoggedAs LoggedAfter(LogBase base) {
    return HasFormerBytes(base) ? LoggedAs::kChanges : LoggedAs::kWhole;
}

std::size_t SizeOfBase(LogBase base, std::size_t pageSize) {
    switch (base) {
        case LogBase::kImage:
            return pageSize;
        case LogBase::kSum:
            return sizeof(std::uint64_t);
        case LogBase::kMovedInLog:
            return kLogMoveSize;
        case LogBase::kPieces:
            return pageSize / kLogPiece * sizeof(std::uint64_t);
        default:
            return 0;
    }
}

// Former bytes are logged again with each later change, so they have to be few.
LogBase BaseFor(const PageChange& change, LoggedAs state, const std::vector<LogRange>& ranges) {
    std::size_t changed = 0;
    for (const LogRange range : ranges) changed += range.end - range.begin;
    if (state == LoggedAs::kWhole || change.fresh || change.page.value == 0 ||
        changed > change.after.size() / 4) {
        return BaseForWhole(change, state);
    }
    return state == LoggedAs::kNothing ? LogBase::kSum : LogBase::kInLogByChanges;
}

// The commit counter of page 0 is judged by itself, which a checksum over it would not allow.
LogBase BaseForWhole(const PageChange& change, LoggedAs state) {
    if (change.fresh) return LogBase::kZero;
    if (state == LoggedAs::kWhole) return LogBase::kInLog;
    if (state == LoggedAs::kChanges || change.page.value == 0) return LogBase::kImage;
    return LogBase::kPieces;
}

std::uint64_t AppendLogHeader(LogBuffer& out, const LogHeader& header) {
    const MutableBytes bytes = out.Extend(kLogHeaderSize);
    std::memcpy(bytes.data(), kMagic, sizeof kMagic);
    WriteU32(bytes, 8, header.pageSize);
    WriteU32(bytes, 12, header.pageCount);
    WriteU64(bytes, 16, header.salt);
    WriteU16(bytes, 24, header.commitCounter);
    WriteU16(bytes, kVersionAt, header.version);
    WriteU64(bytes, 28, header.otherCounters);
    const std::uint64_t checksum = Checksum(bytes.first(kLogHeaderSize - kLogChecksumSize), 0);
    WriteU64(bytes, kLogHeaderSize - kLogChecksumSize, checksum);
    return checksum;
}

bool IsLaterLog(Bytes bytes) {
    return BeginsLog(bytes) && ReadU16(bytes, kVersionAt) > kLogVersion;
}

std::optional<CheckedLogHeader> ParseLogHeader(Bytes bytes) {
    if (!BeginsLog(bytes)) return std::nullopt;
    CheckedLogHeader result;
    result.checksum = ReadU64(bytes, kLogHeaderSize - kLogChecksumSize);
    if (result.checksum != Checksum(bytes.first(kLogHeaderSize - kLogChecksumSize), 0)) {
        return std::nullopt;
    }
    result.header = {.pageSize = ReadU32(bytes, 8),
                     .pageCount = ReadU32(bytes, 12),
                     .salt = ReadU64(bytes, 16),
                     .commitCounter = ReadU16(bytes, 24),
                     .version = ReadU16(bytes, kVersionAt),
                     .otherCounters = ReadU64(bytes, 28)};
    return result;
}

LogRecordWriter::LogRecordWriter(LogBuffer& out, LogRecordKind kind, std::uint64_t operation,
                                 std::uint32_t value)
    : out_(out), start_(out.Size()) {
    const MutableBytes head = out_.Extend(kLogRecordHead);
    WriteU32(head, 4, static_cast<std::uint32_t>(kind));
    WriteU64(head, 8, operation);
    WriteU32(head, 16, value);
}

void LogRecordWriter::StartEntry(const PageChange& change, LogBase base, std::size_t ranges) {
    const MutableBytes head = out_.Extend(kLogEntryHead);
    WriteU32(head, 0, change.page.value);
    WriteU16(head, 4, static_cast<std::uint16_t>(base));
    WriteU16(head, 6, static_cast<std::uint16_t>(ranges));
    ++entries_;
    const std::size_t size = change.after.size();
    if (base == LogBase::kImage) {
        for (const Bytes piece : FormerPieces(change, 0, size)) out_.PutCopy(piece);
    }
    if (base == LogBase::kSum) WriteU64(out_.Extend(8), 0, FormerChecksum(change, 0, size));
    if (base == LogBase::kPieces) {
        for (std::size_t at = 0; at < size; at += kLogPiece) {
            WriteU64(out_.Extend(8), 0, FormerChecksum(change, at, at + kLogPiece));
        }
    }
}

void LogRecordWriter::AddMovedPage(const PageChange& change, LogMove move,
                                   const std::vector<LogRange>& ranges) {
    StartEntry(change, LogBase::kMovedInLog, ranges.size());
    const MutableBytes moved = out_.Extend(kLogMoveSize);
    WriteU16(moved, 0, move.to);
    WriteU16(moved, 2, move.from);
    WriteU16(moved, 4, move.length);
    for (const LogRange range : ranges) AddRange(change, LogBase::kMovedInLog, range);
}

void LogRecordWriter::AddPage(const PageChange& change, LogBase base,
                              const std::vector<LogRange>& ranges) {
    if (base == LogBase::kPieces) {
        AddWholePage(change, base);
        return;
    }
    StartEntry(change, base, ranges.size());
    for (const LogRange range : ranges) AddRange(change, base, range);
}

std::size_t LogRecordWriter::AddWholePage(const PageChange& change, LogBase base) {
    StartEntry(change, base, 1);
    AddRange(change, base, {0, static_cast<std::uint16_t>(change.after.size())});
    return out_.Size() - change.after.size();
}

void LogRecordWriter::AddRange(const PageChange& change, LogBase base, LogRange range) {
    const std::size_t length = range.end - range.begin;
    const MutableBytes head = out_.Extend(4);
    WriteU16(head, 0, range.begin);
    WriteU16(head, 2, static_cast<std::uint16_t>(length));
    if (HasFormerBytes(base)) out_.PutCopy(change.before.subspan(range.begin, length));
    out_.Put(change.after.subspan(range.begin, length));
}

std::uint64_t LogRecordWriter::Finish(std::uint64_t seed) {
    const std::size_t length = out_.Size() - start_ + kLogChecksumSize;
    if (length > kLargestLogRecord) {
        throw Error(ErrorKind::kRecordTooLarge, "The change is too large for one operation.");
    }
    const MutableBytes head = out_.At(start_, kLogRecordHead);
    WriteU32(head, 0, static_cast<std::uint32_t>(length));
    WriteU32(head, 20, entries_);
    const std::uint64_t checksum = out_.ChecksumFrom(start_, seed);
    WriteU64(out_.Extend(kLogChecksumSize), 0, checksum);
    return checksum;
}

}  // namespace jet
