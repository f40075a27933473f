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
    // How many entries the open transaction has made.
    [[nodiscard]] std::size_t Entries() const { return former_.size(); }
    // Those from this one on have been undone: visits their pages, the latest first, after they
    // have been given their former places.
    template <typename Visit>
    void UndoFrom(std::size_t entry, Visit visit) noexcept {
        while (former_.size() > entry) {
            const auto [page, place] = former_.back();
            former_.pop_back();
            offsets_[page] = place;
            visit(page);
        }
        if (entry == 0) former_ = {};
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
