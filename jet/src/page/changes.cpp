#include "page/changes.h"

#include <algorithm>

#include "jet/error.h"
#include "page/bytes.h"
#include "page/log_ranges.h"

namespace jet {

namespace {

// Pages that are moved to the log at once.
constexpr std::size_t kPagesOfPart = 128;
// Changed pages in one record; a commit of more is preceded by parts.
constexpr std::size_t kPagesOfCommit = 512;
// Pages of a transaction that are copied before they change, although they could be read again:
// that takes less time, and many would fill the memory.
constexpr std::size_t kMostCopies = 256;

}  // namespace

Changes::Changes(PageCache& pages, Journal& journal, const Format& format, std::size_t spillBytes)
    : pages_(pages),
      journal_(journal),
      format_(format),
      spillPages_(std::max<std::size_t>(1, spillBytes / format.pageSize)),
      changed_(format.pageSize),
      before_(format.pageSize),
      lookPages_(std::max<std::size_t>(1, spillPages_ / 32)) {}

void Changes::BeginTransaction() noexcept {
    inTransaction_ = true;
    lastLook_ = 0;
    pagesBefore_ = pages_.PageCount();
}

void Changes::BeginOperation() {
    if (inTransaction_) {
        SpillWhenDue();
    } else {
        MoveWhenDue();
        pagesBefore_ = pages_.PageCount();
    }
    inOperation_ = true;
    pagesBeforeOperation_ = pages_.PageCount();
    firstOfOperation_ = changed_.Size();
    partsBeforeOperation_ = journal_.Parts();
    inLogBeforeOperation_ = pages_.InLog().Entries();
    settled_ = 0;
}

MutableBytes Changes::Change(PageNumber page) {
    Frame& frame = pages_.Fetch(page);
    if (!frame.changing) {
        Enter(frame);
        if (frame.image < firstOfOperation_) savepoint_.Add(frame, pages_.BytesOf(frame), 0);
        changed_.Cover(frame, 0, format_.pageSize);
        frame.changing = true;
    }
    frame.settled = false;
    return pages_.BytesOf(frame);
}

MutableBytes Changes::ChangePart(PageNumber page, std::size_t from, std::size_t size) {
    Frame& frame = pages_.Fetch(page);
    const MutableBytes bytes = pages_.BytesOf(frame);
    if (!frame.changing) {
        const MutableBytes part = Slice(bytes, from, size);
        Enter(frame);
        if (frame.image < firstOfOperation_) savepoint_.Add(frame, part, from);
        changed_.Cover(frame, from, size);
    }
    frame.settled = false;
    return bytes;
}

void Changes::Append() {
    if (pages_.PageCount() >= LargestPageCount(format_)) {
        throw Error(ErrorKind::kFileTooLarge,
                    "The file has reached the largest size that its format allows.");
    }
    Frame& frame = pages_.AddZeroed();
    try {
        changed_.AddFresh(frame);
    } catch (...) {
        pages_.Drop(frame);
        throw;
    }
    frame.inTransaction = true;
    frame.changing = true;
    pages_.SetPageCount(pages_.PageCount() + 1);
}

// Makes the page one of the transaction.
void Changes::Enter(Frame& frame) {
    if (frame.inTransaction) return;
    if (frame.dirty || changed_.Size() < std::min(kMostCopies, spillPages_ / 4)) {
        changed_.Add(frame);
    } else {
        changed_.AddStored(frame);
    }
    frame.inTransaction = true;
}

PageChange Changes::ChangeOf(const UndoImage& image) {
    const PageNumber page{image.frame->number};
    if (image.stored) pages_.ReadStored(page, before_);
    const Bytes before = image.stored ? Bytes(before_) : changed_.Before(image);
    const Bytes after = pages_.BytesOf(*image.frame);
    const std::size_t end = std::max(image.from, image.end);
    return {.page = page,
            .fresh = image.fresh,
            .before = before,
            .after = after,
            .from = FirstDifference(before.first(end), after.first(end), image.from),
            .end = end};
}

void Changes::AddChanges(std::span<const UndoImage> images) {
    for (const UndoImage& image : images) {
        const PageChange change = ChangeOf(image);
        if (!change.fresh && change.from == change.end) continue;
        journal_.Add(change);
        written_.push_back(image.frame);
    }
}

// The last record is the moment of commitment.
void Changes::WriteToLog() {
    written_.clear();
    const std::span<const UndoImage> images = changed_.From(0);
    const std::size_t most = std::min(kPagesOfCommit, spillPages_);
    std::size_t at = 0;
    for (; images.size() - at > most; at += most) {
        journal_.Start(LogRecordKind::kPart, pages_.PageCount());
        AddChanges(images.subspan(at, most));
        journal_.Write();
    }
    journal_.Start(LogRecordKind::kCommit, pages_.PageCount());
    AddChanges(images.subspan(at));
    if (written_.empty() && !journal_.HasParts()) return;
    journal_.Write();
    // Done: nothing from here on fails.
    for (Frame* frame : written_) pages_.MarkDirty(*frame);
    pages_.InLog().Keep();
    ++count_;
}

// Moves pages of the open transaction to the log, from where they are read when they are needed
// again. Those that were changed before, and are in neither file, stay: a rollback needs them.
void Changes::SpillWhenDue() {
    lastLook_ = std::min(lastLook_, changed_.Size());
    if (changed_.Size() >= keptAtSpill_ + spillPages_) {
        std::vector<const UndoImage*> images;
        images.reserve(changed_.Size());
        for (const UndoImage& image : changed_.From(0)) {
            if (!image.frame->dirty) images.push_back(&image);
        }
        Spill(images);
        keptAtSpill_ = changed_.Size();
        pages_.Shrink();
    } else if (changed_.Size() >= lastLook_ + lookPages_) {
        Spill(ColdNewPages());
        lastLook_ = changed_.Size();
    }
}

// Those of the transaction that have not been used since the last look.
std::vector<const UndoImage*> Changes::ColdNewPages() {
    std::vector<const UndoImage*> cold;
    for (const UndoImage& image : changed_.From(0)) {
        if (!image.fresh) continue;
        if (!image.frame->recent) cold.push_back(&image);
        image.frame->recent = false;
    }
    return cold;
}

void Changes::Spill(const std::vector<const UndoImage*>& images) {
    pages_.ReserveMoves(images.size());
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

void Changes::SpillPart(std::span<const UndoImage* const> images) {
    std::vector<std::uint64_t> places;
    places.reserve(images.size());
    journal_.Start(LogRecordKind::kPart, pages_.PageCount());
    for (const UndoImage* image : images) places.push_back(journal_.AddWhole(ChangeOf(*image)));
    journal_.Write();
    for (std::size_t i = 0; i < images.size(); ++i) {
        images[i]->frame->inTransaction = false;
        images[i]->frame->changing = false;
        pages_.MoveToLog(*images[i]->frame, places[i]);
    }
}

void Changes::Settle(PageNumber page) {
    Frame* frame = pages_.Find(page.value);
    if (frame == nullptr || !frame->inTransaction || frame->image < firstOfOperation_) return;
    frame->settled = true;
    if (++settled_ < lookPages_) return;
    settled_ = 0;
    Spill(SettledPages());
}

// Those that nobody but the open operation has changed and that nobody looks at.
std::vector<const UndoImage*> Changes::SettledPages() {
    std::vector<const UndoImage*> settled;
    for (const UndoImage& image : changed_.From(firstOfOperation_)) {
        if (!image.frame->settled || image.frame->dirty || image.frame->pins > 0) continue;
        image.frame->recent = false;
        settled.push_back(&image);
    }
    return settled;
}

// The same for pages that were committed.
void Changes::MoveWhenDue() {
    lastLook_ = std::min(lastLook_, pages_.DirtyCount());
    if (pages_.DirtyCount() < lastLook_ + lookPages_) return;
    const std::vector<Frame*> cold = pages_.ColdNewPages();
    for (std::size_t at = 0; at < cold.size(); at += kPagesOfPart) {
        MovePart(std::span(cold).subspan(at, std::min(kPagesOfPart, cold.size() - at)));
    }
    lastLook_ = pages_.DirtyCount();
}

void Changes::MovePart(std::span<Frame* const> frames) {
    std::vector<std::uint64_t> places;
    places.reserve(frames.size());
    pages_.ReserveMoves(frames.size());
    journal_.Start(LogRecordKind::kMoved, pages_.PageCount());
    for (Frame* frame : frames) {
        PageChange moved;
        moved.page = PageNumber{frame->number};
        moved.after = pages_.BytesOf(*frame);
        places.push_back(journal_.AddWhole(moved));
    }
    journal_.Write();
    for (std::size_t i = 0; i < frames.size(); ++i) pages_.MoveToLog(*frames[i], places[i]);
    pages_.InLog().Keep();
}

void Changes::CommitOperation() {
    if (inTransaction_) {
        ++count_;
    } else {
        WriteToLog();
    }
    EndOperation();
}

void Changes::RollbackOperation() noexcept {
    savepoint_.Restore();
    if (!savepoint_.IsEmpty()) ++count_;
    UndoFrom(firstOfOperation_);
    ForgetPagesInLog(inLogBeforeOperation_);
    journal_.DropPartsSince(partsBeforeOperation_);
    pages_.SetPageCount(pagesBeforeOperation_);
    EndOperation();
}

void Changes::CommitTransaction() {
    try {
        WriteToLog();
    } catch (...) {
        RollbackTransaction();
        throw;
    }
    inTransaction_ = false;
    ForgetImages();
}

void Changes::RollbackTransaction() noexcept {
    UndoFrom(0);
    ForgetPagesInLog(0);
    journal_.DropParts();
    keptAtSpill_ = 0;
    pages_.SetPageCount(pagesBefore_);
    inTransaction_ = false;
    ++count_;
}

// What is in memory of the pages that were moved to the log is what was undone.
void Changes::ForgetPagesInLog(std::size_t from) noexcept {
    pages_.InLog().UndoFrom(from, [this](std::uint32_t page) {
        if (Frame* frame = pages_.Find(page)) pages_.Drop(*frame);
    });
}

// Puts the pages back that were changed from this one on.
void Changes::UndoFrom(std::size_t first) noexcept {
    for (const UndoImage& image : changed_.From(first)) {
        if (image.fresh || image.stored) {
            pages_.Drop(*image.frame);
        } else {
            changed_.Restore(image);
            image.frame->inTransaction = false;
            image.frame->changing = false;
        }
    }
    if (changed_.Size() > first) ++count_;
    changed_.CutTo(first);
    lowestFree = {};
    mapRowPage = {};
}

void Changes::EndOperation() noexcept {
    for (const UndoImage& image : changed_.From(firstOfOperation_)) image.frame->changing = false;
    savepoint_.Clear();
    inOperation_ = false;
    if (!inTransaction_) ForgetImages();
}

void Changes::ForgetImages() noexcept {
    for (const UndoImage& image : changed_.From(0)) image.frame->inTransaction = false;
    changed_.CutTo(0);
    keptAtSpill_ = 0;
}

}  // namespace jet
