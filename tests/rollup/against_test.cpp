// fcdtool check --against: values that are far from those of other files.
#include <fstream>

#include "rollup/postgres_server.h"
#include "rollup/roll_up.h"

namespace {

using namespace tarn_test;
using testing::HasSubstr;
using testing::Not;

class Against : public RollUp {
protected:
    // Files with 1.1, 2.1, ... at one place, and one with a million.
    void MakeRegion(int others) {
        for (int salt = 1; salt <= others; ++salt) {
            Make("R" + std::to_string(100 + salt) + "OR26.fcd", salt);
        }
        Make("UMFOR26.fcd", 1000000);
    }
    [[nodiscard]] CommandResult Check(const std::string& to, const std::string& words = {}) const {
        return RunCommand(Quoted(BuiltProgram("fcdtool")) + " check " +
                          Quoted(Files() / "UMFOR26.fcd") + " " + words + " --against \"" + to +
                          "\"");
    }
    void RollTo(const std::string& to) const {
        const CommandResult result = RunCommand(Quoted(BuiltProgram("fcdtool")) + " rollup " +
                                                Quoted(Files()) + " --to \"" + to + "\"");
        EXPECT_EQ(result.status, 0) << result.output;
    }
};

TEST_F(Against, OfAnyKind_NamesTheValueFarFromOthers) {
    MakeRegion(20);
    std::vector<std::string> kinds{Database().string(), "csv:" + (folder_ / "csv").string()};
    std::unique_ptr<PostgresServer> server;
    if (!PostgresPrograms().empty()) {
        server = std::make_unique<PostgresServer>();
        kinds.push_back("postgresql:" + server->Connection());
    }
    for (const std::string& to : kinds) {
        RollTo(to);
        const CommandResult result = Check(to);
        EXPECT_EQ(result.status, 1) << to;
        EXPECT_THAT(result.output, HasSubstr("warning: outlier: ")) << to;
        EXPECT_THAT(result.output, HasSubstr("lies far from the 10.59 that is usual elsewhere"))
            << to;
    }
}

TEST_F(Against, OfItselfAmongFewOthers_SaysNothing) {
    MakeRegion(19);
    RollTo("sqlite:" + Database().string());
    EXPECT_THAT(Check(Database().string()).output, Not(HasSubstr("outlier")))
        << "its own values, and those of its earlier contents, are none of others";
    Make("UMFOR26.fcd", 2000000);
    EXPECT_THAT(Check(Database().string()).output, Not(HasSubstr("outlier")));
}

TEST_F(Against, OfAReport_IsAmongItsFindings) {
    MakeRegion(20);
    RollTo("sqlite:" + Database().string());
    const std::filesystem::path page = folder_ / "report.html";
    const std::string words = Quoted(BuiltProgram("fcdtool")) + " report " +
                              Quoted(Files() / "UMFOR26.fcd") + " --to " + Quoted(page);
    const auto text = [&page] {
        std::ifstream file(page, std::ios::binary);
        return std::string{std::istreambuf_iterator<char>(file), {}};
    };
    EXPECT_EQ(RunCommand(words).status, 0);
    EXPECT_THAT(text(), Not(HasSubstr("usual elsewhere")));
    EXPECT_EQ(RunCommand(words + " --against " + Quoted(Database())).status, 0);
    EXPECT_THAT(text(), HasSubstr("lies far from the 10.59 that is usual elsewhere"));
    EXPECT_EQ(RunCommand(words + " --against " + Quoted(folder_ / "none")).status, 2);
}

TEST_F(Against, WhereNothingIs_SaysSo) {
    MakeRegion(0);
    for (const std::string& to :
         {(folder_ / "none").string(), "csv:" + (folder_ / "none").string()}) {
        EXPECT_EQ(Check(to).status, 2) << to;
        EXPECT_FALSE(std::filesystem::exists(folder_ / "none"));
    }
}

TEST_F(Against, OfAFolder_SaysHowOneIsNamed) {
    MakeRegion(0);
    const CommandResult result = Check(folder_.Path().string());
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.output, "fcdtool: " + folder_.Path().string() +
                                 ": This is a folder. A roll-up in CSV files is named "
                                 "csv:FOLDER.\n");
}

}  // namespace
