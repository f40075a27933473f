// Where programs look for libraries: an empty place in the list is the folder that a user happens
// to be in, from which nothing may be loaded, and which is searched first.
#include <gmock/gmock.h>

#include <filesystem>
#include <sstream>
#include <string>

#include "support/command.h"
#include "support/paths.h"

namespace {

// The entries of a program's own list that do not begin at the program.
std::string StrayPlaces(const std::filesystem::path& program) {
    std::istringstream lines(
        tarn_test::RunCommand("readelf -d " + tarn_test::Quoted(program)).output);
    std::string stray;
    for (std::string line; std::getline(lines, line);) {
        const std::size_t begin = line.find('[');
        if (line.find("PATH)") == std::string::npos || begin == std::string::npos) {
            continue;
        }
        // With the bracket as a colon, every entry has one behind it.
        std::istringstream places(line.substr(begin + 1, line.rfind(']') - begin - 1) + ":");
        for (std::string place; std::getline(places, place, ':');) {
            if (!place.starts_with("$ORIGIN")) {
                stray += program.filename().string() + ": '" + place + "'; ";
            }
        }
    }
    return stray;
}

TEST(LibraryPath, OfEachProgram_BeginsAtTheProgram) {
    if (tarn_test::RunCommand("readelf --version").status != 0) {
        GTEST_SKIP() << "readelf is not installed.";
    }
    for (const char* const folder : {"TARNPrep", "bin"}) {
        for (const auto& entry :
             std::filesystem::directory_iterator(support::BuildFolder() / folder)) {
            const std::string name = entry.path().filename().string();
            if (name.starts_with("tarn") || name.starts_with("libtarn") ||
                name.starts_with("fcdtool") || name.starts_with("jetsql")) {
                EXPECT_EQ(StrayPlaces(entry.path()), "");
            }
        }
    }
}

}  // namespace
