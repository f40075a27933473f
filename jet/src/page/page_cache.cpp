#include "page/page_cache.h"

#include <algorithm>
#include <cstring>

#include "jet/error.h"
#include "page/bytes.h"

namespace jet {

namespace {

// The fewest pages that a cache is worth having for.
constexpr std::size_t kSmallestCache = 32;
constexpr std::uint32_t kReadAheadPages = 16;

}  // namespace

PageCache::PageCache(DataFile& file, Journal& journal, std::size_t capacity)
    : file_(file),
      journal_(journal),
      pageSize_(file.PageFormat().pageSize),
      frames_(pageSize_, std::max(kSmallestCache, capacity / pageSize_)) {}

void PageCache::Take(const LogReplay& replay) {
    pageCount_ = replay.PageCount();
    for (const auto& [number, page] : replay.Pages()) {
        if (page.place != 0) {
            inLog_.Reserve(pageCount_, 1);
            inLog_.Enter(number, page.place);
            continue;
        }
        Frame& frame = frames_.Insert(number);
        std::memset(frame.bytes, 0, pageSize_);
        std::copy(page.image.begin(), page.image.end(), frame.bytes);
        MarkDirty(frame);
    }
    inLog_.Keep();
}

Frame& PageCache::FetchMissing(PageNumber page) {
    if (!file_.IsOpen()) throw Error(ErrorKind::kClosed, "The database is closed.");
    if (page.value >= pageCount_) {
        ThrowDamaged("The file is damaged: it refers to a page past its end.");
    }
    return Load(page);
}

// A good part of a file that fits into the cache has been read, and more than opening it takes: the
// rest will be needed too.
bool PageCache::IsReadWhole() const {
    constexpr std::uint32_t kGoodPart = 8;
    constexpr std::uint32_t kMoreThanOpening = 16;
    const std::uint32_t pages = file_.State().pageCount;
    return pages <= frames_.Capacity() &&
           readAlone_ > std::max(pages / kGoodPart, kMoreThanOpening);
}

// How many pages to read at once: as many as have been read in the order of the file just now. Two
// in a row happen at random too, a row and its memo say.
std::uint32_t PageCache::ReadAhead(PageNumber page) const {
    std::uint32_t pages = 1;
    const bool isWhole = IsReadWhole();
    if ((page.value != nextInRow_ && !isWhole) || inLog_.Find(page.value) != 0) return pages;
    const std::uint32_t most = isWhole ? kReadAheadPages : std::min(inRow_, kReadAheadPages);
    while (pages < most && page.value + pages < file_.State().pageCount &&
           frames_.Find(page.value + pages) == nullptr && inLog_.Find(page.value + pages) == 0) {
        ++pages;
    }
    return pages;
}

Frame& PageCache::Load(PageNumber page) {
    const std::uint32_t pages = ReadAhead(page);
    inRow_ = page.value == nextInRow_ ? inRow_ + pages : 1;
    nextInRow_ = page.value + pages;
    if (pages == 1) return LoadAlone(page);
    const bool passing = file_.State().pageCount > frames_.Capacity();
    readBuffer_.resize(std::size_t{pages} * pageSize_);
    file_.Read(page, readBuffer_);
    // The page asked for comes last, so that none of the others can take its frame.
    for (std::uint32_t i = pages - 1; i > 0; --i) {
        std::memcpy(frames_.Insert(page.value + i, passing).bytes,
                    readBuffer_.data() + std::size_t{i} * pageSize_, pageSize_);
    }
    Frame& frame = frames_.Insert(page.value, passing);
    std::memcpy(frame.bytes, readBuffer_.data(), pageSize_);
    return frame;
}

Frame& PageCache::LoadAlone(PageNumber page) {
    ++readAlone_;
    Frame& frame = frames_.Insert(page.value);
    try {
        ReadStored(page, BytesOf(frame));
    } catch (...) {
        frames_.Drop(frame);
        throw;
    }
    return frame;
}

void PageCache::ReadStored(PageNumber page, MutableBytes into) {
    if (const std::uint64_t place = inLog_.Find(page.value)) {
        journal_.ReadPage(place, into);
    } else {
        file_.Read(page, into);
    }
}

void PageCache::Copy(PageNumber page, MutableBytes into) {
    if (const Frame* frame = frames_.Find(page.value)) {
        std::copy_n(frame->bytes, pageSize_, into.begin());
    } else {
        ReadStored(page, into);
    }
}

Frame& PageCache::AddZeroed() {
    Frame& frame = frames_.Insert(pageCount_);
    std::memset(frame.bytes, 0, pageSize_);
    return frame;
}

void PageCache::MarkDirty(Frame& frame) noexcept {
    dirtyCount_ += frame.dirty ? 0 : 1;
    frame.dirty = true;
}

std::vector<Frame*> PageCache::ColdNewPages() {
    std::vector<Frame*> cold;
    if (pageCount_ == file_.State().pageCount) return cold;
    frames_.ForEach([&](Frame& frame) {
        if (!frame.dirty || frame.number < file_.State().pageCount) return;
        if (!frame.recent) cold.push_back(&frame);
        frame.recent = false;
    });
    return cold;
}

void PageCache::ReserveMoves(std::size_t pages) {
    inLog_.Reserve(pageCount_, pages);
    frames_.ReserveSpent(pages);
}

void PageCache::MoveToLog(Frame& frame, std::uint64_t place) noexcept {
    inLog_.Enter(frame.number, place);
    dirtyCount_ -= frame.dirty ? 1 : 0;
    frame.dirty = false;
    if (!frame.recent) frames_.Spend(frame);
}

std::vector<std::uint32_t> PageCache::PagesBeyondFile() {
    std::vector<std::uint32_t> pages;
    frames_.ForEach([&](const Frame& frame) {
        if (frame.dirty) pages.push_back(frame.number);
    });
    inLog_.ForEach([&](std::uint32_t page) {
        const Frame* frame = frames_.Find(page);
        if (frame == nullptr || !frame->dirty) pages.push_back(page);
    });
    std::sort(pages.begin(), pages.end());
    return pages;
}

void PageCache::MarkAllClean() noexcept {
    frames_.ForEach([](Frame& frame) { frame.dirty = false; });
    dirtyCount_ = 0;
    inLog_.Clear();
}

}  // namespace jet
