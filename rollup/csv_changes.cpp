#include "rollup/csv_changes.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <functional>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

#include "jet/file.h"

namespace rollup {

namespace {

namespace fs = std::filesystem;

// Waits for the disk with several at a time. Throws what the first failure threw.
void FlushEach(std::size_t count, const std::function<void(std::size_t)>& flush) {
    constexpr std::size_t kAtATime = 8;
    std::atomic<std::size_t> next = 0;
    std::exception_ptr failure;
    std::mutex mutex;
    const auto work = [&] {
        try {
            for (std::size_t at = next++; at < count; at = next++) {
                flush(at);
            }
        } catch (...) {
            const std::lock_guard lock(mutex);
            failure = std::current_exception();
        }
    };
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < std::min(kAtATime, count); ++i) {
        threads.emplace_back(work);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    if (failure) {
        std::rethrow_exception(failure);
    }
}

void FlushFiles(const std::vector<fs::path>& files) {
    FlushEach(files.size(), [&files](std::size_t at) {
        jet::HostFileSystem().Open(files[at], jet::OpenMode::kReadWrite)->Flush();
    });
}

void FlushFolders(const std::set<fs::path>& folders) {
    const std::vector<fs::path> each(folders.begin(), folders.end());
    FlushEach(each.size(),
              [&each](std::size_t at) { jet::HostFileSystem().FlushFolder(each[at]); });
}

// Makes a folder with those above it; `changed` gets each one that has another entry now.
void MakeFolder(const fs::path& folder, std::set<fs::path>& changed) {
    if (!fs::is_directory(folder)) {
        MakeFolder(folder.parent_path(), changed);
        fs::create_directory(folder);
        changed.insert(folder.parent_path());
    }
}

}  // namespace

void CsvChanges::Put(const fs::path& place, const fs::path& file) {
    Remove(place);
    changes_[place] = file;
}

void CsvChanges::Remove(const fs::path& place) {
    std::optional<fs::path>& change = changes_[place];
    if (change) {
        fs::remove(*change);
    }
    change = std::nullopt;
}

void CsvChanges::Add(CsvChanges& later) {
    for (const auto& [place, file] : later.changes_) {
        file ? Put(place, *file) : Remove(place);
    }
    later.Forget();
}

const std::optional<fs::path>* CsvChanges::Find(const fs::path& place) const {
    const auto found = changes_.find(place);
    return found == changes_.end() ? nullptr : &found->second;
}

void CsvChanges::MakeComing() const {
    std::vector<fs::path> files;
    for (const auto& [place, file] : changes_) {
        if (file) {
            files.push_back(*file);
        }
    }
    FlushFiles(files);
    std::set<fs::path> changed;
    for (const auto& [place, file] : changes_) {
        if (file) {
            MakeFolder(place.parent_path(), changed);
            fs::rename(*file, place);
            changed.insert(place.parent_path());
        }
    }
    FlushFolders(changed);
}

void CsvChanges::MakeGoing() const {
    std::set<fs::path> changed;
    for (const auto& [place, file] : changes_) {
        if (!file && fs::remove(place)) {
            changed.insert(place.parent_path());
        }
    }
    FlushFolders(changed);
}

void CsvChanges::Drop() noexcept {
    for (const auto& [place, file] : changes_) {
        std::error_code ignored;
        if (file) {
            fs::remove(*file, ignored);
        }
    }
    Forget();
}

}  // namespace rollup
