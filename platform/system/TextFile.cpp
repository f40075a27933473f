#include "platform/system/TextFile.h"

#include <QByteArray>
#include <QFile>
#include <QFileInfo>

#include <cerrno>

#include "platform/RuntimeError.h"

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#endif

namespace platform {
namespace {

// `code` is the system's reason, 0 when it is not known.
[[noreturn]] void ThrowOpenFailure(const QString& path, int code) {
    const QFileInfo info(path);
    if (!QFileInfo::exists(info.path())) {
        throw RuntimeError(kPathNotFound, QStringLiteral("Path not found: ") + path);
    }
    if (info.isDir()) {
        throw RuntimeError(kPathAccess, QStringLiteral("Path/File access error: ") + path);
    }
    if (code != 0 && code != EACCES && code != EPERM && code != EROFS) {
        throw RuntimeError(kDeviceError, QStringLiteral("Device I/O error %1: ").arg(code) + path);
    }
    throw RuntimeError(kPermissionDenied, QStringLiteral("Permission denied: ") + path);
}

[[noreturn]] void ThrowDiskFull(const QString& path) {
    throw RuntimeError(kDiskFull, QStringLiteral("Disk full: ") + path);
}

#ifdef Q_OS_UNIX

// A signal may interrupt the wait for a file on a network; a pipe that nobody reads must not hold
// the program up.
int Open(const char* path, int how) {
    int file = -1;
    do {
        file = ::open(path, O_WRONLY | O_CREAT | O_CLOEXEC | O_NONBLOCK | how, 0666);
    } while (file < 0 && errno == EINTR);
    return file;
}

// How much was written.
qsizetype WriteAll(int file, const QByteArray& bytes) {
    qsizetype done = 0;
    while (done < bytes.size()) {
        const ssize_t written =
            ::write(file, bytes.constData() + done, static_cast<std::size_t>(bytes.size() - done));
        if (written < 0 && errno != EINTR) {
            break;
        }
        done += std::max<ssize_t>(written, 0);
    }
    return done;
}

// The file that was appended to last. A log gets line after line, and opening and closing it for
// each would cost more than writing it. It stays open as long as its name stands for the same file
// with the same permissions; otherwise it is opened anew, as if it had been closed.
class KeptFile {
public:
    KeptFile() = default;
    ~KeptFile() { Close(); }
    KeptFile(const KeptFile&) = delete;
    KeptFile& operator=(const KeptFile&) = delete;

    // -1, and the system's reason is set, when it cannot be opened.
    int For(const QString& path) {
        if (IsStill(path)) {
            return file_;
        }
        Close();
        name_ = QFile::encodeName(path);
        file_ = Open(name_.constData(), O_APPEND);
        if (file_ >= 0 && ::fstat(file_, &opened_) == 0) {
            path_ = path;
        }
        return file_;
    }
    void Close() {
        path_.clear();
        if (file_ >= 0) {
            ::close(file_);
            file_ = -1;
        }
    }

private:
    [[nodiscard]] bool IsStill(const QString& path) const {
        struct stat now = {};
        return file_ >= 0 && path == path_ && ::stat(name_.constData(), &now) == 0 &&
               now.st_ino == opened_.st_ino && now.st_dev == opened_.st_dev &&
               now.st_mode == opened_.st_mode;
    }

    QString path_;
    QByteArray name_;
    struct stat opened_ = {};
    int file_ = -1;
};

void Append(const QString& path, const QByteArray& bytes) {
    static KeptFile kept;
    const int file = kept.For(path);
    if (file < 0) {
        ThrowOpenFailure(path, errno);
    }
    if (WriteAll(file, bytes) < bytes.size()) {
        kept.Close();
        ThrowDiskFull(path);
    }
}

// What an older file holds beyond the new lines is cut off afterwards. To empty it first would make
// some file systems wait until its former bytes are on the disk, for milliseconds at each start.
void Replace(const QString& path, const QByteArray& bytes) {
    const int file = Open(QFile::encodeName(path).constData(), 0);
    if (file < 0) {
        ThrowOpenFailure(path, errno);
    }
    const qsizetype done = WriteAll(file, bytes);
    // Devices and pipes have no length and say so.
    const bool isCut = ::ftruncate(file, done) == 0 || errno == EINVAL;
    ::close(file);
    if (done < bytes.size() || !isCut) {
        ThrowDiskFull(path);
    }
}

void Write(const QString& path, TextMode mode, const QByteArray& bytes) {
    mode == TextMode::kAppend ? Append(path, bytes) : Replace(path, bytes);
}

#else

void Write(const QString& path, TextMode mode, const QByteArray& bytes) {
    QFile file(path);
    QIODevice::OpenMode openMode = QIODevice::WriteOnly | QIODevice::Unbuffered;
    openMode |= mode == TextMode::kAppend ? QIODevice::Append : QIODevice::Truncate;
    if (!file.open(openMode)) {
        ThrowOpenFailure(path, 0);
    }
    if (file.write(bytes) != bytes.size()) {
        ThrowDiskFull(path);
    }
}

#endif

}  // namespace

void WriteLines(const QString& path, TextMode mode, const QStringList& lines) {
    QByteArray bytes;
    for (const QString& line : lines) {
        bytes += line.toUtf8() + "\r\n";
    }
    Write(path, mode, bytes);
}

}  // namespace platform
