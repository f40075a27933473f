// The commands: their exit statuses, and that they show what is there.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "jet/database.h"
#include "jet/recordset.h"
#include "support/command.h"
#include "support/temp_folder.h"

namespace jet {
namespace {

using tarn_test::BuiltProgram;
using tarn_test::CommandResult;
using tarn_test::Quoted;

CommandResult RunTool(const std::string& tool, const std::string& arguments) {
    return tarn_test::RunCommand(Quoted(BuiltProgram(tool)) + " " + arguments);
}

class ToolTest : public ::testing::TestWithParam<Version> {
protected:
    void SetUp() override {
        const auto database = Database::Create(file_, GetParam());
        database->CreateTable({"Zones",
                               {{.name = "Id", .type = ColumnType::kLong, .autoNumber = true},
                                {.name = "Code", .type = ColumnType::kText, .length = 20}},
                               {{.name = "PrimaryKey", .columns = {{"Id"}}, .primary = true}}});
        const auto rows = database->OpenTable("Zones");
        for (const char16_t* code : {u"north", u"south"}) {
            rows->AddNew();
            rows->Set("Code", Value(code));
            rows->Update();
        }
        database->Close();
    }

    // Puts a byte into the file.
    void Spoil(std::streamoff offset, char byte) const {
        std::fstream file(file_, std::ios::in | std::ios::out | std::ios::binary);
        file.seekp(offset);
        file.put(byte);
    }

    [[nodiscard]] std::string Named() const { return Quoted(file_); }

    tarn_test::TempFolder folder_;
    std::filesystem::path file_ = folder_ / "a file.mdb";
};

INSTANTIATE_TEST_SUITE_P(Versions, ToolTest, ::testing::Values(Version::kJet3, Version::kJet4),
                         [](const auto& instance) {
                             return instance.index == 0 ? "Jet3" : "Jet4";
                         });

TEST(Tools, Help_SaysWhatTheyDo) {
    for (const char* tool : {"jetdoctor", "jetdump"}) {
        for (const char* word : {"--help", "-h"}) {
            const CommandResult help = RunTool(tool, word);
            EXPECT_EQ(help.status, 0) << tool;
            EXPECT_EQ(help.output.rfind("usage: " + std::string(tool), 0), 0U) << help.output;
        }
    }
}

TEST_P(ToolTest, Doctor_DistinguishesCleanFromDamagedFromUnreadable) {
    const CommandResult clean = RunTool("jetdoctor", Named());
    EXPECT_EQ(clean.status, 0) << clean.output;
    EXPECT_NE(clean.output.find("clean"), std::string::npos);
    Spoil((GetParam() == Version::kJet3 ? 2048 : 4096) * 3 + 1, 7);
    const CommandResult damaged = RunTool("jetdoctor", Named());
    EXPECT_EQ(damaged.status, 1);
    EXPECT_NE(damaged.output.find("page-header"), std::string::npos) << damaged.output;
    Spoil(4, 'X');
    EXPECT_EQ(RunTool("jetdoctor", Named()).status, 2);
    EXPECT_EQ(RunTool("jetdoctor", "").status, 2);
}

TEST_P(ToolTest, Doctor_RepairsIntoANewFile) {
    const auto target = folder_ / "repaired.mdb";
    const CommandResult repair = RunTool("jetdoctor", Named() + " --repair " + Quoted(target));
    EXPECT_EQ(repair.status, 0) << repair.output;
    EXPECT_NE(repair.output.find("1 tables and 2 rows"), std::string::npos) << repair.output;
    EXPECT_EQ(RunTool("jetdoctor", Quoted(target)).status, 0);
    EXPECT_EQ(RunTool("jetdoctor", Named() + " --repair " + Quoted(target)).status, 2);
}

TEST_P(ToolTest, Dump_ShowsFileTablePageAndIndex) {
    const CommandResult file = RunTool("jetdump", Named());
    EXPECT_EQ(file.status, 0);
    EXPECT_NE(file.output.find("user table Zones: 2 rows, 2 columns, 1 indexes"), std::string::npos)
        << file.output;
    const CommandResult table = RunTool("jetdump", Named() + " zones");
    EXPECT_NE(table.output.find("Id=2, Code=\"south\""), std::string::npos) << table.output;
    const CommandResult index = RunTool("jetdump", Named() + " index Zones.PrimaryKey");
    EXPECT_NE(index.output.find("key 7F 80 00 00 02"), std::string::npos) << index.output;
    EXPECT_EQ(RunTool("jetdump", Named() + " absent").status, 1);
    EXPECT_EQ(RunTool("jetdump", Named() + " index Zones.Absent").status, 1);
    EXPECT_EQ(RunTool("jetdump", Named() + " page 1000").status, 1);
    EXPECT_EQ(RunTool("jetdump", Quoted(folder_ / "absent.mdb")).status, 2);
    for (int page = 0; page < 16; ++page) {
        const CommandResult shown = RunTool("jetdump", Named() + " page " + std::to_string(page));
        EXPECT_EQ(shown.status, 0);
        EXPECT_EQ(shown.output.rfind("page " + std::to_string(page) + ": ", 0), 0U);
    }
}

TEST_P(ToolTest, Dump_ShowsPagesOfADamagedFile) {
    const std::streamoff pageSize = GetParam() == Version::kJet3 ? 2048 : 4096;
    for (std::streamoff at = 0; at < 32; ++at) {
        Spoil(7 * pageSize + at, static_cast<char>(0x01 + at * 37));
    }
    const CommandResult shown = RunTool("jetdump", Named() + " page 7");
    EXPECT_EQ(shown.status, 0);
    EXPECT_FALSE(shown.output.empty());
}

}  // namespace
}  // namespace jet
