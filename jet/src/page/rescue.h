// Saves what was committed here when another program has removed or replaced the open file, locks
// being mere advice on many systems.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>

#include "page/data_file.h"
#include "page/journal.h"
#include "page/page_cache.h"

namespace jet {

class Rescue {
public:
    // The others must outlive it.
    Rescue(DataFile& file, PageCache& pages, Journal& journal)
        : file_(file), pages_(pages), journal_(journal) {}

    // Writes a file that has lost its last name anew at its place, which is a checkpoint too; true
    // then. kFileInUse when another file has its name: all that was committed here is then in a
    // copy beside that one.
    bool PutBackIfRemoved();
    [[nodiscard]] bool IsKeptBeside() const {
        return keptOperations_ > 0 && keptOperations_ == journal_.Operations();
    }

private:
    [[nodiscard]] bool IsUnplaced(const std::filesystem::path& path) const;
    void PutBack();
    [[noreturn]] void KeepBeside();
    std::unique_ptr<File> WriteAnew(const std::filesystem::path& to, std::uint16_t counter);

    DataFile& file_;
    PageCache& pages_;
    Journal& journal_;
    // A file that was put back, in a folder whose flush then failed.
    std::unique_ptr<File> unplaced_;
    std::uint64_t keptOperations_ = 0;  // in the copy beside a file that was replaced
};

}  // namespace jet
