// The pages of an open file in their newest state: in memory, in the log, or else in the data file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "page/data_file.h"
#include "page/frame_cache.h"
#include "page/journal.h"
#include "page/log_replay.h"
#include "page/pages_in_log.h"
#include "page/types.h"

namespace jet {

class PageCache {
public:
    // `capacity` in bytes. The data file and the log must outlive it.
    PageCache(DataFile& file, Journal& journal, std::size_t capacity);

    [[nodiscard]] std::uint32_t PageSize() const { return pageSize_; }
    // With those that the data file does not have yet.
    [[nodiscard]] std::uint32_t PageCount() const { return pageCount_; }
    void SetPageCount(std::uint32_t pages) noexcept { pageCount_ = pages; }
    // Takes over what a log holds beyond the file.
    void Take(const LogReplay& replay);

    // The page's frame, read when it is not in memory. kClosed, kDamaged past the end, kIo.
    Frame& Fetch(PageNumber page) {
        if (Frame* frame = frames_.Find(page.value)) {
            frame->recent = true;
            return *frame;
        }
        return FetchMissing(page);
    }
    // The page's frame when it is in memory, or null.
    [[nodiscard]] Frame* Find(std::uint32_t page) const { return frames_.Find(page); }
    // A frame of zeros for the page past the last one; it counts when the page count is raised.
    Frame& AddZeroed();
    void Drop(Frame& frame) { frames_.Drop(frame); }
    void Shrink() { frames_.Shrink(); }
    [[nodiscard]] Bytes BytesOf(const Frame& frame) const { return {frame.bytes, pageSize_}; }
    [[nodiscard]] MutableBytes BytesOf(Frame& frame) const { return {frame.bytes, pageSize_}; }
    // Reads a page as it is in the log or else in the data file, whatever is in memory. kIo.
    void ReadStored(PageNumber page, MutableBytes into);
    // Copies a page without keeping it in memory.
    void Copy(PageNumber page, MutableBytes into);

    // Notes that the page differs from the data file. Does not fail.
    void MarkDirty(Frame& frame) noexcept;
    [[nodiscard]] std::size_t DirtyBytes() const { return dirtyCount_ * pageSize_; }
    [[nodiscard]] std::size_t DirtyCount() const { return dirtyCount_; }
    // The frames of dirty pages that the data file does not have yet, as far as they have not been
    // used since they were last asked for in this way.
    [[nodiscard]] std::vector<Frame*> ColdNewPages();
    // Notes that the bytes of the page lie in the log, so that its frame can be used for others.
    // Room for it has been reserved.
    void MoveToLog(Frame& frame, std::uint64_t place) noexcept;
    void ReserveMoves(std::size_t pages);
    // The pages that are newer than the data file, in its order.
    [[nodiscard]] std::vector<std::uint32_t> PagesBeyondFile();
    // The data file holds them all.
    void MarkAllClean() noexcept;
    [[nodiscard]] PagesInLog& InLog() { return inLog_; }

private:
    Frame& FetchMissing(PageNumber page);
    Frame& Load(PageNumber page);
    Frame& LoadAlone(PageNumber page);
    [[nodiscard]] bool IsReadWhole() const;
    [[nodiscard]] std::uint32_t ReadAhead(PageNumber page) const;
    DataFile& file_;
    Journal& journal_;
    std::uint32_t pageSize_;
    FrameCache frames_;
    PagesInLog inLog_;
    std::uint32_t pageCount_ = 0;
    std::size_t dirtyCount_ = 0;
    std::uint32_t nextInRow_ = 0;  // the page that reading in file order would ask for next
    std::uint32_t inRow_ = 0;      // pages read in file order until now
    std::uint32_t readAlone_ = 0;  // pages that were read one at a time
    std::vector<std::byte> readBuffer_;
};

}  // namespace jet
