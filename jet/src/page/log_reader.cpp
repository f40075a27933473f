#include "page/log_reader.h"

#include <algorithm>

#include "page/bytes.h"
#include "page/checksum.h"

namespace jet {

LogReader::LogReader(File& log) : log_(log), size_(log.Size()) {
    std::vector<std::byte> head(
        static_cast<std::size_t>(std::min<std::uint64_t>(size_, kLogHeaderSize)));
    log.Read(0, head);
    later_ = IsLaterLog(head);
    if (later_) return;
    if (const auto parsed = ParseLogHeader(head)) {
        hasHeader_ = true;
        header_ = parsed->header;
        checksum_ = parsed->checksum;
        end_ = kLogHeaderSize;
        return;
    }
    // A log that was cut off while it was begun is too short, or has a hole where its beginning
    // never arrived. Anything else is somebody else's.
    const bool hole =
        std::all_of(head.begin(), head.end(), [](auto b) { return b == std::byte{0}; });
    unknown_ = head.size() == kLogHeaderSize && !hole;
}

bool LogReader::Next() {
    if (!hasHeader_ || size_ - end_ < kLogRecordHead + kLogChecksumSize) return false;
    record_.resize(kLogRecordHead);
    log_.Read(end_, record_);
    const std::uint32_t length = ReadU32(record_, 0);
    if (length < kLogRecordHead + kLogChecksumSize || length > kLargestLogRecord ||
        length > size_ - end_) {
        return false;
    }
    record_.resize(length);
    log_.Read(end_ + kLogRecordHead, MutableBytes(record_).subspan(kLogRecordHead));
    const std::size_t body = length - kLogChecksumSize;
    const std::uint64_t checksum = Checksum(Bytes(record_).first(body), checksum_);
    if (checksum != ReadU64(record_, body)) return false;
    checksum_ = checksum;
    end_ += length;
    return true;
}

LogRecordKind LogReader::Kind() const {
    return static_cast<LogRecordKind>(ReadU32(record_, 4));
}
std::uint32_t LogReader::Value() const {
    return ReadU32(record_, 16);
}
std::uint32_t LogReader::EntryCount() const {
    return ReadU32(record_, 20);
}

Bytes LogReader::Entries() const {
    return Bytes(record_).subspan(kLogRecordHead,
                                  record_.size() - kLogRecordHead - kLogChecksumSize);
}

}  // namespace jet
