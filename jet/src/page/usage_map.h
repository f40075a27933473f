// A usage map: a set of page numbers, kept as one row on a usage-map page (or on page 1).
#pragma once

#include <functional>
#include <optional>

#include "page/operation.h"
#include "page/pager.h"
#include "page/types.h"

namespace jet {

class UsageMap {
public:
    UsageMap(Pager& pager, RowId row) : pager_(&pager), row_(row) {}

    [[nodiscard]] RowId Row() const { return row_; }
    [[nodiscard]] bool Contains(PageNumber page) const;
    // The members in rising order from `from` on; stops when `visit` gives false.
    void ForEach(PageNumber from, const std::function<bool(PageNumber)>& visit) const;
    [[nodiscard]] std::optional<PageNumber> NextFrom(PageNumber from) const;
    // The last member below `end`.
    [[nodiscard]] std::optional<PageNumber> LastBefore(PageNumber end) const;
    void Add(Operation& operation, PageNumber page);
    void Remove(Operation& operation, PageNumber page);

    // Makes an empty map on a usage-map page with room.
    static UsageMap Create(Operation& operation);

private:
    Pager* pager_;
    RowId row_;
};

}  // namespace jet
