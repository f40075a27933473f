#include "support/command.h"
#include "support/paths.h"

#include <array>
#include <cstdio>

namespace tarn_test {

namespace {

#ifdef _WIN32
constexpr char kProgramEnding[] = ".exe";
constexpr char kQuote = '"';

std::FILE* Start(const std::string& line) {
    // The shell takes the outermost quotes away.
    return _popen(('"' + line + " 2>&1\"").c_str(), "rb");
}

int Finish(std::FILE* pipe) {
    return _pclose(pipe);
}
#else
constexpr char kProgramEnding[] = "";
constexpr char kQuote = '\'';

std::FILE* Start(const std::string& line) {
    return popen((line + " 2>&1").c_str(), "r");
}

int Finish(std::FILE* pipe) {
    return pclose(pipe) >> 8;
}
#endif

}  // namespace

CommandResult RunCommand(const std::string& line) {
    CommandResult result;
    std::FILE* pipe = Start(line);
    if (pipe == nullptr) return result;
    std::array<char, 4096> part{};
    std::size_t got = 0;
    while ((got = std::fread(part.data(), 1, part.size(), pipe)) > 0) {
        result.output.append(part.data(), got);
    }
    result.status = Finish(pipe);
    return result;
}

std::string Quoted(const std::filesystem::path& path) {
    return kQuote + path.string() + kQuote;
}

std::filesystem::path BuiltProgram(const std::string& name) {
    return support::BuildFolder() / "bin" / (name + kProgramEnding);
}

}  // namespace tarn_test
