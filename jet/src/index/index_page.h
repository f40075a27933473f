// One page of an index, in its stored form (IndexPage) and taken apart for a change
// (IndexPageContent).
//
//   +--------+--------------+------------------------------------------+
//   | header | entry bitmap | entry area: entry, entry, ... , unused   |
//   +--------+--------------+------------------------------------------+
//
//   Jet 3  Jet 4  size    meaning
//   0x00   0x00   1       page type: 3 node, 4 leaf
//   0x01   0x01   1       1
//   0x02   0x02   2       free bytes of the entry area
//   0x04   0x04   4       definition page of the table
//   -      0x08   4       0
//   0x08   0x0C   4       previous page on the level, 0 for none
//   0x0C   0x10   4       next page on the level, 0 for none
//   0x10   0x14   4       tail: the child for everything above the last entry; 0 on leaves
//   0x14   0x18   1 / 2   prefix: bytes that every entry but the first leaves out, as they equal
//                         those of the first
//   0x15   0x1A   1       level: 0 for leaves, then the distance from them
//   0x16   0x1B   226/453 bitmap: bit n is set where an entry ends at byte n of the area
//   0xF8   0x1E0  1800/3616 entry area
//
// An entry is a key, the row's page (3 bytes) and slot (1 byte), and on nodes the child's page (4
// bytes); these numbers are big-endian, so that the bytes order entries of equal keys by row. A
// node's entry repeats the greatest entry below its child.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "index/index_tree.h"
#include "page/bytes.h"
#include "page/format.h"
#include "page/types.h"

namespace jet {

inline constexpr std::size_t kFreeFieldAt = 2;  // where a page counts its free bytes
inline constexpr std::size_t kRowPointerSize = 4;
inline constexpr std::size_t kChildPointerSize = 4;
// More levels than any file can need: nodes that go on below run in a circle.
inline constexpr int kDeepestTree = 32;

// Whether an index can hold keys of this size. Three entries have to fit on a node, or there would
// be no way to split it; longer keys than 255 bytes were never seen in Jet 3, whose prefix has one
// byte.
inline bool IsKeySize(std::size_t size, const Format& format) {
    constexpr std::size_t kLongestKeyJet3 = 0xFF;
    return 3 * (size + kRowPointerSize + kChildPointerSize) <= format.entryCapacity &&
           (format.prefixWidth != 1 || size <= kLongestKeyJet3);
}

// Where a search stops: at the first entry that ...
struct EntryBound {
    enum class Rule {
        kNotBelow,  // ... is not below the bytes
        kAbove,     // ... is above the bytes
        kBeyond,    // ... is above the bytes and does not begin with them
    };
    Bytes bytes;
    Rule rule = Rule::kNotBelow;

    // Whether the search goes past this entry (key and row pointer).
    [[nodiscard]] bool Passes(Bytes entry) const;
};

// Key and row pointer as an entry has them.
Key EntryBytes(Bytes key, RowId row);
IndexEntry EntryFromBytes(Key entry);
RowId RowOf(Bytes entry);

// A stored page. Entries are named by the offset of their first byte in the entry area; searching
// works on the stored bytes, without taking the page apart. The page must stay pinned meanwhile.
class IndexPage {
public:
    // kDamaged when it is no index page of this table or its bitmap or prefix make no sense.
    IndexPage(Bytes page, const Format& format, PageNumber number, PageNumber table);

    [[nodiscard]] bool IsLeaf() const { return leaf_; }
    [[nodiscard]] PageNumber Previous() const;
    [[nodiscard]] PageNumber Next() const;
    [[nodiscard]] PageNumber Tail() const;
    [[nodiscard]] std::uint8_t Level() const;
    [[nodiscard]] std::uint32_t FreeField() const;
    [[nodiscard]] std::size_t PrefixSize() const { return prefix_; }

    [[nodiscard]] bool IsEmpty() const { return used_ == 0; }
    // The bytes in use, which is also the position after the last entry.
    [[nodiscard]] std::size_t End() const { return used_; }
    [[nodiscard]] std::size_t After(std::size_t at) const;
    [[nodiscard]] std::size_t Before(std::size_t at) const;
    // The first entry that the bound does not pass, or End().
    [[nodiscard]] std::size_t Find(const EntryBound& bound) const;
    // The same, soonest when it is the end: rows are added in key order, as a rule.
    [[nodiscard]] std::size_t FindFromEnd(const EntryBound& bound) const;

    // Key and row pointer in full, without a node's child.
    void Read(std::size_t at, Key& into) const;
    [[nodiscard]] PageNumber Child(std::size_t at) const;
    // Key and row pointer, without putting them together.
    [[nodiscard]] bool BeginsWith(std::size_t at, Bytes start) const;
    [[nodiscard]] std::size_t SizeOf(std::size_t at) const;

private:
    // An entry as it is stored, without a node's child.
    [[nodiscard]] Bytes StoredKeyAndRow(std::size_t at, std::size_t end) const {
        const std::size_t child = leaf_ ? 0 : kChildPointerSize;
        const std::size_t whole = end - at + (at == 0 ? 0 : prefix_);
        if (whole <= kRowPointerSize + child || end - at < child) {
            Damaged("has an entry that is too short");
        }
        return page_.subspan(format_->entryAreaAt + at, end - at - child);
    }
    [[nodiscard]] Bytes Prefix() const { return page_.subspan(format_->entryAreaAt, prefix_); }
    // The same for entries from `from` on, which must begin with what they leave out.
    [[nodiscard]] std::size_t Find(const EntryBound& bound, std::size_t from) const;
    // Eight bytes of the bitmap. They always lie on the page, since the entries follow it.
    [[nodiscard]] std::uint64_t BitsFrom(std::size_t byte) const {
        return ReadU64(page_, format_->entryBitmapAt + byte);
    }
    // The first set bit from `from` on; there is one, as `from` is at most the last.
    [[nodiscard]] std::size_t NextBit(std::size_t from) const {
        const std::uint64_t bits = BitsFrom(from / 8) >> from % 8;
        return bits != 0 ? from + static_cast<std::size_t>(std::countr_zero(bits))
                         : NextBitFar(from);
    }
    [[nodiscard]] std::size_t NextBitFar(std::size_t from) const;
    // The last set bit up to and including `to`, or 0.
    [[nodiscard]] std::size_t LastBitUpTo(std::size_t to) const {
        if (to < 64) return LastBitFar(to);
        const std::uint64_t bits = BitsFrom(to / 8 - 7) << (7 - to % 8);
        return bits != 0 ? to - static_cast<std::size_t>(std::countl_zero(bits)) : LastBitFar(to);
    }
    [[nodiscard]] std::size_t LastBitFar(std::size_t to) const;
    [[nodiscard]] std::size_t LastBit() const;
    [[noreturn]] void Damaged(const char* what) const;

    Bytes page_;
    const Format* format_;
    PageNumber number_;
    std::size_t used_ = 0;
    std::size_t prefix_ = 0;
    bool leaf_ = true;
};

// Entries in full, one after the other.
class EntryList {
public:
    [[nodiscard]] std::size_t Count() const { return ends_.size(); }
    [[nodiscard]] Bytes At(std::size_t i) const;
    [[nodiscard]] std::size_t TotalSize() const { return bytes_.size(); }
    // Of the entries from number `first` on, before number `end`.
    [[nodiscard]] std::size_t SizeOf(std::size_t first, std::size_t end) const {
        return StartOf(end) - StartOf(first);
    }
    void Reserve(std::size_t size);
    void Append(Bytes entry);
    void Insert(std::size_t i, Bytes entry);
    void Erase(std::size_t i);
    // Moves the entries from number `i` on to the end of another list.
    void MoveTail(std::size_t i, EntryList& to);

private:
    [[nodiscard]] std::size_t StartOf(std::size_t i) const { return i == 0 ? 0 : ends_[i - 1]; }

    Key bytes_;
    std::vector<std::size_t> ends_;
};

// A page taken apart. On nodes the child of an entry is its last four bytes; the slot after the
// last entry stands for the tail.
struct IndexPageContent {
    std::uint8_t level = 0;
    PageNumber previous, next, tail;
    EntryList entries;

    [[nodiscard]] bool IsLeaf() const { return level == 0; }
    // An entry without the child.
    [[nodiscard]] Bytes KeyAndRow(std::size_t i) const;
    [[nodiscard]] PageNumber ChildAt(std::size_t slot) const;
    void SetChild(std::size_t slot, PageNumber child);
    void InsertChild(std::size_t i, Bytes keyAndRow, PageNumber child);
    // The number of the first entry that the bound does not pass.
    [[nodiscard]] std::size_t Find(const EntryBound& bound) const;

    // kDamaged when the page contradicts itself in any way: it must not be written then.
    static IndexPageContent Decode(Bytes page, const Format& format, PageNumber number,
                                   PageNumber table);
    [[nodiscard]] bool Fits(const Format& format) const;
    // Whether the entries from number `first` on, before number `end`, would fit on such a page.
    [[nodiscard]] bool PartFits(std::size_t first, std::size_t end, const Format& format) const;
    void Encode(MutableBytes page, const Format& format, PageNumber table) const;

private:
    [[nodiscard]] std::size_t PrefixFor(std::size_t first, std::size_t end,
                                        const Format& format) const;
};

}  // namespace jet
