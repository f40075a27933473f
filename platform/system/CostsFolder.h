// Where users keep their data files unless they say otherwise.
#pragma once

#include <QString>

namespace platform {

// "Costs" in the program folder, in whatever case it is written there; the path is given whether it
// exists or not.
QString CostsFolder();

}  // namespace platform
