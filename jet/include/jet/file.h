// The seam to the operating system: every read, write, flush, truncation and lock of the engine
// passes through these two classes, and so does every fault that a test injects.
//
// All functions throw jet::Error. Calls that name a file: kFileNotFound, kAlreadyExists, kReadOnly,
// kPermissionDenied, kFileInUse, kDiskFull, kNotADatabase (a device or a pipe), kIo. Calls on an
// open file: kDiskFull, kFileTooLarge, kReadOnly, kIo. A File closes itself, and gives up its lock,
// when it is destroyed. Offsets and sizes are bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>

namespace jet {

// Where a file is that was opened under a certain name: others can rename it, replace it or remove
// it meanwhile.
enum class Whereabouts { kInPlace, kElsewhere, kRemoved };

class File {
public:
    File() = default;
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    virtual ~File() = default;

    // Fills the whole of `into`. Reading past the end throws kIo.
    virtual void Read(std::uint64_t offset, std::span<std::byte> into) = 0;
    // Writes the whole of `from`, lengthening the file when it must.
    virtual void Write(std::uint64_t offset, std::span<const std::byte> from) = 0;
    // Writes these, one behind the other, as Write would write them in one. Without an own version
    // of it they are put together first.
    virtual void WriteAll(std::uint64_t offset, std::span<const std::span<const std::byte>> pieces);
    [[nodiscard]] virtual std::uint64_t Size() = 0;
    virtual void Truncate(std::uint64_t size) = 0;
    // Returns when all that was written is on the medium.
    virtual void Flush() = 0;
    // Takes the whole-file lock: it lasts as long as the File, dies with the process, and is not
    // lost when another handle on the file is closed. False when somebody else holds it.
    [[nodiscard]] virtual bool TryLock(bool exclusive) = 0;
    // Whether `path` still leads to this file; kRemoved when no name does. Systems that keep open
    // files in their places leave this as it is.
    [[nodiscard]] virtual Whereabouts WhereIs(const std::filesystem::path& /*path*/) {
        return Whereabouts::kInPlace;
    }
    // The system's own handle, by which CreateLike learns the rights and the group; -1 for none. A
    // File that stands before another one hands on that one's.
    [[nodiscard]] virtual std::intptr_t Handle() const { return -1; }
};

enum class OpenMode {
    kReadOnly,
    kReadWrite,
    kCreateNew,     // fails when the file exists
    kCreateOrOpen,  // read and write
};

class FileSystem {
public:
    FileSystem() = default;
    FileSystem(const FileSystem&) = delete;
    FileSystem& operator=(const FileSystem&) = delete;
    virtual ~FileSystem() = default;

    [[nodiscard]] virtual std::unique_ptr<File> Open(const std::filesystem::path& path,
                                                     OpenMode mode) = 0;
    // The same for a file beside a data file; never through a link (kNotADatabase).
    [[nodiscard]] virtual std::unique_ptr<File> OpenBeside(const std::filesystem::path& path,
                                                           OpenMode mode) {
        return Open(path, mode);
    }
    // Makes a file with the access rights and the group of `model`, and never through a link.
    // Errors of OpenMode::kCreateNew.
    [[nodiscard]] virtual std::unique_ptr<File> CreateLike(const std::filesystem::path& path,
                                                           File& /*model*/) {
        return Open(path, OpenMode::kCreateNew);
    }
    // Makes a file that nobody else opens and that is gone when it is closed or the process ends.
    // It may have this name for a moment or, on some systems, all the time; what has the name
    // already is removed. Like CreateLike besides; kFileInUse when another such file has the name.
    [[nodiscard]] virtual std::unique_ptr<File> CreateTemporary(const std::filesystem::path& path,
                                                                File& model);
    [[nodiscard]] virtual bool Exists(const std::filesystem::path& path) = 0;
    virtual void Remove(const std::filesystem::path& path) = 0;
    // Gives the file its new name at one stroke; a file that had it is replaced.
    virtual void Rename(const std::filesystem::path& from, const std::filesystem::path& to) = 0;
    // The path with links followed, so that one file has one name; unchanged where there is none.
    [[nodiscard]] virtual std::filesystem::path Resolve(const std::filesystem::path& path) = 0;
    // Makes the creation or removal of files in this folder last through a power cut.
    virtual void FlushFolder(const std::filesystem::path& folder) = 0;
};

// The host's own files.
FileSystem& HostFileSystem();

// Files that live in memory, for tests and benchmarks; each call makes an empty file system.
std::unique_ptr<FileSystem> MakeMemoryFileSystem();

}  // namespace jet
