#include "platform/system/TextFile.h"

#include <QByteArray>
#include <QFile>
#include <QFileInfo>

#include "platform/RuntimeError.h"

namespace platform {
namespace {

[[noreturn]] void ThrowOpenFailure(const QFile& file) {
    const QFileInfo info(file.fileName());
    if (!QFileInfo::exists(info.path())) {
        throw RuntimeError(kPathNotFound, QStringLiteral("Path not found: ") + file.fileName());
    }
    if (info.isDir()) {
        throw RuntimeError(kPathAccess,
                           QStringLiteral("Path/File access error: ") + file.fileName());
    }
    throw RuntimeError(kPermissionDenied, QStringLiteral("Permission denied: ") + file.fileName());
}

}  // namespace

void WriteLines(const QString& path, TextMode mode, const QStringList& lines) {
    QByteArray bytes;
    for (const QString& line : lines) {
        bytes += line.toUtf8() + "\r\n";
    }
    QFile file(path);
    QIODevice::OpenMode openMode = QIODevice::WriteOnly | QIODevice::Unbuffered;
    openMode |= mode == TextMode::kAppend ? QIODevice::Append : QIODevice::Truncate;
    if (!file.open(openMode)) {
        ThrowOpenFailure(file);
    }
    if (file.write(bytes) != bytes.size()) {
        throw RuntimeError(kDiskFull, QStringLiteral("Disk full: ") + path);
    }
}

}  // namespace platform
