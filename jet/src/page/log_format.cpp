#include "page/log_format.h"

#include <algorithm>
#include <cstring>

#include "jet/error.h"
#include "page/bytes.h"
#include "page/checksum.h"

namespace jet {

namespace {

constexpr char kMagic[8] = "JetLog1";

MutableBytes Extend(std::vector<std::byte>& out, std::size_t size) {
    out.resize(out.size() + size);
    return MutableBytes(out).last(size);
}

std::uint64_t Word(Bytes bytes, std::size_t at) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes.data() + at, sizeof word);
    return word;
}

// The end of the difference that begins at `from`: where many equal bytes lie in a row. Entries
// that moved differ in a byte here and there; one long range takes less time than many short ones,
// to write and to recover, and not much more room.
std::size_t DifferenceEnd(Bytes a, Bytes b, std::size_t from) {
    constexpr std::size_t kGap = 64;
    std::size_t end = from + 1;
    while (end + kGap <= a.size() && std::memcmp(a.data() + end, b.data() + end, kGap) != 0) {
        end += kGap;
    }
    if (end + kGap > a.size()) end = a.size();
    while (end - from > sizeof(std::uint64_t) &&
           Word(a, end - sizeof(std::uint64_t)) == Word(b, end - sizeof(std::uint64_t))) {
        end -= sizeof(std::uint64_t);
    }
    while (a[end - 1] == b[end - 1]) --end;
    return end;
}

}  // namespace

std::size_t FirstDifference(Bytes a, Bytes b, std::size_t from) {
    // Most of a page is as it was: it is passed over in blocks, then in words.
    constexpr std::size_t kBlock = 256;
    const std::size_t size = a.size();
    while (from + kBlock <= size && std::memcmp(a.data() + from, b.data() + from, kBlock) == 0) {
        from += kBlock;
    }
    while (from + sizeof(std::uint64_t) <= size && Word(a, from) == Word(b, from)) {
        from += sizeof(std::uint64_t);
    }
    while (from < size && a[from] == b[from]) ++from;
    return from;
}

std::uint64_t AppendLogHeader(std::vector<std::byte>& out, const LogHeader& header) {
    const MutableBytes bytes = Extend(out, kLogHeaderSize);
    std::fill(bytes.begin(), bytes.end(), std::byte{0});
    std::memcpy(bytes.data(), kMagic, sizeof kMagic);
    WriteU32(bytes, 8, header.pageSize);
    WriteU32(bytes, 12, header.pageCount);
    WriteU64(bytes, 16, header.salt);
    WriteU16(bytes, 24, header.commitCounter);
    WriteU16(bytes, 26, header.version);
    WriteU64(bytes, 28, header.otherCounters);
    const std::uint64_t checksum = Checksum(bytes.first(kLogHeaderSize - kLogChecksumSize), 0);
    WriteU64(bytes, kLogHeaderSize - kLogChecksumSize, checksum);
    return checksum;
}

std::optional<CheckedLogHeader> ParseLogHeader(Bytes bytes) {
    if (bytes.size() < kLogHeaderSize || std::memcmp(bytes.data(), kMagic, sizeof kMagic) != 0) {
        return std::nullopt;
    }
    CheckedLogHeader result;
    result.checksum = ReadU64(bytes, kLogHeaderSize - kLogChecksumSize);
    if (result.checksum != Checksum(bytes.first(kLogHeaderSize - kLogChecksumSize), 0)) {
        return std::nullopt;
    }
    result.header = {.pageSize = ReadU32(bytes, 8),
                     .pageCount = ReadU32(bytes, 12),
                     .salt = ReadU64(bytes, 16),
                     .commitCounter = ReadU16(bytes, 24),
                     .version = ReadU16(bytes, 26),
                     .otherCounters = ReadU64(bytes, 28)};
    return result;
}

LogRecordWriter::LogRecordWriter(std::vector<std::byte>& out, LogRecordKind kind,
                                 std::uint64_t operation, std::uint32_t value)
    : out_(out), start_(out.size()) {
    const MutableBytes head = Extend(out_, kLogRecordHead);
    WriteU32(head, 4, static_cast<std::uint32_t>(kind));
    WriteU64(head, 8, operation);
    WriteU32(head, 16, value);
}

std::size_t LogRecordWriter::StartEntry(const PageChange& change, LogBase base) {
    const std::size_t head = out_.size();
    Extend(out_, kLogEntryHead);
    if (base == LogBase::kImage) {
        out_.insert(out_.end(), change.before.begin(), change.before.end());
    }
    return head;
}

void LogRecordWriter::EndEntry(std::size_t head, const PageChange& change, LogBase base,
                               std::uint16_t ranges) {
    const MutableBytes entry = MutableBytes(out_).subspan(head, kLogEntryHead);
    WriteU32(entry, 0, change.page.value);
    WriteU16(entry, 4, static_cast<std::uint16_t>(base));
    WriteU16(entry, 6, ranges);
    ++entries_;
}

void LogRecordWriter::AddPage(const PageChange& change, LogBase base) {
    const std::size_t head = StartEntry(change, base);
    std::uint16_t ranges = 0;
    std::size_t at = change.firstDifference;
    while (at < change.after.size()) {
        const std::size_t end = DifferenceEnd(change.before, change.after, at);
        AddRange(change, at, end);
        ++ranges;
        at = FirstDifference(change.before, change.after, end);
    }
    EndEntry(head, change, base, ranges);
}

std::size_t LogRecordWriter::AddWholePage(const PageChange& change, LogBase base) {
    const std::size_t head = StartEntry(change, base);
    AddRange(change, 0, change.after.size());
    EndEntry(head, change, base, 1);
    return out_.size() - change.after.size();
}

void LogRecordWriter::AddRange(const PageChange& change, std::size_t begin, std::size_t end) {
    const MutableBytes head = Extend(out_, 4);
    WriteU16(head, 0, static_cast<std::uint16_t>(begin));
    WriteU16(head, 2, static_cast<std::uint16_t>(end - begin));
    const Bytes bytes = change.after.subspan(begin, end - begin);
    out_.insert(out_.end(), bytes.begin(), bytes.end());
}

std::uint64_t LogRecordWriter::Finish(std::uint64_t seed) {
    const std::size_t length = out_.size() - start_ + kLogChecksumSize;
    if (length > kLargestLogRecord) {
        throw Error(ErrorKind::kRecordTooLarge, "The change is too large for one operation.");
    }
    const MutableBytes head = MutableBytes(out_).subspan(start_, kLogRecordHead);
    WriteU32(head, 0, static_cast<std::uint32_t>(length));
    WriteU32(head, 20, entries_);
    const std::uint64_t checksum = Checksum(Bytes(out_).subspan(start_), seed);
    WriteU64(Extend(out_, kLogChecksumSize), 0, checksum);
    return checksum;
}

}  // namespace jet
