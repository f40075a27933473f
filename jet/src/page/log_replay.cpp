#include "page/log_replay.h"

#include <algorithm>

#include "jet/error.h"
#include "page/bytes.h"
#include "page/header.h"

namespace jet {

LogReplay::LogReplay(File& dataFile, const Format& format, Bytes headerPage)
    : dataFile_(dataFile),
      format_(format),
      commitCounter_(ReadCommitCounter(headerPage, format)),
      otherCounters_(OtherCounters(headerPage, format)),
      dataSize_(dataFile.Size()) {}

LogReplay::Finding LogReplay::Read(File& log) {
    log_ = &log;
    LogReader reader(log);
    if (reader.IsUnknown()) return Finding::kForeign;
    if (!reader.HasHeader()) {
        discardedBytes_ = log.Size();
        return Finding::kNothing;
    }
    header_ = reader.Header();
    if (header_.version > kLogVersion) {
        throw Error(ErrorKind::kUnsupportedVersion,
                    "The last changes of the file are in a log beside it that a later version of "
                    "this program has written.");
    }
    FindCommittedEnd(reader);
    pageCount_ = header_.pageCount;
    position_.lastCounter = header_.commitCounter;
    counterFits_ = header_.commitCounter == commitCounter_;
    const bool othersFit = header_.version == 0 || header_.otherCounters == otherCounters_;
    if (header_.pageSize != format_.pageSize ||
        std::uint64_t{header_.pageCount} * format_.pageSize > dataSize_) {
        return Finding::kForeign;
    }
    while (reader.End() < committedEnd_ && reader.Next()) {
        if (!Apply(reader)) return Finding::kForeign;
    }
    position_.end = reader.End();
    position_.checksum = reader.LastChecksum();
    if (position_.operations == 0) return Finding::kNothing;
    return othersFit && Belongs() ? Finding::kPending : Finding::kForeign;
}

// Parts count only when a commit follows them.
void LogReplay::FindCommittedEnd(LogReader reader) {
    committedEnd_ = reader.End();
    while (reader.Next()) {
        if (reader.Kind() != LogRecordKind::kPart) committedEnd_ = reader.End();
    }
    discardedBytes_ = log_->Size() - committedEnd_;
}

// False when a record, though whole, makes no sense.
bool LogReplay::Apply(const LogReader& reader) {
    switch (reader.Kind()) {
        case LogRecordKind::kCheckpoint:
            position_.lastCounter = static_cast<std::uint16_t>(reader.Value());
            counterFits_ = counterFits_ || position_.lastCounter == commitCounter_;
            return true;
        case LogRecordKind::kCommit:
            ++position_.operations;
            return ApplyPages(reader);
        case LogRecordKind::kPart:
        case LogRecordKind::kMoved:
            return ApplyPages(reader);
    }
    return false;
}

bool LogReplay::ApplyPages(const LogReader& reader) {
    if (reader.Value() < pageCount_ || reader.Value() > LargestPageCount(format_)) return false;
    pageCount_ = reader.Value();
    const Bytes entries = reader.Entries();
    Bytes rest = entries;
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
            const std::uint64_t at = reader.EntriesAt() + (entries.size() - rest.size());
            const Bytes bytes = take(ReadU16(place, 2));
            if (bytes.size() < ReadU16(place, 2) ||
                !ApplyRange(*page, ReadU16(place, 0), bytes, at)) {
                return false;
            }
        }
    }
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
    if (page.value == 0) {
        // The counter on the header page is no content; it is judged by itself.
        const std::size_t counter = CommitCounterOffset(format_);
        logged.known[counter] = logged.known[counter + 1] = 1;
    }
    const std::vector<std::byte> zeros(fresh ? logged.inFile.size() : 0);
    Explain(logged, 0, fresh ? Bytes(zeros) : image);
    if (position_.logged.size() <= page.value) position_.logged.resize(page.value + 1);
    position_.logged[page.value] = true;
    return &logged;
}

// Notes which bytes of the page in the file are these.
void LogReplay::Explain(LoggedPage& page, std::size_t offset, Bytes bytes) {
    const std::size_t end = std::min(offset + bytes.size(), page.inFile.size());
    for (std::size_t i = offset; i < end; ++i) {
        if (page.inFile[i] == bytes[i - offset]) page.known[i] = 1;
    }
    if (std::find(page.known.begin(), page.known.end(), 0) == page.known.end()) {
        page.inFile = {};
        page.known = {};
    }
}

bool LogReplay::ApplyRange(LoggedPage& page, std::size_t offset, Bytes bytes, std::uint64_t place) {
    if (offset + bytes.size() > format_.pageSize) return false;
    Explain(page, offset, bytes);
    if (bytes.size() == format_.pageSize) {
        page.place = place;
        page.image = {};
        return true;
    }
    if (page.place != 0) {
        page.image.resize(format_.pageSize);
        log_->Read(page.place, page.image);
        page.place = 0;
    }
    page.image.resize(format_.pageSize);
    std::copy(bytes.begin(), bytes.end(), page.image.begin() + static_cast<std::ptrdiff_t>(offset));
    return true;
}

bool LogReplay::Belongs() const {
    if (!counterFits_ || dataSize_ > std::uint64_t{pageCount_} * format_.pageSize) return false;
    return std::all_of(pages_.begin(), pages_.end(),
                       [](const auto& entry) { return entry.second.known.empty(); });
}

void LogReplay::CopyPage(const LoggedPage& page, MutableBytes into) const {
    if (page.place != 0) {
        log_->Read(page.place, into);
    } else if (page.image.empty()) {
        std::fill(into.begin(), into.end(), std::byte{0});
    } else {
        std::copy(page.image.begin(), page.image.end(), into.begin());
    }
}

bool LogReplay::IsInFile() const {
    if (dataSize_ != std::uint64_t{pageCount_} * format_.pageSize) return false;
    std::vector<std::byte> logged(format_.pageSize);
    std::vector<std::byte> inFile(format_.pageSize);
    return std::all_of(pages_.begin(), pages_.end(), [&](const auto& entry) {
        CopyPage(entry.second, logged);
        dataFile_.Read(std::uint64_t{entry.first} * format_.pageSize, inFile);
        return logged == inFile;
    });
}

}  // namespace jet
