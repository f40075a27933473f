// What the system's error numbers mean to the engine.
#pragma once

#include <filesystem>

#include "jet/error.h"

namespace jet {

// Of a call that names a file: `code` is its errno.
Error ErrorOfNaming(int code, const std::filesystem::path& path);
// Of a call on an open file, which was to be `done`: "read", "written".
Error ErrorOfTransfer(int code, const char* done);

}  // namespace jet
