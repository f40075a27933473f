#include "page/frame_cache.h"

#include <algorithm>
#include <utility>

namespace jet {

void FrameCache::MakeRoomFor(std::uint32_t page) {
    const std::size_t part = page / kPart;
    if (part >= frameOf_.size()) frameOf_.resize(part + 1);
    if (!frameOf_[part]) frameOf_[part] = std::make_unique<Part>();
    passing_.reserve(kMostPassing);
}

Frame& FrameCache::Insert(std::uint32_t page, bool passing) {
    MakeRoomFor(page);
    Frame* frame = passing ? EvictPassing() : nullptr;
    if (frame == nullptr) frame = EvictSpent();
    if (frame == nullptr && frames_.size() >= capacity_) frame = Evict();
    if (frame == nullptr) frame = &Grow();
    frame->number = page;
    frame->recent = true;
    if (passing && !frame->passing && passing_.size() < kMostPassing) {
        passing_.push_back(frame);
        frame->passing = true;
    }
    SetFrame(page, frame);
    return *frame;
}

Frame& FrameCache::Grow() {
    auto bytes = std::make_unique_for_overwrite<std::byte[]>(pageSize_);
    if (idle_ == nullptr) idle_ = &store_.emplace_back();
    frames_.push_back(idle_);
    Frame& frame = *std::exchange(idle_, idle_->nextIdle);
    frame.bytes = std::move(bytes);
    return frame;
}

void FrameCache::Drop(Frame& frame) {
    SetFrame(frame.number, nullptr);
    frame.number = Frame::kNone;
    frame.dirty = false;
    frame.inTransaction = false;
    frame.changing = false;
    frame.settled = false;
}

Frame* FrameCache::Evict() {
    // A cache full of kept frames is not searched anew for each page: the search goes on when it
    // has grown by a quarter.
    if (unmovable_ > 0 && frames_.size() < unmovable_ + unmovable_ / 4) return nullptr;
    unmovable_ = 0;
    for (std::size_t step = 0; step < 2 * frames_.size(); ++step) {
        if (hand_ >= frames_.size()) hand_ = 0;
        Frame& frame = *frames_[hand_++];
        if (!CanLeave(frame) || frame.passing) continue;
        if (frame.recent && frame.number != Frame::kNone) {
            frame.recent = false;
            continue;
        }
        if (frame.number != Frame::kNone) SetFrame(frame.number, nullptr);
        return &frame;
    }
    unmovable_ = frames_.size();
    return nullptr;
}

// The longest passed of these frames that can leave.
Frame* FrameCache::EvictPassing() {
    if (passing_.size() < kMostPassing) return nullptr;
    for (std::size_t step = 0; step < passing_.size(); ++step) {
        if (nextPassing_ >= passing_.size()) nextPassing_ = 0;
        Frame& frame = *passing_[nextPassing_++];
        if (!CanLeave(frame)) continue;
        if (frame.number != Frame::kNone) SetFrame(frame.number, nullptr);
        return &frame;
    }
    return nullptr;
}

void FrameCache::ReserveSpent(std::size_t more) {
    spent_.erase(spent_.begin(), spent_.begin() + static_cast<std::ptrdiff_t>(nextSpent_));
    nextSpent_ = 0;
    spent_.reserve(spent_.size() + more);
}

Frame* FrameCache::EvictSpent() {
    while (nextSpent_ < spent_.size()) {
        Frame& frame = *spent_[nextSpent_++];
        frame.spent = false;
        if (frame.recent || frame.passing || !CanLeave(frame)) continue;
        if (frame.number != Frame::kNone) SetFrame(frame.number, nullptr);
        return &frame;
    }
    spent_.clear();
    nextSpent_ = 0;
    return nullptr;
}

void FrameCache::Shrink() {
    unmovable_ = 0;
    if (frames_.size() <= capacity_) return;
    std::size_t surplus = frames_.size() - capacity_;
    for (Frame* frame : spent_) frame->spent = false;
    spent_.clear();
    nextSpent_ = 0;
    for (Frame* frame : passing_) frame->passing = false;
    passing_.clear();
    std::erase_if(frames_, [&](Frame* frame) {
        if (surplus == 0 || !CanLeave(*frame)) return false;
        --surplus;
        if (frame->number != Frame::kNone) SetFrame(frame->number, nullptr);
        *frame = Frame();
        frame->nextIdle = std::exchange(idle_, frame);
        return true;
    });
}

}  // namespace jet
