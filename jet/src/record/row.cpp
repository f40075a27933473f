#include "record/row.h"

#include <algorithm>

#include "jet/error.h"
#include "page/bytes.h"
#include "record/data_page.h"

namespace jet {

namespace {

constexpr std::uint8_t kDummyJump = 0xFF;

std::uint32_t MaskSize(std::uint32_t columnCount) {
    return (columnCount + 7) / 8;
}

}  // namespace

void RowView::ThrowBadRow() {
    ThrowDamaged("The file is damaged: the parts of a row do not fit together.");
}

RowView::RowView(Bytes row, const Format& format, const RowShape& shape)
    : row_(row), wide_(format.countWidth == 2) {
    const std::uint32_t width = format.countWidth;
    const auto size = static_cast<std::uint32_t>(row.size());
    if (size < width) ThrowBadRow();
    columnCount_ = wide_ ? ReadU16(row, 0) : ReadU8(row, 0);
    const std::uint32_t maskSize = MaskSize(columnCount_);
    if (maskSize + width > size) ThrowBadRow();
    maskAt_ = size - maskSize;
    fixedEnd_ = maskAt_;
    // A row from the time before the table's first variable column has no variable part.
    if (shape.variableCount == 0 ||
        (shape.firstVariable != 0 && columnCount_ <= shape.firstVariable)) {
        return;
    }
    if (maskAt_ < 3 * width) ThrowBadRow();
    const std::uint32_t countAt = maskAt_ - width;
    variableCount_ = wide_ ? ReadU16(row, countAt) : ReadU8(row, countAt);
    if (wide_) {
        tableAt_ = countAt - 2;
    } else {
        ReadJumps();
    }
    if (tableAt_ < width * (variableCount_ + 1)) ThrowBadRow();
    fixedEnd_ = Offset(0);
    if (fixedEnd_ > tableAt_ || fixedEnd_ < width) ThrowBadRow();
}

// A long row whose values are short has a last jump byte that stands for nothing.
void RowView::ReadJumps() {
    const auto size = static_cast<std::uint32_t>(row_.size());
    const std::uint32_t stored = (size - 1) / 256;
    if (maskAt_ < 2 + stored) ThrowBadRow();
    jumpAt_ = maskAt_ - 2;
    tableAt_ = jumpAt_ - stored;
    jumpCount_ = stored;
    if (stored > 0 && tableAt_ >= variableCount_ && (tableAt_ - variableCount_) / 256 < stored) {
        --jumpCount_;
    }
}

std::uint32_t RowView::Offset(std::uint32_t index) const {
    if (wide_) return ReadU16(row_, tableAt_ - 2 * index);
    std::uint32_t high = 0;
    while (high < jumpCount_ && ReadU8(row_, jumpAt_ - high) <= index) ++high;
    return ReadU8(row_, tableAt_ - index) + 256 * high;
}

Bytes RowView::Variable(std::uint32_t index) const {
    if (index >= variableCount_) return {};
    const std::uint32_t start = Offset(index);
    const std::uint32_t end = Offset(index + 1);
    if (start > end || end > tableAt_) ThrowBadRow();
    return row_.subspan(start, end - start);
}

void RowBuilder::Start(const Format& format, const RowShape& shape) {
    format_ = &format;
    shape_ = shape;
    row_.clear();
    row_.resize(format.countWidth + shape.fixedSize);
    if (format.countWidth == 2) {
        WriteU16(row_, 0, shape.columnCount);
    } else {
        WriteU8(row_, 0, static_cast<std::uint8_t>(shape.columnCount));
    }
    mask_.assign(MaskSize(shape.columnCount), std::byte{0});
    const std::size_t tail = shape.variableCount == 0 ? 0 : 2 * format.countWidth;
    if (row_.size() + mask_.size() + tail < kSmallestRow) {
        row_.resize(kSmallestRow - mask_.size() - tail);
    }
    offsets_.clear();
}

void RowBuilder::Set(std::uint16_t number) {
    mask_[number / 8] |= std::byte{1} << (number % 8);
}

MutableBytes RowBuilder::Fixed(std::uint32_t offset, std::uint32_t length) {
    return Slice(MutableBytes(row_), format_->countWidth + offset, length);
}

std::vector<std::byte>& RowBuilder::StartVariable(std::uint32_t index) {
    while (offsets_.size() <= index) offsets_.push_back(static_cast<std::uint32_t>(row_.size()));
    return row_;
}

void RowBuilder::AppendTableWide() {
    const auto append = [this](std::uint32_t number) {
        row_.push_back(static_cast<std::byte>(number & 0xFF));
        row_.push_back(static_cast<std::byte>(number >> 8 & 0xFF));
    };
    for (std::size_t i = offsets_.size(); i-- > 0;) append(offsets_[i]);
    append(shape_.variableCount);
}

void RowBuilder::AppendTableNarrow() {
    // Jump bytes lengthen the row and can thereby make one more of them necessary.
    const std::size_t base = offsets_.back() + 2U + shape_.variableCount + mask_.size();
    std::size_t jumps = 0;
    while (jumps != (base + jumps - 1) / 256) ++jumps;
    for (std::size_t i = offsets_.size(); i-- > 0;) {
        row_.push_back(static_cast<std::byte>(offsets_[i] & 0xFF));
    }
    for (std::size_t k = jumps; k-- > 0;) {
        const auto first = std::find_if(offsets_.begin(), offsets_.end(),
                                        [k](std::uint32_t at) { return at >= 256 * (k + 1); });
        row_.push_back(static_cast<std::byte>(first == offsets_.end() ? kDummyJump
                                                                      : first - offsets_.begin()));
    }
    row_.push_back(static_cast<std::byte>(shape_.variableCount));
}

Bytes RowBuilder::Finish() {
    if (shape_.variableCount > 0) {
        StartVariable(shape_.variableCount);
        // Checked before the table, whose entries could not hold larger offsets.
        if (row_.size() <= format_->largestRow) {
            if (format_->countWidth == 2) {
                AppendTableWide();
            } else {
                AppendTableNarrow();
            }
        }
    }
    row_.insert(row_.end(), mask_.begin(), mask_.end());
    if (row_.size() > format_->largestRow) {
        throw Error(ErrorKind::kRecordTooLarge, "The record is too large.");
    }
    return row_;
}

}  // namespace jet
