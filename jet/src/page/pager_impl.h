// The pager's private side.
#pragma once

#include <memory>
#include <vector>

#include "page/frame_cache.h"
#include "page/pager.h"

namespace jet {

class Pager::Impl {
public:
    Impl(FileSystem& files, std::filesystem::path path, std::unique_ptr<File> file,
         const Format& format, bool readOnly);

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

    FileSystem& files;
    std::filesystem::path path;
    std::unique_ptr<File> file;  // null when closed
    const Format& format;
    FileHeader header;
    bool readOnly;
    std::uint32_t pageCount = 0;  // with those that the file does not have yet
    std::uint64_t changeCount = 0;
    PageNumber lowestFree;  // no page below it is free
    PageNumber mapRowPage;  // lately had room for a usage map; 0 when none is known

private:
    struct ChangedPage {
        Frame* frame = nullptr;
        bool fresh = false;  // made by this operation
        std::unique_ptr<std::byte[]> before;
    };

    void RequireOperation() const;
    ChangedPage& Remember(Frame& frame);
    void EndOperation() noexcept;
    void WriteDirtyPages();

    FrameCache cache_;
    bool inOperation_ = false;
    std::uint32_t pageCountBefore_ = 0;
    std::vector<ChangedPage> changed_;
    std::size_t changedCount_ = 0;  // entries beyond keep their buffers for the next operation
    std::size_t dirtyCount_ = 0;
};

}  // namespace jet
