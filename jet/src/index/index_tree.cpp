#include "index/index_tree.h"

#include "index/leaf_search.h"
#include "index/tree_change.h"

namespace jet {

IndexTree::IndexTree(Pager& pager, PageNumber table, PageNumber root, UsageMap pages)
    : pager_(&pager), table_(table), root_(root), pages_(pages) {}

bool IndexTree::HasKey(Bytes key, RowId except) const {
    const LeafSearch tree(*pager_, table_, root_);
    LeafPlace place = tree.Find({key, EntryBound::Rule::kNotBelow});
    Key entry;
    // Between entries of this key others can lie that begin with it, when it is the beginning of
    // another key.
    while (!place.IsEnd() && place.leaf.BeginsWith(place.at, key)) {
        place.leaf.Read(place.at, entry);
        if (entry.size() == key.size() + kRowPointerSize && RowOf(entry) != except) {
            return true;
        }
        place = tree.Find({entry, EntryBound::Rule::kAbove});
    }
    return false;
}

bool IndexTree::Insert(Operation& operation, Bytes key, RowId row) {
    TreeChange change(operation, table_, root_, pages_);
    if (const auto isNew = change.InsertInPlace(key, row, *this)) {
        return *isNew;
    }
    const bool isNew = !HasKey(key);
    change.Insert(key, row);
    return isNew;
}

void IndexTree::Erase(Operation& operation, Bytes key, RowId row, const EntryPlace& place) {
    TreeChange change(operation, table_, root_, pages_);
    if (!change.EraseInPlace(key, row, place)) {
        change.Erase(key, row, *this);
    }
}

PageNumber IndexTree::Create(Operation& operation, PageNumber table, UsageMap& pages) {
    const PageNumber root = operation.Allocate();
    IndexPageContent().Encode(operation.Change(root), operation.FileFormat(), table);
    pages.Add(operation, root);
    return root;
}

}  // namespace jet
