// The pages that are in memory.
//
// A frame holds one page. Pinned, dirty and changed frames stay; the others are given to new pages
// when the cache is full, the longest unused first (by the clock rule: a second chance for each
// frame that was used since the hand came by). When nothing can be given away the cache grows past
// its capacity, and shrinks again later.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <span>
#include <vector>

#include "os/page_memory.h"

namespace jet {

struct Frame {
    static constexpr std::uint32_t kNone = std::numeric_limits<std::uint32_t>::max();

    std::byte* bytes = nullptr;
    std::uint32_t number = kNone;
    std::uint32_t pins = 0;
    bool dirty = false;          // differs from the file
    bool inTransaction = false;  // changed by the open transaction
    bool changing = false;       // changed by the open operation
    bool settled = false;        // by now, the open operation has done with it
    bool recent = false;         // used since the clock's hand came by
    bool passing = false;        // of a scan of a file that is larger than the cache
    bool spent = false;          // leaves before others, unless it is used again
    std::size_t image = 0;       // its undo image, when it is in a transaction
};

class FrameCache {
public:
    FrameCache(std::uint32_t pageSize, std::size_t capacity)
        : pageSize_(pageSize), capacity_(capacity) {}

    [[nodiscard]] std::size_t Capacity() const { return capacity_; }
    // The frame of a page in memory, or null.
    [[nodiscard]] Frame* Find(std::uint32_t page) const {
        const std::size_t part = page / kPart;
        if (part >= frameOf_.size() || !frameOf_[part]) return nullptr;
        return (*frameOf_[part])[page % kPart];
    }
    // A frame for a page that is not in memory; its bytes are undefined. Passing pages take each
    // other's frames, a few of them, so that a scan of a large file neither fills the memory
    // nor drives out what is used again.
    Frame& Insert(std::uint32_t page, bool passing = false);
    // Takes the page out of memory. A pin on it keeps its bytes as long as it lives.
    void Drop(Frame& frame);
    // Lets the frame be given away before the cache grows, unless it is used again by then. Room
    // for it has been reserved.
    void Spend(Frame& frame) noexcept {
        if (!frame.spent) spent_.push_back(&frame);
        frame.spent = true;
    }
    void ReserveSpent(std::size_t more);
    // Gives memory beyond the capacity back, as far as it goes in large pieces.
    void Shrink();

    template <typename Visit>
    void ForEach(Visit visit) {
        for (Frame* frame : frames_) {
            if (frame->number != Frame::kNone) visit(*frame);
        }
    }

private:
    static bool CanLeave(const Frame& frame) {
        return frame.pins == 0 && !frame.dirty && !frame.inTransaction;
    }
    static bool CanLeave(std::span<Frame* const> frames) {
        return std::all_of(frames.begin(), frames.end(),
                           [](const Frame* frame) { return CanLeave(*frame); });
    }
    // The frames of as many neighboring pages; those of pages that were never read take no memory.
    static constexpr std::size_t kPart = 512;
    using Part = std::array<Frame*, kPart>;
    static constexpr std::size_t kMostPassing = 64;

    void SetFrame(std::uint32_t page, Frame* frame) {
        (*frameOf_[page / kPart])[page % kPart] = frame;
    }
    void MakeRoomFor(std::uint32_t page);
    Frame& Grow();
    void AddStore();
    // How many frames of the last store are in use.
    [[nodiscard]] std::size_t UsedOfLast() const {
        return frames_.size() - (room_ - stores_.back().frames.size());
    }
    Frame* Evict();
    Frame* EvictPassing();
    Frame* EvictSpent();

    // Memory comes in parts of many pages. Frames lie close together, apart from their pages: the
    // clock's hand comes by thousands of them.
    struct Store {
        PageMemory memory;
        std::vector<Frame> frames;
    };

    std::uint32_t pageSize_;
    std::size_t capacity_;
    std::vector<Store> stores_;
    std::size_t room_ = 0;  // frames of all stores
    std::vector<Frame*>
        frames_;  // those in use, in the order of the stores: all but some last ones
    std::vector<std::unique_ptr<Part>> frameOf_;  // by page number
    std::vector<Frame*> passing_;                 // taken in turn
    std::size_t nextPassing_ = 0;
    std::vector<Frame*> spent_;  // taken in turn
    std::size_t nextSpent_ = 0;
    std::size_t hand_ = 0;
    std::size_t unmovable_ = 0;  // frames that the last full turn of the hand found kept
};

}  // namespace jet
