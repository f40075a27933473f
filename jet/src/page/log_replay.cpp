#include "page/log_replay.h"

#include <algorithm>
#include <cstring>

#include "jet/error.h"
#include "page/bytes.h"
#include "page/checksum.h"
#include "page/header.h"

namespace jet {

namespace {

// What is known of a byte of the data file.
constexpr std::uint8_t kUnexplained = 0;
constexpr std::uint8_t kExplained = 1;
constexpr std::uint8_t kUntouched = 2;  // by any range so far

}  // namespace

LogReplay::LogReplay(File& dataFile, const Format& format, Bytes headerPage)
    : dataFile_(dataFile),
      format_(format),
      commitCounter_(ReadCommitCounter(headerPage, format)),
      otherCounters_(OtherCounters(headerPage, format)),
      dataSize_(dataFile.Size()) {}

LogReplay::Finding LogReplay::Read(File& log) {
    log_ = &log;
    LogReader reader(log);
    if (reader.IsLater()) {
        throw Error(ErrorKind::kUnsupportedVersion,
                    "The last changes of the file are in a log beside it that a later version of "
                    "this program has written.");
    }
    if (reader.IsUnknown()) return Finding::kForeign;
    if (!reader.HasHeader()) {
        discardedBytes_ = log.Size();
        return Finding::kNothing;
    }
    header_ = reader.Header();
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
            NoteCheckpoint(static_cast<std::uint16_t>(reader.Value()));
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

// A write that was cut between the two bytes of the counter leaves the lower one of the new value.
void LogReplay::NoteCheckpoint(std::uint16_t counter) {
    const auto cut =
        static_cast<std::uint16_t>((position_.lastCounter & 0xFF00U) | (counter & 0x00FFU));
    position_.lastCounter = counter;
    isInCheckpoint_ = isInCheckpoint_ || commitCounter_ == counter || commitCounter_ == cut;
    counterFits_ = counterFits_ || isInCheckpoint_;
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
        const std::size_t brings = SizeOfBase(base, format_.pageSize);
        const Bytes brought = take(brings);
        if (brought.size() < brings) return false;
        LoggedPage* page = FindPage(PageNumber{ReadU32(head, 0)}, base, brought);
        if (page == nullptr) return false;
        if (base == LogBase::kMovedInLog && !ApplyMove(*page, brought)) return false;
        for (std::uint32_t range = ReadU16(head, 6); range > 0; --range) {
            const Bytes place = take(4);
            if (place.size() < 4) return false;
            const std::size_t offset = ReadU16(place, 0);
            const std::size_t length = ReadU16(place, 2);
            if (offset + length > format_.pageSize) return false;
            if (HasFormerBytes(base)) {
                const Bytes former = take(length);
                if (former.size() < length || !ApplyFormer(*page, offset, former)) return false;
            }
            const std::uint64_t at = reader.EntriesAt() + (entries.size() - rest.size());
            const Bytes bytes = take(length);
            if (bytes.size() < length) return false;
            ApplyRange(*page, offset, bytes, at);
        }
        // Nothing else says what the page is.
        if (base == LogBase::kPieces && page->place == 0) return false;
    }
    return rest.empty();
}

// The page that an entry is about; null when the entry contradicts the log before it.
LogReplay::LoggedPage* LogReplay::FindPage(PageNumber page, LogBase base, Bytes brought) {
    if (page.value >= pageCount_) return nullptr;
    const auto found = pages_.find(page.value);
    if (found == pages_.end()) return StartPage(page, base, brought);
    LoggedAs& state = position_.logged[page.value];
    const bool byChanges = state == LoggedAs::kChanges;
    const bool isWhole = base == LogBase::kInLog || base == LogBase::kMovedInLog;
    if (isWhole) return byChanges ? nullptr : &found->second;
    if (base == LogBase::kInLogByChanges) return byChanges ? &found->second : nullptr;
    if (base != LogBase::kImage || !byChanges) return nullptr;
    state = LoggedAs::kWhole;
    return CompleteBase(found->second, brought) ? &found->second : nullptr;
}

LogReplay::LoggedPage* LogReplay::StartPage(PageNumber page, LogBase base, Bytes brought) {
    const bool fresh = page.value >= header_.pageCount;
    const bool starts =
        base == LogBase::kImage || base == LogBase::kSum || base == LogBase::kPieces;
    if (fresh ? base != LogBase::kZero : !starts) return nullptr;
    LoggedPage& logged = pages_[page.value];
    ReadFromFile(page, logged);
    if (base == LogBase::kSum) {
        StartFromSum(logged, ReadU64(brought, 0));
    } else if (base == LogBase::kPieces) {
        ExplainPieces(logged, brought);
    } else {
        logged.image.assign(brought.begin(), brought.end());
        const std::vector<std::byte> zeros(fresh ? logged.inFile.size() : 0);
        Explain(logged, 0, fresh ? Bytes(zeros) : brought);
    }
    if (position_.logged.size() <= page.value) position_.logged.resize(page.value + 1);
    position_.logged[page.value] = LoggedAfter(base);
    return &logged;
}

void LogReplay::ReadFromFile(PageNumber page, LoggedPage& logged) {
    const std::uint64_t offset = std::uint64_t{page.value} * format_.pageSize;
    const std::uint64_t there = dataSize_ > offset ? dataSize_ - offset : 0;
    logged.inFile.resize(
        static_cast<std::size_t>(std::min<std::uint64_t>(there, format_.pageSize)));
    if (there > 0) dataFile_.Read(offset, logged.inFile);
    logged.known.resize(logged.inFile.size());
    if (page.value == 0) {
        // The counter on the header page is no content; it is judged by itself.
        const std::size_t counter = CommitCounterOffset(format_);
        logged.known[counter] = logged.known[counter + 1] = kExplained;
    }
}

// Bytes outside the ranges are in the file as they were, and are to be.
void LogReplay::StartFromSum(LoggedPage& page, std::uint64_t sum) {
    page.image = page.inFile;
    if (Checksum(page.inFile, 0) == sum) {
        page.inFile = {};
        page.known = {};
        return;
    }
    page.base = page.inFile;
    page.sum = sum;
    std::fill(page.known.begin(), page.known.end(), kUntouched);
}

void LogReplay::ExplainPieces(LoggedPage& page, Bytes sums) {
    for (std::size_t at = 0; at < page.inFile.size(); at += kLogPiece) {
        if (Checksum(Bytes(page.inFile).subspan(at, kLogPiece), 0) ==
            ReadU64(sums, at / kLogPiece * sizeof(std::uint64_t))) {
            std::fill_n(page.known.begin() + static_cast<std::ptrdiff_t>(at), kLogPiece,
                        kExplained);
        } else {
            page.formerFrom = at + kLogPiece;
        }
    }
    ForgetWhenExplained(page);
}

// The page as it was before this entry, of which some ranges are known. False when it contradicts
// them.
bool LogReplay::CompleteBase(LoggedPage& page, Bytes image) {
    if (page.image.size() != image.size()) return false;
    if (page.base.empty()) return Equal(page.image, image);
    for (std::size_t i = 0; i < image.size(); ++i) {
        if (page.known[i] != kUntouched) {
            if (page.image[i] != image[i]) return false;
            continue;
        }
        page.base[i] = page.image[i] = image[i];
        page.known[i] = page.inFile[i] == image[i] ? kExplained : kUnexplained;
    }
    if (Checksum(page.base, 0) != page.sum) return false;
    page.base = {};
    ForgetWhenExplained(page);
    return true;
}

// The bytes of a range before the entry. False when the log has said something else of them.
bool LogReplay::ApplyFormer(LoggedPage& page, std::size_t offset, Bytes bytes) {
    if (offset + bytes.size() > page.image.size()) return false;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const std::size_t at = offset + i;
        if (page.base.empty() || page.known[at] != kUntouched) {
            if (page.image[at] != bytes[i]) return false;
            continue;
        }
        page.base[at] = page.image[at] = bytes[i];
        page.known[at] = page.inFile[at] == bytes[i] ? kExplained : kUnexplained;
    }
    return true;
}

// Notes which bytes of the page in the file are these.
void LogReplay::Explain(LoggedPage& page, std::size_t offset, Bytes bytes) {
    const std::size_t end = std::min(offset + bytes.size(), page.inFile.size());
    for (std::size_t i = offset; i < end; ++i) {
        if (page.inFile[i] == bytes[i - offset]) page.known[i] = kExplained;
    }
    ForgetWhenExplained(page);
}

void LogReplay::ForgetWhenExplained(LoggedPage& page) {
    if (page.base.empty() &&
        std::find(page.known.begin(), page.known.end(), kUnexplained) == page.known.end()) {
        page.inFile = {};
        page.known = {};
    }
}

void LogReplay::TakeToMemory(LoggedPage& page) {
    page.image.resize(format_.pageSize);
    if (page.place != 0) log_->Read(page.place, page.image);
    page.place = 0;
}

// False when there are no such bytes.
bool LogReplay::ApplyMove(LoggedPage& page, Bytes brought) {
    const std::size_t to = ReadU16(brought, 0);
    const std::size_t from = ReadU16(brought, 2);
    const std::size_t length = ReadU16(brought, 4);
    if (std::max(to, from) + length > format_.pageSize) return false;
    TakeToMemory(page);
    std::memmove(page.image.data() + to, page.image.data() + from, length);
    Explain(page, to, Bytes(page.image).subspan(to, length));
    return true;
}

void LogReplay::ApplyRange(LoggedPage& page, std::size_t offset, Bytes bytes, std::uint64_t place) {
    Explain(page, offset, bytes);
    if (bytes.size() == format_.pageSize) {
        page.place = place;
        page.image = {};
        return;
    }
    TakeToMemory(page);
    std::copy(bytes.begin(), bytes.end(), page.image.begin() + static_cast<std::ptrdiff_t>(offset));
}

bool LogReplay::IsExplained(const LoggedPage& page) {
    if (page.base.empty()) return page.known.empty();
    return Checksum(page.base, 0) == page.sum &&
           std::find(page.known.begin(), page.known.end(), kUnexplained) == page.known.end();
}

// Whether the page may be one that was being written when the write was cut: up to somewhere in one
// piece it is as it was to be, and behind that piece as it was.
bool LogReplay::IsCutWrite(const LoggedPage& page) {
    if (page.formerFrom == 0) return false;
    const std::size_t piece = page.formerFrom - kLogPiece;
    const auto first = std::find(page.known.begin(), page.known.end(), kUnexplained);
    return static_cast<std::size_t>(first - page.known.begin()) > piece;
}

// A write can be cut at any byte, but only one of them, and only while the file was written.
bool LogReplay::Belongs() const {
    if (!counterFits_ || dataSize_ > std::uint64_t{pageCount_} * format_.pageSize) return false;
    int cut = 0;
    for (const auto& [number, page] : pages_) {
        if (IsExplained(page)) continue;
        if (!isInCheckpoint_ || !IsCutWrite(page) || ++cut > 1) return false;
    }
    return true;
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
