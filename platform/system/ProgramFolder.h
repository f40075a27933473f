// The program's own folder.
#pragma once

#include <QString>

namespace platform {

// Where the program finds its files and keeps its own, without a separator at its end: the folder
// of the executable, or the one that TARNPREP_HOME names where the program is installed for many
// users.
QString ProgramFolder();
// Tests put their own folder in its place; an empty text undoes it.
void SetProgramFolder(const QString& folder);

}  // namespace platform
