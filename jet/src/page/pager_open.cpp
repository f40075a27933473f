// Opening and creating: the checks, the lock, and what an interrupted run left behind.
#include <algorithm>
#include <span>
#include <string>
#include <vector>

#include "jet/error.h"
#include "page/bytes.h"
#include "page/checksum.h"
#include "page/log_reader.h"
#include "page/log_replay.h"
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

std::uint16_t ReadCounterOf(File& file, const Format& format) {
    std::vector<std::byte> page(format.pageSize);
    if (file.Size() < page.size()) ThrowDamaged("The file is damaged: it has been cut off.");
    file.Read(0, page);
    return ReadCommitCounter(page, format);
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

// A log that does not belong here may belong to another copy of the file, so it is kept, under a
// name that no opening looks for.
std::filesystem::path SetAside(FileSystem& files, const std::filesystem::path& log) {
    std::filesystem::path aside = log;
    aside += "-old";
    for (int number = 2; files.Exists(aside) && number < 100; ++number) {
        aside = log;
        aside += "-old" + std::to_string(number);
    }
    files.Rename(log, aside);
    return aside;
}

enum class LogAge { kUnknown, kOutlived, kOther };

// A power cut just after a log was emptied can bring its beginning back, which does not fit the
// file any more. Such a log began some commits before the file's present one: all that was in it is
// in the file.
LogAge AgeOf(FileSystem& files, const std::filesystem::path& log, std::uint16_t counter) {
    constexpr std::uint16_t kRecentCommits = 1024;
    try {
        const auto file = files.Open(log, OpenMode::kReadOnly);
        const LogReader reader(*file);
        if (!reader.HasHeader()) return LogAge::kUnknown;
        const auto since = static_cast<std::uint16_t>(counter - reader.Header().commitCounter);
        return since > 0 && since <= kRecentCommits ? LogAge::kOutlived : LogAge::kOther;
    } catch (const Error&) {
        return LogAge::kUnknown;
    }
}

// The opening after the power cut sets such a log aside, the next one removes it.
void RemoveOutlived(FileSystem& files, const std::filesystem::path& log, std::uint16_t counter) {
    std::filesystem::path aside = log;
    aside += "-old";
    if (files.Exists(aside) && AgeOf(files, aside, counter) == LogAge::kOutlived) {
        RemoveQuietly(files, aside);
    }
}

struct FoundLog {
    LogReplay::Finding finding = LogReplay::Finding::kNothing;
    std::unique_ptr<File> file;
    std::unique_ptr<LogReplay> replay;
};

FoundLog LookForLog(FileSystem& files, const std::filesystem::path& log, File& dataFile,
                    const Format& format, std::uint16_t counter) {
    FoundLog found;
    if (!files.Exists(log)) return found;
    try {
        found.file = files.Open(log, OpenMode::kReadOnly);
    } catch (const Error& error) {
        // A folder, a pipe or a link that leads nowhere holds no changes.
        if (error.Kind() != ErrorKind::kNotADatabase && error.Kind() != ErrorKind::kFileNotFound) {
            throw Error(error.Kind(), std::string("The last changes of the file are in a log ") +
                                          "beside it, which cannot be read. " + error.what());
        }
        found.finding = LogReplay::Finding::kForeign;
        return found;
    }
    found.replay = std::make_unique<LogReplay>(dataFile, format, counter);
    found.finding = found.replay->Read(*found.file);
    return found;
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
    const FileHeader header = ReadHeaderOf(*file);
    const Format& format = FormatOf(header.version);
    const std::uint16_t counter = ReadCounterOf(*file, format);
    const FoundLog found = LookForLog(files, log, *file, format, counter);
    const bool pending = found.finding == Finding::kPending;
    if (found.replay && found.finding != Finding::kForeign) {
        recovery.discardedBytes = found.replay->DiscardedBytes();
    }
    const std::uint64_t size = file->Size();
    CheckLength(pending ? std::uint64_t{found.replay->PageCount()} * format.pageSize : size,
                format);
    recovery.foreignLogIgnored = found.finding == Finding::kForeign;
    if (options.readOnly && pending && !found.replay->IsInFile()) {
        throw Error(ErrorKind::kReadOnly,
                    "The file was not closed properly; it must be opened for writing once.");
    }

    auto impl = std::make_unique<Impl>(files, resolved, std::move(file), format, options);
    impl->header = header;
    impl->Start(static_cast<std::uint32_t>(size / format.pageSize), counter);
    if (!options.readOnly) {
        if (recovery.foreignLogIgnored) {
            const bool matters = AgeOf(files, log, counter) == LogAge::kOther;
            const std::filesystem::path aside = SetAside(files, log);
            if (matters) recovery.keptLog = aside;
        } else {
            RemoveOutlived(files, log, counter);
        }
        impl->Log().Prepare();
        if (pending) {
            recovery.applied = !found.replay->IsInFile();
            recovery.operations = found.replay->Position().operations;
            impl->Recover(*found.replay);
        }
    }
    return std::make_unique<Pager>(std::move(impl));
}

std::unique_ptr<Pager> Pager::Create(FileSystem& files, const std::filesystem::path& path,
                                     Version version, const OpenOptions& options) {
    auto file = files.Open(path, OpenMode::kCreateNew);
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
    Extend(PageNumber{1});
    WriteFileHeader(Change(PageNumber{0}), version);
    WriteGlobalMapsPage(Change(PageNumber{1}), FileFormat());
    const PageRef first = Page(PageNumber{0});
    impl_->header = ReadFileHeader(first.Data());
    impl_->fileCounter = ReadCommitCounter(first.Data(), FileFormat());
    operation.Commit();
}

}  // namespace jet
