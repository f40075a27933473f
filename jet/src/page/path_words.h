// Names of files in messages.
#pragma once

#include <filesystem>
#include <string>

namespace jet {

inline std::string Quoted(const std::filesystem::path& path) {
    const std::u8string name = path.filename().u8string();
    return '"' + std::string(name.begin(), name.end()) + '"';
}

}  // namespace jet
