#include "platform/system/Files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSaveFile>

#include <algorithm>

#include "platform/RuntimeError.h"

namespace platform {
namespace {

[[noreturn]] void Throw(ErrorNumber number, const char* sentence, const QString& path) {
    throw RuntimeError(number, QString::fromLatin1(sentence) + QStringLiteral(": ") + path);
}

// The pattern's "*" and "?" stand for any text and any character, everything else for itself.
QRegularExpression WildcardExpression(const QString& pattern) {
    QString expression;
    for (const QChar c : pattern) {
        if (c == u'*') {
            expression += QStringLiteral(".*");
        } else if (c == u'?') {
            expression += u'.';
        } else {
            expression += QRegularExpression::escape(QString(c));
        }
    }
    return QRegularExpression(
        QRegularExpression::anchoredPattern(expression),
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
}

}  // namespace

QString JoinPath(const QString& folder, const QString& name) {
    const QChar separator = QDir::separator();
    return folder.endsWith(separator) ? folder + name : folder + separator + name;
}

QStringList Dir(const QString& pattern) {
    const QString path = QDir::fromNativeSeparators(pattern);
    const qsizetype cut = path.lastIndexOf(u'/');
    const QString folder = cut < 0 ? QStringLiteral(".") : path.left(std::max<qsizetype>(cut, 1));
    QString last = path.mid(cut + 1);
    if (last.isEmpty() || last == QLatin1String("*.*")) {
        last = QStringLiteral("*");
    }
    const QFileInfo info(folder);
    if (!info.exists()) {
        return {};
    }
    if (!info.isDir()) {
        Throw(kPathAccess, "Path/File access error", folder);
    }
    if (!info.isReadable() || !info.isExecutable()) {
        Throw(kPermissionDenied, "Permission denied", folder);
    }
    return QDir(folder)
        .entryList(QDir::Files, QDir::Name | QDir::IgnoreCase)
        .filter(WildcardExpression(last));
}

QString FindFile(const QString& folder, const QString& name) {
    const QString exact = JoinPath(folder, name);
    if (QFileInfo::exists(exact)) {
        return exact;
    }
    const QStringList names = QDir(folder).entryList(
        QDir::Files | QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    for (const QString& candidate : names) {
        if (candidate.compare(name, Qt::CaseInsensitive) == 0) {
            return JoinPath(folder, candidate);
        }
    }
    return exact;
}

QString FindPath(const QString& path) {
    if (QFileInfo::exists(path)) {
        return path;
    }
#ifdef Q_OS_WIN
    // The system takes every name in every case.
    return path;
#else
    const QString wanted = QDir::cleanPath(QString(path).replace(u'\\', u'/'));
    QString found = QDir::isAbsolutePath(wanted) ? QString(QDir::separator()) : QStringLiteral(".");
    for (const QString& part : wanted.split(u'/', Qt::SkipEmptyParts)) {
        found = FindFile(found, part);
    }
    return QFileInfo::exists(found) ? found : path;
#endif
}

void FileCopy(const QString& from, const QString& to) {
    const QFileInfo source(from);
    if (!source.exists()) {
        Throw(QFileInfo::exists(source.path()) ? kFileNotFound : kPathNotFound,
              QFileInfo::exists(source.path()) ? "File not found" : "Path not found", from);
    }
    const QFileInfo target(to);
    if (!QFileInfo::exists(target.path())) {
        Throw(kPathNotFound, "Path not found", to);
    }
    if (source.isDir() || target.isDir()) {
        Throw(kPathAccess, "Path/File access error", source.isDir() ? from : to);
    }
    QFile input(from);
    if (!input.open(QIODevice::ReadOnly)) {
        Throw(kPermissionDenied, "Permission denied", from);
    }
    if (target.exists() && !target.isWritable()) {
        Throw(kPermissionDenied, "Permission denied", to);
    }
    QSaveFile output(to);
    if (!output.open(QIODevice::WriteOnly)) {
        Throw(kPermissionDenied, "Permission denied", to);
    }
    while (!input.atEnd()) {
        const QByteArray block = input.read(1 << 16);
        if (block.isEmpty()) {
            Throw(kDeviceError, "Device I/O error", from);
        }
        if (output.write(block) != block.size()) {
            Throw(kDiskFull, "Disk full", to);
        }
    }
    if (!output.commit()) {
        Throw(kPathAccess, "Path/File access error", to);
    }
}

}  // namespace platform
