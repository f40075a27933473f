// Reads one data file for a roll-up.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "rollup/destination.h"

namespace rollup {

// A path as text: UTF-8, in which bytes that are none stand as "\xFF".
std::string PathText(const std::filesystem::path& path);
// The way back.
std::filesystem::path PathOfText(const std::string& text);

// What names the contents of a data file in a roll-up. Throws season::Refused.
std::string FileIdOf(const std::filesystem::path& path);

// What was found at a path.
struct FileRead {
    FileRow row;  // its status is kRead or kRefused
    // Null for a refused file, and for one whose contents are those that were known.
    std::unique_ptr<Packed> packed;
    std::size_t rows = 0;
    bool isKnown = false;
};

// `known` is the hash of what the destination has of this path, or empty. It throws nothing that a
// file can be the reason of.
FileRead ReadForRollup(const std::filesystem::path& path, const std::string& known,
                       const Destination& destination);

}  // namespace rollup
