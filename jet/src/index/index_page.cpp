#include "index/index_page.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <string>
#include <utility>

#include "jet/error.h"
#include "page/bytes.h"

namespace jet {

namespace {

constexpr std::byte kNodePage{3};
constexpr std::byte kLeafPage{4};
constexpr std::size_t kTableAt = 4;

std::uint32_t ReadPrefix(Bytes page, const Format& format) {
    return format.prefixWidth == 1 ? ReadU8(page, format.prefixAt) : ReadU16(page, format.prefixAt);
}

void WritePrefix(MutableBytes page, const Format& format, std::size_t prefix) {
    if (format.prefixWidth == 1) {
        WriteU8(page, format.prefixAt, static_cast<std::uint8_t>(prefix));
    } else {
        WriteU16(page, format.prefixAt, static_cast<std::uint16_t>(prefix));
    }
}

std::uint32_t ReadBig(Bytes bytes, std::size_t size) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < size; ++i) {
        value = value << 8 | std::to_integer<std::uint32_t>(bytes[i]);
    }
    return value;
}

void AppendBig(Key& bytes, std::uint32_t value) {
    for (int shift = 24; shift >= 0; shift -= 8) {
        bytes.push_back(static_cast<std::byte>(value >> shift & 0xFFU));
    }
}

// Four to eight bytes as a number that orders them.
inline std::uint64_t ShortKey(Bytes bytes, std::size_t size) {
    const std::uint64_t head = __builtin_bswap32(ReadU32(bytes, 0));
    return head << 32 | __builtin_bswap32(ReadU32(bytes, size - sizeof(std::uint32_t)));
}

// Orders bytes; a proper prefix comes first. Most keys differ in their first eight bytes.
inline int Compare(Bytes left, Bytes right) {
    const std::size_t common = std::min(left.size(), right.size());
    if (common >= sizeof(std::uint64_t)) {
        const std::uint64_t first = ReadBigU64(left, 0);
        const std::uint64_t second = ReadBigU64(right, 0);
        if (first != second) {
            return first < second ? -1 : 1;
        }
    } else if (common >= sizeof(std::uint32_t)) {
        // Two words that overlap are all of it.
        const std::uint64_t first = ShortKey(left, common);
        const std::uint64_t second = ShortKey(right, common);
        if (first != second) {
            return first < second ? -1 : 1;
        }
        return left.size() < right.size() ? -1 : left.size() > right.size() ? 1 : 0;
    }
    const int order = common == 0 ? 0 : std::memcmp(left.data(), right.data(), common);
    if (order != 0) {
        return order;
    }
    return left.size() < right.size() ? -1 : left.size() > right.size() ? 1 : 0;
}

// The first eight bytes of what is searched for, or all of them if there are fewer.
class BeginningOf {
public:
    explicit BeginningOf(Bytes bytes) {
        std::array<std::byte, sizeof value_> first{};
        size_ = std::min(bytes.size(), first.size());
        if (size_ == 0) return;
        std::memcpy(first.data(), bytes.data(), size_);
        value_ = ReadBigU64(first, 0);
        mask_ = ~std::uint64_t{0} << 8 * (sizeof value_ - size_);
    }
    // Of the entry of this size at the beginning of `page` against them; 0 when the rest has to
    // tell. The eight bytes may end in the next entry: what does not count is masked out.
    [[nodiscard]] int Order(Bytes page, std::size_t entrySize) const {
        if (entrySize < size_ || page.size() < sizeof value_) return 0;
        const std::uint64_t first = ReadBigU64(page, 0) & mask_;
        return first < value_ ? -1 : first > value_ ? 1 : 0;
    }

private:
    std::size_t size_ = 0;
    std::uint64_t value_ = 0;
    std::uint64_t mask_ = 0;
};

std::size_t CommonStart(Bytes left, Bytes right) {
    const std::size_t most = std::min(left.size(), right.size());
    std::size_t i = 0;
    while (i < most && left[i] == right[i]) {
        ++i;
    }
    return i;
}

inline bool PassesBound(const EntryBound& bound, Bytes entry) {
    switch (bound.rule) {
        case EntryBound::Rule::kNotBelow:
            return Compare(entry, bound.bytes) < 0;
        case EntryBound::Rule::kAbove:
            return Compare(entry, bound.bytes) <= 0;
        case EntryBound::Rule::kBeyond:
            break;
    }
    return Compare(entry.first(std::min(entry.size(), bound.bytes.size())), bound.bytes) <= 0;
}

}  // namespace

bool EntryBound::Passes(Bytes entry) const {
    return PassesBound(*this, entry);
}

Key EntryBytes(Bytes key, RowId row) {
    Key entry;
    entry.reserve(key.size() + kRowPointerSize + kChildPointerSize);
    entry.assign(key.begin(), key.end());
    AppendBig(entry, row.Packed());
    return entry;
}

RowId RowOf(Bytes entry) {
    return RowId::FromPacked(ReadBig(entry.last(kRowPointerSize), kRowPointerSize));
}

IndexEntry EntryFromBytes(Key entry) {
    const RowId row = RowOf(entry);
    entry.resize(entry.size() - kRowPointerSize);
    return {std::move(entry), row};
}

IndexPage::IndexPage(Bytes page, const Format& format, PageNumber number, PageNumber table)
    : page_(page), format_(&format), number_(number) {
    if ((page[0] != kNodePage && page[0] != kLeafPage) || page[1] != std::byte{1}) {
        Damaged("is no index page");
    }
    if (ReadU32(page, kTableAt) != table.value) {
        Damaged("belongs to another table");
    }
    leaf_ = page[0] == kLeafPage;
    used_ = LastBit();
    if (used_ > format.entryCapacity) {
        Damaged("has an entry beyond its end");
    }
    prefix_ = ReadPrefix(page, format);
    if (used_ != 0 && prefix_ > NextBit(1)) {
        Damaged("has a prefix longer than its first entry");
    }
}

void IndexPage::Damaged(const char* what) const {
    throw Error(ErrorKind::kDamaged,
                "The index page " + std::to_string(number_.value) + " " + what + ".");
}

PageNumber IndexPage::Previous() const {
    return PageNumber{ReadU32(page_, format_->previousPageAt)};
}

PageNumber IndexPage::Next() const {
    return PageNumber{ReadU32(page_, format_->nextPageAt)};
}

PageNumber IndexPage::Tail() const {
    return PageNumber{ReadU32(page_, format_->tailPageAt)};
}

std::uint8_t IndexPage::Level() const {
    return std::to_integer<std::uint8_t>(page_[format_->levelAt]);
}

std::uint32_t IndexPage::FreeField() const {
    return ReadU16(page_, kFreeFieldAt);
}

std::size_t IndexPage::NextBitFar(std::size_t from) const {
    std::size_t byte = from / 8;
    std::uint64_t bits = 0;
    while (bits == 0) {
        byte += sizeof bits;
        bits = BitsFrom(byte);
    }
    return byte * 8 + static_cast<std::size_t>(std::countr_zero(bits));
}

std::size_t IndexPage::LastBitFar(std::size_t to) const {
    while (to >= 64) {
        const std::uint64_t bits = BitsFrom(to / 8 - 7) << (7 - to % 8);
        if (bits != 0) {
            return to - static_cast<std::size_t>(std::countl_zero(bits));
        }
        to = (to / 8 - 7) * 8 - 1;
    }
    const std::uint64_t bits = BitsFrom(0) << (63 - to);
    return bits == 0 ? 0 : to - static_cast<std::size_t>(std::countl_zero(bits));
}

// The last set bit of all, or 0. It is where the free bytes begin, as a rule; else what a page has
// free is passed over in long steps.
std::size_t IndexPage::LastBit() const {
    static constexpr std::array<std::byte, kJet4Format.entryBitmapSize> kNone{};
    const Bytes bitmap = page_.subspan(format_->entryBitmapAt, format_->entryBitmapSize);
    if (const std::uint32_t free = FreeField(); free < format_->entryCapacity) {
        const std::size_t told = format_->entryCapacity - free;
        const std::size_t byte = told / 8;
        const std::size_t above = bitmap.size() - byte - 1;
        if (std::to_integer<unsigned>(bitmap[byte]) >> told % 8 == 1 &&
            std::memcmp(bitmap.data() + byte + 1, kNone.data(), above) == 0) {
            return told;
        }
    }
    constexpr std::size_t kStep = 32;
    std::size_t end = bitmap.size();
    while (end > kStep && (ReadU64(bitmap, end - 8) | ReadU64(bitmap, end - 16) |
                           ReadU64(bitmap, end - 24) | ReadU64(bitmap, end - 32)) == 0) {
        end -= kStep;
    }
    return LastBitUpTo(end * 8 - 1);
}

std::size_t IndexPage::After(std::size_t at) const {
    return NextBit(at + 1);
}

std::size_t IndexPage::Before(std::size_t at) const {
    return LastBitUpTo(at - 1);
}

// What all entries but the first leave out is compared once for all of them.
std::size_t IndexPage::Find(const EntryBound& bound) const {
    if (prefix_ == 0 || used_ == 0) {
        return Find(bound, 0);
    }
    const std::size_t second = After(0);
    if (!bound.Passes(StoredKeyAndRow(0, second))) {
        return 0;
    }
    const std::size_t shared = std::min(prefix_, bound.bytes.size());
    const int order = Compare(Prefix().first(shared), bound.bytes.first(shared));
    if (order != 0) {
        return order < 0 ? used_ : second;
    }
    if (shared < prefix_) {
        // The bytes searched for end inside the prefix: every entry begins with them.
        return bound.rule == EntryBound::Rule::kBeyond ? used_ : second;
    }
    return Find({bound.bytes.subspan(prefix_), bound.rule}, second);
}

// Halves the stored bytes, not the entries: the entry around a byte is found through the bitmap.
// Most entries differ from the bound in their first eight bytes, which are compared as a number.
std::size_t IndexPage::Find(const EntryBound& bound, std::size_t from) const {
    const BeginningOf wanted(bound.bytes);
    std::size_t low = from;
    std::size_t high = used_;
    while (low < high) {
        const std::size_t start = LastBitUpTo(low + (high - low) / 2);
        const std::size_t end = NextBit(start + 1);
        const Bytes entry = StoredKeyAndRow(start, end);
        const int order = wanted.Order(page_.subspan(format_->entryAreaAt + start), entry.size());
        if (order != 0 ? order < 0 : PassesBound(bound, entry)) {
            low = end;
        } else {
            high = start;
        }
    }
    return low;
}

std::size_t IndexPage::FindFromEnd(const EntryBound& bound) const {
    if (used_ == 0) return used_;
    const std::size_t last = Before(used_);
    const std::size_t shared = last == 0 ? 0 : prefix_;
    const bool passes =
        bound.bytes.size() >= shared && Equal(Prefix().first(shared), bound.bytes.first(shared)) &&
        PassesBound({bound.bytes.subspan(shared), bound.rule}, StoredKeyAndRow(last, used_));
    return passes ? used_ : Find(bound);
}

bool IndexPage::BeginsWith(std::size_t at, Bytes start) const {
    const Bytes stored = StoredKeyAndRow(at, After(at));
    if (at != 0) {
        const std::size_t shared = std::min(prefix_, start.size());
        if (Compare(Prefix().first(shared), start.first(shared)) != 0) {
            return false;
        }
        start = start.subspan(shared);
    }
    return stored.size() >= start.size() && Compare(stored.first(start.size()), start) == 0;
}

std::size_t IndexPage::SizeOf(std::size_t at) const {
    return StoredKeyAndRow(at, After(at)).size() + (at == 0 ? 0 : prefix_);
}

void IndexPage::Read(std::size_t at, Key& into) const {
    const Bytes stored = StoredKeyAndRow(at, After(at));
    into.clear();
    if (at != 0) {
        const Bytes prefix = Prefix();
        into.assign(prefix.begin(), prefix.end());
    }
    into.insert(into.end(), stored.begin(), stored.end());
}

PageNumber IndexPage::Child(std::size_t at) const {
    const std::size_t end = After(at);
    if (end - at < kChildPointerSize) {
        Damaged("has an entry that is too short");
    }
    return PageNumber{
        ReadBig(page_.subspan(format_->entryAreaAt + end - kChildPointerSize), kChildPointerSize)};
}

Bytes EntryList::At(std::size_t i) const {
    return Bytes(bytes_).subspan(StartOf(i), ends_[i] - StartOf(i));
}

// As many as entries of a usual size would take; more are no error.
void EntryList::Reserve(std::size_t size) {
    constexpr std::size_t kUsualSize = 8;
    bytes_.reserve(2 * size);
    ends_.reserve(size / kUsualSize + 2);
}

void EntryList::Append(Bytes entry) {
    bytes_.insert(bytes_.end(), entry.begin(), entry.end());
    ends_.push_back(bytes_.size());
}

void EntryList::Insert(std::size_t i, Bytes entry) {
    const std::size_t start = StartOf(i);
    bytes_.insert(bytes_.begin() + static_cast<std::ptrdiff_t>(start), entry.begin(), entry.end());
    ends_.insert(ends_.begin() + static_cast<std::ptrdiff_t>(i), start);
    for (std::size_t n = i; n < ends_.size(); ++n) {
        ends_[n] += entry.size();
    }
}

void EntryList::Erase(std::size_t i) {
    const std::size_t start = StartOf(i);
    const std::size_t size = ends_[i] - start;
    const auto first = bytes_.begin() + static_cast<std::ptrdiff_t>(start);
    bytes_.erase(first, first + static_cast<std::ptrdiff_t>(size));
    ends_.erase(ends_.begin() + static_cast<std::ptrdiff_t>(i));
    for (std::size_t n = i; n < ends_.size(); ++n) {
        ends_[n] -= size;
    }
}

void EntryList::MoveTail(std::size_t i, EntryList& to) {
    to.Reserve(bytes_.size() - StartOf(i));
    for (std::size_t n = i; n < Count(); ++n) {
        to.Append(At(n));
    }
    bytes_.resize(StartOf(i));
    ends_.resize(i);
}

Bytes IndexPageContent::KeyAndRow(std::size_t i) const {
    const Bytes entry = entries.At(i);
    return IsLeaf() ? entry : entry.first(entry.size() - kChildPointerSize);
}

PageNumber IndexPageContent::ChildAt(std::size_t slot) const {
    if (slot == entries.Count()) {
        return tail;
    }
    const Bytes entry = entries.At(slot);
    return PageNumber{ReadBig(entry.subspan(entry.size() - kChildPointerSize), kChildPointerSize)};
}

void IndexPageContent::SetChild(std::size_t slot, PageNumber child) {
    if (slot == entries.Count()) {
        tail = child;
        return;
    }
    const Bytes old = KeyAndRow(slot);
    const Key keyAndRow(old.begin(), old.end());
    entries.Erase(slot);
    InsertChild(slot, keyAndRow, child);
}

void IndexPageContent::InsertChild(std::size_t i, Bytes keyAndRow, PageNumber child) {
    Key entry(keyAndRow.begin(), keyAndRow.end());
    AppendBig(entry, child.value);
    entries.Insert(i, entry);
}

std::size_t IndexPageContent::Find(const EntryBound& bound) const {
    std::size_t low = 0;
    std::size_t high = entries.Count();
    while (low < high) {
        const std::size_t middle = low + (high - low) / 2;
        if (bound.Passes(KeyAndRow(middle))) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return low;
}

IndexPageContent IndexPageContent::Decode(Bytes page, const Format& format, PageNumber number,
                                          PageNumber table) {
    const IndexPage stored(page, format, number, table);
    const auto damaged = [&](const char* what) {
        throw Error(ErrorKind::kDamaged,
                    "The index page " + std::to_string(number.value) + " " + what + ".");
    };
    if (stored.FreeField() != format.entryCapacity - stored.End()) {
        damaged("counts its free bytes wrongly");
    }
    IndexPageContent content;
    // Other writers leave the level of nodes at 0: it is put right here, as far as this page knows.
    content.level = stored.IsLeaf() ? std::uint8_t{0} : std::max<std::uint8_t>(stored.Level(), 1);
    content.previous = stored.Previous();
    content.next = stored.Next();
    content.tail = stored.IsLeaf() ? PageNumber{} : stored.Tail();
    content.entries.Reserve(stored.End());
    Key entry;
    for (std::size_t at = 0; at != stored.End(); at = stored.After(at)) {
        stored.Read(at, entry);
        const std::size_t count = content.entries.Count();
        if (count != 0 && Compare(content.KeyAndRow(count - 1), entry) >= 0) {
            damaged("has entries out of order");
        }
        if (!stored.IsLeaf()) {
            AppendBig(entry, stored.Child(at).value);
        }
        content.entries.Append(entry);
    }
    return content;
}

// A page is compressed only when it would not fit otherwise, and only leaves are.
std::size_t IndexPageContent::PrefixFor(std::size_t first, std::size_t end,
                                        const Format& format) const {
    if (!IsLeaf() || end - first < 2 || entries.SizeOf(first, end) <= format.entryCapacity) {
        return 0;
    }
    const std::size_t widest = format.prefixWidth == 1 ? 0xFF : 0xFFFF;
    return std::min(CommonStart(entries.At(first), entries.At(end - 1)), widest);
}

bool IndexPageContent::Fits(const Format& format) const {
    return PartFits(0, entries.Count(), format);
}

bool IndexPageContent::PartFits(std::size_t first, std::size_t end, const Format& format) const {
    const std::size_t saved =
        end - first < 2 ? 0 : PrefixFor(first, end, format) * (end - first - 1);
    return entries.SizeOf(first, end) - saved <= format.entryCapacity;
}

void IndexPageContent::Encode(MutableBytes page, const Format& format, PageNumber table) const {
    std::fill(page.begin(), page.end(), std::byte{0});
    const std::size_t prefix = PrefixFor(0, entries.Count(), format);
    std::size_t used = 0;
    for (std::size_t i = 0; i < entries.Count(); ++i) {
        const Bytes stored = i == 0 ? entries.At(0) : entries.At(i).subspan(prefix);
        std::memcpy(&page[format.entryAreaAt + used], stored.data(), stored.size());
        used += stored.size();
        page[format.entryBitmapAt + used / 8] |= static_cast<std::byte>(1U << used % 8);
    }
    page[0] = IsLeaf() ? kLeafPage : kNodePage;
    page[1] = std::byte{1};
    WriteU16(page, kFreeFieldAt, static_cast<std::uint16_t>(format.entryCapacity - used));
    WriteU32(page, kTableAt, table.value);
    WriteU32(page, format.previousPageAt, previous.value);
    WriteU32(page, format.nextPageAt, next.value);
    WriteU32(page, format.tailPageAt, tail.value);
    WritePrefix(page, format, prefix);
    page[format.levelAt] = std::byte{level};
}

}  // namespace jet
