// The pager's private side.
#pragma once

#include <memory>
#include <span>
#include <vector>

#include "page/frame_cache.h"
#include "page/journal.h"
#include "page/pager.h"
#include "page/pages_in_log.h"
#include "page/undo_images.h"

namespace jet {

class Pager::Impl {
public:
    Impl(FileSystem& files, std::filesystem::path path, std::unique_ptr<File> file,
         const Format& format, const OpenOptions& options);

    // Takes the file as it is on the disk.
    void Start(std::uint32_t pages, Bytes headerPage);
    // Brings in what a log holds beyond the file.
    void Recover(const LogReplay& replay);
    // Shows it, and writes nothing.
    void Overlay(const LogReplay& replay, std::unique_ptr<File> log);

    // The page's frame, read from the file when it is not in memory.
    Frame& Fetch(PageNumber page);

    void BeginTransaction();
    void CommitTransaction();
    void RollbackTransaction() noexcept;
    [[nodiscard]] bool InTransaction() const { return inTransaction_; }

    void BeginOperation();
    MutableBytes Change(PageNumber page);
    void Append();
    void CommitOperation();
    void RollbackOperation() noexcept;

    void MakeDurable();
    void Close();
    void Abandon() noexcept;
    Journal& Log() { return journal_; }

    // Whether the file was last found under another name, or put back after it had been removed.
    bool movedAway = false;
    bool putBack = false;

    FileSystem& files;
    std::filesystem::path path;
    std::unique_ptr<File> file;  // null when closed
    const Format& format;
    FileHeader header;
    bool readOnly;
    std::uint32_t pageCount = 0;  // with those that the file does not have yet
    std::uint64_t changeCount = 0;
    // The data file as the last MakeDurable left it.
    std::uint32_t filePageCount = 0;
    std::uint16_t fileCounter = 0;
    std::uint64_t otherCounters = 0;  // which nothing here changes
    PageNumber lowestFree;            // no page below it is free
    PageNumber mapRowPage;            // lately had room for a usage map; 0 when none is known

private:
    void TakePages(const LogReplay& replay);
    Frame& Load(PageNumber page);
    Frame& LoadAlone(PageNumber page);
    [[nodiscard]] std::uint32_t ReadAhead(PageNumber page) const;
    void RequireWritable() const;
    void CheckpointWhenDue(std::size_t mostDirtyBytes);
    void SpillWhenDue();
    void Spill();
    void SpillPart(std::span<const UndoImage* const> images);
    [[nodiscard]] PageChange ChangeOf(const UndoImage& image) const;
    void EndOperation() noexcept;
    void ForgetChanges() noexcept;
    void UndoFrom(std::size_t first) noexcept;
    void CollectChanges();
    void WriteToLog();
    void RequireUntouched();
    [[nodiscard]] bool PutBackIfRemoved();
    void PutBack();
    void KeepBeside();
    std::unique_ptr<File> WriteAnew(const std::filesystem::path& to, std::uint16_t counter);
    void ReadStored(PageNumber page, MutableBytes into);
    void CopyPage(PageNumber page, MutableBytes into);
    [[nodiscard]] std::vector<std::uint32_t> PagesBeyondFile();
    void WriteChangedPages();
    void WriteNewPages(std::span<const std::uint32_t> pages);
    void WritePages(std::span<const std::uint32_t> pages);
    void WriteRun(std::uint32_t first, std::size_t count);

    std::size_t mostDirtyBytes_;
    std::uint64_t largestLog_;
    FrameCache cache_;
    std::uint32_t nextInRow_ = 0;  // the page that reading in file order would ask for next
    std::vector<std::byte> readBuffer_;
    // Outside a transaction an operation is one by itself. Inside one, it is a savepoint.
    bool inTransaction_ = false;
    bool inOperation_ = false;
    std::uint32_t pagesBefore_ = 0;           // the transaction, or the operation outside of one
    std::uint32_t pagesBeforeOperation_ = 0;  // the operation
    UndoImages changed_;                      // all pages since pagesBefore_ was noted
    std::size_t firstOfOperation_ = 0;        // those from here on, by the operation
    UndoImages savepoint_;  // pages that the operation changed after the transaction had done so
    std::vector<PageChange> changes_;
    PagesInLog inLog_;
    std::size_t keptAtSpill_ = 0;  // pages that could not be moved to the log
    std::size_t dirtyCount_ = 0;
    // An attempt to write the file failed, so that its counter may be any that was tried.
    bool writeFailed_ = false;
    std::uint64_t keptOperations_ = 0;  // in the copy beside a file that was replaced
    Journal journal_;
};

// The log of a data file.
std::filesystem::path LogPath(const std::filesystem::path& dataFile);
// Takes back a file whose making failed, where that is possible.
void RemoveQuietly(FileSystem& files, const std::filesystem::path& path) noexcept;

}  // namespace jet
