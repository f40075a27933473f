// The pages that are in memory.
//
// A frame holds one page. Pinned, dirty and changed frames stay; the others are given to new pages
// when the cache is full, the longest unused first (by the clock rule: a second chance for each
// frame that was used since the hand came by). When nothing can be given away the cache grows past
// its capacity, and shrinks again later.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

namespace jet {

struct Frame {
    static constexpr std::uint32_t kNone = std::numeric_limits<std::uint32_t>::max();

    std::unique_ptr<std::byte[]> bytes;
    std::uint32_t number = kNone;
    std::uint32_t pins = 0;
    bool dirty = false;          // differs from the file
    bool inTransaction = false;  // changed by the open transaction
    bool changing = false;       // changed by the open operation
    bool recent = false;         // used since the clock's hand came by
};

class FrameCache {
public:
    FrameCache(std::uint32_t pageSize, std::size_t capacity)
        : pageSize_(pageSize), capacity_(capacity) {}

    // The frame of a page in memory, or null.
    [[nodiscard]] Frame* Find(std::uint32_t page) const {
        return page < frameOf_.size() ? frameOf_[page] : nullptr;
    }
    // A frame for a page that is not in memory; its bytes are undefined.
    Frame& Insert(std::uint32_t page);
    // Takes the page out of memory. A pin on it keeps its bytes until it goes.
    void Drop(Frame& frame);
    // Gives memory beyond the capacity back.
    void Shrink();

    template <typename Visit>
    void ForEach(Visit visit) {
        for (const auto& frame : frames_) {
            if (frame->number != Frame::kNone) visit(*frame);
        }
    }

private:
    static bool CanLeave(const Frame& frame) {
        return frame.pins == 0 && !frame.dirty && !frame.inTransaction;
    }
    Frame* Evict();

    std::uint32_t pageSize_;
    std::size_t capacity_;
    std::vector<std::unique_ptr<Frame>> frames_;
    std::vector<Frame*> frameOf_;  // by page number
    std::size_t hand_ = 0;
    std::size_t unmovable_ = 0;  // frames that the last full turn of the hand found kept
};

}  // namespace jet
