// Pages as they were before somebody changed them, so that the changes can be undone.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "page/frame_cache.h"
#include "page/types.h"

namespace jet {

struct UndoImage {
    Frame* frame = nullptr;
    bool fresh = false;                   // the page did not exist
    bool stored = false;                  // the page as it was can be read again
    std::unique_ptr<std::byte[]> before;  // of any other, as far as it may have changed:
    std::size_t from = 0;                 // from here on,
    std::size_t end = 0;                  // before this
};

class UndoImages {
public:
    explicit UndoImages(std::uint32_t pageSize) : pageSize_(pageSize), zeros_(pageSize) {}

    [[nodiscard]] std::size_t Size() const { return size_; }
    [[nodiscard]] std::span<const UndoImage> From(std::size_t first) const {
        return std::span(images_).subspan(first, size_ - first);
    }
    // Of a page that is not stored, as far as it may have changed.
    [[nodiscard]] Bytes Before(const UndoImage& image) const {
        return image.fresh ? Bytes(zeros_) : Bytes(image.before.get(), pageSize_);
    }
    // Each notes its place in the frame. When it throws, nothing is added.
    // A page that is about to change, which nothing is kept of so far.
    void Add(Frame& frame);
    // One that has just been made.
    void AddFresh(Frame& frame);
    // One that can be read again as it is now: nothing is copied. Restoring it is the caller's
    // part, who drops the frame.
    void AddStored(Frame& frame);
    // These bytes of the frame's page are about to change.
    void Cover(const Frame& frame, std::size_t from, std::size_t size) noexcept;
    // Puts the bytes of a page back that is neither fresh nor stored.
    void Restore(const UndoImage& image) const noexcept;
    // Forgets the images of pages that are no longer of the transaction.
    void RemoveSettled() noexcept;
    // Forgets all images from this one on. Some of their memory is kept for the next ones.
    void CutTo(std::size_t size) noexcept;

private:
    UndoImage& Next(Frame& frame);
    void Enter(Frame& frame) noexcept;

    std::uint32_t pageSize_;
    std::vector<std::byte> zeros_;
    std::vector<UndoImage> images_;
    std::size_t size_ = 0;  // entries beyond keep their memory
};

// The same for a few bytes of a page each.
class UndoParts {
public:
    [[nodiscard]] bool IsEmpty() const { return parts_.empty(); }
    // The bytes as they are now. When it throws, nothing is added.
    void Add(Frame& frame, MutableBytes bytes, std::size_t at);
    // Puts them back, the latest first.
    void Restore() const noexcept;
    // The operation that changed them has ended.
    void Clear() noexcept;

private:
    struct Part {
        Frame* frame = nullptr;
        std::size_t at = 0;     // in the page
        std::size_t begin = 0;  // in `bytes_`
        std::size_t size = 0;
    };

    std::vector<Part> parts_;
    std::vector<std::byte> bytes_;
};

}  // namespace jet
