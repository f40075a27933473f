// What every command answers.
#pragma once

#include <string_view>

inline bool AsksForHelp(int argc, const char* const* argv) {
    if (argc != 2) return false;
    const std::string_view word = argv[1];
    return word == "--help" || word == "-h";
}
