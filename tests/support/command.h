// Commands that tests run: the tools of the build, and readers and judges of other origin.
#pragma once

#include <filesystem>
#include <string>

namespace tarn_test {

struct CommandResult {
    int status = -1;  // what it ended with; -1 when it could not be started
    std::string output;
};

// Runs a line of the shell. What it says on both of its streams is its output.
CommandResult RunCommand(const std::string& line);

// A path as one word of such a line, blanks and all.
std::string Quoted(const std::filesystem::path& path);

// A program of this build.
std::filesystem::path BuiltProgram(const std::string& name);

}  // namespace tarn_test
