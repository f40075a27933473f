// The parts of one row, taken apart with a name for each fault.
#pragma once

#include <vector>

#include "check/account.h"
#include "check/table_layout.h"

namespace jet {

class RowParts {
public:
    // Throws Damage.
    RowParts(Bytes row, const Format& format, const TableLayout& table);

    [[nodiscard]] bool IsSet(std::uint16_t number) const;
    [[nodiscard]] bool HasSpareBits() const;
    // The bytes of a column. Throws Damage.
    [[nodiscard]] Bytes ColumnBytes(const Column& column) const;
    // True when a variable column has no bytes, or no place in this row.
    [[nodiscard]] bool IsEmpty(const Column& column) const;

private:
    void ReadOffsets(bool jet3);

    Bytes row_;
    std::size_t fixedAt_ = 0;
    std::size_t fixedEnd_ = 0;
    std::size_t maskAt_ = 0;
    std::size_t countWidth_ = 0;
    std::uint32_t columnCount_ = 0;
    std::vector<std::size_t> offsets_;  // of the variable values, and their end
};

}  // namespace jet
