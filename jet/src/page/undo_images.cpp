#include "page/undo_images.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace jet {

namespace {

constexpr std::size_t kMostImagesKept = 256;
constexpr std::size_t kMostBytesKept = 1U << 20;

}  // namespace

UndoImage& UndoImages::Next(Frame& frame) {
    if (size_ == images_.size()) images_.emplace_back();
    UndoImage& image = images_[size_];
    image.frame = &frame;
    image.fresh = false;
    image.stored = false;
    image.from = pageSize_;
    image.end = 0;
    return image;
}

void UndoImages::Enter(Frame& frame) noexcept {
    frame.image = size_++;
}

void UndoImages::Add(Frame& frame) {
    UndoImage& image = Next(frame);
    if (!image.before) image.before = std::make_unique_for_overwrite<std::byte[]>(pageSize_);
    Enter(frame);
}

void UndoImages::AddFresh(Frame& frame) {
    UndoImage& image = Next(frame);
    image.fresh = true;
    image.from = 0;
    image.end = pageSize_;
    Enter(frame);
}

void UndoImages::AddStored(Frame& frame) {
    Next(frame).stored = true;
    Enter(frame);
}

void UndoImages::Cover(const Frame& frame, std::size_t from, std::size_t size) noexcept {
    UndoImage& image = images_[frame.image];
    const std::size_t end = from + size;
    if (from >= image.from && end <= image.end) return;
    const auto keep = [&](std::size_t begin, std::size_t past) {
        if (image.stored || begin >= past) return;
        std::memcpy(image.before.get() + begin, frame.bytes + begin, past - begin);
    };
    // What lies between two parts is kept too, so that there is one.
    if (image.from >= image.end) {
        keep(from, end);
    } else {
        keep(from, image.from);
        keep(image.end, end);
    }
    image.from = std::min(image.from, from);
    image.end = std::max(image.end, end);
}

void UndoImages::Restore(const UndoImage& image) const noexcept {
    if (image.from >= image.end) return;
    std::memcpy(image.frame->bytes + image.from, image.before.get() + image.from,
                image.end - image.from);
}

void UndoImages::RemoveSettled() noexcept {
    std::size_t kept = 0;
    for (std::size_t i = 0; i < size_; ++i) {
        if (!images_[i].frame->inTransaction) continue;
        std::swap(images_[kept], images_[i]);
        images_[kept].frame->image = kept;
        ++kept;
    }
    CutTo(kept);
}

void UndoImages::CutTo(std::size_t size) noexcept {
    size_ = size;
    const std::size_t kept = std::max(size, kMostImagesKept);
    if (images_.size() > kept)
        images_.erase(images_.begin() + static_cast<std::ptrdiff_t>(kept), images_.end());
}

void UndoParts::Add(Frame& frame, MutableBytes bytes, std::size_t at) {
    const std::size_t begin = bytes_.size();
    bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
    parts_.push_back({&frame, at, begin, bytes.size()});
}

void UndoParts::Restore() const noexcept {
    for (auto part = parts_.rbegin(); part != parts_.rend(); ++part) {
        std::memcpy(part->frame->bytes + part->at, bytes_.data() + part->begin, part->size);
    }
}

void UndoParts::Clear() noexcept {
    for (const Part& part : parts_) part.frame->changing = false;
    parts_.clear();
    bytes_.clear();
    if (bytes_.capacity() > kMostBytesKept) bytes_ = std::vector<std::byte>();
}

}  // namespace jet
