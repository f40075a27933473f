// Inserting and erasing where only one leaf changes, on its stored form.
#include <algorithm>

#include "index/leaf_edit.h"
#include "index/tree_change.h"

namespace jet {

namespace {

constexpr int kDeepestTree = 32;

bool StartsWith(Bytes bytes, Bytes start) {
    return bytes.size() >= start.size() && std::equal(start.begin(), start.end(), bytes.begin());
}

// Whether the entries around `at` leave room for `entry` in their order; where they do not, the
// page is damaged, and the way that takes it apart says so.
bool FitsBetween(const IndexPage& leaf, std::size_t at, Bytes entry) {
    Key neighbour;
    if (at != 0) {
        leaf.Read(leaf.Before(at), neighbour);
        if (!EntryBound{entry, EntryBound::Rule::kNotBelow}.Passes(neighbour)) return false;
    }
    if (at != leaf.End()) {
        leaf.Read(at, neighbour);
        if (EntryBound{entry, EntryBound::Rule::kAbove}.Passes(neighbour)) return false;
    }
    return true;
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

bool TreeChange::InsertInPlace(Bytes key, RowId row) {
    if (format_.prefixWidth == 1 && key.size() > 0xFF) return false;
    const Key entry = EntryBytes(key, row);
    const PageNumber number = FindLeaf(entry);
    if (!number) return false;
    const PageRef page = pager_.Page(number);
    const IndexPage leaf(page.Data(), format_, number, table_);
    const std::size_t at = leaf.Find({entry, EntryBound::Rule::kNotBelow});
    const std::size_t prefix = at == 0 ? 0 : leaf.PrefixSize();
    if (at == 0 && leaf.PrefixSize() != 0) return false;
    if (prefix != 0 && !StartsWith(entry, page.Data().subspan(format_.entryAreaAt, prefix))) {
        return false;
    }
    const Bytes stored = Bytes(entry).subspan(prefix);
    if (stored.empty() || leaf.End() + stored.size() > format_.entryCapacity ||
        3 * (entry.size() + kChildPointerSize) > format_.entryCapacity ||
        !FitsBetween(leaf, at, entry)) {
        return false;
    }
    InsertStored(pager_.Change(number), format_, leaf.End(), at, stored);
    return true;
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
    Key found;
    leaf.Read(at, found);
    if (!std::equal(found.begin(), found.end(), entry.begin(), entry.end())) return false;
    EraseStored(pager_.Change(number), format_, leaf.End(), at, end);
    return true;
}

}  // namespace jet
