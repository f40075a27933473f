// Reading a data file in one go, and writing a new one.
#pragma once

#include <filesystem>
#include <stdexcept>

#include "jet/file.h"
#include "season/season.h"

namespace season {

// A file that cannot be read or made, with the reason as a sentence.
class Refused : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Reads what TARN Prep would open: both versions of the engine's files, the four formats. The file,
// its time, its folder and a log that waits beside it stay as they are; what waits in the log is
// read along. Other programs may read at the same time. Throws Refused: no such file, in use by
// another program, not a data file, another format, damaged, a table or its index missing.
Season Read(const std::filesystem::path& path, jet::FileSystem& files = jet::HostFileSystem());

// Makes a new data file of the current format with what the season holds; its properties name the
// format. It is complete or it is not there. Throws Refused: the file exists, its folder does not
// or cannot be written, two records with one key, a text that no field can hold.
void WriteNew(const Season& season, const std::filesystem::path& path,
              jet::Version version = jet::Version::kJet4,
              jet::FileSystem& files = jet::HostFileSystem());

}  // namespace season
