// What explains how fcdtool is used: its own help, the manual page, the shell's completion.
#include <fstream>
#include <regex>
#include <set>

#include "review/check.h"
#include "support/command.h"
#include "support/paths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::HasSubstr;

std::string Contents(const std::string& name) {
    std::ifstream file(support::SourceFolder() / "packaging" / name);
    std::string text{std::istreambuf_iterator<char>(file), {}};
    // The manual page escapes its dashes.
    return std::regex_replace(text, std::regex(R"(\\-)"), "-");
}

std::string Help(const std::string& words) {
    const auto result = tarn_test::RunCommand(
        tarn_test::Quoted(tarn_test::BuiltProgram("fcdtool")) + " " + words + " --help");
    EXPECT_EQ(result.status, 0) << words;
    return result.output;
}

std::set<std::string> Matches(const std::string& text, const char* pattern) {
    std::set<std::string> found;
    const std::regex expression(pattern);
    for (std::sregex_iterator at(text.begin(), text.end(), expression), end; at != end; ++at) {
        found.insert((*at)[1]);
    }
    return found;
}

TEST(Help, OfEachCommand_AgreesWithManualAndCompletion) {
    const std::string manual = Contents("man/fcdtool.1");
    const std::string completion = Contents("completion/fcdtool");
    const std::set<std::string> commands = Matches(Help(""), R"((?:^|\n)  ([a-z]+) )");
    EXPECT_THAT(commands,
                testing::ElementsAre("check", "diff", "export", "newyear", "report", "rollup"));
    for (const std::string& command : commands) {
        const std::string help = Help(command);
        EXPECT_THAT(help, testing::StartsWith("usage: fcdtool " + command + " "));
        EXPECT_THAT(manual, HasSubstr(".B fcdtool " + command + "\n"));
        const std::set<std::string> options = Matches(help, R"(\n  (--[a-z-]+))");
        EXPECT_FALSE(options.empty());
        for (const std::string& option : options) {
            EXPECT_THAT(manual, HasSubstr(option)) << command;
            EXPECT_TRUE(std::regex_search(
                completion, std::regex(command + R"(\) options="[^"]*)" + option + R"([ "])")))
                << command << " " << option;
        }
    }
}

TEST(Help, OfCheck_ListsEveryRule) {
    const std::string help = Help("check");
    for (const review::Rule& rule : review::Rules()) {
        if (rule.name == "outlier") continue;  // it needs the figures of other files
        EXPECT_THAT(help, HasSubstr("\n  " + std::string(rule.name) + " ")) << rule.name;
    }
}

TEST(Completion, InBash_KnowsCommandsOptionsAndRules) {
    if (tarn_test::RunCommand("bash --version").status != 0) GTEST_SKIP() << "There is no bash.";
    const auto complete = [](const std::string& words) {
        const std::string script =
            "PATH=\"" + tarn_test::BuiltProgram("fcdtool").parent_path().string() +
            ":$PATH\"; . \"" + support::SourceFolder().string() +
            "/packaging/completion/fcdtool\"; COMP_WORDS=(" + words +
            "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _fcdtool; echo ${COMPREPLY[*]}";
        return tarn_test::RunCommand("bash -c " + tarn_test::Quoted(script)).output;
    };
    EXPECT_EQ(complete("fcdtool ne"), "newyear\n");
    EXPECT_EQ(complete("fcdtool diff --s"), "--summary\n");
    EXPECT_EQ(complete("fcdtool check --ignore goals-none,zones"), "goals-none,zones-none\n");
}

}  // namespace
