// The global map: which pages of the file are free.
//
// It is a usage map like the others but for two things: a set bit means a free page, and the pages
// past its end count as free, so it is lengthened with ones. Bits of 0 past the end of the file
// stand for pages that somebody reserved; they are never taken.
#pragma once

#include "page/map_row.h"
#include "page/operation.h"
#include "page/pager.h"
#include "page/types.h"

namespace jet {

class GlobalMap {
public:
    GlobalMap(Operation& operation, RowId row)
        : operation_(&operation), pager_(&operation.Pages()), row_(row) {}

    // The lowest free page from `from` on, marked as used. It may lie past the end of the file.
    // kFileTooLarge at the format's size limit.
    PageNumber Take(PageNumber from);
    // Marks a used page as free. kDamaged when it is free already.
    void GiveBack(PageNumber page);

private:
    PageNumber TakeInline(PageNumber from);
    PageNumber TakeReferenced(PageNumber from);
    void ConvertToReferences();
    [[nodiscard]] RowExtent Extent() const;
    MutableBytes ChangeRow();
    MutableBytes ChangeBit(PageNumber page, std::size_t from, std::size_t bit);
    PageNumber MakeMapPage(PageNumber page, std::uint32_t range, std::uint32_t usedBelow);

    Operation* operation_;
    Pager* pager_;
    RowId row_;
};

}  // namespace jet
