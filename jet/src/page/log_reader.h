// Reads a log record by record, up to the first one that is not whole.
#pragma once

#include <cstdint>
#include <vector>

#include "jet/file.h"
#include "page/log_format.h"

namespace jet {

class LogReader {
public:
    // Errors of reading are rethrown: a log that cannot be read is not an empty one.
    explicit LogReader(File& log);

    // Something lies there that is not the beginning of a log, torn or whole.
    [[nodiscard]] bool IsUnknown() const { return unknown_; }
    // The beginning of a log of a later version, of which nothing else can be told: its checksums
    // may be others.
    [[nodiscard]] bool IsLater() const { return later_; }
    [[nodiscard]] bool HasHeader() const { return hasHeader_; }
    [[nodiscard]] const LogHeader& Header() const { return header_; }

    // Steps to the next record; false at the end of the good part.
    bool Next();
    [[nodiscard]] LogRecordKind Kind() const;
    [[nodiscard]] std::uint32_t Value() const;  // pages after the commit, or the counter
    [[nodiscard]] std::uint32_t EntryCount() const;
    [[nodiscard]] Bytes Entries() const;
    // Where in the log they begin.
    [[nodiscard]] std::uint64_t EntriesAt() const { return end_ - record_.size() + kLogRecordHead; }

    // The good part so far.
    [[nodiscard]] std::uint64_t End() const { return end_; }
    [[nodiscard]] std::uint64_t LastChecksum() const { return checksum_; }

private:
    File& log_;
    std::uint64_t size_ = 0;
    bool unknown_ = false;
    bool later_ = false;
    bool hasHeader_ = false;
    LogHeader header_;
    std::uint64_t end_ = 0;
    std::uint64_t checksum_ = 0;
    std::vector<std::byte> record_;
};

}  // namespace jet
