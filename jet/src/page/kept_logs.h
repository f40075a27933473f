// Logs that do not belong to the file in its present state. What they hold may be all that is left
// of somebody's work, so they are kept under a name that no opening takes for the file's log, and
// reported at every opening until a person removes them.
#pragma once

#include <filesystem>
#include <vector>

#include "jet/file.h"

namespace jet {

// Gives the log another name.
void SetAside(FileSystem& files, const std::filesystem::path& log);
// Those that hold whole operations, or what nobody can read.
std::vector<std::filesystem::path> KeptLogs(FileSystem& files, const std::filesystem::path& log);
// Whether a log holds whole operations, or what nobody can read.
bool HoldsOperations(FileSystem& files, const std::filesystem::path& log);

}  // namespace jet
