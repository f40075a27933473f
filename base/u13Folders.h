// Where the program's folders are.
#pragma once

#include <QString>

namespace u13Folders {

// The default folder for data files, without a separator at its end: "Costs" below the program
// folder, or the program folder itself, with a warning in the log, when listing it fails.
QString CostsPath();

}  // namespace u13Folders
