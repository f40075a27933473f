// The rows of a table: the structure of its data pages and rows, and the long values of each.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "check/account.h"
#include "check/table_layout.h"
#include "jet/value.h"

namespace jet {

// One row that a scan of the table meets.
struct CheckedRow {
    RowId id;
    std::vector<Value> values;   // in the order of the table's columns
    std::vector<bool> readable;  // false where a value could not be made out
};

// A slot of a data page, within the page and in order.
struct CheckedSlot {
    std::uint16_t flags = 0;
    std::uint32_t start = 0;
    std::uint32_t length = 0;
};

// The slots of a data page; what is wrong with them or the page is reported. Throws Damage when
// it is no data page of this owner or its directory cannot be followed.
std::vector<CheckedSlot> CheckDataPage(CheckContext& context, Bytes page, const Spot& spot,
                                       std::uint32_t owner, bool lenient = false);

// The long values of one table.
class LongValueCheck {
public:
    LongValueCheck(CheckContext& context, PageAccount& account, const TableLayout& table);

    // The value of a column's bytes in the row, whole. Throws Damage.
    std::vector<std::byte> Read(const Column& column, Bytes inRow, const Spot& spot);
    // Reports rows that no value uses.
    void Finish();

private:
    std::vector<std::byte> Piece(const Column& column, RowId row, const Spot& spot);
    std::vector<std::byte> Chain(const Column& column, RowId first, std::size_t length,
                                 const Spot& spot);

    CheckContext& context_;
    const TableLayout& table_;
    std::map<std::uint16_t, std::set<std::uint32_t>> pages_;  // by column number
    std::set<RowId> used_;
};

class RowCheck {
public:
    RowCheck(CheckContext& context, PageAccount& account, const TableLayout& table);

    // For a repair: pages of the map count as the table's even when one of the two things that a
    // page says about itself, its type and its owner, is wrong.
    // Pages that several maps have are assigned by their owner alone.
    void BeLenient(std::set<std::uint32_t> contested) {
        lenient_ = true;
        contested_ = std::move(contested);
    }
    // A page that the table's map does not have.
    void AddPage(std::uint32_t page);
    // Every row in stored order, to `visit`.
    template <typename Visit>
    void Run(const Visit& visit) {
        for (const std::uint32_t page : pages_) {
            for (CheckedRow& row : PageRows(page)) {
                visit(row);
            }
        }
        Finish();
    }

    // After Run: the moved rows that no pointer leads to.
    std::vector<CheckedRow> Orphans();

private:
    std::vector<CheckedRow> PageRows(std::uint32_t page);
    std::vector<std::byte> Follow(Bytes pointerRow);
    CheckedRow ReadRow(Bytes row, RowId id);
    Value ReadValue(const Column& column, Bytes stored, const Spot& spot);
    void Finish();
    [[nodiscard]] bool IsLenient(std::uint32_t page) const {
        return lenient_ && contested_.count(page) == 0;
    }

    CheckContext& context_;
    const TableLayout& table_;
    LongValueCheck longValues_;
    std::vector<std::uint32_t> pages_;
    std::set<std::uint32_t> owned_;
    bool lenient_ = false;
    std::set<std::uint32_t> contested_;
    std::set<RowId> targets_;  // slots that hold moved rows
    std::set<RowId> reached_;  // of these, those that a pointer leads to
};

}  // namespace jet
