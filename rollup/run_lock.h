// Keeps two runs from writing to one destination at once.
#pragma once

#include <filesystem>
#include <memory>

#include "jet/file.h"
#include "rollup/destination.h"

namespace rollup {

// Calls `tryIt` until it succeeds. Throws DestinationError when the waiting was ended.
void WaitUntil(const std::function<bool()>& tryIt, const Waiting& waiting);

// A lock file, which dies with the process that holds it and is removed at the end.
class RunLock {
public:
    // Waits while another run holds it. Throws DestinationError when it cannot be made or the
    // waiting was ended.
    RunLock(std::filesystem::path path, const Waiting& waiting);
    RunLock(const RunLock&) = delete;
    RunLock& operator=(const RunLock&) = delete;
    ~RunLock();

private:
    [[nodiscard]] bool TryLock();

    std::filesystem::path path_;
    std::unique_ptr<jet::File> file_;
};

}  // namespace rollup
