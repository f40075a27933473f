#include "page/journal.h"

#include <algorithm>
#include <chrono>
#include <random>
#include <string>

#include "jet/error.h"
#include "page/checksum.h"
#include "page/header.h"
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
    buffer_.clear();
    if (!IsEmpty()) {
        if (logged_.size() < pagesAfter) {
            logged_.resize(std::max<std::size_t>(pagesAfter, logged_.size() * 2), false);
        }
        return checksum_;
    }
    logged_.assign(pagesAfter, false);
    operation_ = 0;
    const FileState& start = dataFile_.State();
    return AppendLogHeader(buffer_, {.pageSize = dataFile_.PageFormat().pageSize,
                                     .pageCount = start.pageCount,
                                     .salt = NewSalt(),
                                     .commitCounter = start.commitCounter,
                                     .otherCounters = start.otherCounters});
}

LogBase Journal::BaseOf(const PageChange& change) const {
    if (change.fresh) return LogBase::kZero;
    return Has(change.page) ? LogBase::kInLog : LogBase::kImage;
}

void Journal::Append(std::span<const PageChange> changes, std::uint32_t pagesAfter) {
    const std::uint64_t seed = StartBuffer(pagesAfter);
    LogRecordWriter record(buffer_, LogRecordKind::kCommit, operation_ + 1, pagesAfter);
    for (const PageChange& change : changes) record.AddPage(change, BaseOf(change));
    const std::uint64_t checksum = record.Finish(seed);
    const bool first = IsEmpty();
    WriteBuffer();
    if (first) lastCounter_ = dataFile_.State().commitCounter;
    checksum_ = checksum;
    ++operation_;
    for (const PageChange& change : changes) logged_[change.page.value] = true;
    beforeParts_.reset();
    loggedByParts_ = {};
}

void Journal::WriteWholePages(LogRecordKind kind, std::span<const PageChange> changes,
                              std::uint32_t pagesAfter, std::span<std::uint64_t> places) {
    const std::uint64_t seed = StartBuffer(pagesAfter);
    LogRecordWriter record(buffer_, kind, operation_ + 1, pagesAfter);
    for (std::size_t i = 0; i < changes.size(); ++i) {
        places[i] = end_ + record.AddWholePage(changes[i], BaseOf(changes[i]));
    }
    const std::uint64_t checksum = record.Finish(seed);
    const bool first = IsEmpty();
    WriteBuffer();
    if (first) lastCounter_ = dataFile_.State().commitCounter;
    checksum_ = checksum;
}

void Journal::AppendPart(std::span<const PageChange> changes, std::uint32_t pagesAfter,
                         std::span<std::uint64_t> places) {
    loggedByParts_.reserve(loggedByParts_.size() + changes.size());
    const Good before{end_, checksum_};
    WriteWholePages(LogRecordKind::kPart, changes, pagesAfter, places);
    if (!beforeParts_) beforeParts_ = before;
    for (const PageChange& change : changes) {
        if (!Has(change.page)) loggedByParts_.push_back(change.page.value);
        logged_[change.page.value] = true;
    }
}

void Journal::AppendMoved(std::span<const PageChange> changes, std::uint32_t pagesAfter,
                          std::span<std::uint64_t> places) {
    WriteWholePages(LogRecordKind::kMoved, changes, pagesAfter, places);
    for (const PageChange& change : changes) logged_[change.page.value] = true;
}

void Journal::DropParts() noexcept {
    if (!beforeParts_) return;
    end_ = beforeParts_->end;
    checksum_ = beforeParts_->checksum;
    beforeParts_.reset();
    for (const std::uint32_t page : loggedByParts_) logged_[page] = false;
    loggedByParts_ = {};
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
        file_->Write(end_, buffer_);
    } catch (...) {
        CutQuietly();
        throw;
    }
    end_ += buffer_.size();
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
    buffer_.clear();
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

void Journal::Remove() noexcept {
    file_.reset();
    try {
        dataFile_.Files().Remove(path_);
    } catch (...) {
        // What stays behind is empty, or replays to what the data file holds already.
    }
}

}  // namespace jet
