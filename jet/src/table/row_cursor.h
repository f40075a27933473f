// A position among the rows of a table, in stored order. It need not be that of a row: the
// neighbors of a removed row are those of its place.
//
// Each verb says whether there is such a row; where there is none, the cursor stays where it was.
// The page of the position stays pinned, so that a step within it is cheap.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "table/row_store.h"

namespace jet {

class RowCursor {
public:
    RowCursor() = default;
    explicit RowCursor(const RowStore& rows) : rows_(&rows) {}

    [[nodiscard]] bool Valid() const { return valid_; }
    [[nodiscard]] RowId Row() const { return row_; }

    bool SeekToFirst();
    bool SeekToLast();
    // A position that need not hold a row.
    void Seek(RowId row) {
        row_ = row;
        valid_ = true;
    }
    bool Next();
    bool Prev();

private:
    bool Arrive(std::optional<RowId> row);
    [[nodiscard]] Bytes PageOf(PageNumber page);
    [[nodiscard]] std::optional<RowId> SlotFrom(PageNumber page, std::uint32_t from);
    [[nodiscard]] std::optional<RowId> SlotBefore(PageNumber page, std::uint32_t end);
    [[nodiscard]] std::optional<RowId> FirstOfPages(PageNumber from);
    [[nodiscard]] std::optional<RowId> LastBefore(RowId row);
    const std::vector<PageNumber>& OwnedPages();

    const RowStore* rows_ = nullptr;
    bool valid_ = false;
    RowId row_;
    PageRef page_;
    std::uint64_t pageChange_ = 0;
    // A map of pages cannot be walked backward, so its members are kept while nothing changes.
    std::vector<PageNumber> owned_;
    std::uint64_t ownedChange_ = 0;
    bool ownedKnown_ = false;
};

}  // namespace jet
