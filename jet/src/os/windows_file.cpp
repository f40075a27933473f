// Files of Windows.
#define WIN32_LEAN_AND_MEAN
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <system_error>

#include "jet/error.h"
#include "jet/file.h"

namespace jet {

namespace {

constexpr DWORD kLargestTransfer = 1U << 24;
// Locked far beyond the end, because a lock within the file would keep others from reading it.
constexpr std::uint64_t kLockOffset = std::uint64_t{1} << 62;

// Where the system is asked for a file. Paths beyond its old limit are taken only in the form that
// it does not look into, which has to be whole and plain.
std::wstring Native(const std::filesystem::path& path) {
    constexpr std::size_t kOldLimit = 248;
    if (path.native().size() < kOldLimit || path.native().starts_with(LR"(\\?\)")) {
        return path.native();
    }
    std::error_code failed;
    const std::filesystem::path whole = std::filesystem::absolute(path, failed);
    if (failed) return path.native();
    const std::wstring plain = whole.lexically_normal().make_preferred().native();
    const bool isOnServer = plain.starts_with(LR"(\\)");
    return isOnServer ? LR"(\\?\UNC)" + plain.substr(1) : LR"(\\?\)" + plain;
}

// In the encoding of all sentences, whatever the system's own is.
std::string NameOf(const std::filesystem::path& path) {
    const std::u8string name = path.filename().u8string();
    return '"' + std::string(name.begin(), name.end()) + '"';
}

[[noreturn]] void ThrowForOpening(DWORD code, const std::filesystem::path& path) {
    const std::string name = NameOf(path);
    switch (code) {
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
        case ERROR_INVALID_NAME:
        case ERROR_BAD_PATHNAME:
        case ERROR_DIRECTORY:
        case ERROR_FILENAME_EXCED_RANGE:
        case ERROR_INVALID_DRIVE:
        case ERROR_BAD_NETPATH:
        case ERROR_BAD_NET_NAME:
        case ERROR_NOT_READY:
            throw Error(ErrorKind::kFileNotFound, "The file " + name + " cannot be found.");
        case ERROR_FILE_EXISTS:
        case ERROR_ALREADY_EXISTS:
            throw Error(ErrorKind::kAlreadyExists, "The file " + name + " exists already.");
        case ERROR_WRITE_PROTECT:
            throw Error(ErrorKind::kReadOnly, "The medium of " + name + " is read-only.");
        case ERROR_ACCESS_DENIED: {
            std::error_code unknown;
            const bool isFolder = std::filesystem::is_directory(path, unknown);
            throw Error(ErrorKind::kPermissionDenied, isFolder
                                                          ? name + " is a folder, not a file."
                                                          : "Access to " + name + " is denied.");
        }
        case ERROR_SHARING_VIOLATION:
        case ERROR_LOCK_VIOLATION:
            throw Error(ErrorKind::kFileInUse, "The file is in use by another program.");
        case ERROR_DISK_FULL:
        case ERROR_HANDLE_DISK_FULL:
            throw Error(ErrorKind::kDiskFull, "There is no room left on the disk.");
        default:
            throw Error(ErrorKind::kIo, "The file " + name + " cannot be opened.");
    }
}

[[noreturn]] void ThrowForTransfer(DWORD code, const char* what) {
    switch (code) {
        case ERROR_DISK_FULL:
        case ERROR_HANDLE_DISK_FULL:
            throw Error(ErrorKind::kDiskFull, "There is no room left on the disk.");
        case ERROR_FILE_TOO_LARGE:
            throw Error(ErrorKind::kFileTooLarge, "The file has reached the largest size allowed.");
        default:
            break;
    }
    throw Error(ErrorKind::kIo, std::string("The file could not be ") + what + " (system error " +
                                    std::to_string(code) + ").");
}

OVERLAPPED At(std::uint64_t offset) {
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(offset & 0xFFFFFFFF);
    place.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return place;
}

class WindowsFile final : public File {
public:
    explicit WindowsFile(HANDLE handle) : handle_(handle) {}
    ~WindowsFile() override { ::CloseHandle(handle_); }

    void Read(std::uint64_t offset, std::span<std::byte> into) override {
        while (!into.empty()) {
            OVERLAPPED place = At(offset);
            DWORD got = 0;
            const auto size =
                static_cast<DWORD>(std::min<std::size_t>(into.size(), kLargestTransfer));
            const BOOL done = ::ReadFile(handle_, into.data(), size, &got, &place);
            const DWORD code = done != 0 ? ERROR_SUCCESS : ::GetLastError();
            if (code == ERROR_HANDLE_EOF || (done != 0 && got == 0)) {
                throw Error(ErrorKind::kIo, "The file is shorter than expected.");
            }
            if (done == 0) ThrowForTransfer(code, "read");
            offset += got;
            into = into.subspan(got);
        }
    }

    void Write(std::uint64_t offset, std::span<const std::byte> from) override {
        while (!from.empty()) {
            OVERLAPPED place = At(offset);
            DWORD put = 0;
            const auto size =
                static_cast<DWORD>(std::min<std::size_t>(from.size(), kLargestTransfer));
            if (::WriteFile(handle_, from.data(), size, &put, &place) == 0) {
                ThrowForTransfer(::GetLastError(), "written");
            }
            if (put == 0) ThrowForTransfer(ERROR_DISK_FULL, "written");
            offset += put;
            from = from.subspan(put);
        }
    }

    std::uint64_t Size() override {
        LARGE_INTEGER size{};
        if (::GetFileSizeEx(handle_, &size) == 0) ThrowForTransfer(::GetLastError(), "examined");
        return static_cast<std::uint64_t>(size.QuadPart);
    }

    void Truncate(std::uint64_t size) override {
        FILE_END_OF_FILE_INFO end{};
        end.EndOfFile.QuadPart = static_cast<LONGLONG>(size);
        if (::SetFileInformationByHandle(handle_, FileEndOfFileInfo, &end, sizeof end) == 0) {
            ThrowForTransfer(::GetLastError(), "shortened");
        }
    }

    void Flush() override {
        if (::FlushFileBuffers(handle_) == 0) {
            ThrowForTransfer(::GetLastError(), "brought to the disk");
        }
    }

    bool TryLock(bool exclusive) override {
        OVERLAPPED place = At(kLockOffset);
        const DWORD how = LOCKFILE_FAIL_IMMEDIATELY |
                          (exclusive ? static_cast<DWORD>(LOCKFILE_EXCLUSIVE_LOCK) : 0);
        if (::LockFileEx(handle_, how, 0, 1, 0, &place) != 0) return true;
        const DWORD code = ::GetLastError();
        if (code == ERROR_LOCK_VIOLATION || code == ERROR_IO_PENDING) return false;
        if (!exclusive) return true;
        throw Error(ErrorKind::kIo, "The file system does not let the file be locked.");
    }

private:
    HANDLE handle_;
};

// A folder can have the attribute too, where it means something else.
bool IsReadOnlyFile(const std::filesystem::path& path) {
    const DWORD attributes = ::GetFileAttributesW(Native(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES &&
           (attributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY)) ==
               FILE_ATTRIBUTE_READONLY;
}

class WindowsFileSystem final : public FileSystem {
public:
    // Nobody else opens what is open for writing; readers share.
    std::unique_ptr<File> Open(const std::filesystem::path& path, OpenMode mode) override {
        return OpenShared(path, mode, mode == OpenMode::kReadOnly ? FILE_SHARE_READ : 0);
    }

    // They are renamed and removed while they are open.
    std::unique_ptr<File> OpenBeside(const std::filesystem::path& path, OpenMode mode) override {
        return OpenShared(path, mode, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                          FILE_FLAG_OPEN_REPARSE_POINT);
    }
    std::unique_ptr<File> CreateLike(const std::filesystem::path& path, File&) override {
        return OpenBeside(path, OpenMode::kCreateNew);
    }

    // The name of an open file that has been removed stays taken, so this one is removed when it is
    // closed.
    std::unique_ptr<File> CreateTemporary(const std::filesystem::path& path, File&) override {
        if (Exists(path)) Remove(path);
        return OpenShared(
            path, OpenMode::kCreateNew, 0,
            FILE_FLAG_OPEN_REPARSE_POINT | FILE_FLAG_DELETE_ON_CLOSE | FILE_ATTRIBUTE_TEMPORARY);
    }

    static std::unique_ptr<File> OpenShared(const std::filesystem::path& path, OpenMode mode,
                                            DWORD share, DWORD flags = 0) {
        const bool reading = mode == OpenMode::kReadOnly;
        const DWORD access = GENERIC_READ | (reading ? 0 : static_cast<DWORD>(GENERIC_WRITE));
        DWORD creation = OPEN_EXISTING;
        if (mode == OpenMode::kCreateNew) creation = CREATE_NEW;
        if (mode == OpenMode::kCreateOrOpen) creation = OPEN_ALWAYS;
        const HANDLE handle = ::CreateFileW(Native(path).c_str(), access, share, nullptr, creation,
                                            FILE_ATTRIBUTE_NORMAL | flags, nullptr);
        if (handle == INVALID_HANDLE_VALUE) {
            const DWORD code = ::GetLastError();
            if (code == ERROR_ACCESS_DENIED && !reading && IsReadOnlyFile(path)) {
                throw Error(ErrorKind::kReadOnly, "The file " + NameOf(path) + " is read-only.");
            }
            ThrowForOpening(code, path);
        }
        auto file = std::make_unique<WindowsFile>(handle);
        if (::GetFileType(handle) != FILE_TYPE_DISK) {
            throw Error(ErrorKind::kNotADatabase, NameOf(path) + " is not an ordinary file.");
        }
        return file;
    }

    bool Exists(const std::filesystem::path& path) override {
        return ::GetFileAttributesW(Native(path).c_str()) != INVALID_FILE_ATTRIBUTES;
    }

    void Remove(const std::filesystem::path& path) override {
        if (::DeleteFileW(Native(path).c_str()) != 0) return;
        const DWORD code = ::GetLastError();
        if (code != ERROR_FILE_NOT_FOUND && code != ERROR_PATH_NOT_FOUND) {
            ThrowForOpening(code, path);
        }
    }

    void Rename(const std::filesystem::path& from, const std::filesystem::path& to) override {
        constexpr DWORD kHow = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
        if (::MoveFileExW(Native(from).c_str(), Native(to).c_str(), kHow) == 0) {
            ThrowForOpening(::GetLastError(), from);
        }
    }

    std::filesystem::path Resolve(const std::filesystem::path& path) override {
        std::error_code failed;
        std::filesystem::path resolved = std::filesystem::canonical(path, failed);
        return failed ? path : resolved;
    }

    // The file system keeps a folder's entries by itself.
    void FlushFolder(const std::filesystem::path&) override {}
};

}  // namespace

FileSystem& HostFileSystem() {
    static WindowsFileSystem files;
    return files;
}

}  // namespace jet
