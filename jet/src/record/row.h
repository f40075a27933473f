// A row: which columns have values, the fixed area, and the variable values.
//
//   +-------+------------+-----------------+-----+-----+-------+------+----+-----------+
//   | count | fixed area | variable values | gap | eod | table | jump | nv | null mask |
//   +-------+------------+-----------------+-----+-----+-------+------+----+-----------+
//
// Part         Jet 3         Jet 4         Meaning
// count        1             2             columns that the table knew when the row was written
// eod          1             2             offset of the end of the variable values
// table        1 each        2 each        offset of each variable value, last one first
// jump         0 to 7        -             the entry at which offsets pass each multiple of 256
// nv           1             2             number of variable values
// null mask    1 bit each    1 bit each    set: the column has a value; a boolean's value itself
//
// Everything from eod to nv is absent in a table that never had a variable column. Rows are read
// from their end, since a rewritten row may have a gap.
#pragma once

#include <cstdint>
#include <vector>

#include "page/format.h"
#include "page/types.h"

namespace jet {

// What the table's definition says about all of its rows.
struct RowShape {
    std::uint16_t columnCount = 0;    // highest column number ever used, plus one
    std::uint16_t variableCount = 0;  // variable columns ever used
    std::uint16_t firstVariable = 0;  // number of the first variable column, 0 when unknown
    std::uint32_t fixedSize = 0;
};

// A view of one stored row; the bytes must outlive it.
class RowView {
public:
    RowView() = default;
    // kDamaged when the parts do not fit in the row.
    RowView(Bytes row, const Format& format, const RowShape& shape);

    [[nodiscard]] Bytes Stored() const { return row_; }
    [[nodiscard]] std::uint32_t VariableCount() const { return variableCount_; }
    // The bit of the null mask; columns younger than the row have none.
    [[nodiscard]] bool IsSet(std::uint16_t number) const {
        return number < columnCount_ &&
               (row_[maskAt_ + number / 8] >> (number % 8) & std::byte{1}) != std::byte{0};
    }
    // The bytes of a column that is set. kDamaged when they lie outside the row's parts.
    [[nodiscard]] Bytes Fixed(std::uint32_t offset, std::uint32_t length) const {
        const std::uint32_t start = (wide_ ? 2 : 1) + offset;
        if (start > fixedEnd_ || length > fixedEnd_ - start) ThrowBadRow();
        return row_.subspan(start, length);
    }
    [[nodiscard]] Bytes Variable(std::uint32_t index) const;

private:
    [[noreturn]] static void ThrowBadRow();
    void ReadJumps();
    [[nodiscard]] std::uint32_t Offset(std::uint32_t index) const;

    Bytes row_;
    bool wide_ = true;  // Jet 4
    std::uint32_t columnCount_ = 0;
    std::uint32_t variableCount_ = 0;
    std::uint32_t maskAt_ = 0;
    std::uint32_t fixedEnd_ = 0;
    std::uint32_t tableAt_ = 0;  // of the first variable value's offset
    std::uint32_t jumpCount_ = 0;
    std::uint32_t jumpAt_ = 0;  // the first jump byte lies here, the others before it
};

// Collects the parts of a new row; used again for the next one without new memory.
class RowBuilder {
public:
    void Start(const Format& format, const RowShape& shape);
    void Set(std::uint16_t number);
    // The place of a fixed value, zeroed at the start.
    MutableBytes Fixed(std::uint32_t offset, std::uint32_t length);
    // Variable values must come in the order of their indexes; those left out are empty.
    std::vector<std::byte>& StartVariable(std::uint32_t index);
    // The row's bytes, valid until the next Start. kRecordTooLarge.
    Bytes Finish();

private:
    void AppendTableWide();
    void AppendTableNarrow();

    const Format* format_ = nullptr;
    RowShape shape_;
    std::vector<std::byte> row_;
    std::vector<std::byte> mask_;
    std::vector<std::uint32_t> offsets_;
};

}  // namespace jet
