// What other programs read of an export: a JSON and a workbook reader of other origin.
#include <fstream>
#include <limits>

#include "review/plain_tables.h"
#include "review/planted_file.h"
#include "support/command.h"

namespace {

using season::Season;
using tarn_test::Quoted;
using testing::HasSubstr;
using testing::StartsWith;

std::string Contents(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class Export : public testing::Test {
protected:
    Export() {
        tarn_test::PlantedFile(File(), [](Season& season) {
            season.zones[0].name = "Wet, \"Prairie\"\nnorth";
            season.zones[1].name = std::nullopt;
            season.zones[2].name = "";
            season.goals[0].explanation = std::string(40000, 'x') + "\xF0\x9F\x8C\xB2";
            season.zones[0].locations[0].rows[0].values[0] = -12.3F;
            season.zones[0].locations[0].rows[0].values[1] = std::nullopt;
            season.resources[0].cost = std::numeric_limits<float>::infinity();
        });
    }
    tarn_test::CommandResult Run(const std::string& target) const {
        return tarn_test::RunCommand(Quoted(tarn_test::BuiltProgram("fcdtool")) + " export " +
                                     Quoted(File()) + " --to " + target);
    }
    [[nodiscard]] std::filesystem::path File() const { return folder_ / "UMFOR26.fcd"; }
    // A Python that has this module; empty where there is none. The one that a person works with
    // may not be the system's.
    static std::string PythonWith(const std::string& module) {
        for (const char* const python : {"python3", "/usr/bin/python3"}) {
            if (tarn_test::RunCommand(std::string(python) + " -c 'import " + module + "'").status ==
                0) {
                return python;
            }
        }
        return {};
    }
    // What a line of Python says.
    static std::string Python(const std::string& module, const std::string& program,
                              const std::filesystem::path& file) {
        return tarn_test::RunCommand(PythonWith(module) + " -c " +
                                     Quoted("import sys, " + module + "; " + program) + " " +
                                     Quoted(file))
            .output;
    }

    tarn_test::TempFolder folder_;
};

TEST_F(Export, ToJson_HoldsEveryTable) {
    const auto out = folder_ / "out.json";
    EXPECT_EQ(Run(Quoted(out)).status, 0);
    const std::string json = Contents(out);
    EXPECT_THAT(json, HasSubstr(R"({"FMZRLKey":101,"ResourceNumber":1,"FIL1":-12.3,"FIL2":null,)"));
    EXPECT_THAT(json, HasSubstr(R"({"Key":1,"Name":"Wet, \"Prairie\"\nnorth","RLCount":2})"));
    EXPECT_THAT(json, HasSubstr(R"("Cost":"Infinity"})"));
    if (PythonWith("json").empty()) GTEST_SKIP() << "There is no Python to read JSON with.";
    EXPECT_EQ(Python("json",
                     "t = json.load(open(sys.argv[1], encoding=\"utf-8\")); "
                     "print(sorted(t), len(t[\"NVCPerAcre\"]), t[\"FMZList\"][1][\"Name\"])",
                     out),
              "['FMZList', 'ManagementGoals', 'NVCPerAcre', 'NVCResources', 'Properties', "
              "'SRMasterList', 'SuppressionPerAcreCost'] 84 None\n");
}

TEST_F(Export, ToAFolder_DistinguishesNullFromEmpty) {
    const auto out = folder_ / "out folder";
    EXPECT_EQ(Run(Quoted(out) + "/").status, 0);
    EXPECT_EQ(Contents(out / "FMZList.csv"),
              "Key,Name,RLCount\n1,\"Wet, \"\"Prairie\"\"\nnorth\",2\n2,,2\n3,\"\",2\n");
    EXPECT_THAT(Contents(out / "NVCPerAcre.csv"),
                StartsWith("FMZRLKey,ResourceNumber,FIL1,FIL2,FIL3,FIL4,FIL5,FIL6\n"
                           "101,1,-12.3,,"));
    EXPECT_THAT(Contents(out / "SRMasterList.csv"), HasSubstr(",day,time,Infinity\n"));
    EXPECT_EQ(Run(Quoted(out)).status, 0) << "the folder is there now";
}

TEST_F(Export, ToAWorkbook_IsReadByAnotherLibrary) {
    if (PythonWith("openpyxl").empty())
        GTEST_SKIP() << "The reader python3-openpyxl is not installed.";
    const auto out = folder_ / "out.xlsx";
    const auto result = Run(Quoted(out));
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_EQ(Python("openpyxl",
                     "b = openpyxl.load_workbook(sys.argv[1]); "
                     "print(b.sheetnames, b[\"NVCPerAcre\"].freeze_panes, "
                     "b[\"NVCPerAcre\"][\"C2\"].value, b[\"NVCPerAcre\"][\"D2\"].value, "
                     "b[\"NVCPerAcre\"][\"C2\"].number_format, b[\"NVCPerAcre\"].max_row, "
                     "b[\"Totals\"][\"D2\"].value, len(b[\"ManagementGoals\"][\"C2\"].value), "
                     "b[\"Notes\"][\"B2\"].value)",
                     out),
              "['Properties', 'ManagementGoals', 'SRMasterList', 'FMZList', "
              "'SuppressionPerAcreCost', 'NVCResources', 'NVCPerAcre', 'Totals', 'Notes'] A2 "
              "-12.3 None #,##0.00 85 =SUM(NVCPerAcre!C2:C15) 32767 C2\n");
    EXPECT_EQ(Python("openpyxl",
                     "b = openpyxl.load_workbook(sys.argv[1], "
                     "data_only=True); print(round(b[\"Totals\"][\"D2\"].value, 2))",
                     out),
              "-126.05\n");
}

TEST_F(Export, ToAWorkbook_OpensInAnOffice) {
    if (tarn_test::RunCommand("soffice --version").status != 0) {
        GTEST_SKIP() << "LibreOffice is not installed.";
    }
    const auto out = folder_ / "out.xlsx";
    ASSERT_EQ(Run(Quoted(out)).status, 0);
    // Every sheet as text; what is shown of it, calculated by the office.
    tarn_test::RunCommand(
        "soffice --headless --convert-to 'csv:Text - txt - csv "
        "(StarCalc):44,34,76,1,,0,false,true,false,false,false,-1' --outdir " +
        Quoted(folder_.Path()) + " " + Quoted(out));
    EXPECT_THAT(Contents(folder_ / "out-Properties.csv"), HasSubstr("DataFormatID,4.01.01"));
    EXPECT_THAT(Contents(folder_ / "out-Totals.csv"), HasSubstr("north\",1,1,-126.05,-455,"));
}

TEST_F(Export, ToAFolderThatHoldsAnotherKindOfFile_ChangesNothing) {
    std::filesystem::create_directories(folder_ / "csv" / "NVCPerAcre.csv");
    std::ofstream(folder_ / "csv" / "FMZList.csv") << "kept";
    const auto run = Run(Quoted((folder_ / "csv").string() + "/"));
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(Contents(folder_ / "csv" / "FMZList.csv"), "kept");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_ / "csv"), {}), 2);
}

TEST_F(Export, ToWhatCannotBe_LeavesNothing) {
    EXPECT_EQ(Run(Quoted(folder_ / "out.pdf")).status, 2);
    EXPECT_EQ(Run(Quoted(folder_ / "none" / "out.json")).status, 2);
    EXPECT_EQ(Run(Quoted(folder_ / "none" / "out.xlsx")).status, 2);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_.Path()), {}), 1);
}

TEST_F(Export, IntoAFolderThatIsNotThere_IsOneSentence) {
    for (const char* const name : {"x.xlsx", "x.json"}) {
        const std::filesystem::path target = folder_ / "none" / name;
        const auto result = Run(Quoted(target));
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.output, "fcdtool: " + target.string() + ": The folder cannot be found.\n");
    }
}

// Runs the export of a file with so many blocks of 512 bytes as the largest file.
tarn_test::CommandResult ExportWithin(int blocks, const std::filesystem::path& file,
                                      const std::filesystem::path& target) {
    return tarn_test::RunCommand("trap '' XFSZ; ulimit -f " + std::to_string(blocks) + "; " +
                                 Quoted(tarn_test::BuiltProgram("fcdtool")) + " export " +
                                 Quoted(file) + " --to " + Quoted(target));
}

TEST_F(Export, ToAWorkbook_WithoutRoomForTemporaryFiles_IsRefused) {
    const auto file = folder_ / "UMFOR27.fcd";
    season::WriteNew(tarn_test::SoundSeason(40, 9), file);
    const auto target = folder_ / "out.xlsx";
    const auto result = ExportWithin(600, file, target);
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.output, "fcdtool: " + target.string() +
                                 ": The workbook could not be written whole. There may be no room "
                                 "left for temporary files.\n");
    EXPECT_FALSE(std::filesystem::exists(target));
    EXPECT_EQ(ExportWithin(20000, file, target).status, 0);
}

TEST_F(Export, ToAWorkbook_ThatCannotGrow_IsOneSentence) {
    const auto target = folder_ / "out.xlsx";
    const auto result = ExportWithin(8, folder_ / "UMFOR26.fcd", target);
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.output, StartsWith("fcdtool: " + target.string() + ": "));
    EXPECT_EQ(std::count(result.output.begin(), result.output.end(), '\n'), 1);
    EXPECT_FALSE(std::filesystem::exists(target));
}

}  // namespace
