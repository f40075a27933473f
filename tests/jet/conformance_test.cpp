// The conformance command over the sample files: everything read as another reader has it, every
// key made anew.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>

namespace {

const std::filesystem::path kTool = TARN_BUILD "/bin/jet_conformance";

struct Result {
    int status = -1;
    std::string output;
};

Result RunTool(const std::filesystem::path& folder) {
    Result result;
    FILE* pipe = popen(("'" + kTool.string() + "' '" + folder.string() + "' 2>&1").c_str(), "r");
    if (pipe == nullptr) {
        return result;
    }
    for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) {
        result.output += static_cast<char>(c);
    }
    result.status = pclose(pipe) >> 8;
    return result;
}

class Conformance : public ::testing::TestWithParam<const char*> {};

INSTANTIATE_TEST_SUITE_P(Folders, Conformance, ::testing::Values("corpus", "corpus/made"),
                         [](const auto& instance) {
                             return std::string(instance.index == 0 ? "Real" : "Made");
                         });

TEST_P(Conformance, EveryFile_MatchesItsDump) {
    const auto folder = std::filesystem::path(TARN_SOURCE "/../shared") / GetParam();
    if (!std::filesystem::exists(folder) || !std::filesystem::exists(kTool)) {
        GTEST_SKIP() << "no sample files beside the source, or the tool is not built";
    }
    const Result result = RunTool(folder);
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_NE(result.output.find("Keys made anew"), std::string::npos);
    EXPECT_EQ(result.output.find("FAIL"), std::string::npos) << result.output;
}

TEST(ConformanceCommand, FolderWithoutDatabases_IsNoSuccess) {
    if (!std::filesystem::exists(kTool)) {
        GTEST_SKIP() << "the tool is not built";
    }
    EXPECT_EQ(RunTool(TARN_SOURCE "/tests/jet").status, 2);
}

}  // namespace
