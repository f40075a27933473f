// Pages of the open file: reading them through a bounded cache, and changing them as whole
// operations.
//
// Reading: Page(n) pins page n and gives its bytes; the pin keeps them in the cache.
// Changing: everything happens inside an Operation. Change(n) gives the page's bytes for writing
// and remembers how they were; Allocate and Free keep the global map. Operation::Commit is the one
// moment of commitment: it hands the differences to the journal, in one write. An Operation that
// goes without Commit puts every page back as it was.
#pragma once

#include <cstdint>
#include <memory>

#include "page/format.h"
#include "page/types.h"

namespace jet {

class Pager;

// A pinned page, readable as long as the object lives. Changes made through Change show here.
class PageRef {
public:
    PageRef() = default;
    PageRef(PageRef&& other) noexcept;
    PageRef& operator=(PageRef&& other) noexcept;
    ~PageRef();
    [[nodiscard]] Bytes Data() const { return data_; }
    [[nodiscard]] PageNumber Number() const { return number_; }

private:
    friend class Pager;
    void* frame_ = nullptr;
    PageNumber number_;
    Bytes data_;
};

class Operation {
public:
    // Operations do not nest.
    explicit Operation(Pager& pager);
    Operation(const Operation&) = delete;
    Operation& operator=(const Operation&) = delete;
    ~Operation();  // rolls back unless committed
    void Commit();

private:
    Pager& pager_;
    bool committed_ = false;
};

class Pager {
public:
    class Impl;
    explicit Pager(std::unique_ptr<Impl> impl);
    ~Pager();

    [[nodiscard]] const Format& FileFormat() const;
    [[nodiscard]] std::uint32_t PageCount() const;
    // kDamaged for a page past the end of the file.
    [[nodiscard]] PageRef Page(PageNumber page);
    // The bytes stay valid until the operation ends. Needs an open Operation; kReadOnly.
    MutableBytes Change(PageNumber page);
    // A zeroed page, marked as used in the global map. Needs an open Operation.
    PageNumber Allocate();
    // Marks the page as free in the global map and clears its first bytes. Needs an open Operation.
    void Free(PageNumber page);
    // Raised by every committed operation; lets cached positions notice changes.
    [[nodiscard]] std::uint64_t ChangeCount() const;
    [[nodiscard]] bool IsReadOnly() const;

    [[nodiscard]] Impl& Internals() { return *impl_; }

private:
    std::unique_ptr<Impl> impl_;
};

}  // namespace jet
