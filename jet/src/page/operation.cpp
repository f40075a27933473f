#include "page/operation.h"

#include <algorithm>

#include "jet/error.h"
#include "page/bytes.h"
#include "page/global_map.h"
#include "page/pager_impl.h"

namespace jet {

Operation::Operation(Pager& pager) : pager_(pager) {
    pager_.Internals().BeginOperation();
}

Operation::~Operation() {
    if (!committed_) pager_.Internals().RollbackOperation();
}

void Operation::Commit() {
    RequireOpen();
    pager_.Internals().CommitOperation();
    committed_ = true;
}

void Operation::RequireOpen() const {
    if (committed_) throw Error(ErrorKind::kNoTransaction, "The operation has ended already.");
}

MutableBytes Operation::Change(PageNumber page) {
    RequireOpen();
    return pager_.Internals().Change(page);
}

void Operation::Extend(PageNumber page) {
    RequireOpen();
    Pager::Impl& pages = pager_.Internals();
    // Writers reserve a few pages past the end; a map that skips many is no map of this file.
    constexpr std::uint32_t kMostReserved = 4096;
    if (page.value >= pages.pageCount + kMostReserved) {
        ThrowDamaged("The file is damaged: its map of free pages does not fit its length.");
    }
    while (pages.pageCount <= page.value) pages.Append();
}

PageNumber Operation::Allocate() {
    Pager::Impl& pages = pager_.Internals();
    GlobalMap map(*this, pages.header.freePages);
    const PageNumber page = map.Take(pages.lowestFree);
    pages.lowestFree = PageNumber{page.value + 1};
    if (page.value < pages.pageCount) {
        const MutableBytes bytes = Change(page);
        std::fill(bytes.begin(), bytes.end(), std::byte{0});
    } else {
        Extend(page);
    }
    return page;
}

void Operation::Free(PageNumber page) {
    Pager::Impl& pages = pager_.Internals();
    const MutableBytes bytes = Change(page);
    GlobalMap(*this, pages.header.freePages).GiveBack(page);
    std::fill_n(bytes.begin(), 4, std::byte{0});
    pages.lowestFree = std::min(pages.lowestFree, page);
}

}  // namespace jet
