// The checkpoint: carries all that was committed through a power cut, after which the data file is
// complete by itself and the log empty. The order of its steps is in journal.h.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "page/data_file.h"
#include "page/journal.h"
#include "page/page_cache.h"
#include "page/rescue.h"

namespace jet {

class Checkpoint {
public:
    // The others must outlive it.
    Checkpoint(DataFile& file, PageCache& pages, Journal& journal);

    // Nothing when the log is empty. When it throws, the log stays in force and all changed pages
    // stay in memory. kDiskFull, kIo, kFileInUse (another program has changed or replaced the
    // file).
    void Run();
    // All that was committed is in a copy beside a file that has replaced this one.
    [[nodiscard]] bool IsKeptBeside() const { return rescue_.IsKeptBeside(); }

private:
    void WriteChangedPages();
    void WriteNewPages(std::span<const std::uint32_t> pages);
    void WritePages(std::span<const std::uint32_t> pages);
    void WriteRun(std::uint32_t first, std::size_t count);

    DataFile& file_;
    PageCache& pages_;
    Journal& journal_;
    Rescue rescue_;
};

}  // namespace jet
