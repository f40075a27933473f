#include "check/page_source.h"

#include <string>

#include "check/findings.h"
#include "jet/error.h"
#include "page/data_file.h"

namespace jet {

InspectedFile OpenForInspection(const std::filesystem::path& path, FileSystem& files) {
    const std::filesystem::path resolved = files.Resolve(path);
    InspectedFile opened{OpenLocked(files, path, {.exclusive = false, .readOnly = true}), {}, {}};
    std::vector<std::byte> head(kHeaderPrefix);
    if (opened.file->Size() < head.size()) {
        throw Error(ErrorKind::kNotADatabase, "The file is not a database.");
    }
    opened.file->Read(0, head);
    opened.header = ReadFileHeader(head);
    const Format& format = FormatOf(opened.header.version);
    std::vector<std::byte> headerPage(format.pageSize);
    if (opened.file->Size() < headerPage.size()) return opened;
    opened.file->Read(0, headerPage);
    opened.log = LookForLog(files, LogPath(resolved), *opened.file, format, headerPage);
    return opened;
}

std::vector<std::byte> PageSource::Read(std::uint32_t page) const {
    if (page >= PageCount()) {
        throw Damage{"page-beyond-end", "Page " + std::to_string(page) + " is past the end."};
    }
    std::vector<std::byte> bytes;
    ReadInto(page, bytes);
    return bytes;
}

FilePages::FilePages(const InspectedFile& inspected)
    : file_(*inspected.file),
      replay_(inspected.log.finding == LogReplay::Finding::kPending ? inspected.log.replay.get()
                                                                    : nullptr),
      pageSize_(FormatOf(inspected.header.version).pageSize),
      pageCount_(replay_ != nullptr ? replay_->PageCount()
                                    : static_cast<std::uint32_t>(file_.Size() / pageSize_)) {}

void FilePages::ReadInto(std::uint32_t page, std::vector<std::byte>& into) const {
    into.resize(pageSize_);
    if (replay_ != nullptr) {
        const auto logged = replay_->Pages().find(page);
        if (logged != replay_->Pages().end()) {
            replay_->CopyPage(logged->second, into);
            return;
        }
    }
    file_.Read(std::uint64_t{page} * pageSize_, into);
}

void PagerPages::ReadInto(std::uint32_t page, std::vector<std::byte>& into) const {
    const PageRef ref = pager_.Page(PageNumber{page});
    into.assign(ref.Data().begin(), ref.Data().end());
}

}  // namespace jet
