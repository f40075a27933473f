#include "page/pages_in_log.h"

#include <algorithm>

namespace jet {

void PagesInLog::Reserve(std::uint32_t pageCount, std::size_t more) {
    if (offsets_.size() < pageCount) {
        offsets_.reserve(std::max<std::size_t>(pageCount, offsets_.size() * 2));
        offsets_.resize(pageCount, 0);
    }
    if (former_.capacity() - former_.size() < more) {
        former_.reserve(std::max(former_.size() + more, former_.size() * 2));
    }
}

void PagesInLog::Enter(std::uint32_t page, std::uint64_t offset) noexcept {
    former_.emplace_back(page, offsets_[page]);
    offsets_[page] = offset;
}

void PagesInLog::Clear() noexcept {
    offsets_ = {};
    former_ = {};
}

}  // namespace jet
