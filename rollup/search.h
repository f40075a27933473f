// The data files that a person named, or that lie in the folders named.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace rollup {

struct Unsearchable {
    std::filesystem::path path;
    std::string reason;
};

struct FoundFiles {
    // Absolute, without links and detours, each once, in order.
    std::vector<std::filesystem::path> files;
    std::vector<Unsearchable> unsearchable;  // folders, and what is not there
};

// Folders are searched with all folders in them for names that end in ".fcd" in any case; a file
// that is named itself may have any name.
FoundFiles FindFiles(const std::vector<std::filesystem::path>& where);

}  // namespace rollup
