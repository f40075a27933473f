// Finding entries: down from the root by the nodes' entries, along the leaves by their links.
//
// Reading bears what other writers leave: a node without tail (its last child takes what lies
// above), node entries above the greatest entry below them, empty leaves. Every way through the
// pages is bounded, and each step along the leaves must bring the search further, so that a damaged
// file ends in an error and never in a loop.
#pragma once

#include <optional>
#include <string>
#include <utility>

#include "index/index_page.h"
#include "jet/error.h"

namespace jet {

// A place on a leaf: an entry, or the end of the last leaf.
struct LeafPlace {
    PageRef page;
    IndexPage leaf;
    std::size_t at = 0;

    [[nodiscard]] bool IsEnd() const { return at == leaf.End(); }
};

class LeafSearch {
public:
    LeafSearch(Pager& pager, PageNumber table, PageNumber root)
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

    static void Read(const LeafPlace& place, IndexEntry& into) {
        place.leaf.Read(place.at, into.key);
        into.row = RowOf(into.key);
        into.key.resize(into.key.size() - kRowPointerSize);
    }

    // The place before another one, or nothing.
    [[nodiscard]] std::optional<LeafPlace> Before(LeafPlace place) const {
        for (std::uint32_t hops = 0; place.at == 0; ++hops) {
            if (!place.leaf.Previous()) return std::nullopt;
            CheckHops(hops);
            place = Leaf(place.leaf.Previous());
            place.at = place.leaf.End();
        }
        place.at = place.leaf.Before(place.at);
        return place;
    }

    // The last entry that the bound passes.
    [[nodiscard]] std::optional<LeafPlace> LastPassed(const EntryBound& bound) const {
        auto place = Before(Find(bound));
        if (place) {
            Key entry;
            place->leaf.Read(place->at, entry);
            if (!bound.Passes(entry)) Damaged("has leaves out of order");
        }
        return place;
    }

    // A place on a leaf that is pinned still.
    [[nodiscard]] LeafPlace PlaceOn(PageRef page, std::size_t at) const {
        const IndexPage leaf(page.Data(), pager_.FileFormat(), page.Number(), table_);
        return {std::move(page), leaf, at};
    }

    [[noreturn]] void Damaged(const char* what) const {
        throw Error(ErrorKind::kDamaged,
                    "The index with root page " + std::to_string(root_.value) + " " + what + ".");
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
            Damaged("has a link between leaves that leads to a node");
        }
        return place;
    }

    void CheckHops(std::uint32_t hops) const {
        if (hops > pager_.PageCount()) {
            Damaged("has leaves whose links run in a circle");
        }
    }

    template <typename Choose>
    [[nodiscard]] LeafPlace Descend(const Choose& choose) const {
        LeafPlace place = Open(root_);
        for (int depth = 0; !place.leaf.IsLeaf(); ++depth) {
            if (depth > kDeepestTree) {
                Damaged("has nodes that run in a circle");
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
            Damaged("has a node without children");
        }
        return node.Child(node.Before(at));
    }

    Pager& pager_;
    PageNumber table_;
    PageNumber root_;
};

}  // namespace jet
