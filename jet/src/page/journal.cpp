#include "page/journal.h"

#include <algorithm>
#include <chrono>
#include <random>
#include <string>

#include "jet/error.h"
#include "page/checksum.h"
#include "page/header.h"
#include "page/kept_logs.h"
#include "page/log_ranges.h"
#include "page/log_reader.h"

namespace jet {

namespace {

// Different for each log, so that records of an earlier one never pass for its own.
std::uint64_t NewSalt() {
    std::random_device source;
    const std::uint64_t random = std::uint64_t{source()} << 32 | source();
    const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
    return random * 6364136223846793005U + static_cast<std::uint64_t>(now) * 2 + 1;
}

}  // namespace

void Journal::Prepare() noexcept {
    try {
        RequireFile();
    } catch (...) {
        file_.reset();
    }
}

void Journal::RequireFile() {
    if (file_) return;
    auto file = OpenLog();
    placeFlushed_ = false;
    cutFirst_ = cutFirst_ || file->Size() > end_;
    file_ = std::move(file);
}

std::unique_ptr<File> Journal::OpenLog() {
    try {
        if (end_ > 0) return dataFile_.Files().OpenBeside(path_, OpenMode::kReadWrite);
        // What lies there holds nothing. A file of our own making is nobody's link.
        if (dataFile_.Files().Exists(path_)) dataFile_.Files().Remove(path_);
        return dataFile_.Files().CreateLike(path_, dataFile_.Model());
    } catch (const Error& error) {
        if (error.Kind() == ErrorKind::kDiskFull) throw;
        throw Error(error.Kind(), std::string("No change can be stored, because the log of the ") +
                                      "changes cannot be written beside the file. " + error.what());
    }
}

void Journal::Resume(const LogPosition& position) {
    end_ = position.end;
    checksum_ = position.checksum;
    operation_ = position.operations;
    lastCounter_ = position.lastCounter;
    logged_ = position.logged;
    // The process that wrote it may have ended over a flush that failed.
    flushFailed_ = true;
    RequireFile();
}

std::uint64_t Journal::StartBuffer(std::uint32_t pagesAfter) {
    buffer_.Clear();
    if (!IsEmpty()) {
        if (logged_.size() < pagesAfter) {
            logged_.resize(std::max<std::size_t>(pagesAfter, logged_.size() * 2));
        }
        return checksum_;
    }
    logged_.assign(pagesAfter, LoggedAs::kNothing);
    operation_ = 0;
    const FileState& start = dataFile_.State();
    return AppendLogHeader(buffer_, {.pageSize = dataFile_.PageFormat().pageSize,
                                     .pageCount = start.pageCount,
                                     .salt = NewSalt(),
                                     .commitCounter = start.commitCounter,
                                     .otherCounters = start.otherCounters});
}

void Journal::Start(LogRecordKind kind, std::uint32_t pagesAfter) {
    seed_ = StartBuffer(pagesAfter);
    kind_ = kind;
    entries_.clear();
    record_.emplace(buffer_, kind, operation_ + 1, pagesAfter);
}

void Journal::NoteEntry(const PageChange& change, LogBase base) {
    entries_.push_back({change.page.value, LoggedAfter(base)});
}

void Journal::Add(const PageChange& change) {
    FindRanges(change, ranges_);
    const LogBase base = BaseFor(change, StateOf(change.page), ranges_);
    NoteEntry(change, base);
    if (base == LogBase::kInLog) {
        if (const auto move = TakeMove(change, ranges_)) {
            record_->AddMovedPage(change, *move, ranges_);
            return;
        }
    }
    record_->AddPage(change, base, ranges_);
}

std::uint64_t Journal::AddWhole(const PageChange& change) {
    const LogBase base = BaseForWhole(change, StateOf(change.page));
    NoteEntry(change, base);
    return end_ + record_->AddWholePage(change, base);
}

void Journal::Write() {
    const bool isPart = kind_ == LogRecordKind::kPart;
    if (isPart) loggedByParts_.reserve(loggedByParts_.size() + entries_.size());
    const Good before{end_, checksum_};
    const std::uint64_t checksum = record_->Finish(seed_);
    WriteBuffer();
    // Done: nothing from here on fails.
    if (before.end == 0) lastCounter_ = dataFile_.State().commitCounter;
    checksum_ = checksum;
    for (const LoggedPage& entry : entries_) {
        if (isPart) loggedByParts_.push_back({entry.page, logged_[entry.page]});
        logged_[entry.page] = entry.state;
    }
    if (isPart && !beforeParts_) beforeParts_ = before;
    if (kind_ != LogRecordKind::kCommit) return;
    ++operation_;
    beforeParts_.reset();
    loggedByParts_ = {};
}

void Journal::DropParts() noexcept {
    if (!beforeParts_) return;
    DropPartsSince({.end = beforeParts_->end, .checksum = beforeParts_->checksum});
    loggedByParts_ = {};
}

void Journal::DropPartsSince(const PartsMark& mark) noexcept {
    if (end_ == mark.end) return;
    end_ = mark.end;
    checksum_ = mark.checksum;
    if (!mark.any) beforeParts_.reset();
    while (loggedByParts_.size() > mark.entries) {
        logged_[loggedByParts_.back().page] = loggedByParts_.back().state;
        loggedByParts_.pop_back();
    }
    CutQuietly();
}

void Journal::ReadPage(std::uint64_t place, MutableBytes into) {
    RequireFile();
    file_->Read(place, into);
}

// Appends the buffer to the good part. When it fails, the file is cut to the good part at once or,
// where that fails too, before anything else is written.
void Journal::WriteBuffer() {
    RequireFile();
    if (cutFirst_) {
        file_->Truncate(end_);
        cutFirst_ = false;
    }
    try {
        file_->WriteAll(end_, buffer_.Pieces());
    } catch (...) {
        CutQuietly();
        throw;
    }
    end_ += buffer_.Size();
}

void Journal::CutQuietly() noexcept {
    cutFirst_ = true;
    try {
        if (!file_) return;
        file_->Truncate(end_);
        cutFirst_ = false;
    } catch (...) {
        // The next write begins with it.
        return;
    }
}

std::uint16_t Journal::WriteCheckpoint() {
    const std::uint16_t counter = NextCommitCounter(lastCounter_);
    buffer_.Clear();
    LogRecordWriter record(buffer_, LogRecordKind::kCheckpoint, operation_, counter);
    const std::uint64_t checksum = record.Finish(checksum_);
    WriteBuffer();
    checksum_ = checksum;
    lastCounter_ = counter;
    return counter;
}

void Journal::Flush() {
    if (flushFailed_) WriteAllAgain();
    try {
        file_->Flush();
        FlushPlace();
    } catch (...) {
        flushFailed_ = true;
        throw;
    }
    flushFailed_ = false;
}

void Journal::SecurePlace() noexcept {
    try {
        if (file_) FlushPlace();
    } catch (...) {
        // The first flush of the log tries again.
        return;
    }
}

// Not when the log is made: every opening would wait for the disk.
void Journal::FlushPlace() {
    if (!placeFlushed_) dataFile_.Files().FlushFolder(path_.parent_path());
    placeFlushed_ = true;
}

// After a failed flush the operating system may count pages as written that are not, so that a
// second flush would succeed without doing anything. The same bytes are therefore written once
// more; to write the same bytes is harmless at whatever moment the process ends.
void Journal::WriteAllAgain() {
    LogReader reader(*file_);
    while (reader.Next()) {
    }
    if (reader.End() != end_ || reader.LastChecksum() != checksum_) {
        throw Error(ErrorKind::kIo, "The log of the database can no longer be read.");
    }
    constexpr std::uint64_t kBlock = 1U << 20;
    std::vector<std::byte> block;
    for (std::uint64_t at = 0; at < end_; at += kBlock) {
        block.resize(static_cast<std::size_t>(std::min(kBlock, end_ - at)));
        file_->Read(at, block);
        file_->Write(at, block);
    }
}

void Journal::Empty() noexcept {
    end_ = 0;
    flushFailed_ = false;
    logged_.clear();
    CutQuietly();
}

void Journal::SetAside() noexcept {
    try {
        const bool mine = file_ && file_->WhereIs(path_) == Whereabouts::kInPlace;
        file_.reset();
        if (mine) jet::SetAside(dataFile_.Files(), path_);
    } catch (...) {
        // The next opening does it, unless the log fits the file.
        return;
    }
}

void Journal::Remove() noexcept {
    file_.reset();
    try {
        dataFile_.Files().Remove(path_);
    } catch (...) {
        // What stays behind is empty, or replays to what the data file holds already.
    }
}

}  // namespace jet
