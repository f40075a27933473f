#include "check/row_parts.h"

#include <algorithm>

#include "page/bytes.h"

namespace jet {

RowParts::RowParts(Bytes row, const Format& format, const TableLayout& table)
    : row_(row), fixedAt_(format.countWidth), countWidth_(format.countWidth) {
    if (row.size() < countWidth_ + 1) {
        throw Damage{"row-length", "The row has " + std::to_string(row.size()) + " bytes."};
    }
    columnCount_ = countWidth_ == 1 ? ReadU8(row, 0) : ReadU16(row, 0);
    if (columnCount_ > table.columnCount) {
        throw Damage{"row-column-count", "The row claims " + std::to_string(columnCount_) +
                                             " columns; the table has had " +
                                             std::to_string(table.columnCount) + "."};
    }
    const std::size_t maskSize = (columnCount_ + 7) / 8;
    if (row.size() < countWidth_ + maskSize) {
        throw Damage{"row-null-mask", "The row is too short for its null mask."};
    }
    maskAt_ = row.size() - maskSize;
    if (table.variableCount == 0) {
        fixedEnd_ = maskAt_;
        return;
    }
    if (maskAt_ < countWidth_ + countWidth_) {
        throw Damage{"row-var-count", "The row has no count of variable values."};
    }
    const std::size_t countAt = maskAt_ - countWidth_;
    const std::size_t count = countWidth_ == 1 ? ReadU8(row, countAt) : ReadU16(row, countAt);
    if (count > table.variableCount) {
        throw Damage{"row-var-count", "The row claims " + std::to_string(count) +
                                          " variable values; the table has had " +
                                          std::to_string(table.variableCount) + "."};
    }
    offsets_.resize(count + 1);
    ReadOffsets(countWidth_ == 1);
    fixedEnd_ = offsets_.front();
}

void RowParts::ReadOffsets(bool jet3) {
    const std::size_t count = offsets_.size() - 1;
    const std::size_t jumps = jet3 ? (row_.size() - 1) / 256 : 0;
    const std::size_t countAt = maskAt_ - countWidth_;
    const std::size_t tableSize = offsets_.size() * countWidth_;
    if (countAt < countWidth_ + tableSize + jumps) {
        throw Damage{"row-var-count", "The row is too short for its variable values."};
    }
    const std::size_t tableAt = countAt - jumps - tableSize;
    if (jet3) {
        // The high parts of offsets grow where a jump byte names the entry. A last jump byte can
        // be a dummy: the row is long enough for one more, its values are not.
        const std::size_t lastEntry = countAt - jumps - 1;
        const std::size_t real = jumps > 0 && (lastEntry - count) / 256 < jumps ? jumps - 1 : jumps;
        std::size_t high = 0;
        for (std::size_t i = 0; i <= count; ++i) {
            while (high < real && ReadU8(row_, countAt - 1 - high) == i) {
                ++high;
            }
            offsets_[i] = ReadU8(row_, lastEntry - i) + 256 * high;
        }
    } else {
        for (std::size_t i = 0; i <= count; ++i) {
            offsets_[i] = ReadU16(row_, countAt - 2 * (i + 1));
        }
    }
    if (!std::is_sorted(offsets_.begin(), offsets_.end()) || offsets_.back() > tableAt ||
        offsets_.front() < fixedAt_) {
        throw Damage{"row-var-offset", "The variable values of the row are out of place."};
    }
}

bool RowParts::IsSet(std::uint16_t number) const {
    return number < columnCount_ && (ReadU8(row_, maskAt_ + number / 8U) >> number % 8 & 1) != 0;
}

bool RowParts::HasSpareBits() const {
    const unsigned used = columnCount_ % 8;
    return used != 0 && ReadU8(row_, row_.size() - 1) >> used != 0;
}

Bytes RowParts::ColumnBytes(const Column& column) const {
    if (column.fixed) {
        const std::uint32_t known = SizeOfType(column.type);
        const std::size_t size = known != 0 ? known : column.length;
        const std::size_t start = fixedAt_ + column.fixedOffset;
        if (start + size > fixedEnd_) {
            throw Damage{"row-fixed-area",
                         "The row is too short for the column " + column.name + "."};
        }
        return row_.subspan(start, size);
    }
    const std::size_t index = column.variableIndex;
    if (index + 1 >= offsets_.size()) {
        throw Damage{"row-var-count", "The row has no place for the column " + column.name + "."};
    }
    return row_.subspan(offsets_[index], offsets_[index + 1] - offsets_[index]);
}

bool RowParts::IsEmpty(const Column& column) const {
    const std::size_t index = column.variableIndex;
    return index + 1 >= offsets_.size() || offsets_[index] == offsets_[index + 1];
}

}  // namespace jet
