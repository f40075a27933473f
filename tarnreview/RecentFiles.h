// The data files that were looked at last, in a text file beside the program.
#pragma once

#include <QStringList>

namespace RecentFiles {

// The newest first; those that are gone are left out.
QStringList List();
// A list that cannot be kept is no reason to stop anybody.
void Add(const QString& path);

}  // namespace RecentFiles
