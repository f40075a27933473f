// Opening and creating: the checks, the lock, and what an interrupted run left behind.
#include <algorithm>
#include <span>
#include <string>
#include <vector>

#include "jet/error.h"
#include "page/bytes.h"
#include "page/checksum.h"
#include "page/found_log.h"
#include "page/kept_logs.h"
#include "page/operation.h"
#include "page/pager_impl.h"

namespace jet {

namespace {

void RequireLock(File& file, bool exclusive) {
    if (!file.TryLock(exclusive)) {
        throw Error(ErrorKind::kFileInUse, "The file is in use by another program.");
    }
}

std::unique_ptr<File> OpenLocked(FileSystem& files, const std::filesystem::path& path,
                                 OpenMode mode, bool exclusive) {
    auto file = files.Open(path, mode);
    RequireLock(*file, exclusive);
    return file;
}

FileHeader ReadHeaderOf(File& file) {
    std::vector<std::byte> prefix(
        static_cast<std::size_t>(std::min<std::uint64_t>(file.Size(), kHeaderPrefix)));
    file.Read(0, prefix);
    return ReadFileHeader(prefix);
}

std::vector<std::byte> ReadHeaderPage(File& file, const Format& format) {
    std::vector<std::byte> page(format.pageSize);
    if (file.Size() < page.size()) ThrowDamaged("The file is damaged: it has been cut off.");
    file.Read(0, page);
    return page;
}

// Other programs note in a lock file who works with a database. One that nobody holds was left by a
// program that ended over it.
void RequireNoLockFile(FileSystem& files, const std::filesystem::path& dataFile) {
    for (const char* ending : {".ldb", ".LDB", ".laccdb"}) {
        std::filesystem::path path = dataFile;
        path.replace_extension(ending);
        if (!files.Exists(path)) continue;
        std::unique_ptr<File> file;
        try {
            file = files.Open(path, OpenMode::kReadOnly);
        } catch (const Error& error) {
            if (error.Kind() == ErrorKind::kFileInUse) throw;
            continue;
        }
        RequireLock(*file, true);
    }
}

void CheckLength(std::uint64_t size, const Format& format) {
    const std::uint64_t pages = size / format.pageSize;
    if (size % format.pageSize != 0 || pages < kSmallestPageCount) {
        ThrowDamaged("The file is damaged: it has been cut off.");
    }
    if (pages > LargestPageCount(format)) {
        ThrowDamaged("The file is damaged: it is longer than its format allows.");
    }
}

}  // namespace

void RemoveQuietly(FileSystem& files, const std::filesystem::path& path) noexcept {
    try {
        files.Remove(path);
    } catch (...) {
        // An empty or unfinished file stays; the failure before this one is told.
    }
}

// A name that has no room for the ending is cut, and a number made of the whole of it tells it from
// its like.
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

std::unique_ptr<Pager> Pager::Open(FileSystem& files, const std::filesystem::path& path,
                                   const OpenOptions& options, Recovery& recovery) {
    using Finding = LogReplay::Finding;
    recovery = {};
    const std::filesystem::path resolved = files.Resolve(path);
    const std::filesystem::path log = LogPath(resolved);
    auto file =
        OpenLocked(files, resolved, options.readOnly ? OpenMode::kReadOnly : OpenMode::kReadWrite,
                   options.exclusive || !options.readOnly);
    if (options.exclusive || !options.readOnly) RequireNoLockFile(files, resolved);
    const FileHeader header = ReadHeaderOf(*file);
    const Format& format = FormatOf(header.version);
    const std::vector<std::byte> headerPage = ReadHeaderPage(*file, format);
    FoundLog found = LookForLog(files, log, *file, format, headerPage);
    const bool pending = found.finding == Finding::kPending;
    if (found.replay && found.finding != Finding::kForeign) {
        recovery.discardedBytes = found.replay->DiscardedBytes();
    }
    const std::uint64_t size = file->Size();
    CheckLength(pending ? std::uint64_t{found.replay->PageCount()} * format.pageSize : size,
                format);
    recovery.foreignLogIgnored = found.finding == Finding::kForeign;
    if (pending) {
        recovery.applied = !found.replay->IsInFile();
        recovery.operations = found.replay->Position().operations;
    }

    auto impl = std::make_unique<Impl>(files, resolved, std::move(file), format, options);
    impl->header = header;
    impl->Start(static_cast<std::uint32_t>(size / format.pageSize), headerPage);
    if (options.readOnly) {
        if (pending) impl->Overlay(*found.replay, std::move(found.file));
        recovery.keptLogs = KeptLogs(files, log);
        if (recovery.foreignLogIgnored && HoldsOperations(files, log)) {
            recovery.keptLogs.push_back(log);
        }
        return std::make_unique<Pager>(std::move(impl));
    }
    if (recovery.foreignLogIgnored) SetAside(files, log);
    recovery.keptLogs = KeptLogs(files, log);
    if (pending) {
        impl->Recover(*found.replay);
    } else {
        impl->Log().Prepare();
    }
    return std::make_unique<Pager>(std::move(impl));
}

std::unique_ptr<Pager> Pager::Create(FileSystem& files, const std::filesystem::path& path,
                                     Version version, const OpenOptions& options, File* like) {
    auto file =
        like == nullptr ? files.Open(path, OpenMode::kCreateNew) : files.CreateLike(path, *like);
    std::unique_ptr<Pager> pager;
    try {
        RequireLock(*file, true);
        const std::filesystem::path resolved = files.Resolve(path);
        const Format& format = FormatOf(version);
        if (files.Exists(LogPath(resolved))) SetAside(files, LogPath(resolved));
        pager = std::make_unique<Pager>(
            std::make_unique<Impl>(files, resolved, std::move(file), format, options));
        pager->impl_->Log().Prepare();
        pager->StartFile(version);
    } catch (...) {
        if (pager) pager->Abandon();
        file.reset();
        RemoveQuietly(files, path);
        throw;
    }
    return pager;
}

// The header page and the global maps.
void Pager::StartFile(Version version) {
    Operation operation(*this);
    operation.Extend(PageNumber{1});
    WriteFileHeader(operation.Change(PageNumber{0}), version);
    WriteGlobalMapsPage(operation.Change(PageNumber{1}), FileFormat());
    const PageRef first = Page(PageNumber{0});
    impl_->header = ReadFileHeader(first.Data());
    impl_->fileCounter = ReadCommitCounter(first.Data(), FileFormat());
    impl_->otherCounters = OtherCounters(first.Data(), FileFormat());
    operation.Commit();
}

}  // namespace jet
