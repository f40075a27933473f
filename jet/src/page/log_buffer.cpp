#include "page/log_buffer.h"

#include "page/bytes.h"
#include "page/checksum.h"

namespace jet {

namespace {

// Few bytes are copied sooner than they are written by themselves: less than so many,
constexpr std::size_t kLong = 512;
// and those of a short record.
constexpr std::size_t kShortRecord = 16U << 10;

}  // namespace

void LogBuffer::Clear() noexcept {
    own_.clear();
    pieces_.clear();
    view_.clear();
    size_ = 0;
}

void LogBuffer::AddOwn(std::size_t size) {
    if (pieces_.empty() || pieces_.back().lent != nullptr) {
        pieces_.push_back({.begin = own_.size()});
    }
    own_.resize(own_.size() + size);
    pieces_.back().size += size;
    size_ += size;
}

MutableBytes LogBuffer::Extend(std::size_t size) {
    AddOwn(size);
    return MutableBytes(own_).last(size);
}

void LogBuffer::PutCopy(Bytes bytes) {
    if (bytes.empty()) return;
    std::memcpy(Extend(bytes.size()).data(), bytes.data(), bytes.size());
}

void LogBuffer::Put(Bytes bytes) {
    if (bytes.size() < kLong || size_ + bytes.size() <= kShortRecord) {
        PutCopy(bytes);
        return;
    }
    pieces_.push_back({.lent = bytes.data(), .size = bytes.size()});
    size_ += bytes.size();
}

MutableBytes LogBuffer::At(std::size_t at, std::size_t size) {
    return Slice(MutableBytes(own_), at, size);
}

std::span<const Bytes> LogBuffer::Pieces() {
    view_.clear();
    for (const Piece& piece : pieces_) {
        const std::byte* from = piece.lent != nullptr ? piece.lent : own_.data() + piece.begin;
        view_.emplace_back(from, piece.size);
    }
    return view_;
}

std::uint64_t LogBuffer::ChecksumFrom(std::size_t at, std::uint64_t seed) {
    RunningChecksum checksum(seed);
    for (const Bytes piece : Pieces()) {
        checksum.Add(piece.subspan(at));
        at = 0;
    }
    return checksum.Result();
}

}  // namespace jet
