// Where users keep their data files unless they say otherwise.
#pragma once

#include <QString>

namespace platform {

// "Costs" in the program folder, in whatever case it is written there; the path is given whether it
// exists or not.
QString CostsFolder();
// The same, once the files in it have been listed; throws when that fails (kPathAccess,
// kPermissionDenied). A folder that is not there lists as empty.
QString ListedCostsFolder();

}  // namespace platform
