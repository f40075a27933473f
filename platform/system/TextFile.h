// Sequential text files for output and append: lines ended by carriage return and line feed, UTF-8.
#pragma once

#include <QString>
#include <QStringList>

namespace platform {

enum class TextMode { kOutput, kAppend };

// Opens the file, writes the lines in one piece and closes it again. kPathNotFound, kPathAccess,
// kPermissionDenied, kDiskFull.
void WriteLines(const QString& path, TextMode mode, const QStringList& lines);

}  // namespace platform
