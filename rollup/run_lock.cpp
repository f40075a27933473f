#include "rollup/run_lock.h"

#include <chrono>
#include <thread>

#include "jet/error.h"

namespace rollup {

void WaitUntil(const std::function<bool()>& tryIt, const Waiting& waiting) {
    constexpr std::chrono::milliseconds kPause(100);
    bool waits = false;
    while (!tryIt()) {
        if (!waits && waiting.begun) {
            waiting.begun();
        }
        waits = true;
        if (waiting.goesOn && !waiting.goesOn()) {
            throw DestinationError("Another run is writing to the destination.");
        }
        std::this_thread::sleep_for(kPause);
    }
}

RunLock::RunLock(std::filesystem::path path, const Waiting& waiting) : path_(std::move(path)) {
    try {
        WaitUntil([this] { return TryLock(); }, waiting);
    } catch (const jet::Error& error) {
        throw DestinationError(path_.parent_path().string() +
                               ": No file can be made in this folder. " + error.what());
    }
}

bool RunLock::TryLock() {
    jet::FileSystem& files = jet::HostFileSystem();
    file_ = files.OpenBeside(path_, jet::OpenMode::kCreateOrOpen);
    // Whoever held it before removes it at the end: the lock counts on the file of this name only.
    return file_->TryLock(true) && file_->WhereIs(path_) == jet::Whereabouts::kInPlace;
}

RunLock::~RunLock() {
    try {
        jet::HostFileSystem().Remove(path_);
    } catch (const jet::Error&) {
        // It stays, and nobody holds it.
    }
}

}  // namespace rollup
