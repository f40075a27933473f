// Files of a POSIX system.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <vector>

#include "jet/error.h"
#include "jet/file.h"
#include "os/posix_errors.h"

namespace jet {

namespace {

template <typename Call>
auto Retrying(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR) result = call();
    return result;
}

class PosixFile final : public File {
public:
    ~PosixFile() override {
        if (descriptor_ >= 0) ::close(descriptor_);
    }

    void Take(int descriptor) { descriptor_ = descriptor; }

    // Gives the file, which is new, the access rights and the group of another one. Where the group
    // cannot be given, its members count among all others: nobody gets more than they have.
    void Resemble(const File& model) const {
        struct stat wanted {};
        struct stat mine {};
        if (::fstat(static_cast<int>(model.Handle()), &wanted) != 0 ||
            ::fstat(descriptor_, &mine) != 0)
            return;
        mode_t mode = (wanted.st_mode & 0777) | S_IRUSR | S_IWUSR;
        if (mine.st_gid != wanted.st_gid &&
            ::fchown(descriptor_, static_cast<uid_t>(-1), wanted.st_gid) != 0) {
            const mode_t groups = (mode & S_IRWXG) >> 3;
            mode &= S_IRWXU | groups;
        }
        static_cast<void>(::fchmod(descriptor_, mode));
    }

    void Read(std::uint64_t offset, std::span<std::byte> into) override {
        while (!into.empty()) {
            const ssize_t got = Retrying([&] {
                return ::pread(descriptor_, into.data(), into.size(), static_cast<off_t>(offset));
            });
            if (got < 0) throw ErrorOfTransfer(errno, "read");
            if (got == 0) throw Error(ErrorKind::kIo, "The file is shorter than expected.");
            offset += static_cast<std::uint64_t>(got);
            into = into.subspan(static_cast<std::size_t>(got));
        }
    }

    void Write(std::uint64_t offset, std::span<const std::byte> from) override {
        while (!from.empty()) {
            const ssize_t put = Retrying([&] {
                return ::pwrite(descriptor_, from.data(), from.size(), static_cast<off_t>(offset));
            });
            if (put < 0) throw ErrorOfTransfer(errno, "written");
            // unreachable: a regular file takes bytes or says why not; this would loop for ever
            if (put == 0) throw ErrorOfTransfer(ENOSPC, "written");
            offset += static_cast<std::uint64_t>(put);
            from = from.subspan(static_cast<std::size_t>(put));
        }
    }

    void WriteAll(std::uint64_t offset,
                  std::span<const std::span<const std::byte>> pieces) override {
        if (pieces.size() == 1) {
            Write(offset, pieces.front());
            return;
        }
        parts_.resize(std::min(pieces.size(), kMostPieces));
        while (!pieces.empty()) {
            const auto some = pieces.first(std::min(pieces.size(), parts_.size()));
            std::transform(some.begin(), some.end(), parts_.begin(), [](const auto& piece) {
                return iovec{const_cast<std::byte*>(piece.data()), piece.size()};
            });
            const ssize_t put = Retrying([&] {
                return ::pwritev(descriptor_, parts_.data(), static_cast<int>(some.size()),
                                 static_cast<off_t>(offset));
            });
            if (put < 0) throw ErrorOfTransfer(errno, "written");
            offset = WriteRest(offset, some, static_cast<std::size_t>(put));
            pieces = pieces.subspan(some.size());
        }
    }

    std::uint64_t Size() override {
        struct stat status {};
        if (::fstat(descriptor_, &status) != 0) throw ErrorOfTransfer(errno, "examined");
        return static_cast<std::uint64_t>(status.st_size);
    }

    void Truncate(std::uint64_t size) override {
        if (Retrying([&] { return ::ftruncate(descriptor_, static_cast<off_t>(size)); }) != 0) {
            throw ErrorOfTransfer(errno, "shortened");
        }
    }

    void Flush() override {
#if defined(__APPLE__)
        const int failed = ::fcntl(descriptor_, F_FULLFSYNC);
#else
        const int failed = Retrying([&] { return ::fdatasync(descriptor_); });
#endif
        if (failed != 0) throw ErrorOfTransfer(errno, "brought to the disk");
    }

    // The lock belongs to this opening, not to the process: another handle on the same file, in
    // this process too, neither shares it nor drops it by closing.
    bool TryLock(bool exclusive) override {
        if (IsHeldByRecordLock(exclusive)) return false;
        const int how = (exclusive ? LOCK_EX : LOCK_SH) | LOCK_NB;
        if (Retrying([&] { return ::flock(descriptor_, how); }) == 0) return true;
        if (errno == EWOULDBLOCK) return false;
        // Reading along needs no lock where the medium knows none.
        if (!exclusive) return true;
        throw Error(ErrorKind::kIo, "The file system does not let the file be locked.");
    }

    Whereabouts WhereIs(const std::filesystem::path& path) override {
        struct stat mine {};
        if (::fstat(descriptor_, &mine) != 0) return Whereabouts::kInPlace;
        if (mine.st_nlink == 0) return Whereabouts::kRemoved;
        struct stat there {};
        if (::stat(path.c_str(), &there) != 0) {
            // Other errors, of a network say, say nothing about the file.
            const bool absent = errno == ENOENT || errno == ENOTDIR;
            return absent ? Whereabouts::kElsewhere : Whereabouts::kInPlace;
        }
        const bool same = there.st_dev == mine.st_dev && there.st_ino == mine.st_ino;
        return same ? Whereabouts::kInPlace : Whereabouts::kElsewhere;
    }

    [[nodiscard]] std::intptr_t Handle() const override {
        return descriptor_;
    }

private:
    // The most that every system takes at once.
    static constexpr std::size_t kMostPieces = 1024;

    // What the system did not take of these, when it took that many bytes: on a full disk, say. The
    // place behind them.
    std::uint64_t WriteRest(std::uint64_t offset,
                            std::span<const std::span<const std::byte>> pieces, std::size_t taken) {
        for (const auto piece : pieces) {
            const std::size_t done = std::min(taken, piece.size());
            Write(offset + done, piece.subspan(done));
            taken -= done;
            offset += piece.size();
        }
        return offset;
    }

    // Some programs lock ranges of a file, which the lock of a whole file does not conflict with.
    [[nodiscard]] bool IsHeldByRecordLock(bool exclusive) const {
#if defined(F_OFD_GETLK)
        constexpr int kQuestion = F_OFD_GETLK;
#else
        constexpr int kQuestion = F_GETLK;
#endif
        struct flock lock {};
        lock.l_type = static_cast<short>(exclusive ? F_WRLCK : F_RDLCK);
        lock.l_whence = SEEK_SET;
        // Where the file system cannot answer, no program can have locked anything.
        return ::fcntl(descriptor_, kQuestion, &lock) == 0 && lock.l_type != F_UNLCK;
    }

    int descriptor_ = -1;
    std::vector<iovec> parts_;  // of the last write
};

int FlagsOf(OpenMode mode) {
    // Without O_NONBLOCK a named pipe would hold the program up for ever.
    constexpr int kAlways = O_CLOEXEC | O_NONBLOCK;
    switch (mode) {
        case OpenMode::kReadOnly:
            return kAlways | O_RDONLY;
        case OpenMode::kReadWrite:
            return kAlways | O_RDWR;
        case OpenMode::kCreateNew:
            return kAlways | O_RDWR | O_CREAT | O_EXCL;
        case OpenMode::kCreateOrOpen:
            return kAlways | O_RDWR | O_CREAT;
    }
    return kAlways | O_RDONLY;  // unreachable: every mode is listed
}

class PosixFileSystem final : public FileSystem {
public:
    std::unique_ptr<File> Open(const std::filesystem::path& path, OpenMode mode) override {
        return OpenWith(path, mode, 0, 0666);
    }

    std::unique_ptr<File> OpenBeside(const std::filesystem::path& path, OpenMode mode) override {
        return OpenWith(path, mode, O_NOFOLLOW, 0600);
    }

    std::unique_ptr<File> CreateLike(const std::filesystem::path& path, File& model) override {
        auto file = OpenWith(path, OpenMode::kCreateNew, O_NOFOLLOW, 0600);
        file->Resemble(model);
        return file;
    }

    std::unique_ptr<PosixFile> OpenWith(const std::filesystem::path& path, OpenMode mode, int flags,
                                        mode_t rights) const {
        // Made first: without memory for it the descriptor would never be closed.
        auto file = std::make_unique<PosixFile>();
        const int descriptor =
            Retrying([&] { return ::open(path.c_str(), FlagsOf(mode) | flags, rights); });
        if (descriptor < 0) {
            const int code = errno;
            if (code == ELOOP && (flags & O_NOFOLLOW) != 0) {
                throw Error(ErrorKind::kNotADatabase,
                            "\"" + path.filename().string() + "\" is not an ordinary file.");
            }
            if (code == EACCES && mode == OpenMode::kReadWrite &&
                ::access(path.c_str(), R_OK) == 0) {
                throw Error(ErrorKind::kReadOnly,
                            "The file \"" + path.filename().string() + "\" is read-only.");
            }
            throw ErrorOfNaming(code, path);
        }
        file->Take(descriptor);
        struct stat status {};
        if (::fstat(descriptor, &status) != 0) throw ErrorOfNaming(errno, path);
        if (S_ISDIR(status.st_mode)) throw ErrorOfNaming(EISDIR, path);
        if (!S_ISREG(status.st_mode)) {
            throw Error(ErrorKind::kNotADatabase,
                        "\"" + path.filename().string() + "\" is not an ordinary file.");
        }
        return file;
    }

    bool Exists(const std::filesystem::path& path) override {
        struct stat status {};
        return ::lstat(path.c_str(), &status) == 0;
    }

    void Remove(const std::filesystem::path& path) override {
        if (::unlink(path.c_str()) != 0 && errno != ENOENT) throw ErrorOfNaming(errno, path);
    }

    void Rename(const std::filesystem::path& from, const std::filesystem::path& to) override {
        if (::rename(from.c_str(), to.c_str()) != 0) throw ErrorOfNaming(errno, from);
    }

    std::filesystem::path Resolve(const std::filesystem::path& path) override {
        std::error_code failed;
        std::filesystem::path resolved = std::filesystem::canonical(path, failed);
        return failed ? path : resolved;
    }

    void FlushFolder(const std::filesystem::path& folder) override {
        const std::filesystem::path path = folder.empty() ? std::filesystem::path(".") : folder;
        const int descriptor =
            Retrying([&] { return ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); });
        if (descriptor < 0) throw ErrorOfNaming(errno, path);
        const int failed = Retrying([&] { return ::fsync(descriptor); });
        const int code = errno;
        ::close(descriptor);
        // Some file systems cannot flush a folder; they keep its entries by themselves.
        if (failed != 0 && code != EINVAL && code != ENOTSUP) {
            throw ErrorOfTransfer(code, "brought to the disk");
        }
    }
};

}  // namespace

FileSystem& HostFileSystem() {
    static PosixFileSystem files;
    return files;
}

}  // namespace jet
