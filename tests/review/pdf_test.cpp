// The report as PDF, by the command and read back with poppler's tools.
#include <map>
#include <sstream>

#include "review/planted_file.h"
#include "review/tables.h"
#include "support/command.h"

namespace {

using season::Season;
using tarn_test::Quoted;
using tarn_test::RunCommand;
using tarn_test::SoundSeason;
using testing::HasSubstr;

bool HasPoppler() {
    return RunCommand("command -v pdftotext && command -v pdfinfo").status == 0;
}

#define REQUIRE_POPPLER() \
    if (!HasPoppler()) GTEST_SKIP() << "poppler-utils is not installed."

std::string Words(const std::filesystem::path& file) {
    return RunCommand("pdftotext -layout " + Quoted(file) + " -").output;
}

tarn_test::CommandResult Report(const std::filesystem::path& file,
                                const std::filesystem::path& target, const std::string& more = {}) {
    return RunCommand("env -u DISPLAY -u WAYLAND_DISPLAY QT_QPA_PLATFORM=xcb " +
                      Quoted(tarn_test::BuiltProgram("fcdtool")) + " report " + Quoted(file) +
                      " --to " + Quoted(target) + " " + more + " 2>&1");
}

// How often each word stands in a text.
std::map<std::string, int> Counts(const std::string& text) {
    std::map<std::string, int> counts;
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        ++counts[word];
    }
    return counts;
}

TEST(PdfReport, HoldsEveryFigureAsText) {
    REQUIRE_POPPLER();
    const tarn_test::TempFolder folder;
    const auto file = folder / "UMFOR26.fcd";
    const Season season = SoundSeason(3, 4);
    season::WriteNew(season, file);
    const auto run = Report(file, folder / "r.pdf");
    ASSERT_EQ(run.status, 0) << run.output;
    const std::string words = Words(folder / "r.pdf");
    std::map<std::string, int> shown = Counts(words);
    std::map<std::string, int> wanted;
    for (const season::Zone& zone : season.zones) {
        EXPECT_THAT(words, HasSubstr(*zone.name));
        for (const season::CostClass& row : zone.classes) {
            if (row.cost) ++wanted[review::DollarsText(*row.cost)];
        }
        for (const season::Location& location : zone.locations) {
            for (const season::NvcRow& row : location.rows) {
                for (const season::Single& value : row.values) ++wanted[review::ValueText(value)];
            }
        }
    }
    ASSERT_GT(wanted.size(), 200U);
    for (const auto& [word, count] : wanted) {
        EXPECT_GE(shown[word], count) << word;
    }
    for (const char* const part :
         {"Umatilla National Forest '26", "Let natural processes", "Source of data: Rate sheets",
          "Hand crew", "$7,400", "Nothing was found.", "Page 1 of ", "Wilderness"}) {
        EXPECT_THAT(words, HasSubstr(part));
    }
}

TEST(PdfReport, HasTitlePaperAndPages) {
    REQUIRE_POPPLER();
    const tarn_test::TempFolder folder;
    const auto file = folder / "UMFOR26.fcd";
    season::WriteNew(SoundSeason(3, 2), file);
    for (const auto& [paper, size] :
         {std::pair("A4", "595 x 842 pts (A4)"), std::pair("Letter", "612 x 792 pts (letter)")}) {
        const auto target = folder / (std::string(paper) + ".PDF");
        const auto run = Report(file, target, std::string("--paper ") + paper);
        ASSERT_EQ(run.status, 0) << run.output;
        const std::string facts = RunCommand("pdfinfo " + Quoted(target) + " 2>&1").output;
        EXPECT_THAT(facts, HasSubstr("TARN Prep: Umatilla National Forest '26"));
        EXPECT_THAT(facts, HasSubstr(size));
        EXPECT_THAT(facts, testing::Not(HasSubstr("rror"))) << "a sound file";
    }
    EXPECT_EQ(Report(file, folder / "x.pdf", "--paper A3").status, 2);
    EXPECT_FALSE(std::filesystem::exists(folder / "x.pdf"));
}

TEST(PdfReport, WhatCannotBeWritten_IsASentenceAndLeavesNothing) {
    const tarn_test::TempFolder folder;
    const auto file = folder / "UMFOR26.fcd";
    season::WriteNew(SoundSeason(1, 1), file);
    std::filesystem::create_directory(folder / "taken.pdf");
    for (const auto& target : {folder / "none" / "r.pdf", folder / "taken.pdf",
                               std::filesystem::path("/dev/full/r.pdf")}) {
        const auto run = Report(file, target);
        EXPECT_EQ(run.status, 2) << target;
        EXPECT_THAT(run.output, HasSubstr("The file cannot be written.")) << target;
    }
    EXPECT_FALSE(std::filesystem::exists(folder / "taken.pdf.part"));
}

}  // namespace
