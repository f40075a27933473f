// Files as the program names them: folders that are joined and listed, names without regard to
// case, whole copies. Errors are platform::RuntimeError.
#pragma once

#include <QString>
#include <QStringList>

namespace platform {

// `folder`, the host's separator, `name`.
QString JoinPath(const QString& folder, const QString& name);

// The names of the normal files that match the path's last part ("*" and "?" allowed, no regard to
// case; an empty last part means all). A folder that does not exist gives none. kPathAccess and
// kPermissionDenied when the folder cannot be listed.
QStringList Dir(const QString& pattern);
// The path of the file in this folder whose name equals `name` without regard to case; the path
// with the name as given when there is none.
QString FindFile(const QString& folder, const QString& name);
// `path` when it exists; else the path that exists and equals it without regard to the case of its
// parts and the kind of its separators; else `path`.
QString FindPath(const QString& path);
// Copies a file over `to` if that exists, as a whole or not at all. kFileNotFound, kPathNotFound,
// kPermissionDenied, kPathAccess, kDiskFull.
void FileCopy(const QString& from, const QString& to);

}  // namespace platform
