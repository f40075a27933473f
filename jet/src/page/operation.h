// The only way to change pages. Whoever has no operation cannot write: what changes pages takes one
// by reference.
//
// Change(n) gives the page's bytes for writing and remembers how they were; Allocate and Free keep
// the global map. An operation that ends without Commit puts every page back as it was.
#pragma once

#include "page/pager.h"
#include "page/types.h"

namespace jet {

class Operation {
public:
    // Errors: kReadOnly, kClosed, kTransactionOpen when one is open already (operations do not
    // nest), and those of MakeDurable when so much has changed since the last one that it is due;
    // not within a transaction.
    explicit Operation(Pager& pager);
    Operation(const Operation&) = delete;
    Operation& operator=(const Operation&) = delete;
    ~Operation();  // rolls back unless committed

    // For reading. Changes show there at once.
    [[nodiscard]] Pager& Pages() const { return pager_; }
    [[nodiscard]] const Format& FileFormat() const { return pager_.FileFormat(); }

    // The bytes stay valid until the operation ends. Errors, here and below: those of Pager::Page,
    // kOutOfMemory, and kNoTransaction when the operation has been committed.
    MutableBytes Change(PageNumber page);
    // The same for who changes nothing but these bytes, which takes less time within a transaction.
    // All of the page can be read; for several places it is called once for each.
    MutableBytes ChangePart(PageNumber page, std::size_t from, std::size_t size);
    // A zeroed page, marked as used in the global map. kFileTooLarge.
    PageNumber Allocate();
    // Marks the page as free in the global map and clears its first bytes.
    void Free(PageNumber page);
    // Says that nobody needs the page's bytes any more: they are no longer valid, so that the
    // memory that a large operation takes stays bounded. kDiskFull, kIo.
    void Settle(PageNumber page);
    // Lengthens the file with zeroed pages until it has this one. kFileTooLarge.
    void Extend(PageNumber page);

    // The page that lately had room for a usage map; 0 when none is known.
    [[nodiscard]] PageNumber& MapRowPage();

    // Errors: kDiskFull, kIo; its destructor then rolls back.
    void Commit();

private:
    void RequireOpen() const;

    Pager& pager_;
    bool committed_ = false;
};

}  // namespace jet
