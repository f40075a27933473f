#include "page/operation.h"

#include <algorithm>

#include "jet/error.h"
#include "page/bytes.h"
#include "page/global_map.h"

namespace jet {

Operation::Operation(Pager& pager) : pager_(pager) {
    pager_.BeginOperation();
}

Operation::~Operation() {
    if (!committed_) pager_.changes_.RollbackOperation();
}

void Operation::Commit() {
    RequireOpen();
    pager_.changes_.CommitOperation();
    committed_ = true;
}

void Operation::RequireOpen() const {
    if (committed_) throw Error(ErrorKind::kNoTransaction, "The operation has ended already.");
}

PageNumber& Operation::MapRowPage() {
    return pager_.changes_.mapRowPage;
}

MutableBytes Operation::Change(PageNumber page) {
    RequireOpen();
    return pager_.changes_.Change(page);
}

MutableBytes Operation::ChangePart(PageNumber page, std::size_t from, std::size_t size) {
    RequireOpen();
    return pager_.changes_.ChangePart(page, from, size);
}

void Operation::Settle(PageNumber page) {
    RequireOpen();
    pager_.changes_.Settle(page);
}

void Operation::Extend(PageNumber page) {
    RequireOpen();
    // Writers reserve a few pages past the end; a map that skips many is no map of this file.
    constexpr std::uint32_t kMostReserved = 4096;
    if (page.value >= pager_.PageCount() + kMostReserved) {
        ThrowDamaged("The file is damaged: its map of free pages does not fit its length.");
    }
    while (pager_.PageCount() <= page.value) pager_.changes_.Append();
}

PageNumber Operation::Allocate() {
    GlobalMap map(*this, pager_.Header().freePages);
    const PageNumber page = map.Take(pager_.changes_.lowestFree);
    pager_.changes_.lowestFree = PageNumber{page.value + 1};
    if (page.value < pager_.PageCount()) {
        const MutableBytes bytes = Change(page);
        std::fill(bytes.begin(), bytes.end(), std::byte{0});
    } else {
        Extend(page);
    }
    return page;
}

void Operation::Free(PageNumber page) {
    constexpr std::size_t kCleared = 4;
    const MutableBytes bytes = ChangePart(page, 0, kCleared);
    GlobalMap(*this, pager_.Header().freePages).GiveBack(page);
    std::fill_n(bytes.begin(), kCleared, std::byte{0});
    pager_.changes_.lowestFree = std::min(pager_.changes_.lowestFree, page);
}

}  // namespace jet
