// Where the newest bytes of pages lie that are neither in the data file nor, for certain, in
// memory: in the log, whole.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace jet {

class PagesInLog {
public:
    [[nodiscard]] bool IsEmpty() const { return offsets_.empty(); }
    // Where the page's bytes lie; 0 when they are not in the log.
    [[nodiscard]] std::uint64_t Find(std::uint32_t page) const {
        return page < offsets_.size() ? offsets_[page] : 0;
    }
    // Makes room for `more` entries of pages below `pageCount`, so that entering them cannot fail.
    void Reserve(std::uint32_t pageCount, std::size_t more);
    void Enter(std::uint32_t page, std::uint64_t offset) noexcept;
    // The transaction that entered pages has been committed.
    void Keep() noexcept { former_ = {}; }
    // It has been rolled back: visits its pages, after they have been given their former places.
    template <typename Visit>
    void Undo(Visit visit) noexcept {
        for (auto entry = former_.rbegin(); entry != former_.rend(); ++entry) {
            offsets_[entry->first] = entry->second;
            visit(entry->first);
        }
        former_ = {};
    }
    template <typename Visit>
    void ForEach(Visit visit) const {
        for (std::size_t page = 0; page < offsets_.size(); ++page) {
            if (offsets_[page] != 0) visit(static_cast<std::uint32_t>(page));
        }
    }
    void Clear() noexcept;

private:
    std::vector<std::uint64_t> offsets_;  // by page
    // What the open transaction replaced.
    std::vector<std::pair<std::uint32_t, std::uint64_t>> former_;
};

}  // namespace jet
