#include "page/log_replay.h"

#include <algorithm>

#include "page/bytes.h"
#include "page/header.h"

namespace jet {

LogReplay::LogReplay(File& dataFile, const Format& format, std::uint16_t commitCounter)
    : dataFile_(dataFile),
      format_(format),
      commitCounter_(commitCounter),
      dataSize_(dataFile.Size()) {}

LogReplay::Finding LogReplay::Read(File& log) {
    LogReader reader(log);
    if (reader.IsUnknown()) return Finding::kForeign;
    if (!reader.HasHeader()) return Finding::kNothing;
    header_ = reader.Header();
    pageCount_ = header_.pageCount;
    position_.lastCounter = header_.commitCounter;
    counterFits_ = header_.commitCounter == commitCounter_;
    if (header_.pageSize != format_.pageSize ||
        std::uint64_t{header_.pageCount} * format_.pageSize > dataSize_) {
        return Finding::kForeign;
    }
    while (reader.Next()) {
        if (!Apply(reader)) return Finding::kForeign;
    }
    position_.end = reader.End();
    position_.checksum = reader.LastChecksum();
    if (position_.operations == 0) return Finding::kNothing;
    return Belongs() ? Finding::kPending : Finding::kForeign;
}

// False when a record, though whole, makes no sense.
bool LogReplay::Apply(const LogReader& reader) {
    if (reader.Kind() == LogRecordKind::kMark) {
        position_.lastCounter = static_cast<std::uint16_t>(reader.Value());
        counterFits_ = counterFits_ || position_.lastCounter == commitCounter_;
        return true;
    }
    return reader.Kind() == LogRecordKind::kOperation && ApplyOperation(reader);
}

bool LogReplay::ApplyOperation(const LogReader& reader) {
    if (reader.Value() < pageCount_ || reader.Value() > LargestPageCount(format_)) return false;
    pageCount_ = reader.Value();
    Bytes rest = reader.Entries();
    const auto take = [&rest](std::size_t size) {
        const Bytes taken = rest.first(std::min(size, rest.size()));
        rest = rest.subspan(taken.size());
        return taken;
    };
    for (std::uint32_t entry = 0; entry < reader.EntryCount(); ++entry) {
        const Bytes head = take(kLogEntryHead);
        if (head.size() < kLogEntryHead) return false;
        const auto base = static_cast<LogBase>(ReadU16(head, 4));
        const Bytes image = take(base == LogBase::kImage ? format_.pageSize : 0);
        LoggedPage* page = StartPage(PageNumber{ReadU32(head, 0)}, base, image);
        if (page == nullptr) return false;
        for (std::uint32_t range = ReadU16(head, 6); range > 0; --range) {
            const Bytes place = take(4);
            if (place.size() < 4) return false;
            const Bytes bytes = take(ReadU16(place, 2));
            if (bytes.size() < ReadU16(place, 2) ||
                !ApplyRange(*page, format_.pageSize, ReadU16(place, 0), bytes)) {
                return false;
            }
        }
    }
    ++position_.operations;
    return rest.empty();
}

// The page that an entry is about; null when the entry contradicts the log before it.
LogReplay::LoggedPage* LogReplay::StartPage(PageNumber page, LogBase base, Bytes image) {
    if (page.value >= pageCount_) return nullptr;
    const auto found = pages_.find(page.value);
    if (base == LogBase::kInLog) return found == pages_.end() ? nullptr : &found->second;
    const bool fresh = page.value >= header_.pageCount;
    const std::size_t imageSize = fresh ? 0 : format_.pageSize;
    if (found != pages_.end() || base != (fresh ? LogBase::kZero : LogBase::kImage) ||
        image.size() != imageSize) {
        return nullptr;
    }
    LoggedPage& logged = pages_[page.value];
    logged.image.assign(image.begin(), image.end());
    const std::uint64_t offset = std::uint64_t{page.value} * format_.pageSize;
    const std::uint64_t there = dataSize_ > offset ? dataSize_ - offset : 0;
    logged.inFile.resize(
        static_cast<std::size_t>(std::min<std::uint64_t>(there, format_.pageSize)));
    if (there > 0) dataFile_.Read(offset, logged.inFile);
    logged.known.resize(logged.inFile.size());
    for (std::size_t i = 0; i < logged.inFile.size(); ++i) {
        const std::byte before = fresh ? std::byte{0} : image[i];
        // The counter on the header page is no content; it is judged by itself.
        const bool counter = page.value == 0 && i / 2 == CommitCounterOffset(format_) / 2;
        logged.known[i] = logged.inFile[i] == before || counter ? 1 : 0;
    }
    if (position_.logged.size() <= page.value) position_.logged.resize(page.value + 1);
    position_.logged[page.value] = true;
    return &logged;
}

bool LogReplay::ApplyRange(LoggedPage& page, std::size_t pageSize, std::size_t offset,
                           Bytes bytes) {
    if (offset + bytes.size() > pageSize) return false;
    page.image.resize(pageSize);
    std::copy(bytes.begin(), bytes.end(), page.image.begin() + static_cast<std::ptrdiff_t>(offset));
    const std::size_t end = std::min(offset + bytes.size(), page.inFile.size());
    for (std::size_t i = offset; i < end; ++i) {
        if (page.inFile[i] == bytes[i - offset]) page.known[i] = 1;
    }
    return true;
}

bool LogReplay::Belongs() const {
    if (!counterFits_ || dataSize_ > std::uint64_t{pageCount_} * format_.pageSize) return false;
    return std::all_of(pages_.begin(), pages_.end(), [](const auto& entry) {
        const auto& known = entry.second.known;
        return std::find(known.begin(), known.end(), 0) == known.end();
    });
}

bool LogReplay::IsInFile() const {
    if (dataSize_ != std::uint64_t{pageCount_} * format_.pageSize) return false;
    return std::all_of(pages_.begin(), pages_.end(), [](const auto& entry) {
        const LoggedPage& page = entry.second;
        if (page.image.empty()) {
            return std::all_of(page.inFile.begin(), page.inFile.end(),
                               [](std::byte b) { return b == std::byte{0}; });
        }
        return page.image == page.inFile;
    });
}

}  // namespace jet
