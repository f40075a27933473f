#include "page/checkpoint.h"

#include <algorithm>
#include <vector>

#include "page/header.h"

namespace jet {

namespace {

// Neighboring pages go to the file in pieces of this size.
constexpr std::size_t kWriteBytes = 256U << 10;

}  // namespace

Checkpoint::Checkpoint(DataFile& file, PageCache& pages, Journal& journal)
    : file_(file), pages_(pages), journal_(journal), rescue_(file, pages, journal) {}

void Checkpoint::Run() {
    if (!file_.IsOpen() || journal_.IsEmpty()) return;
    if (rescue_.PutBackIfRemoved()) return;
    file_.RequireUntouched();
    Frame& headerPage = pages_.Fetch(PageNumber{0});
    const std::uint16_t counter = journal_.WriteCheckpoint();
    journal_.Flush();
    WriteCommitCounter(pages_.BytesOf(headerPage), file_.PageFormat(), counter);
    pages_.MarkDirty(headerPage);
    file_.BeginCheckpoint();
    WriteChangedPages();
    file_.EndCheckpoint(pages_.PageCount(), counter);
    journal_.Empty();
}

void Checkpoint::WriteChangedPages() {
    const std::vector<std::uint32_t> pages = pages_.PagesBeyondFile();
    const auto fresh = std::lower_bound(pages.begin(), pages.end(), file_.State().pageCount);
    WriteNewPages({fresh, pages.end()});
    WritePages({pages.begin(), fresh});
    // A page stays dirty until the flush succeeded: after a failed one everything is written anew.
    file_.Flush();
    pages_.MarkAllClean();
}

// They come first: a disk that has no room for them refuses before anything in the file is
// overwritten, so the file alone is still complete.
void Checkpoint::WriteNewPages(std::span<const std::uint32_t> pages) {
    if (pages.empty()) return;
    const std::uint64_t size = file_.Size();
    try {
        WritePages(pages);
    } catch (...) {
        try {
            file_.Truncate(size);
        } catch (...) {
            // Pages that nothing refers to stay at the end until the next attempt.
        }
        throw;
    }
}

void Checkpoint::WritePages(std::span<const std::uint32_t> pages) {
    const std::size_t longest = kWriteBytes / pages_.PageSize();
    for (std::size_t begin = 0; begin < pages.size();) {
        std::size_t end = begin + 1;
        while (end < pages.size() && end - begin < longest && pages[end] == pages[end - 1] + 1) {
            ++end;
        }
        WriteRun(pages[begin], end - begin);
        begin = end;
    }
}

void Checkpoint::WriteRun(std::uint32_t first, std::size_t count) {
    std::vector<Bytes> inMemory;
    inMemory.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const Frame* frame = pages_.Find(first + static_cast<std::uint32_t>(i));
        if (frame == nullptr) break;
        inMemory.push_back(pages_.BytesOf(*frame));
    }
    if (inMemory.size() == count) {
        file_.Write(PageNumber{first}, inMemory);
        return;
    }
    const std::size_t size = pages_.PageSize();
    std::vector<std::byte> bytes(count * size);
    for (std::size_t i = 0; i < count; ++i) {
        pages_.Copy(PageNumber{first + static_cast<std::uint32_t>(i)},
                    MutableBytes(bytes).subspan(i * size, size));
    }
    file_.Write(PageNumber{first}, bytes);
}

}  // namespace jet
