#include <algorithm>
#include <utility>

#include "index/index_cursor.h"
#include "index/tree_change.h"
#include "jet/error.h"

namespace jet {

// The entry of a row. Some writers count letters that stand for two (sharp s, ligatures) otherwise
// where a key records the places of accents, so an entry of this row whose key agrees in its
// greater part is the one that is meant.
Key TreeChange::StoredEntry(Bytes key, RowId row, const IndexTree& tree) const {
    IndexCursor cursor(tree);
    if (cursor.Seek(EntryBytes(key, row), SeekTo::kNotBelow) && cursor.Entry().row == row &&
        Equal(cursor.Entry().key, key)) {
        return EntryBytes(key, row);
    }
    const Bytes half = key.first(key.size() / 2);
    for (bool on = cursor.Seek(half, SeekTo::kBeginning); on; on = cursor.Next()) {
        const IndexEntry& entry = cursor.Entry();
        const std::size_t common = std::min(entry.key.size(), half.size());
        if (!Equal(Bytes(entry.key).first(common), half)) {
            break;
        }
        if (entry.row == row) {
            return EntryBytes(entry.key, row);
        }
    }
    Damaged("lacks the entry of a row");
}

void TreeChange::Erase(Bytes key, RowId row, const IndexTree& tree) {
    const Key entry = StoredEntry(key, row, tree);
    IndexPageContent leaf;
    const Path path = Descend(entry, leaf);
    const std::size_t place = leaf.Find({entry, EntryBound::Rule::kNotBelow});
    if (place == leaf.entries.Count() || !Equal(leaf.entries.At(place), entry)) {
        Damaged("has an entry below the wrong node");
    }
    const bool greatest = place + 1 == leaf.entries.Count();
    leaf.entries.Erase(place);
    if (leaf.entries.Count() != 0 || path.size() == 1) {
        Save(path.back().page, leaf);
    } else {
        RemoveEmpty(path, leaf);
    }
    if (path.size() == 1) {
        return;
    }
    if (greatest) {
        IndexCursor cursor(tree);
        cursor.SeekToEntry(EntryFromBytes(entry));
        if (cursor.Prev()) {
            ReplaceGreatest(entry, EntryBytes(cursor.Entry().key, cursor.Entry().row));
        }
    }
    RaiseOnlyChild();
}

// Node entries that repeat an erased entry take the greatest one that is left below them. The new
// key may be longer, so that a node is split; the way down is then looked for anew.
void TreeChange::ReplaceGreatest(const Key& old, const Key& greatest) {
    while (ReplaceGreatestOnce(old, greatest)) {
    }
}

bool TreeChange::ReplaceGreatestOnce(const Key& old, const Key& greatest) {
    IndexPageContent leaf;
    Path path = Descend(old, leaf);
    // From below: once an upper entry is lowered, it leads past the lower ones.
    for (std::size_t depth = path.size() - 1; depth-- > 0;) {
        IndexPageContent node = Load(path[depth].page);
        const std::size_t slot = path[depth].slot;
        if (slot == node.entries.Count() || !Equal(node.KeyAndRow(slot), old)) {
            continue;
        }
        const PageNumber child = node.ChildAt(slot);
        node.entries.Erase(slot);
        node.InsertChild(slot, greatest, child);
        path.resize(depth + 1);
        Store(std::move(path), std::move(node), false);
        return true;
    }
    return false;
}

// Takes a page without entries or children out of the tree.
void TreeChange::RemoveEmpty(Path path, const IndexPageContent& content) {
    SetNext(content.previous, content.next);
    SetPrevious(content.next, content.previous);
    RemovePage(path.back().page);
    path.pop_back();
    RemoveChild(std::move(path));
}

// Takes the child that the path's last slot leads to out of its node.
void TreeChange::RemoveChild(Path path) {
    const Step step = path.back();
    IndexPageContent node = Load(step.page);
    if (step.slot < node.entries.Count()) {
        node.entries.Erase(step.slot);
    } else if (node.entries.Count() != 0) {
        const std::size_t last = node.entries.Count() - 1;
        node.tail = node.ChildAt(last);
        node.entries.Erase(last);
    } else {
        node.tail = PageNumber{};
    }
    if (node.entries.Count() == 0 && !node.tail) {
        if (path.size() == 1) {
            Save(root_, IndexPageContent());
        } else {
            RemoveEmpty(std::move(path), node);
        }
        return;
    }
    if (node.entries.Count() == 0 && path.size() > 1) {
        // An only child below the root is an ordinary entry, until another one joins it.
        node.InsertChild(0, GreatestBelow(node.tail), node.tail);
        node.tail = PageNumber{};
    }
    Save(step.page, node);
}

Key TreeChange::GreatestBelow(PageNumber page) const {
    IndexPageContent content = Load(page);
    for (std::size_t depth = 0; !content.IsLeaf(); ++depth) {
        if (depth > kDeepestTree || (content.entries.Count() == 0 && !content.tail)) {
            Damaged("has a node without children");
        }
        content = Load(content.ChildAt(content.entries.Count() - (content.tail ? 0 : 1)));
    }
    if (content.entries.Count() == 0) {
        Damaged("has an empty leaf");
    }
    const Bytes last = content.entries.At(content.entries.Count() - 1);
    return {last.begin(), last.end()};
}

// A root with one child takes over what the child holds.
void TreeChange::RaiseOnlyChild() {
    for (IndexPageContent root = Load(root_); !root.IsLeaf(); root = Load(root_)) {
        const std::size_t children = root.entries.Count() + (root.tail ? 1 : 0);
        if (children != 1) {
            return;
        }
        const PageNumber child = root.ChildAt(0);
        IndexPageContent content = Load(child);
        content.previous = content.next = PageNumber{};
        Save(root_, content);
        RemovePage(child);
    }
}

}  // namespace jet
