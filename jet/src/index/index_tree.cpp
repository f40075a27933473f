// Finding entries: down from the root by the nodes' entries, along the leaves by their links.
//
// Reading bears what other writers leave: a node without tail (its last child takes what lies
// above), node entries above the greatest entry below them, empty leaves. Every way through the
// pages is bounded, and each step along the leaves must bring the search further, so that a damaged
// file ends in an error and never in a loop.
#include "index/index_tree.h"

#include <algorithm>
#include <string>
#include <utility>

#include "index/index_page.h"
#include "index/tree_change.h"
#include "jet/error.h"

namespace jet {

namespace {

// A place on a leaf: an entry, or the end of the last leaf.
struct LeafPlace {
    PageRef page;
    IndexPage leaf;
    std::size_t at = 0;

    [[nodiscard]] bool IsEnd() const { return at == leaf.End(); }
};

[[noreturn]] void Damaged(PageNumber root, const char* what) {
    throw Error(ErrorKind::kDamaged,
                "The index with root page " + std::to_string(root.value) + " " + what + ".");
}

class Search {
public:
    Search(Pager& pager, PageNumber table, PageNumber root)
        : pager_(pager), table_(table), root_(root) {}

    // The first entry that the bound does not pass, or the end of the last leaf.
    [[nodiscard]] LeafPlace Find(const EntryBound& bound) const {
        LeafPlace place = Descend([&](const IndexPage& node) { return node.Find(bound); });
        place.at = place.leaf.Find(bound);
        for (std::uint32_t hops = 0; place.IsEnd() && place.leaf.Next(); ++hops) {
            CheckHops(hops);
            place = Leaf(place.leaf.Next());
            place.at = place.leaf.Find(bound);
        }
        return place;
    }

    // Goes on to the next entry along the leaves, of which `hops` counts those that were left.
    void Advance(LeafPlace& place, std::uint32_t& hops) const {
        place.at = place.leaf.After(place.at);
        while (place.IsEnd() && place.leaf.Next()) {
            CheckHops(hops++);
            place = Leaf(place.leaf.Next());
        }
    }

    // The end of the last leaf.
    [[nodiscard]] LeafPlace End() const {
        LeafPlace place = Descend([](const IndexPage& node) { return node.End(); });
        for (std::uint32_t hops = 0; place.leaf.Next(); ++hops) {
            CheckHops(hops);
            place = Leaf(place.leaf.Next());
        }
        place.at = place.leaf.End();
        return place;
    }

    [[nodiscard]] std::optional<IndexEntry> At(const LeafPlace& place) const {
        if (place.IsEnd()) {
            return std::nullopt;
        }
        IndexEntry entry;
        Read(place, entry);
        return entry;
    }

    static void Read(const LeafPlace& place, IndexEntry& into) {
        place.leaf.Read(place.at, into.key);
        into.row = RowOf(into.key);
        into.key.resize(into.key.size() - kRowPointerSize);
    }

    // The entry before a place.
    [[nodiscard]] std::optional<IndexEntry> Before(LeafPlace place) const {
        for (std::uint32_t hops = 0; place.at == 0; ++hops) {
            if (!place.leaf.Previous()) {
                return std::nullopt;
            }
            CheckHops(hops);
            place = Leaf(place.leaf.Previous());
            place.at = place.leaf.End();
        }
        place.at = place.leaf.Before(place.at);
        return At(place);
    }

    // The last entry that the bound passes.
    [[nodiscard]] std::optional<IndexEntry> LastPassed(const EntryBound& bound) const {
        auto entry = Before(Find(bound));
        if (entry && !bound.Passes(EntryBytes(entry->key, entry->row))) {
            Damaged(root_, "has leaves out of order");
        }
        return entry;
    }

    // The place after the one that a hint tells of.
    [[nodiscard]] LeafPlace NeighbourOf(LeafHint& hint) const {
        const PageNumber number = hint.leaf.Number();
        const IndexPage leaf(hint.leaf.Data(), pager_.FileFormat(), number, table_);
        LeafPlace place{std::move(hint.leaf), leaf, hint.at};
        std::uint32_t hops = 0;
        Advance(place, hops);
        return place;
    }

private:
    [[nodiscard]] LeafPlace Open(PageNumber number) const {
        PageRef page = pager_.Page(number);
        const IndexPage leaf(page.Data(), pager_.FileFormat(), number, table_);
        return {std::move(page), leaf, 0};
    }

    [[nodiscard]] LeafPlace Leaf(PageNumber number) const {
        LeafPlace place = Open(number);
        if (!place.leaf.IsLeaf()) {
            Damaged(root_, "has a link between leaves that leads to a node");
        }
        return place;
    }

    void CheckHops(std::uint32_t hops) const {
        if (hops > pager_.PageCount()) {
            Damaged(root_, "has leaves whose links run in a circle");
        }
    }

    template <typename Choose>
    [[nodiscard]] LeafPlace Descend(const Choose& choose) const {
        LeafPlace place = Open(root_);
        for (int depth = 0; !place.leaf.IsLeaf(); ++depth) {
            if (depth > kDeepestTree) {
                Damaged(root_, "has nodes that run in a circle");
            }
            place = Open(ChildOf(place.leaf, choose(place.leaf)));
        }
        return place;
    }

    [[nodiscard]] PageNumber ChildOf(const IndexPage& node, std::size_t at) const {
        if (at != node.End()) {
            return node.Child(at);
        }
        if (node.Tail()) {
            return node.Tail();
        }
        if (node.IsEmpty()) {
            Damaged(root_, "has a node without children");
        }
        return node.Child(node.Before(at));
    }

    Pager& pager_;
    PageNumber table_;
    PageNumber root_;
};

}  // namespace

IndexTree::IndexTree(Pager& pager, PageNumber table, PageNumber root, UsageMap pages)
    : pager_(&pager), table_(table), root_(root), pages_(pages) {}

std::optional<IndexEntry> IndexTree::First() const {
    return FirstNotBelow({});
}

std::optional<IndexEntry> IndexTree::Last() const {
    const Search search(*pager_, table_, root_);
    return search.Before(search.End());
}

std::optional<IndexEntry> IndexTree::FirstNotBelow(Bytes search) const {
    const Search tree(*pager_, table_, root_);
    return tree.At(tree.Find({search, EntryBound::Rule::kNotBelow}));
}

bool IndexTree::FirstNotBelow(Bytes search, IndexEntry& into) const {
    const LeafPlace place =
        Search(*pager_, table_, root_).Find({search, EntryBound::Rule::kNotBelow});
    if (place.IsEnd()) {
        return false;
    }
    Search::Read(place, into);
    return true;
}

std::optional<IndexEntry> IndexTree::FirstBeyond(Bytes search) const {
    const Search tree(*pager_, table_, root_);
    return tree.At(tree.Find({search, EntryBound::Rule::kBeyond}));
}

std::optional<IndexEntry> IndexTree::LastBelow(Bytes search) const {
    const Search tree(*pager_, table_, root_);
    return tree.LastPassed({search, EntryBound::Rule::kNotBelow});
}

std::optional<IndexEntry> IndexTree::LastNotBeyond(Bytes search) const {
    const Search tree(*pager_, table_, root_);
    return tree.LastPassed({search, EntryBound::Rule::kBeyond});
}

std::optional<IndexEntry> IndexTree::After(const IndexEntry& position) const {
    const Key bytes = EntryBytes(position.key, position.row);
    const Search tree(*pager_, table_, root_);
    return tree.At(tree.Find({bytes, EntryBound::Rule::kAbove}));
}

std::optional<IndexEntry> IndexTree::Before(const IndexEntry& position) const {
    const Key bytes = EntryBytes(position.key, position.row);
    const Search tree(*pager_, table_, root_);
    return tree.LastPassed({bytes, EntryBound::Rule::kNotBelow});
}

bool IndexTree::Next(const IndexEntry& position, LeafHint& hint, IndexEntry& into) const {
    const Search tree(*pager_, table_, root_);
    const bool known = !hint.leaf.Data().empty() && hint.change == pager_->ChangeCount();
    LeafPlace place =
        known ? tree.NeighbourOf(hint)
              : tree.Find({EntryBytes(position.key, position.row), EntryBound::Rule::kAbove});
    hint = {};
    if (place.IsEnd()) {
        return false;
    }
    Search::Read(place, into);
    hint = {std::move(place.page), place.at, pager_->ChangeCount()};
    return true;
}

std::vector<RowId> IndexTree::RowsBeginningWith(Bytes start) const {
    const Search tree(*pager_, table_, root_);
    std::vector<RowId> rows;
    LeafPlace place = tree.Find({start, EntryBound::Rule::kNotBelow});
    for (std::uint32_t hops = 0; !place.IsEnd() && place.leaf.BeginsWith(place.at, start);
         tree.Advance(place, hops)) {
        rows.push_back(place.leaf.RowAt(place.at));
    }
    return rows;
}

bool IndexTree::HasKey(Bytes key, RowId except) const {
    const Search tree(*pager_, table_, root_);
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

bool IndexTree::Insert(Bytes key, RowId row) {
    TreeChange change(*pager_, table_, root_, pages_);
    if (const auto isNew = change.InsertInPlace(key, row, *this)) {
        return *isNew;
    }
    const bool isNew = !HasKey(key);
    change.Insert(key, row);
    return isNew;
}

void IndexTree::Erase(Bytes key, RowId row) {
    TreeChange change(*pager_, table_, root_, pages_);
    if (!change.EraseInPlace(key, row)) {
        change.Erase(key, row, *this);
    }
}

PageNumber IndexTree::Create(Pager& pager, PageNumber table, UsageMap& pages) {
    const PageNumber root = pager.Allocate();
    IndexPageContent().Encode(pager.Change(root), pager.FileFormat(), table);
    pages.Add(root);
    return root;
}

}  // namespace jet
