// Long values: memos and OLE objects, kept in the row, on a page of their own kind, or in a chain.
//
// In the row, 12 bytes:
//
//   0   4  length in bytes (30 bits) and form (the two highest bits)
//   4   4  row pointer (forms 0 and 1)
//   8   4  stamp (Jet 4, form 0), else 0
//
// Form 2: the value follows these 12 bytes. Form 1: one row of a page is the value. Form 0: a chain
// of rows, each the pointer of the next row (0 at the last) and a part of the value.
//
// The pages are data pages whose owner reads "LVAL"; each belongs to one column of one table, which
// has a map of them and a map of those with room.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "page/operation.h"
#include "page/pager.h"
#include "page/types.h"
#include "page/usage_map.h"

namespace jet {

inline constexpr std::size_t kLongValueHeader = 12;

enum class LongValueForm : std::uint8_t { kChain = 0, kRow = 1, kInline = 2 };

struct LongValueHead {
    std::uint32_t length = 0;
    LongValueForm form = LongValueForm::kInline;
    RowId first;
};

// An empty value has no head at all. kDamaged.
std::optional<LongValueHead> ReadLongValueHead(Bytes inRow);

// The whole value, where it lies as long as it is in one piece (`page` then keeps its bytes in the
// cache), else put together in `room`. kDamaged for a chain that is broken, endless or too short.
Bytes ReadLongValue(Pager& pager, Bytes inRow, PageRef& page, std::vector<std::byte>& room);

// Reads a value from its beginning to its end, a piece at a time.
class LongValueCursor {
public:
    LongValueCursor() = default;
    // `inRow` must outlive it where the value lies in the row. kDamaged.
    LongValueCursor(Pager& pager, Bytes inRow);

    [[nodiscard]] std::uint32_t Size() const { return size_; }
    // Fills `into`, less at the end of the value. kDamaged for a chain that is broken or endless.
    std::size_t Read(MutableBytes into);
    // Reads on without giving anything.
    void Skip(std::uint64_t count);

private:
    // Makes `part_` the next part that is not empty.
    void NextPart();

    Pager* pager_ = nullptr;
    std::uint32_t size_ = 0;
    std::uint32_t missing_ = 0;  // bytes that are not in `part_` or before it
    Bytes part_;                 // what is left of the present part
    PageRef page_;               // where that lies
    RowId next_;
    std::uint64_t steps_ = 0;
};

// The bytes of a value that is to be stored, which need not all be in memory.
class LongValueBytes {
public:
    LongValueBytes() = default;
    LongValueBytes(const LongValueBytes&) = delete;
    LongValueBytes& operator=(const LongValueBytes&) = delete;
    virtual ~LongValueBytes() = default;

    [[nodiscard]] virtual std::uint64_t Size() const = 0;
    // Those from `at` on; there are as many. Valid until the next call. kIo.
    virtual Bytes Read(std::uint64_t at, std::size_t size) = 0;
};

// The pages of one column, for writing.
class LongValueStore {
public:
    LongValueStore(Pager& pager, RowId ownedMap, RowId freeMap);

    // Stores the value and appends its part in the row. `plainLength` is the size before any
    // compression and decides about the form.
    void Write(Operation& operation, Bytes value, std::size_t plainLength,
               std::vector<std::byte>& inRow);
    // The same with a value that is longer than a page. kTextTooLong.
    void WriteChain(Operation& operation, LongValueBytes& value, std::vector<std::byte>& inRow);
    // The same as Write in the place of a value that is stored already; what that had outside the
    // row is given back, or used again.
    void Replace(Operation& operation, Bytes old, Bytes value, std::size_t plainLength,
                 std::vector<std::byte>& inRow);
    // Gives back everything outside the row.
    void Release(Operation& operation, Bytes inRow);

private:
    [[nodiscard]] bool FitsOnePage(std::size_t plainLength) const {
        const Format& format = pager_->FileFormat();
        return plainLength > format.longValueInRow && plainLength <= format.longValueOnePage;
    }
    bool Overwrite(Operation& operation, RowId row, Bytes value);
    RowId Append(Operation& operation, Bytes row);
    PageNumber PageWithRoom(Operation& operation, std::uint32_t length);
    void EnterFree(Operation& operation, PageNumber page);
    void ReleaseRow(Operation& operation, RowId row);

    Pager* pager_;
    UsageMap owned_;
    std::optional<UsageMap> free_;
    PageNumber roomHint_;  // pages below it are full or unlisted
};

}  // namespace jet
