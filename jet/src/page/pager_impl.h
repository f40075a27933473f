// The pager's private side.
#pragma once

#include <memory>
#include <span>
#include <vector>

#include "page/frame_cache.h"
#include "page/journal.h"
#include "page/pager.h"

namespace jet {

class Pager::Impl {
public:
    Impl(FileSystem& files, std::filesystem::path path, std::unique_ptr<File> file,
         const Format& format, const OpenOptions& options);

    // Takes the file as it is on the disk.
    void Start(std::uint32_t pages, std::uint16_t commitCounter);
    // Brings in what a log holds beyond the file.
    void Recover(const LogReplay& replay);

    // The page's frame, read from the file when it is not in memory.
    Frame& Fetch(PageNumber page);

    void Begin();
    MutableBytes Change(PageNumber page);
    void Append();
    void Commit();
    void Rollback() noexcept;

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
    PageNumber lowestFree;  // no page below it is free
    PageNumber mapRowPage;  // lately had room for a usage map; 0 when none is known

private:
    struct ChangedPage {
        Frame* frame = nullptr;
        bool fresh = false;  // made by this operation
        std::unique_ptr<std::byte[]> before;
    };

    Frame& Load(PageNumber page);
    Frame& LoadAlone(PageNumber page);
    [[nodiscard]] std::uint32_t ReadAhead(PageNumber page) const;
    void RequireOperation() const;
    ChangedPage& Remember(Frame& frame);
    void EndOperation() noexcept;
    void CollectChanges();
    void RequireUntouched();
    [[nodiscard]] bool PutBackIfRemoved();
    void PutBack();
    void KeepBeside();
    std::unique_ptr<File> WriteAnew(const std::filesystem::path& to, std::uint16_t counter);
    void WriteDirtyPages();
    void WriteNewPages(std::span<Frame* const> pages);
    void WritePages(std::span<Frame* const> pages);
    void WriteRun(std::span<Frame* const> run);

    std::size_t mostChangedBytes_;
    std::uint64_t largestLog_;
    FrameCache cache_;
    std::uint32_t nextInRow_ = 0;  // the page that reading in file order would ask for next
    std::vector<std::byte> readBuffer_;
    bool inOperation_ = false;
    std::uint32_t pageCountBefore_ = 0;
    std::vector<ChangedPage> changed_;
    std::size_t changedCount_ = 0;  // entries beyond keep their buffers for the next operation
    std::vector<PageChange> changes_;
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
