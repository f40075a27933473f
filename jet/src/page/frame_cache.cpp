#include "page/frame_cache.h"

#include <algorithm>
#include <utility>

namespace jet {

namespace {

// Larger pieces of memory go back to the system as soon as they are freed, and are had from it anew
// by the next file that is opened.
constexpr std::size_t kStoreSize = std::size_t{64} << 10;

}  // namespace

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
    if (frames_.size() == room_) AddStore();
    Frame& frame = stores_.back().frames[UsedOfLast()];
    frames_.push_back(&frame);
    return frame;
}

void FrameCache::AddStore() {
    const std::size_t size = PageMemory::kApart ? pageSize_ : kStoreSize;
    Store store{PageMemory(size), std::vector<Frame>(size / pageSize_)};
    std::byte* bytes = store.memory.Data();
    for (Frame& frame : store.frames) {
        frame.bytes = bytes;
        bytes += pageSize_;
    }
    const std::size_t room = room_ + store.frames.size();
    if (frames_.capacity() < room) frames_.reserve(2 * room);
    stores_.push_back(std::move(store));
    room_ = room;
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
    for (Frame* frame : spent_) frame->spent = false;
    spent_.clear();
    nextSpent_ = 0;
    for (Frame* frame : passing_) frame->passing = false;
    passing_.clear();
    std::size_t end = frames_.size();
    for (std::size_t i = stores_.size(); i-- > 0;) {
        const std::size_t used = i + 1 == stores_.size() ? UsedOfLast() : stores_[i].frames.size();
        end -= used;
        const std::span<Frame* const> frames = std::span(frames_).subspan(end, used);
        if (frames_.size() - used < capacity_ || !CanLeave(frames)) continue;
        for (const Frame* frame : frames) {
            if (frame->number != Frame::kNone) SetFrame(frame->number, nullptr);
        }
        const auto first = frames_.begin() + static_cast<std::ptrdiff_t>(end);
        frames_.erase(first, first + static_cast<std::ptrdiff_t>(used));
        room_ -= stores_[i].frames.size();
        stores_.erase(stores_.begin() + static_cast<std::ptrdiff_t>(i));
    }
}

}  // namespace jet
