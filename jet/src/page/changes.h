// What is being changed: the open transaction and the open operation, with images of their pages to
// undo them.
//
// Outside a transaction an operation is one by itself. Inside one, it is a savepoint. Either hands
// the differences to the journal, in one write; a transaction that has grown large moves pages to
// the log before, and so does an operation that has done with many. So does everybody with pages at
// the end of the file that have not been used for a while: a table that is filled does not come
// back to them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "page/journal.h"
#include "page/page_cache.h"
#include "page/types.h"
#include "page/undo_images.h"

namespace jet {

class Changes {
public:
    // A transaction spills when it has changed about so many bytes. The others must outlive it.
    Changes(PageCache& pages, Journal& journal, const Format& format, std::size_t spillBytes);

    void BeginTransaction() noexcept;
    // Errors: kDiskFull, kIo; the transaction is then undone.
    void CommitTransaction();
    void RollbackTransaction() noexcept;
    [[nodiscard]] bool InTransaction() const { return inTransaction_; }

    // Errors, within a transaction: kDiskFull, kIo.
    void BeginOperation();
    // The page's bytes for writing; they stay valid until the operation ends.
    MutableBytes Change(PageNumber page);
    // The same for who changes nothing but these bytes.
    MutableBytes ChangePart(PageNumber page, std::size_t from, std::size_t size);
    // Lengthens the file by a page of zeros. kFileTooLarge.
    void Append();
    // The operation has done with the page: its bytes are no longer valid, and when there are many
    // such pages they move to the log. kDiskFull, kIo; the operation then goes on, to be undone.
    void Settle(PageNumber page);
    // Errors, outside a transaction: kDiskFull, kIo; the operation then goes on, to be undone.
    void CommitOperation();
    void RollbackOperation() noexcept;
    [[nodiscard]] bool InOperation() const { return inOperation_; }

    // Raised by every operation that changed something, and when one is undone.
    [[nodiscard]] const std::uint64_t& Count() const { return count_; }

    // Where the last operations found room; forgotten when one is undone.
    PageNumber lowestFree;  // no page below it is free
    PageNumber mapRowPage;  // lately had room for a usage map; 0 when none is known

private:
    void Enter(Frame& frame);
    [[nodiscard]] PageChange ChangeOf(const UndoImage& image);
    void AddChanges(std::span<const UndoImage> images);
    void WriteToLog();
    void SpillWhenDue();
    void Spill(const std::vector<const UndoImage*>& images);
    void SpillPart(std::span<const UndoImage* const> images);
    [[nodiscard]] std::vector<const UndoImage*> SettledPages();
    [[nodiscard]] std::vector<const UndoImage*> ColdNewPages();
    void MoveWhenDue();
    void MovePart(std::span<Frame* const> frames);
    void UndoFrom(std::size_t first) noexcept;
    void ForgetPagesInLog(std::size_t from) noexcept;
    void EndOperation() noexcept;
    void ForgetImages() noexcept;

    PageCache& pages_;
    Journal& journal_;
    const Format& format_;
    std::size_t spillPages_;
    bool inTransaction_ = false;
    bool inOperation_ = false;
    std::uint32_t pagesBefore_ = 0;           // the transaction, or the operation outside of one
    std::uint32_t pagesBeforeOperation_ = 0;  // the operation
    UndoImages changed_;                      // all pages since pagesBefore_ was noted
    std::size_t firstOfOperation_ = 0;        // those from here on, by the operation
    PartsMark partsBeforeOperation_;
    std::size_t inLogBeforeOperation_ = 0;  // entries of pages in the log
    std::size_t settled_ = 0;               // pages since they were last moved
    UndoParts savepoint_;  // what the operation changed of pages that the transaction had changed
    std::vector<std::byte> before_;  // a page that was read again
    std::vector<Frame*> written_;    // the frames of changes that are in the log
    std::size_t keptAtSpill_ = 0;    // pages that could not be moved to the log
    std::size_t lookPages_;          // after so many more, pages that went cold are looked for
    std::size_t lastLook_ = 0;
    std::uint64_t count_ = 0;
};

}  // namespace jet
