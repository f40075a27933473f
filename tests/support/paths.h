// Where the source tree and the build folder of these tests lie.
#pragma once

#include <filesystem>

namespace support {

std::filesystem::path SourceFolder();
std::filesystem::path BuildFolder();

}  // namespace support
