// Pages of the open file: reading them through a bounded cache, and changing them as whole
// operations.
//
// Reading: Page(n) pins page n and gives its bytes; the pin keeps them in the cache.
// Changing: only through an Operation (operation.h). One outside a transaction is a transaction by
// itself; inside one it is a savepoint, and CommitTransaction is the moment of commitment. Either
// hands the differences to the journal, in one write.
//
// Changed pages stay in the cache, and out of the file, until MakeDurable. See journal.h for what
// happens between.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <utility>

#include "jet/database.h"
#include "jet/file.h"
#include "page/format.h"
#include "page/frame_cache.h"
#include "page/header.h"
#include "page/types.h"

namespace jet {

// A pinned page, readable as long as the object lives. Changes made through Change show here.
class PageRef {
public:
    PageRef() = default;
    PageRef(const PageRef&) = delete;
    PageRef& operator=(const PageRef&) = delete;
    PageRef(PageRef&& other) noexcept
        : frame_(std::exchange(other.frame_, nullptr)), data_(std::exchange(other.data_, {})) {}
    PageRef& operator=(PageRef&& other) noexcept {
        std::swap(frame_, other.frame_);
        std::swap(data_, other.data_);
        return *this;
    }
    ~PageRef() {
        if (frame_ != nullptr) --frame_->pins;
    }
    [[nodiscard]] Bytes Data() const { return data_; }
    [[nodiscard]] PageNumber Number() const {
        return PageNumber{frame_ == nullptr ? 0 : frame_->number};
    }

private:
    friend class Pager;
    PageRef(Frame& frame, std::size_t size) : frame_(&frame), data_(frame.bytes.get(), size) {
        ++frame.pins;
    }

    Frame* frame_ = nullptr;
    Bytes data_;
};

class Pager {
public:
    class Impl;

    // Opens, locks, checks the header and brings in what an interrupted run left in its log.
    // Errors: those of Database::Open.
    static std::unique_ptr<Pager> Open(FileSystem& files, const std::filesystem::path& path,
                                       const OpenOptions& options, Recovery& recovery);
    // Makes a file of two pages, the header and the global maps; the caller adds the system tables
    // from page 2 on. Nothing is in the file before MakeDurable. It gets the
    // access rights of `like`, where there is one.
    static std::unique_ptr<Pager> Create(FileSystem& files, const std::filesystem::path& path,
                                         Version version, const OpenOptions& options = {},
                                         File* like = nullptr);

    explicit Pager(std::unique_ptr<Impl> impl);
    ~Pager();  // closes; errors are lost

    [[nodiscard]] const Format& FileFormat() const { return *format_; }
    [[nodiscard]] const FileHeader& Header() const;
    [[nodiscard]] std::uint32_t PageCount() const;
    [[nodiscard]] bool IsReadOnly() const;

    // kDamaged for a page past the end of the file.
    [[nodiscard]] PageRef Page(PageNumber page);
    // Raised by every operation that changed something, and when one is undone; lets cached
    // positions notice changes.
    [[nodiscard]] std::uint64_t ChangeCount() const { return *changeCount_; }

    // Any number of operations, all or none. kTransactionOpen when one is open, kReadOnly, kClosed,
    // and those of MakeDurable when it is due.
    void BeginTransaction();
    // Errors: kDiskFull, kIo; the transaction is then undone.
    void CommitTransaction();
    void RollbackTransaction() noexcept;
    [[nodiscard]] bool InTransaction() const;

    // Carries all operations so far through a power cut; the file is then complete without the log.
    // kTransactionOpen inside a transaction.
    void MakeDurable();
    // Undoes an open transaction, makes durable, removes the log, gives up the file. Reading then
    // throws kClosed. When it throws, the file is given up all the same, and the log stays for the
    // next opening.
    void Close();
    // Gives up the file and its log without writing anything. A file that Create made goes too,
    // unless it has been made durable.
    void Abandon();

    [[nodiscard]] Impl& Internals() { return *impl_; }

private:
    void StartFile(Version version);

    std::unique_ptr<Impl> impl_;
    // Of the private side; asked for with every row that is read.
    const Format* format_;
    const std::uint64_t* changeCount_;
};

}  // namespace jet
