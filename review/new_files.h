// Files that are complete or not there.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace review {

struct NewFile {
    std::filesystem::path path;
    std::string text;
};

// Writes files; those that are there are replaced once all of the new ones are complete. Throws
// std::filesystem::filesystem_error, which names the file: nothing is changed then.
void SaveFiles(const std::vector<NewFile>& files);

}  // namespace review
