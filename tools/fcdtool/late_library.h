// Libraries that are loaded when they are first asked for.
#pragma once

#include <string>

namespace fcdtool {

// The address of what a library exports, which lies beside the program or in the system; `library`
// is its name without what systems put around it. Throws std::runtime_error with a sentence when it
// cannot be loaded.
void* LateSymbol(const char* library, const char* name);

}  // namespace fcdtool
