// An open file: its pages, read through a bounded cache and changed as whole operations.
//
// Reading: Page(n) pins page n and gives its bytes; the pin keeps them in the cache.
// Changing: only through an Operation (operation.h). One outside a transaction is a transaction by
// itself; inside one it is a savepoint, and CommitTransaction is the moment of commitment. Either
// hands the differences to the journal, in one write.
//
// Changed pages stay in the cache, and out of the file, until MakeDurable. See journal.h for what
// happens between. The work is done by the parts that it is made of: the data file with its path
// and lock, the log, the cache, the changes in hand, and the checkpoint.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <utility>

#include "jet/database.h"
#include "jet/file.h"
#include "page/changes.h"
#include "page/checkpoint.h"
#include "page/data_file.h"
#include "page/format.h"
#include "page/found_log.h"
#include "page/frame_cache.h"
#include "page/header.h"
#include "page/journal.h"
#include "page/page_cache.h"
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
    PageRef(Frame& frame, std::size_t size) : frame_(&frame), data_(frame.bytes, size) {
        ++frame.pins;
    }

    Frame* frame_ = nullptr;
    Bytes data_;
};

class Pager {
public:
    // Opens, locks, checks the header and recovers what an interrupted run left in its log.
    // Errors: those of Database::Open.
    static std::unique_ptr<Pager> Open(FileSystem& files, const std::filesystem::path& path,
                                       const OpenOptions& options, Recovery& recovery);
    // Makes a file of two pages, the header and the global maps; the caller adds the system tables
    // from page 2 on. Nothing is in the file before MakeDurable. It gets the
    // access rights of `like`, where there is one.
    static std::unique_ptr<Pager> Create(FileSystem& files, const std::filesystem::path& path,
                                         Version version, const OpenOptions& options = {},
                                         File* like = nullptr);

    Pager(const Pager&) = delete;
    Pager& operator=(const Pager&) = delete;
    ~Pager();  // closes; errors are lost

    [[nodiscard]] const Format& FileFormat() const { return format_; }
    [[nodiscard]] const FileHeader& Header() const { return header_; }
    [[nodiscard]] std::uint32_t PageCount() const { return cache_.PageCount(); }
    [[nodiscard]] bool IsReadOnly() const { return file_.IsReadOnly(); }

    // kDamaged for a page past the end of the file.
    [[nodiscard]] PageRef Page(PageNumber page) { return {cache_.Fetch(page), format_.pageSize}; }
    // Raised by every operation that changed something, and when one is undone; lets cached
    // positions notice changes.
    [[nodiscard]] std::uint64_t ChangeCount() const { return changes_.Count(); }

    // Any number of operations, all or none. kTransactionOpen when one is open, kReadOnly, kClosed,
    // and those of MakeDurable when it is due.
    void BeginTransaction();
    // Errors: kDiskFull, kIo; the transaction is then undone.
    void CommitTransaction() { changes_.CommitTransaction(); }
    void RollbackTransaction() noexcept { changes_.RollbackTransaction(); }
    [[nodiscard]] bool InTransaction() const { return changes_.InTransaction(); }

    // Carries all operations so far through a power cut; the file is then complete without the log.
    // kTransactionOpen inside a transaction or an operation.
    void MakeDurable();
    // Carries the log's place in its folder through a power cut, as far as that is possible.
    void SecureLog() noexcept { journal_.SecurePlace(); }
    // The number of operations that the data file does not hold yet.
    [[nodiscard]] std::uint64_t PendingOperations() const { return journal_.Operations(); }
    // For what does not become part of the file, or not yet. Errors: those of
    // FileSystem::CreateTemporary.
    [[nodiscard]] std::unique_ptr<File> MakeTemporaryFile() const { return file_.MakeTemporary(); }
    // Whether the last MakeDurable found the file under another name; whether one put it back after
    // it had been removed.
    [[nodiscard]] bool WasMoved() const { return file_.WasMoved(); }
    [[nodiscard]] bool WasPutBack() const { return file_.WasReplaced(); }
    // Undoes an open transaction, makes durable, removes the log, gives up the file. Reading then
    // throws kClosed. When it throws, the file is given up all the same, and the log stays for the
    // next opening.
    void Close();
    // Gives up the file and its log without writing anything. A file that Create made is removed
    // too, unless it has been made durable.
    void Abandon() noexcept;

private:
    friend class Operation;

    Pager(FileSystem& files, const std::filesystem::path& path, std::unique_ptr<File> file,
          const Format& format, const OpenOptions& options);
    // Takes the file as it is on the disk, with what was found in its log.
    void Start(const FileHeader& header, Bytes headerPage, FoundLog found, Recovery& recovery);
    void StartFile(Version version);
    // Gives up the file, and leaves the log where it is.
    void Release() noexcept;
    void BeginOperation();
    void CheckpointWhenDue(std::size_t mostChangedBytes);

    const Format& format_;
    std::size_t changedBytes_;
    std::uint64_t logBytes_;
    FileHeader header_;
    DataFile file_;
    Journal journal_;
    PageCache cache_;
    Changes changes_;
    Checkpoint checkpoint_;
};

}  // namespace jet
