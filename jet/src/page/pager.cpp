#include "page/pager.h"

#include <algorithm>
#include <cassert>
#include <cstring>

#include "jet/error.h"
#include "page/bytes.h"
#include "page/global_map.h"
#include "page/pager_impl.h"

namespace jet {

namespace {

constexpr std::size_t kCacheBytes = 24U << 20;

}  // namespace

Pager::Impl::Impl(FileSystem& fileSystem, std::filesystem::path filePath,
                  std::unique_ptr<File> openFile, const Format& fileFormat, bool isReadOnly)
    : files(fileSystem),
      path(std::move(filePath)),
      file(std::move(openFile)),
      format(fileFormat),
      readOnly(isReadOnly),
      cache_(fileFormat.pageSize, kCacheBytes / fileFormat.pageSize) {}

Frame& Pager::Impl::Fetch(PageNumber page) {
    if (Frame* frame = cache_.Find(page.value)) {
        frame->recent = true;
        return *frame;
    }
    if (!file) throw Error(ErrorKind::kClosed, "The database is closed.");
    if (page.value >= pageCount) {
        ThrowDamaged("The file is damaged: it refers to a page past its end.");
    }
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

void Pager::Impl::Begin() {
    if (!file) throw Error(ErrorKind::kClosed, "The database is closed.");
    if (readOnly) throw Error(ErrorKind::kReadOnly, "The file is open for reading only.");
    assert(!inOperation_);
    inOperation_ = true;
    pageCountBefore_ = pageCount;
}

void Pager::Impl::RequireOperation() const {
    assert(inOperation_);
}

Pager::Impl::ChangedPage& Pager::Impl::Remember(Frame& frame) {
    if (changedCount_ == changed_.size()) {
        ChangedPage entry;
        entry.before = std::make_unique_for_overwrite<std::byte[]>(format.pageSize);
        changed_.push_back(std::move(entry));
    }
    ChangedPage& entry = changed_[changedCount_++];
    entry.frame = &frame;
    entry.fresh = false;
    frame.changing = true;
    return entry;
}

MutableBytes Pager::Impl::Change(PageNumber page) {
    RequireOperation();
    Frame& frame = Fetch(page);
    if (!frame.changing) {
        const ChangedPage& entry = Remember(frame);
        std::memcpy(entry.before.get(), frame.bytes.get(), format.pageSize);
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
        ChangedPage& entry = Remember(frame);
        entry.fresh = true;
        std::memset(entry.before.get(), 0, format.pageSize);
    } catch (...) {
        cache_.Drop(frame);
        throw;
    }
    ++pageCount;
}

void Pager::Impl::Commit() {
    RequireOperation();
    bool anything = false;
    for (std::size_t i = 0; i < changedCount_; ++i) {
        const ChangedPage& entry = changed_[i];
        Frame& frame = *entry.frame;
        if (!entry.fresh &&
            std::memcmp(frame.bytes.get(), entry.before.get(), format.pageSize) == 0) {
            continue;
        }
        anything = true;
        dirtyCount_ += frame.dirty ? 0 : 1;
        frame.dirty = true;
    }
    EndOperation();
    if (anything) ++changeCount;
}

void Pager::Impl::Rollback() noexcept {
    for (std::size_t i = 0; i < changedCount_; ++i) {
        const ChangedPage& entry = changed_[i];
        if (entry.fresh) {
            cache_.Drop(*entry.frame);
        } else {
            std::memcpy(entry.frame->bytes.get(), entry.before.get(), format.pageSize);
        }
    }
    if (changedCount_ > 0) ++changeCount;
    pageCount = pageCountBefore_;
    lowestFree = {};
    mapRowPage = {};
    EndOperation();
}

void Pager::Impl::EndOperation() noexcept {
    for (std::size_t i = 0; i < changedCount_; ++i) changed_[i].frame->changing = false;
    changedCount_ = 0;
    inOperation_ = false;
}

void Pager::Impl::WriteDirtyPages() {
    std::vector<Frame*> dirty;
    cache_.ForEach([&](Frame& frame) {
        if (frame.dirty) dirty.push_back(&frame);
    });
    std::sort(dirty.begin(), dirty.end(),
              [](const Frame* a, const Frame* b) { return a->number < b->number; });
    for (const Frame* frame : dirty) {
        file->Write(std::uint64_t{frame->number} * format.pageSize,
                    {frame->bytes.get(), format.pageSize});
    }
    file->Flush();
    for (Frame* frame : dirty) frame->dirty = false;
    dirtyCount_ = 0;
}

void Pager::Impl::MakeDurable() {
    if (!file || dirtyCount_ == 0) return;
    WriteDirtyPages();
    cache_.Shrink();
}

void Pager::Impl::Close() {
    if (!file) return;
    MakeDurable();
    file.reset();
}

void Pager::Impl::Abandon() noexcept {
    file.reset();
}

Operation::Operation(Pager& pager) : pager_(pager) {
    pager_.Internals().Begin();
}

Operation::~Operation() {
    if (!committed_) pager_.Internals().Rollback();
}

void Operation::Commit() {
    pager_.Internals().Commit();
    committed_ = true;
}

std::unique_ptr<Pager> Pager::Open(FileSystem& files, const std::filesystem::path& path,
                                   const OpenOptions& options, Recovery& recovery) {
    recovery = {};
    const std::filesystem::path resolved = files.Resolve(path);
    auto file = files.Open(resolved, options.readOnly ? OpenMode::kReadOnly : OpenMode::kReadWrite);
    if (!file->TryLock(options.exclusive || !options.readOnly)) {
        throw Error(ErrorKind::kFileInUse, "The file is in use by another program.");
    }
    const std::uint64_t size = file->Size();
    std::vector<std::byte> prefix(std::min<std::uint64_t>(size, kHeaderPrefix));
    file->Read(0, prefix);
    const FileHeader header = ReadFileHeader(prefix);
    const Format& format = FormatOf(header.version);
    auto impl = std::make_unique<Impl>(files, resolved, std::move(file), format, options.readOnly);
    impl->header = header;
    if (size % format.pageSize != 0 || size / format.pageSize < kSmallestPageCount ||
        size / format.pageSize > LargestPageCount(format)) {
        ThrowDamaged("The file is damaged: it has been cut off.");
    }
    impl->pageCount = static_cast<std::uint32_t>(size / format.pageSize);
    return std::make_unique<Pager>(std::move(impl));
}

std::unique_ptr<Pager> Pager::Create(FileSystem& files, const std::filesystem::path& path,
                                     Version version) {
    auto file = files.Open(path, OpenMode::kCreateNew);
    const std::filesystem::path resolved = files.Resolve(path);
    if (!file->TryLock(true)) {
        throw Error(ErrorKind::kFileInUse, "The file is in use by another program.");
    }
    const Format& format = FormatOf(version);
    auto pager = std::make_unique<Pager>(
        std::make_unique<Impl>(files, resolved, std::move(file), format, false));
    Operation operation(*pager);
    pager->Extend(PageNumber{1});
    WriteFileHeader(pager->Change(PageNumber{0}), version);
    WriteGlobalMapsPage(pager->Change(PageNumber{1}), format);
    pager->impl_->header = ReadFileHeader(pager->Page(PageNumber{0}).Data());
    operation.Commit();
    return pager;
}

Pager::Pager(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}

Pager::~Pager() {
    try {
        Close();
    } catch (...) {
        // Whoever wants to know closes by hand. What was acknowledged is in the log.
    }
}

const Format& Pager::FileFormat() const {
    return impl_->format;
}
const FileHeader& Pager::Header() const {
    return impl_->header;
}
std::uint32_t Pager::PageCount() const {
    return impl_->pageCount;
}
bool Pager::IsReadOnly() const {
    return impl_->readOnly;
}
std::uint64_t Pager::ChangeCount() const {
    return impl_->changeCount;
}

PageRef Pager::Page(PageNumber page) {
    return {impl_->Fetch(page), impl_->format.pageSize};
}

MutableBytes Pager::Change(PageNumber page) {
    return impl_->Change(page);
}

void Pager::Extend(PageNumber page) {
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
