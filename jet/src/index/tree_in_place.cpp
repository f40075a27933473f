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

// Whether the index has no other entry with this key, as far as the neighbours of its place tell:
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

PageNumber TreeChange::FindLeaf(Bytes entry) const {
    PageNumber number = root_;
    for (int depth = 0; depth < kDeepestTree; ++depth) {
        const PageRef page = pager_.Page(number);
        const IndexPage stored(page.Data(), format_, number, table_);
        if (stored.IsLeaf()) {
            return stored.FreeField() == format_.entryCapacity - stored.End() ? number
                                                                              : PageNumber{};
        }
        const std::size_t at = stored.Find({entry, EntryBound::Rule::kNotBelow});
        number = at == stored.End() ? stored.Tail() : stored.Child(at);
        if (!number) break;
    }
    return {};
}

std::optional<bool> TreeChange::InsertInPlace(Bytes key, RowId row, const IndexTree& tree) {
    if (!IsKeySize(key.size(), format_)) return std::nullopt;
    const Key entry = EntryBytes(key, row);
    const PageNumber number = FindLeaf(entry);
    if (!number) return std::nullopt;
    const PageRef page = pager_.Page(number);
    const IndexPage leaf(page.Data(), format_, number, table_);
    const std::size_t at = leaf.Find({entry, EntryBound::Rule::kNotBelow});
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
    const std::optional<bool> told = IsNew(leaf, at, key);
    const bool isNew = told ? *told : !tree.HasKey(key);
    InsertStored(operation_.Change(number), format_, leaf.End(), at, stored);
    return isNew;
}

bool TreeChange::EraseInPlace(Bytes key, RowId row) {
    const Key entry = EntryBytes(key, row);
    const PageNumber number = FindLeaf(entry);
    if (!number) return false;
    const PageRef page = pager_.Page(number);
    const IndexPage leaf(page.Data(), format_, number, table_);
    const std::size_t at = leaf.Find({entry, EntryBound::Rule::kNotBelow});
    if (at == leaf.End() || (at == 0 && leaf.PrefixSize() != 0)) return false;
    const std::size_t end = leaf.After(at);
    // The greatest entry of a leaf stands in a node too, and an empty leaf has to go.
    if (end == leaf.End() && number != root_) return false;
    if (!Holds(leaf, at, entry)) return false;
    EraseStored(operation_.Change(number), format_, leaf.End(), at, end);
    return true;
}

}  // namespace jet
