// One real index: a B+-tree of entries, each a key and the row that it stands for.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "page/pager.h"
#include "page/types.h"
#include "page/usage_map.h"
#include "values/key_bytes.h"

namespace jet {

// A position in an index: what an entry holds. Survives splits and deletions of other entries.
struct IndexEntry {
    Key key;
    RowId row;
    bool operator==(const IndexEntry&) const = default;
};

// Where a position lies, for as long as no page changes: the way to its neighbour is then a step on
// the leaf.
struct LeafHint {
    PageRef leaf;
    std::size_t at = 0;
    std::uint64_t change = 0;
};

class IndexTree {
public:
    IndexTree(Pager& pager, PageNumber table, PageNumber root, UsageMap pages);

    // Finding. Each gives the entry, or nothing past the end. A search string may be a prefix of
    // keys.
    [[nodiscard]] std::optional<IndexEntry> First() const;
    [[nodiscard]] std::optional<IndexEntry> Last() const;
    // The first entry whose key is >= `search`.
    [[nodiscard]] std::optional<IndexEntry> FirstNotBelow(Bytes search) const;
    // The same into memory that is used again; false, and nothing done, past the end.
    bool FirstNotBelow(Bytes search, IndexEntry& into) const;
    // The first entry that is greater than `search` and does not begin with it.
    [[nodiscard]] std::optional<IndexEntry> FirstBeyond(Bytes search) const;
    // The last entry whose key is < `search`.
    [[nodiscard]] std::optional<IndexEntry> LastBelow(Bytes search) const;
    // The last entry that begins with `search` or is below it.
    [[nodiscard]] std::optional<IndexEntry> LastNotBeyond(Bytes search) const;
    // The neighbours of a position, whether or not the entry is still there.
    [[nodiscard]] std::optional<IndexEntry> After(const IndexEntry& position) const;
    [[nodiscard]] std::optional<IndexEntry> Before(const IndexEntry& position) const;
    // The neighbour after a position, into memory that is used again; false past the end. The hint
    // is empty or that of the step that led to the position.
    bool Next(const IndexEntry& position, LeafHint& hint, IndexEntry& into) const;
    // The rows of all entries that begin with `start`, in the order of the index.
    [[nodiscard]] std::vector<RowId> RowsBeginningWith(Bytes start) const;
    // True when an entry with exactly this key exists, other than that of `except`.
    [[nodiscard]] bool HasKey(Bytes key, RowId except = {}) const;

    // Changing; needs an open Operation. kDamaged when the tree contradicts itself or the entry to
    // be erased is missing; kRecordTooLarge for a key that no page can hold. True when no other
    // entry has the same key (the caller keeps the statistics).
    bool Insert(Bytes key, RowId row);
    void Erase(Bytes key, RowId row);

    // Makes an empty tree: allocates the root page and enters it in `pages`. Needs an open
    // Operation.
    static PageNumber Create(Pager& pager, PageNumber table, UsageMap& pages);

private:
    Pager* pager_;
    PageNumber table_;
    PageNumber root_;
    UsageMap pages_;
};

}  // namespace jet
