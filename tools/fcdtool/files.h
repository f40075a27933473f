// Reading the files that a command names.
#pragma once

#include <filesystem>
#include <string>

#include "season/season.h"

namespace fcdtool {

// A word of the command line as a path.
std::filesystem::path PathOf(const std::string& word);
// Reads a data file; what refuses it names the file. Throws season::Refused.
season::Season ReadFile(const std::string& file);
// How many records were read.
std::size_t CountRows(const season::Season& season);

}  // namespace fcdtool
