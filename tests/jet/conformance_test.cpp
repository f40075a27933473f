// The conformance command over the sample files: everything read as another reader has it, every
// key made anew.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "support/command.h"
#include "support/jet_files.h"
#include "support/paths.h"

namespace {

const std::filesystem::path kTool = tarn_test::BuiltProgram("jet_conformance");

tarn_test::CommandResult RunTool(const std::filesystem::path& folder) {
    return tarn_test::RunCommand(tarn_test::Quoted(kTool) + " " + tarn_test::Quoted(folder));
}

class Conformance : public ::testing::TestWithParam<const char*> {};

INSTANTIATE_TEST_SUITE_P(Folders, Conformance, ::testing::Values("corpus", "corpus/made"),
                         [](const auto& instance) {
                             return std::string(instance.index == 0 ? "Real" : "Made");
                         });

TEST_P(Conformance, EveryFile_MatchesItsDump) {
    const auto folder = tarn_test::SharedFolder() / GetParam();
    if (!std::filesystem::exists(folder)) {
        GTEST_SKIP() << tarn_test::kNoCorpus;
    }
    const auto result = RunTool(folder);
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_NE(result.output.find("Keys made anew"), std::string::npos);
    EXPECT_EQ(result.output.find("FAIL"), std::string::npos) << result.output;
}

TEST(ConformanceCommand, FolderWithoutDatabases_IsNoSuccess) {
    EXPECT_EQ(RunTool(support::SourceFolder() / "tests/jet").status, 2);
}

}  // namespace
