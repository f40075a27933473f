#include "check/page_source.h"

#include <string>

#include "check/findings.h"
#include "jet/error.h"

namespace jet {

InspectedFile OpenForInspection(const std::filesystem::path& path, FileSystem& files) {
    InspectedFile opened{files.Open(path, OpenMode::kReadOnly), {}};
    if (!opened.file->TryLock(false)) {
        throw Error(ErrorKind::kFileInUse, "The file is in use by another program.");
    }
    std::vector<std::byte> head(kHeaderPrefix);
    if (opened.file->Size() < head.size()) {
        throw Error(ErrorKind::kNotADatabase, "The file is not a database.");
    }
    opened.file->Read(0, head);
    opened.header = ReadFileHeader(head);
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

FilePages::FilePages(File& file, std::uint32_t pageSize)
    : file_(file),
      pageSize_(pageSize),
      pageCount_(static_cast<std::uint32_t>(file.Size() / pageSize)) {}

void FilePages::ReadInto(std::uint32_t page, std::vector<std::byte>& into) const {
    into.resize(pageSize_);
    file_.Read(std::uint64_t{page} * pageSize_, into);
}

void PagerPages::ReadInto(std::uint32_t page, std::vector<std::byte>& into) const {
    const PageRef ref = pager_.Page(PageNumber{page});
    into.assign(ref.Data().begin(), ref.Data().end());
}

}  // namespace jet
