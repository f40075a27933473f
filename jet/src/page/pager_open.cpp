// Opening and creating: the checks, the lock, and what an interrupted run left behind.
#include <algorithm>
#include <vector>

#include "jet/error.h"
#include "page/bytes.h"
#include "page/found_log.h"
#include "page/kept_logs.h"
#include "page/operation.h"
#include "page/pager.h"

namespace jet {

namespace {

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

std::unique_ptr<Pager> Pager::Open(FileSystem& files, const std::filesystem::path& path,
                                   const OpenOptions& options, Recovery& recovery) {
    using Finding = LogReplay::Finding;
    recovery = {};
    const std::filesystem::path resolved = files.Resolve(path);
    const std::filesystem::path log = LogPath(resolved);
    auto file = OpenLocked(files, path, options);
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

    std::unique_ptr<Pager> pager(new Pager(files, resolved, std::move(file), format, options));
    try {
        pager->Start(header, headerPage, std::move(found), recovery);
    } catch (...) {
        // Nothing is tried again, and no log is removed, by closing.
        pager->Release();
        throw;
    }
    return pager;
}

void Pager::Start(const FileHeader& header, Bytes headerPage, FoundLog found, Recovery& recovery) {
    const bool pending = found.finding == LogReplay::Finding::kPending;
    FileSystem& files = file_.Files();
    const std::filesystem::path log = LogPath(file_.Path());
    header_ = header;
    file_.TakeState(headerPage, static_cast<std::uint32_t>(file_.Size() / format_.pageSize));
    cache_.SetPageCount(file_.State().pageCount);
    if (pending) cache_.Take(*found.replay);
    if (file_.IsReadOnly()) {
        if (pending) journal_.ReadOnly(std::move(found.file));
        recovery.keptLogs = KeptLogs(files, log);
        if (recovery.foreignLogIgnored && HoldsOperations(files, log)) {
            recovery.keptLogs.push_back(log);
        }
        return;
    }
    file_.RemoveTemporary();
    if (recovery.foreignLogIgnored) SetAside(files, log);
    recovery.keptLogs = KeptLogs(files, log);
    if (pending) {
        journal_.Resume(found.replay->Position());
        MakeDurable();
    } else {
        journal_.Prepare();
    }
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
        pager.reset(new Pager(files, resolved, std::move(file), format, options));
        pager->journal_.Prepare();
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
    header_ = ReadFileHeader(first.Data());
    file_.TakeState(first.Data(), 0);
    operation.Commit();
}

}  // namespace jet
