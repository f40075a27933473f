#include "page/data_file.h"

#include <span>
#include <string>
#include <utility>
#include <vector>

#include "jet/error.h"
#include "page/checksum.h"
#include "page/header.h"
#include "page/path_words.h"

namespace jet {

namespace {

// Other programs note in a lock file who works with a database. One that nobody holds was left by a
// program that ended over it. Readers look at it together.
void RequireNoLockFile(FileSystem& files, const std::filesystem::path& dataFile, bool exclusive) {
    for (const char* ending : {".ldb", ".LDB", ".laccdb"}) {
        std::filesystem::path path = dataFile;
        path.replace_extension(ending);
        if (path == dataFile || !files.Exists(path)) continue;
        std::unique_ptr<File> file;
        try {
            file = files.Open(path, OpenMode::kReadOnly);
        } catch (const Error& error) {
            if (error.Kind() == ErrorKind::kFileInUse) throw;
            continue;
        }
        if (file->TryLock(exclusive)) continue;
        throw Error(ErrorKind::kFileInUse,
                    "The file is in use by another program, which holds " + Quoted(path) + ".");
    }
}

}  // namespace

void RemoveQuietly(FileSystem& files, const std::filesystem::path& path) noexcept {
    try {
        files.Remove(path);
    } catch (...) {
        // An empty or unfinished file stays; the failure before this one is reported.
    }
}

// A name that has no room for the ending is cut, and a number made of the whole of it distinguishes
// it from its like.
std::filesystem::path LogPath(const std::filesystem::path& dataFile) {
    constexpr std::size_t kLongestName = 255;
    constexpr std::size_t kRoomForEndings = 11;  // "-log-old99"
    constexpr std::size_t kKept = 100;
    const std::u8string name = dataFile.filename().u8string();
    std::filesystem::path log = dataFile;
    if (name.size() + kRoomForEndings > kLongestName) {
        std::size_t end = kKept;
        while (end > 0 && (name[end] & 0xC0U) == 0x80U) --end;
        const std::uint64_t number = Checksum(std::as_bytes(std::span(name)), 0);
        log.replace_filename(name.substr(0, end));
        log += "-" + std::to_string(number);
    }
    log += "-log";
    return log;
}

namespace {

// The name that temporary files have, as far as they have one.
std::filesystem::path TemporaryPath(const std::filesystem::path& dataFile, int number) {
    std::filesystem::path path = LogPath(dataFile);
    path += "-tmp";
    if (number > 1) path += std::to_string(number);
    return path;
}

}  // namespace

void RequireLock(File& file, bool exclusive) {
    if (!file.TryLock(exclusive)) {
        throw Error(ErrorKind::kFileInUse, "The file is in use by another program.");
    }
}

std::unique_ptr<File> OpenLocked(FileSystem& files, const std::filesystem::path& path,
                                 const OpenOptions& options) {
    const bool exclusive = options.exclusive || !options.readOnly;
    const std::filesystem::path resolved = files.Resolve(path);
    auto file = files.Open(resolved, options.readOnly ? OpenMode::kReadOnly : OpenMode::kReadWrite);
    RequireLock(*file, exclusive);
    RequireNoLockFile(files, resolved, exclusive);
    if (path != resolved) RequireNoLockFile(files, path, exclusive);
    return file;
}

DataFile::DataFile(FileSystem& files, std::filesystem::path path, std::unique_ptr<File> file,
                   const Format& format, bool readOnly)
    : files_(files),
      path_(std::move(path)),
      file_(std::move(file)),
      format_(format),
      readOnly_(readOnly) {}

std::unique_ptr<File> DataFile::MakeTemporary() const {
    constexpr int kMostAtOnce = 99;
    for (int number = 1;; ++number) {
        try {
            return files_.CreateTemporary(TemporaryPath(path_, number), Model());
        } catch (const Error& error) {
            if (error.Kind() != ErrorKind::kFileInUse || number == kMostAtOnce) throw;
        }
    }
}

void DataFile::RemoveTemporary() const noexcept {
    try {
        const std::filesystem::path path = TemporaryPath(path_, 1);
        if (files_.Exists(path)) files_.Remove(path);
    } catch (...) {
        // The next one that is made begins with doing so.
        return;
    }
}

void DataFile::RequireWritable() const {
    if (!file_) throw Error(ErrorKind::kClosed, "The database is closed.");
    if (readOnly_) throw Error(ErrorKind::kReadOnly, "The file is open for reading only.");
}

void DataFile::TakeState(Bytes headerPage, std::uint32_t pages) {
    state_.pageCount = pages;
    state_.commitCounter = ReadCommitCounter(headerPage, format_);
    state_.otherCounters = OtherCounters(headerPage, format_);
}

void DataFile::Read(PageNumber first, MutableBytes into) {
    file_->Read(std::uint64_t{first.value} * format_.pageSize, into);
}

void DataFile::Write(PageNumber first, Bytes pages) {
    file_->Write(std::uint64_t{first.value} * format_.pageSize, pages);
}

void DataFile::Write(PageNumber first, std::span<const Bytes> pages) {
    file_->WriteAll(std::uint64_t{first.value} * format_.pageSize, pages);
}

// The counters on the header page distinguish one state from the next.
void DataFile::RequireUntouched() {
    if (state_.pageCount == 0) return;
    if (file_->Size() >= std::uint64_t{state_.pageCount} * format_.pageSize) {
        std::vector<std::byte> first(format_.pageSize);
        Read(PageNumber{0}, first);
        if ((checkpointFailed_ || ReadCommitCounter(first, format_) == state_.commitCounter) &&
            OtherCounters(first, format_) == state_.otherCounters) {
            return;
        }
    }
    throw Error(ErrorKind::kFileInUse,
                "The file " + Quoted(path_) +
                    " has been overwritten by another program while it was open. So that the two "
                    "do not mix, nothing more is stored in it.");
}

void DataFile::EndCheckpoint(std::uint32_t pages, std::uint16_t counter) {
    checkpointFailed_ = false;
    state_.pageCount = pages;
    state_.commitCounter = counter;
}

// What is written is found in the file wherever it is now.
Whereabouts DataFile::Locate() {
    const Whereabouts where = file_->WhereIs(path_);
    moved_ = where == Whereabouts::kElsewhere;
    return where;
}

void DataFile::Replace(std::unique_ptr<File> file, std::uint32_t pages, std::uint16_t counter) {
    file_ = std::move(file);
    EndCheckpoint(pages, counter);
    replaced_ = true;
}

void DataFile::Discard() noexcept {
    if (!file_) return;
    file_.reset();
    // One that stays is empty; opening it says that it is no database.
    if (state_.pageCount == 0) RemoveQuietly(files_, path_);
}

}  // namespace jet
