#include "page/pager.h"

#include <algorithm>
#include <cstring>

#include "jet/error.h"
#include "page/bytes.h"
#include "page/pager_impl.h"

namespace jet {

namespace {

// The fewest pages that a cache is worth having for.
constexpr std::size_t kSmallestCache = 32;
// Pages that a transaction moves to the log at once.
constexpr std::size_t kPagesOfPart = 128;
constexpr std::uint32_t kReadAheadPages = 16;
// Neighbouring pages go to the file in pieces of this size.
constexpr std::size_t kWriteBytes = 256U << 10;

// Only a file system or a logger that calls back gets here.
[[noreturn]] void ThrowOperationOpen() {
    throw Error(ErrorKind::kTransactionOpen, "A change is being made; it has to end first.");
}

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
      journal_(fileSystem, LogPath(path), fileFormat.pageSize, file) {}

void Pager::Impl::Start(std::uint32_t pages, Bytes headerPage) {
    pageCount = pages;
    filePageCount = pages;
    fileCounter = ReadCommitCounter(headerPage, format);
    otherCounters = OtherCounters(headerPage, format);
}

void Pager::Impl::Recover(const LogReplay& replay) {
    TakePages(replay);
    journal_.Resume(replay.Position());
    MakeDurable();
}

void Pager::Impl::Overlay(const LogReplay& replay, std::unique_ptr<File> log) {
    TakePages(replay);
    journal_.ReadOnly(std::move(log));
}

void Pager::Impl::TakePages(const LogReplay& replay) {
    pageCount = replay.PageCount();
    for (const auto& [number, page] : replay.Pages()) {
        if (page.place != 0) {
            inLog_.Reserve(pageCount, 1);
            inLog_.Enter(number, page.place);
            continue;
        }
        Frame& frame = cache_.Insert(number);
        std::memset(frame.bytes.get(), 0, format.pageSize);
        std::copy(page.image.begin(), page.image.end(), frame.bytes.get());
        frame.dirty = true;
        ++dirtyCount_;
    }
    inLog_.Keep();
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
    if (page.value != nextInRow_ || inLog_.Find(page.value) != 0) return pages;
    while (pages < kReadAheadPages && page.value + pages < filePageCount &&
           cache_.Find(page.value + pages) == nullptr && inLog_.Find(page.value + pages) == 0) {
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

// A page that is not in memory.
void Pager::Impl::ReadStored(PageNumber page, MutableBytes into) {
    if (const std::uint64_t place = inLog_.Find(page.value)) {
        journal_.ReadPage(place, into);
    } else {
        file->Read(std::uint64_t{page.value} * format.pageSize, into);
    }
}

void Pager::Impl::CopyPage(PageNumber page, MutableBytes into) {
    if (const Frame* frame = cache_.Find(page.value)) {
        std::copy_n(frame->bytes.get(), format.pageSize, into.begin());
    } else {
        ReadStored(page, into);
    }
}

Frame& Pager::Impl::LoadAlone(PageNumber page) {
    Frame& frame = cache_.Insert(page.value);
    try {
        ReadStored(page, {frame.bytes.get(), format.pageSize});
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

void Pager::Impl::CheckpointWhenDue(std::size_t mostDirtyBytes) {
    if (dirtyCount_ * format.pageSize > mostDirtyBytes || journal_.Size() > largestLog_) {
        MakeDurable();
    }
}

void Pager::Impl::BeginTransaction() {
    RequireWritable();
    if (inTransaction_) {
        throw Error(ErrorKind::kTransactionOpen, "A transaction is open already.");
    }
    // Pages that are in memory only cannot be moved to the log by the transaction.
    CheckpointWhenDue(mostDirtyBytes_ / 4);
    inTransaction_ = true;
    pagesBefore_ = pageCount;
}

void Pager::Impl::BeginOperation() {
    RequireWritable();
    if (inOperation_) ThrowOperationOpen();
    if (inTransaction_) {
        SpillWhenDue();
    } else {
        CheckpointWhenDue(mostDirtyBytes_);
        pagesBefore_ = pageCount;
    }
    inOperation_ = true;
    pagesBeforeOperation_ = pageCount;
    firstOfOperation_ = changed_.Size();
}

MutableBytes Pager::Impl::Change(PageNumber page) {
    Frame& frame = Fetch(page);
    if (!frame.changing) {
        (frame.inTransaction ? savepoint_ : changed_).Add(frame, false);
        frame.inTransaction = true;
        frame.changing = true;
    }
    return {frame.bytes.get(), format.pageSize};
}

void Pager::Impl::Append() {
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

PageChange Pager::Impl::ChangeOf(const UndoImage& image) const {
    const Bytes before = changed_.Before(image);
    const Bytes after(image.frame->bytes.get(), format.pageSize);
    return {.page = PageNumber{image.frame->number},
            .fresh = image.fresh,
            .before = before,
            .after = after,
            .firstDifference = FirstDifference(before, after, 0)};
}

void Pager::Impl::CollectChanges() {
    changes_.clear();
    for (const UndoImage& image : changed_.From(0)) {
        const PageChange change = ChangeOf(image);
        if (change.fresh || change.firstDifference < format.pageSize) changes_.push_back(change);
    }
}

// The moment of commitment.
void Pager::Impl::WriteToLog() {
    CollectChanges();
    if (changes_.empty() && !journal_.HasParts()) return;
    journal_.Append(changes_, pageCount, {filePageCount, fileCounter, otherCounters});
    // Done: nothing from here on fails.
    for (const PageChange& change : changes_) {
        Frame& frame = *cache_.Find(change.page.value);
        dirtyCount_ += frame.dirty ? 0 : 1;
        frame.dirty = true;
    }
    inLog_.Keep();
    ++changeCount;
}

void Pager::Impl::SpillWhenDue() {
    const std::size_t most = mostDirtyBytes_ / 4 / format.pageSize;
    if (changed_.Size() < keptAtSpill_ + most) return;
    Spill();
    keptAtSpill_ = changed_.Size();
    cache_.Shrink();
}

// Moves the pages of the open transaction to the log, from where they are read when they are needed
// again. Those that were changed before, and are in neither file, stay: a rollback needs them.
void Pager::Impl::Spill() {
    std::vector<const UndoImage*> images;
    images.reserve(changed_.Size());
    for (const UndoImage& image : changed_.From(0)) {
        if (!image.frame->dirty) images.push_back(&image);
    }
    inLog_.Reserve(pageCount, images.size());
    try {
        for (std::size_t at = 0; at < images.size(); at += kPagesOfPart) {
            SpillPart(std::span(images).subspan(at, std::min(kPagesOfPart, images.size() - at)));
        }
    } catch (...) {
        changed_.RemoveSettled();
        throw;
    }
    changed_.RemoveSettled();
}

void Pager::Impl::SpillPart(std::span<const UndoImage* const> images) {
    changes_.clear();
    for (const UndoImage* image : images) changes_.push_back(ChangeOf(*image));
    std::vector<std::uint64_t> places(images.size());
    journal_.AppendPart(changes_, pageCount, {filePageCount, fileCounter, otherCounters}, places);
    for (std::size_t i = 0; i < images.size(); ++i) {
        inLog_.Enter(images[i]->frame->number, places[i]);
        images[i]->frame->inTransaction = false;
    }
}

void Pager::Impl::CommitOperation() {
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
    // What is in memory of the pages that were moved to the log is of the transaction.
    inLog_.Undo([this](std::uint32_t page) {
        if (Frame* frame = cache_.Find(page)) cache_.Drop(*frame);
    });
    journal_.DropParts();
    keptAtSpill_ = 0;
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
    keptAtSpill_ = 0;
}

// The pages that are newer than the data file, in its order.
std::vector<std::uint32_t> Pager::Impl::PagesBeyondFile() {
    std::vector<std::uint32_t> pages;
    cache_.ForEach([&](const Frame& frame) {
        if (frame.dirty) pages.push_back(frame.number);
    });
    inLog_.ForEach([&](std::uint32_t page) {
        const Frame* frame = cache_.Find(page);
        if (frame == nullptr || !frame->dirty) pages.push_back(page);
    });
    std::sort(pages.begin(), pages.end());
    return pages;
}

void Pager::Impl::WriteChangedPages() {
    const std::vector<std::uint32_t> pages = PagesBeyondFile();
    const auto fresh = std::lower_bound(pages.begin(), pages.end(), filePageCount);
    WriteNewPages({fresh, pages.end()});
    WritePages({pages.begin(), fresh});
    // A page stays dirty until the flush succeeded: after a failed one everything is written anew.
    file->Flush();
    cache_.ForEach([](Frame& frame) { frame.dirty = false; });
    inLog_.Clear();
    dirtyCount_ = 0;
}

// They come first: a disk that has no room for them refuses before anything in the file is
// overwritten, so the file alone is still complete.
void Pager::Impl::WriteNewPages(std::span<const std::uint32_t> pages) {
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

void Pager::Impl::WritePages(std::span<const std::uint32_t> pages) {
    const std::size_t longest = kWriteBytes / format.pageSize;
    for (std::size_t begin = 0; begin < pages.size();) {
        std::size_t end = begin + 1;
        while (end < pages.size() && end - begin < longest && pages[end] == pages[end - 1] + 1) {
            ++end;
        }
        WriteRun(pages[begin], end - begin);
        begin = end;
    }
}

void Pager::Impl::WriteRun(std::uint32_t first, std::size_t count) {
    const std::uint64_t offset = std::uint64_t{first} * format.pageSize;
    const Frame* frame = cache_.Find(first);
    if (count == 1 && frame != nullptr) {
        file->Write(offset, {frame->bytes.get(), format.pageSize});
        return;
    }
    std::vector<std::byte> bytes(count * format.pageSize);
    for (std::size_t i = 0; i < count; ++i) {
        CopyPage(PageNumber{first + static_cast<std::uint32_t>(i)},
                 MutableBytes(bytes).subspan(i * format.pageSize, format.pageSize));
    }
    file->Write(offset, bytes);
}

void Pager::Impl::MakeDurable() {
    if (inOperation_) ThrowOperationOpen();
    if (inTransaction_) {
        throw Error(ErrorKind::kTransactionOpen,
                    "What a transaction has changed so far cannot be made durable: it is open.");
    }
    if (!file || journal_.IsEmpty()) return;
    if (PutBackIfRemoved()) return;
    RequireUntouched();
    Frame& headerPage = Fetch(PageNumber{0});
    const std::uint16_t counter = journal_.WriteCheckpoint();
    journal_.Flush();
    WriteCommitCounter({headerPage.bytes.get(), format.pageSize}, format, counter);
    dirtyCount_ += headerPage.dirty ? 0 : 1;
    headerPage.dirty = true;
    writeFailed_ = true;
    WriteChangedPages();
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
        if (readOnly) {
            journal_.Release();
        } else {
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
