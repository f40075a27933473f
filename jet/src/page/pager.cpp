#include "page/pager.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

#include "jet/error.h"
#include "page/bytes.h"
#include "page/global_map.h"
#include "page/pager_impl.h"

namespace jet {

namespace {

// The fewest pages that a cache is worth having for.
constexpr std::size_t kSmallestCache = 32;
constexpr std::uint32_t kReadAheadPages = 16;
// Neighbouring pages go to the file in pieces of this size.
constexpr std::size_t kWriteBytes = 256U << 10;

}  // namespace

Pager::Impl::Impl(FileSystem& fileSystem, std::filesystem::path filePath,
                  std::unique_ptr<File> openFile, const Format& fileFormat,
                  const OpenOptions& options)
    : files(fileSystem),
      path(std::move(filePath)),
      file(std::move(openFile)),
      format(fileFormat),
      readOnly(options.readOnly),
      mostDirtyBytes_(options.changedBytes),
      largestLog_(options.logBytes),
      cache_(fileFormat.pageSize,
             std::max(kSmallestCache, options.cacheBytes / fileFormat.pageSize)),
      changed_(fileFormat.pageSize),
      savepoint_(fileFormat.pageSize),
      journal_(fileSystem, LogPath(path), fileFormat.pageSize) {}

void Pager::Impl::Start(std::uint32_t pages, std::uint16_t commitCounter) {
    pageCount = pages;
    filePageCount = pages;
    fileCounter = commitCounter;
}

void Pager::Impl::Recover(const LogReplay& replay) {
    pageCount = replay.PageCount();
    for (const auto& [number, page] : replay.Pages()) {
        Frame& frame = cache_.Insert(number);
        std::memset(frame.bytes.get(), 0, format.pageSize);
        std::copy(page.image.begin(), page.image.end(), frame.bytes.get());
        frame.dirty = true;
        ++dirtyCount_;
    }
    journal_.Resume(replay.Position());
    MakeDurable();
}

Frame& Pager::Impl::Fetch(PageNumber page) {
    if (Frame* frame = cache_.Find(page.value)) {
        frame->recent = true;
        return *frame;
    }
    if (!file) throw Error(ErrorKind::kClosed, "The database is closed.");
    if (page.value >= pageCount) {
        ThrowDamaged("The file is damaged: it refers to a page past its end.");
    }
    return Load(page);
}

// How many pages to read at once: one, unless pages are asked for in the order of the file.
std::uint32_t Pager::Impl::ReadAhead(PageNumber page) const {
    std::uint32_t pages = 1;
    if (page.value != nextInRow_) return pages;
    while (pages < kReadAheadPages && page.value + pages < filePageCount &&
           cache_.Find(page.value + pages) == nullptr) {
        ++pages;
    }
    return pages;
}

Frame& Pager::Impl::Load(PageNumber page) {
    const std::uint32_t pages = ReadAhead(page);
    nextInRow_ = page.value + pages;
    if (pages == 1) return LoadAlone(page);
    const bool passing = filePageCount > cache_.Capacity();
    readBuffer_.resize(std::size_t{pages} * format.pageSize);
    file->Read(std::uint64_t{page.value} * format.pageSize, readBuffer_);
    // The page asked for comes last, so that none of the others can take its frame.
    for (std::uint32_t i = pages - 1; i > 0; --i) {
        std::memcpy(cache_.Insert(page.value + i, passing).bytes.get(),
                    readBuffer_.data() + std::size_t{i} * format.pageSize, format.pageSize);
    }
    Frame& frame = cache_.Insert(page.value, passing);
    std::memcpy(frame.bytes.get(), readBuffer_.data(), format.pageSize);
    return frame;
}

Frame& Pager::Impl::LoadAlone(PageNumber page) {
    Frame& frame = cache_.Insert(page.value);
    try {
        file->Read(std::uint64_t{page.value} * format.pageSize,
                   {frame.bytes.get(), format.pageSize});
    } catch (...) {
        cache_.Drop(frame);
        throw;
    }
    return frame;
}

void Pager::Impl::RequireWritable() const {
    if (!file) throw Error(ErrorKind::kClosed, "The database is closed.");
    if (readOnly) throw Error(ErrorKind::kReadOnly, "The file is open for reading only.");
}

void Pager::Impl::RequireOperation() const {
    if (!inOperation_) throw std::logic_error("no operation is open");
}

void Pager::Impl::CheckpointWhenDue() {
    if (dirtyCount_ * format.pageSize > mostDirtyBytes_ || journal_.Size() > largestLog_) {
        MakeDurable();
    }
}

void Pager::Impl::BeginTransaction() {
    RequireWritable();
    if (inTransaction_) {
        throw Error(ErrorKind::kTransactionOpen, "A transaction is open already.");
    }
    CheckpointWhenDue();
    inTransaction_ = true;
    pagesBefore_ = pageCount;
}

void Pager::Impl::BeginOperation() {
    RequireWritable();
    if (inOperation_) throw std::logic_error("operations do not nest");
    if (!inTransaction_) {
        CheckpointWhenDue();
        pagesBefore_ = pageCount;
    }
    inOperation_ = true;
    pagesBeforeOperation_ = pageCount;
    firstOfOperation_ = changed_.Size();
}

MutableBytes Pager::Impl::Change(PageNumber page) {
    RequireOperation();
    Frame& frame = Fetch(page);
    if (!frame.changing) {
        (frame.inTransaction ? savepoint_ : changed_).Add(frame, false);
        frame.inTransaction = true;
        frame.changing = true;
    }
    return {frame.bytes.get(), format.pageSize};
}

void Pager::Impl::Append() {
    RequireOperation();
    if (pageCount >= LargestPageCount(format)) {
        throw Error(ErrorKind::kFileTooLarge,
                    "The file has reached the largest size that its format allows.");
    }
    Frame& frame = cache_.Insert(pageCount);
    std::memset(frame.bytes.get(), 0, format.pageSize);
    try {
        changed_.Add(frame, true);
    } catch (...) {
        cache_.Drop(frame);
        throw;
    }
    frame.inTransaction = true;
    frame.changing = true;
    ++pageCount;
}

void Pager::Impl::CollectChanges() {
    changes_.clear();
    for (const UndoImage& image : changed_.From(0)) {
        const Bytes before = changed_.Before(image);
        const Bytes after(image.frame->bytes.get(), format.pageSize);
        const std::size_t difference = FirstDifference(before, after, 0);
        if (image.fresh || difference < format.pageSize) {
            changes_.push_back({.page = PageNumber{image.frame->number},
                                .fresh = image.fresh,
                                .before = before,
                                .after = after,
                                .firstDifference = difference});
        }
    }
}

// The moment of commitment.
void Pager::Impl::WriteToLog() {
    CollectChanges();
    if (changes_.empty()) return;
    journal_.Append(changes_, pageCount, {filePageCount, fileCounter});
    // Done: nothing from here on fails.
    for (const PageChange& change : changes_) {
        Frame& frame = *cache_.Find(change.page.value);
        dirtyCount_ += frame.dirty ? 0 : 1;
        frame.dirty = true;
    }
    ++changeCount;
}

void Pager::Impl::CommitOperation() {
    RequireOperation();
    if (inTransaction_) {
        ++changeCount;
    } else {
        WriteToLog();
    }
    EndOperation();
}

void Pager::Impl::RollbackOperation() noexcept {
    for (const UndoImage& image : savepoint_.From(0)) savepoint_.Restore(image);
    if (savepoint_.Size() > 0) ++changeCount;
    UndoFrom(firstOfOperation_);
    pageCount = pagesBeforeOperation_;
    EndOperation();
}

void Pager::Impl::CommitTransaction() {
    try {
        WriteToLog();
    } catch (...) {
        RollbackTransaction();
        throw;
    }
    inTransaction_ = false;
    ForgetChanges();
}

void Pager::Impl::RollbackTransaction() noexcept {
    UndoFrom(0);
    pageCount = pagesBefore_;
    inTransaction_ = false;
}

// Puts the pages back that were changed from this one on.
void Pager::Impl::UndoFrom(std::size_t first) noexcept {
    for (const UndoImage& image : changed_.From(first)) {
        if (image.fresh) {
            cache_.Drop(*image.frame);
        } else {
            changed_.Restore(image);
            image.frame->inTransaction = false;
            image.frame->changing = false;
        }
    }
    if (changed_.Size() > first) ++changeCount;
    changed_.CutTo(first);
    lowestFree = {};
    mapRowPage = {};
}

void Pager::Impl::EndOperation() noexcept {
    for (const UndoImage& image : changed_.From(firstOfOperation_)) image.frame->changing = false;
    for (const UndoImage& image : savepoint_.From(0)) image.frame->changing = false;
    savepoint_.CutTo(0);
    inOperation_ = false;
    if (!inTransaction_) ForgetChanges();
}

void Pager::Impl::ForgetChanges() noexcept {
    for (const UndoImage& image : changed_.From(0)) image.frame->inTransaction = false;
    changed_.CutTo(0);
}

void Pager::Impl::WriteDirtyPages() {
    std::vector<Frame*> dirty;
    cache_.ForEach([&](Frame& frame) {
        if (frame.dirty) dirty.push_back(&frame);
    });
    std::sort(dirty.begin(), dirty.end(),
              [](const Frame* a, const Frame* b) { return a->number < b->number; });
    const auto fresh = std::find_if(dirty.begin(), dirty.end(), [this](const Frame* frame) {
        return frame->number >= filePageCount;
    });
    WriteNewPages({fresh, dirty.end()});
    WritePages({dirty.begin(), fresh});
    // A page stays dirty until the flush succeeded: after a failed one everything is written anew.
    file->Flush();
    for (Frame* frame : dirty) frame->dirty = false;
    dirtyCount_ = 0;
}

// They come first: a disk that has no room for them refuses before anything in the file is
// overwritten, so the file alone is still complete.
void Pager::Impl::WriteNewPages(std::span<Frame* const> pages) {
    if (pages.empty()) return;
    const std::uint64_t size = file->Size();
    try {
        WritePages(pages);
    } catch (...) {
        try {
            file->Truncate(size);
        } catch (...) {
            // Pages that nothing refers to stay at the end until the next attempt.
        }
        throw;
    }
}

void Pager::Impl::WritePages(std::span<Frame* const> pages) {
    const std::size_t longest = kWriteBytes / format.pageSize;
    for (std::size_t begin = 0; begin < pages.size();) {
        std::size_t end = begin + 1;
        while (end < pages.size() && end - begin < longest &&
               pages[end]->number == pages[end - 1]->number + 1) {
            ++end;
        }
        WriteRun(pages.subspan(begin, end - begin));
        begin = end;
    }
}

void Pager::Impl::WriteRun(std::span<Frame* const> run) {
    const std::uint64_t offset = std::uint64_t{run.front()->number} * format.pageSize;
    if (run.size() == 1) {
        file->Write(offset, {run.front()->bytes.get(), format.pageSize});
        return;
    }
    std::vector<std::byte> bytes;
    bytes.reserve(run.size() * format.pageSize);
    for (const Frame* frame : run) {
        bytes.insert(bytes.end(), frame->bytes.get(), frame->bytes.get() + format.pageSize);
    }
    file->Write(offset, bytes);
}

void Pager::Impl::MakeDurable() {
    if (inOperation_) throw std::logic_error("an operation is open");
    if (inTransaction_) {
        throw Error(ErrorKind::kTransactionOpen,
                    "What a transaction has changed so far cannot be made durable: it is open.");
    }
    if (!file || journal_.IsEmpty()) return;
    if (PutBackIfRemoved()) return;
    RequireUntouched();
    Frame& headerPage = Fetch(PageNumber{0});
    const std::uint16_t counter = journal_.Mark();
    journal_.Flush();
    WriteCommitCounter({headerPage.bytes.get(), format.pageSize}, format, counter);
    dirtyCount_ += headerPage.dirty ? 0 : 1;
    headerPage.dirty = true;
    writeFailed_ = true;
    WriteDirtyPages();
    writeFailed_ = false;
    filePageCount = pageCount;
    fileCounter = counter;
    journal_.Empty();
    cache_.Shrink();
}

void Pager::Impl::Close() {
    if (!file) return;
    if (inTransaction_) RollbackTransaction();
    try {
        if (!readOnly) {
            MakeDurable();
            journal_.Remove();
        }
    } catch (...) {
        journal_.Release();
        file.reset();
        throw;
    }
    file.reset();
}

void Pager::Impl::Abandon() noexcept {
    if (!file) return;
    journal_.Remove();
    file.reset();
    if (filePageCount > 0) return;
    try {
        files.Remove(path);
    } catch (...) {
        // An empty file stays; opening it says that it is no database.
    }
}

Operation::Operation(Pager& pager) : pager_(pager) {
    pager_.Internals().BeginOperation();
}

Operation::~Operation() {
    if (!committed_) pager_.Internals().RollbackOperation();
}

void Operation::Commit() {
    pager_.Internals().CommitOperation();
    committed_ = true;
}

Pager::Pager(std::unique_ptr<Impl> impl)
    : impl_(std::move(impl)), format_(&impl_->format), changeCount_(&impl_->changeCount) {}

Pager::~Pager() {
    try {
        Close();
    } catch (...) {
        // Whoever wants to know closes by hand. What was acknowledged is in the log.
    }
}

const FileHeader& Pager::Header() const {
    return impl_->header;
}
std::uint32_t Pager::PageCount() const {
    return impl_->pageCount;
}
bool Pager::InTransaction() const {
    return impl_->InTransaction();
}
bool Pager::IsReadOnly() const {
    return impl_->readOnly;
}

PageRef Pager::Page(PageNumber page) {
    return {impl_->Fetch(page), impl_->format.pageSize};
}

MutableBytes Pager::Change(PageNumber page) {
    return impl_->Change(page);
}

void Pager::Extend(PageNumber page) {
    // Writers reserve a few pages past the end; a map that skips many is no map of this file.
    constexpr std::uint32_t kMostReserved = 4096;
    if (page.value >= impl_->pageCount + kMostReserved) {
        ThrowDamaged("The file is damaged: its map of free pages does not fit its length.");
    }
    while (impl_->pageCount <= page.value) impl_->Append();
}

PageNumber Pager::Allocate() {
    GlobalMap map(*this, impl_->header.freePages);
    const PageNumber page = map.Take(impl_->lowestFree);
    impl_->lowestFree = PageNumber{page.value + 1};
    if (page.value < impl_->pageCount) {
        const MutableBytes bytes = Change(page);
        std::fill(bytes.begin(), bytes.end(), std::byte{0});
    } else {
        Extend(page);
    }
    return page;
}

void Pager::Free(PageNumber page) {
    const MutableBytes bytes = Change(page);
    GlobalMap(*this, impl_->header.freePages).GiveBack(page);
    std::fill_n(bytes.begin(), 4, std::byte{0});
    impl_->lowestFree = std::min(impl_->lowestFree, page);
}

void Pager::BeginTransaction() {
    impl_->BeginTransaction();
}
void Pager::CommitTransaction() {
    impl_->CommitTransaction();
}
void Pager::RollbackTransaction() noexcept {
    impl_->RollbackTransaction();
}
void Pager::MakeDurable() {
    impl_->MakeDurable();
}
void Pager::Close() {
    impl_->Close();
}
void Pager::Abandon() {
    impl_->Abandon();
}

}  // namespace jet
