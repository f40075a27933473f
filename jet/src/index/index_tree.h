// One real index: a B+-tree of entries, each a key and the row that it stands for. A cursor
// (index_cursor.h) reads it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "page/operation.h"
#include "page/pager.h"
#include "page/types.h"
#include "page/usage_map.h"
#include "values/key_bytes.h"

namespace jet {

// What an entry holds.
struct IndexEntry {
    Key key;
    RowId row;
    bool operator==(const IndexEntry&) const = default;
};

// Where a cursor came to an entry; of no cursor, nowhere. The next operation ends it.
struct EntryPlace {
    PageNumber leaf;
    std::size_t at = 0;
    std::uint64_t change = 0;  // the change count then
};

class IndexTree {
public:
    IndexTree(Pager& pager, PageNumber table, PageNumber root, UsageMap pages);

    [[nodiscard]] Pager& Pages() const { return *pager_; }
    [[nodiscard]] PageNumber Table() const { return table_; }
    [[nodiscard]] PageNumber Root() const { return root_; }

    // True when an entry with exactly this key exists, other than that of `except`.
    [[nodiscard]] bool HasKey(Bytes key, RowId except = {}) const;

    // Changing. kDamaged when the tree contradicts itself or the entry to
    // be erased is missing; kRecordTooLarge for a key that no page can hold. True when no other
    // entry has the same key (the caller keeps the statistics).
    bool Insert(Operation& operation, Bytes key, RowId row);
    // `place` is where a cursor stands, on this entry or on another one: as a rule a row is deleted
    // where it has been found. It counts for the first change that an operation makes to the tree.
    void Erase(Operation& operation, Bytes key, RowId row, const EntryPlace& place = {});

    // Makes an empty tree: allocates the root page and enters it in `pages`.
    static PageNumber Create(Operation& operation, PageNumber table, UsageMap& pages);

private:
    Pager* pager_;
    PageNumber table_;
    PageNumber root_;
    UsageMap pages_;
};

}  // namespace jet
