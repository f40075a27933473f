// A position in an index: the key and row of an entry. It survives splits, and deletions of
// entries, its own included; the neighbors of a removed entry are those of its place.
//
// Each verb says whether there is such an entry. Where there is none, and when it throws, the
// cursor stays where it was. As long as no page changes, the leaf of the position stays pinned and
// a step is a step on it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "index/index_tree.h"

namespace jet {

struct LeafPlace;

enum class SeekTo {
    kNotBelow,   // the first entry whose key is not below the search string
    kBeginning,  // the same, if it begins with the search string
    kBeyond,     // the first entry above the search string that does not begin with it
    kBelow,      // the last entry whose key is below it
    kNotBeyond,  // the last entry that begins with it or is below it
};

class IndexCursor {
public:
    IndexCursor() = default;
    // The tree must outlive it.
    explicit IndexCursor(const IndexTree& tree) : tree_(&tree) {}
    explicit IndexCursor(IndexTree&& tree) = delete;

    [[nodiscard]] bool Valid() const { return valid_; }
    [[nodiscard]] const IndexEntry& Entry() const { return entry_; }
    [[nodiscard]] EntryPlace Place() const {
        return leaf_.Data().empty() ? EntryPlace() : EntryPlace{leaf_.Number(), at_, change_};
    }

    bool SeekToFirst();
    bool SeekToLast();
    // A search string may be a prefix of keys.
    bool Seek(Bytes search, SeekTo to);
    bool Next();
    bool Prev();
    // A position that need not hold an entry.
    void SeekToEntry(IndexEntry entry) noexcept;

private:
    bool Arrive(std::optional<LeafPlace> place);
    bool Arrive(LeafPlace& place);
    [[nodiscard]] bool IsOnLeaf() const;
    [[nodiscard]] LeafPlace TakePlace();
    [[nodiscard]] bool IsAbove(const LeafPlace& place) const;
    // Moving in the other direction begins anew.
    void Face(bool forward);
    void RequireProgress(const LeafPlace& place, bool forward);

    const IndexTree* tree_ = nullptr;
    bool valid_ = false;
    IndexEntry entry_;
    IndexEntry found_;  // what a step leads to, before it is the position
    PageRef leaf_;
    std::size_t at_ = 0;
    std::uint64_t change_ = 0;
    // The entry at which moving in one direction came to its latest leaf; empty before that. It
    // must go on beyond it, so that a damaged file ends the movement.
    Key turn_;
    bool forward_ = true;
};

// The rows of all entries whose key begins with `start`, in the order of the index.
[[nodiscard]] std::vector<RowId> RowsBeginningWith(const IndexTree& tree, Bytes start);

}  // namespace jet
