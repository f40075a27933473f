#include "page/undo_images.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace jet {

namespace {

constexpr std::size_t kMostKept = 256;

}  // namespace

UndoImage& UndoImages::Next(Frame& frame) {
    if (size_ == images_.size()) images_.emplace_back();
    UndoImage& image = images_[size_];
    image.frame = &frame;
    image.fresh = false;
    image.stored = false;
    return image;
}

void UndoImages::Add(Frame& frame, bool fresh) {
    UndoImage& image = Next(frame);
    image.fresh = fresh;
    if (!fresh) {
        if (!image.before) image.before = std::make_unique_for_overwrite<std::byte[]>(pageSize_);
        std::memcpy(image.before.get(), frame.bytes, pageSize_);
    }
    ++size_;
}

void UndoImages::AddStored(Frame& frame) {
    Next(frame).stored = true;
    ++size_;
}

void UndoImages::Restore(const UndoImage& image) const noexcept {
    std::memcpy(image.frame->bytes, image.before.get(), pageSize_);
}

void UndoImages::RemoveSettled() noexcept {
    std::size_t kept = 0;
    for (std::size_t i = 0; i < size_; ++i) {
        if (images_[i].frame->inTransaction) std::swap(images_[kept++], images_[i]);
    }
    CutTo(kept);
}

void UndoImages::CutTo(std::size_t size) noexcept {
    size_ = size;
    const std::size_t kept = std::max(size, kMostKept);
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
    parts_.clear();
    bytes_.clear();
}

}  // namespace jet
