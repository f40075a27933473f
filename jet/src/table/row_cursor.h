// The rows of a table in stored order.
//
// The page of the position stays pinned, so that a step within it is cheap.
#pragma once

#include <cstdint>
#include <optional>

#include "table/table_cursor.h"

namespace jet {

class RowCursor final : public TableCursor {
public:
    explicit RowCursor(RowStore& rows) : TableCursor(rows) {}

    bool SeekToFirst() override;
    bool SeekToLast() override;
    bool Next() override;
    bool Prev() override;

private:
    bool ArriveAt(std::optional<RowId> row);
    [[nodiscard]] Bytes PageOf(PageNumber page);
    void RequireOwned(PageNumber page);
    [[nodiscard]] std::optional<RowId> SlotFrom(PageNumber page, std::uint32_t from);
    [[nodiscard]] std::optional<RowId> SlotBefore(PageNumber page, std::uint32_t end);
    [[nodiscard]] std::optional<RowId> FirstOfPages(PageNumber from);
    [[nodiscard]] std::optional<RowId> LastOfPages(PageNumber end);

    PageRef page_;
    std::uint64_t change_ = 0;
};

}  // namespace jet
