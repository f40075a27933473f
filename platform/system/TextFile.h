// Sequential text files for output and append: lines ended by carriage return and line feed, UTF-8.
#pragma once

#include <QString>
#include <QStringList>

namespace platform {

enum class TextMode { kOutput, kAppend };

// Writes the lines in one piece, so that they are in the file when it returns, whatever happens to
// the program next. For each call the path stands for whatever file has that name then: one that
// was removed or renamed meanwhile is made anew. kPathNotFound, kPathAccess, kPermissionDenied,
// kDiskFull.
void WriteLines(const QString& path, TextMode mode, const QStringList& lines);

}  // namespace platform
