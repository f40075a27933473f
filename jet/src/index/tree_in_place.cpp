// Inserting and erasing where only one leaf changes, on its stored form.
#include <algorithm>
#include <optional>

#include "index/leaf_edit.h"
#include "index/tree_change.h"

namespace jet {

namespace {

bool StartsWith(Bytes bytes, Bytes start) {
    return bytes.size() >= start.size() && std::equal(start.begin(), start.end(), bytes.begin());
}

// Whether the entry at `at` is exactly this one.
bool Holds(const IndexPage& leaf, std::size_t at, Bytes entry) {
    return at != leaf.End() && leaf.SizeOf(at) == entry.size() && leaf.BeginsWith(at, entry);
}

// Whether the index has no other entry with this key, as far as the neighbors of its place show:
// not at the leaf's edge, nor where the key is the beginning of another one.
std::optional<bool> IsNew(const IndexPage& leaf, std::size_t at, Bytes key) {
    if ((at == 0 && leaf.Previous()) || (at == leaf.End() && leaf.Next())) return std::nullopt;
    const bool follows = at != 0 && leaf.BeginsWith(leaf.Before(at), key);
    const bool precedes = at != leaf.End() && leaf.BeginsWith(at, key);
    if (!follows && !precedes) return true;
    if (leaf.SizeOf(follows ? leaf.Before(at) : at) == key.size() + kRowPointerSize) return false;
    return std::nullopt;
}

}  // namespace

std::optional<TreeChange::LeafWay> TreeChange::FindLeaf(Bytes entry) const {
    PageNumber number = root_;
    PageNumber repeatedOn;
    std::size_t repeatedAt = 0;
    for (int depth = 0; depth < kDeepestTree; ++depth) {
        PageRef page = pager_.Page(number);
        const IndexPage stored(page.Data(), format_, number, table_);
        const std::size_t at = stored.FindFromEnd({entry, EntryBound::Rule::kNotBelow});
        if (stored.IsLeaf()) {
            if (stored.FreeField() != format_.entryCapacity - stored.End()) break;
            return LeafWay{{std::move(page), stored, at}, repeatedOn, repeatedAt};
        }
        if (Holds(stored, at, entry)) {
            // Only a damaged tree repeats it twice.
            if (repeatedOn) break;
            repeatedOn = number;
            repeatedAt = at;
        }
        number = at == stored.End() ? stored.Tail() : stored.Child(at);
        if (!number) break;
    }
    return std::nullopt;
}

std::optional<bool> TreeChange::InsertInPlace(Bytes key, RowId row, const IndexTree& tree) {
    if (!IsKeySize(key.size(), format_)) return std::nullopt;
    const Key entry = EntryBytes(key, row);
    const auto way = FindLeaf(entry);
    if (!way) return std::nullopt;
    const auto& [page, leaf, at] = way->leaf;
    const std::size_t prefix = at == 0 ? 0 : leaf.PrefixSize();
    if (at == 0 && leaf.PrefixSize() != 0) return std::nullopt;
    if (prefix != 0 && !StartsWith(entry, page.Data().subspan(format_.entryAreaAt, prefix))) {
        return std::nullopt;
    }
    const Bytes stored = Bytes(entry).subspan(prefix);
    if (stored.empty() || leaf.End() + stored.size() > format_.entryCapacity ||
        Holds(leaf, at, entry)) {
        return std::nullopt;
    }
    const std::optional<bool> known = IsNew(leaf, at, key);
    const bool isNew = known ? *known : !tree.HasKey(key);
    InsertStored(ChangeEntries(page.Number(), at, leaf.End() + stored.size()), format_, leaf.End(),
                 at, stored);
    return isNew;
}

// The page, to change its entries from one byte to another, with their bits and the free bytes.
MutableBytes TreeChange::ChangeEntries(PageNumber page, std::size_t from, std::size_t to) {
    operation_.ChangePart(page, kFreeFieldAt, 2);
    operation_.ChangePart(page, format_.entryBitmapAt + from / 8, to / 8 - from / 8 + 1);
    return operation_.ChangePart(page, format_.entryAreaAt + from, to - from);
}

// The leaf where a cursor stands on the entry. Not if it is the last one of its leaf: that one
// stands in a node too, and is looked for from the root.
std::optional<TreeChange::LeafWay> TreeChange::LeafOf(const EntryPlace& place, Bytes entry) const {
    if (!place.leaf || place.change != pager_.ChangeCount()) return std::nullopt;
    PageRef page = pager_.Page(place.leaf);
    const IndexPage leaf(page.Data(), format_, place.leaf, table_);
    if (!Holds(leaf, place.at, entry) || leaf.After(place.at) == leaf.End() ||
        leaf.FreeField() != format_.entryCapacity - leaf.End()) {
        return std::nullopt;
    }
    return LeafWay{{std::move(page), leaf, place.at}, {}, 0};
}

bool TreeChange::EraseInPlace(Bytes key, RowId row, const EntryPlace& place) {
    const Key entry = EntryBytes(key, row);
    auto way = LeafOf(place, entry);
    if (!way) way = FindLeaf(entry);
    if (!way) return false;
    const auto& [page, leaf, at] = way->leaf;
    if (!Holds(leaf, at, entry)) return false;
    const std::size_t end = leaf.After(at);
    const bool isLast = end == leaf.End();
    // An empty leaf has to go.
    if (at == 0 && isLast && page.Number() != root_) return false;
    // What the others leave out of the first entry stays for the next one.
    const std::size_t from = at == 0 && !isLast ? leaf.PrefixSize() : at;
    if (from == end) return false;
    if (way->repeatedOn) {
        if (at == 0 || !isLast) return false;
        Key greatest;
        leaf.Read(leaf.Before(at), greatest);
        if (!RepeatInstead(way->repeatedOn, way->repeatedAt, entry, greatest)) return false;
    }
    EraseStored(ChangeEntries(page.Number(), from, leaf.End()), format_, leaf.End(), from, end);
    return true;
}

// The greatest entry of a leaf stands in a node too. Another one of the same size takes its place.
bool TreeChange::RepeatInstead(PageNumber number, std::size_t at, const Key& old,
                               const Key& greatest) {
    if (old.size() != greatest.size()) return false;
    const PageRef page = pager_.Page(number);
    const IndexPage node(page.Data(), format_, number, table_);
    if (node.PrefixSize() != 0) return false;
    const MutableBytes area = operation_.Change(number).subspan(format_.entryAreaAt);
    std::copy(greatest.begin(), greatest.end(), area.begin() + static_cast<std::ptrdiff_t>(at));
    return true;
}

}  // namespace jet
