// The data file itself: its path, its lock, and its state as the last checkpoint left it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>

#include "jet/file.h"
#include "jet/options.h"
#include "page/format.h"
#include "page/types.h"

namespace jet {

// What distinguishes one state of a data file from another; a log belongs to the state that it
// began with.
struct FileState {
    std::uint32_t pageCount = 0;
    std::uint16_t commitCounter = 0;
    std::uint64_t otherCounters = 0;  // which nothing here changes
};

// The log of a data file.
std::filesystem::path LogPath(const std::filesystem::path& dataFile);
// Removes a file whose making failed, where that is possible.
void RemoveQuietly(FileSystem& files, const std::filesystem::path& path) noexcept;
// kFileInUse.
void RequireLock(File& file, bool exclusive);
// Opens a file and locks it. kFileInUse also when a program that notes in a lock file beside it, or
// beside the link that leads to it, who works with it holds that. Other errors: those of
// FileSystem::Open.
std::unique_ptr<File> OpenLocked(FileSystem& files, const std::filesystem::path& path,
                                 const OpenOptions& options);

class DataFile {
public:
    DataFile(FileSystem& files, std::filesystem::path path, std::unique_ptr<File> file,
             const Format& format, bool readOnly);

    [[nodiscard]] FileSystem& Files() const { return files_; }
    [[nodiscard]] const std::filesystem::path& Path() const { return path_; }
    [[nodiscard]] const Format& PageFormat() const { return format_; }
    [[nodiscard]] bool IsOpen() const { return file_ != nullptr; }
    [[nodiscard]] bool IsReadOnly() const { return readOnly_; }
    // kClosed, kReadOnly.
    void RequireWritable() const;
    // The open file, for whoever makes another one like it.
    [[nodiscard]] File& Model() const { return *file_; }

    // A file beside this one, with its access rights, that is gone when it is closed. Errors: those
    // of FileSystem::CreateTemporary.
    [[nodiscard]] std::unique_ptr<File> MakeTemporary() const;
    // Removes one that a process left which ended just when it had made it.
    void RemoveTemporary() const noexcept;

    // As the last checkpoint left it; no pages in a file that has had none.
    [[nodiscard]] const FileState& State() const { return state_; }
    // Takes the counters of a header page, and the number of pages that the file has.
    void TakeState(Bytes headerPage, std::uint32_t pages);

    // Reads and writes whole pages. kIo, kDiskFull.
    void Read(PageNumber first, MutableBytes into);
    void Write(PageNumber first, Bytes pages);
    // The same for pages that follow each other in the file, but not in memory.
    void Write(PageNumber first, std::span<const Bytes> pages);
    void Flush() { file_->Flush(); }
    [[nodiscard]] std::uint64_t Size() const { return file_->Size(); }
    void Truncate(std::uint64_t size) { file_->Truncate(size); }

    // kFileInUse when another program has written to the file: pages of two states make no file.
    void RequireUntouched();
    // Before the first write of a checkpoint: until it has ended, the file's counter may be any
    // that was tried.
    void BeginCheckpoint() { checkpointFailed_ = true; }
    void EndCheckpoint(std::uint32_t pages, std::uint16_t counter);

    // Where the file is now; another program may have renamed or removed it.
    [[nodiscard]] Whereabouts Locate();
    [[nodiscard]] bool WasMoved() const { return moved_; }
    // Goes on with another file at the same path, which has this state.
    void Replace(std::unique_ptr<File> file, std::uint32_t pages, std::uint16_t counter);
    [[nodiscard]] bool WasReplaced() const { return replaced_; }

    // Gives up the file and its lock.
    void Release() { file_.reset(); }
    // The same; a file that has had no checkpoint is removed.
    void Discard() noexcept;

private:
    FileSystem& files_;
    std::filesystem::path path_;
    std::unique_ptr<File> file_;  // null when closed
    const Format& format_;
    bool readOnly_;
    FileState state_;
    bool checkpointFailed_ = false;
    bool moved_ = false;
    bool replaced_ = false;
};

}  // namespace jet
