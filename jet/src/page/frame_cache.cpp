#include "page/frame_cache.h"

#include <algorithm>

namespace jet {

Frame& FrameCache::Insert(std::uint32_t page) {
    if (page >= frameOf_.size()) {
        frameOf_.resize(std::max<std::size_t>(page + 1, frameOf_.size() * 2), nullptr);
    }
    Frame* frame = frames_.size() >= capacity_ ? Evict() : nullptr;
    if (frame == nullptr) {
        auto made = std::make_unique<Frame>();
        made->bytes = std::make_unique_for_overwrite<std::byte[]>(pageSize_);
        frames_.push_back(std::move(made));
        frame = frames_.back().get();
    }
    frame->number = page;
    frame->recent = true;
    frameOf_[page] = frame;
    return *frame;
}

void FrameCache::Drop(Frame& frame) {
    frameOf_[frame.number] = nullptr;
    frame.number = Frame::kNone;
    frame.dirty = false;
    frame.inTransaction = false;
    frame.changing = false;
}

Frame* FrameCache::Evict() {
    // A cache full of kept frames is not searched anew for each page: the search goes on when it
    // has grown by a quarter.
    if (unmovable_ > 0 && frames_.size() < unmovable_ + unmovable_ / 4) return nullptr;
    unmovable_ = 0;
    for (std::size_t step = 0; step < 2 * frames_.size(); ++step) {
        if (hand_ >= frames_.size()) hand_ = 0;
        Frame& frame = *frames_[hand_++];
        if (!CanLeave(frame)) continue;
        if (frame.recent && frame.number != Frame::kNone) {
            frame.recent = false;
            continue;
        }
        if (frame.number != Frame::kNone) frameOf_[frame.number] = nullptr;
        return &frame;
    }
    unmovable_ = frames_.size();
    return nullptr;
}

void FrameCache::Shrink() {
    unmovable_ = 0;
    if (frames_.size() <= capacity_) return;
    std::size_t surplus = frames_.size() - capacity_;
    std::erase_if(frames_, [&](const std::unique_ptr<Frame>& frame) {
        if (surplus == 0 || !CanLeave(*frame)) return false;
        --surplus;
        if (frame->number != Frame::kNone) frameOf_[frame->number] = nullptr;
        return true;
    });
}

}  // namespace jet
