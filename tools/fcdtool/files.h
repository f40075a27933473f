// Reading and writing the files that a command names.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "season/season.h"

namespace fcdtool {

// A word of the command line as a path.
std::filesystem::path PathOf(const std::string& word);
// Reads a data file; what refuses it names the file. Throws season::Refused.
season::Season ReadFile(const std::string& file);

// Throws std::runtime_error: the file, and why it could not be written.
[[noreturn]] void ThrowNotWritten(const std::string& file, std::error_code failed);

// Throws std::runtime_error when `file` is one of those that are read, by whatever name.
void RequireOther(const std::string& file, const std::vector<std::string>& sources);
// Writes a file; one that is there is replaced when the new one is complete. Throws
// std::runtime_error, which names the file.
void SaveFile(const std::string& file, const std::vector<std::string>& sources,
              std::string_view text);
// The same for several: all of them are replaced, or, where one cannot be written, none.
struct NewFile {
    std::string file;
    std::string text;
};
void SaveFiles(const std::vector<NewFile>& files, const std::vector<std::string>& sources);

}  // namespace fcdtool
