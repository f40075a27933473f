// The report as PDF, by the command and read back with poppler's tools.
#include <fstream>
#include <map>
#include <regex>
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

TEST(PdfReport, HasABookmarkForEachGoalAndZone) {
    REQUIRE_POPPLER();
    const tarn_test::TempFolder folder;
    const auto file = folder / "UMFOR26.fcd";
    season::WriteNew(SoundSeason(2, 1), file);
    ASSERT_EQ(Report(file, folder / "r.pdf").status, 0);
    const std::string all =
        RunCommand("pdftohtml -xml -i -stdout " + Quoted(folder / "r.pdf")).output;
    ASSERT_THAT(all, HasSubstr("<outline>"));
    EXPECT_EQ(all.substr(all.find("<outline>"), all.rfind("</outline>") - all.find("<outline>")),
              "<outline>\n<item page=\"1\">Management goals</item>\n<outline>\n"
              "<item page=\"1\">Wilderness</item>\n<item page=\"1\">Interface</item>\n"
              "</outline>\n<item page=\"1\">Suppression resources</item>\n"
              "<item page=\"2\">Zone 1</item>\n<item page=\"3\">Zone 2</item>\n"
              "<item page=\"4\">Findings</item>\n");
}

// Words that lie outside the paper's margins, of those that poppler finds with their places.
std::vector<std::string> WordsBeyondMargins(const std::filesystem::path& file, double width) {
    const std::string boxes = RunCommand("pdftotext -bbox " + Quoted(file) + " -").output;
    const std::regex word(R"re(<word xMin="([-0-9.]+)" .* xMax="([-0-9.]+)" .*>(.*)</word>)re");
    std::vector<std::string> beyond;
    std::istringstream lines(boxes);
    std::size_t words = 0;
    for (std::string line; std::getline(lines, line);) {
        std::smatch part;
        if (std::regex_search(line, part, word)) {
            ++words;
            if (std::stod(part[1]) < 45 || std::stod(part[2]) > width - 45) beyond.push_back(line);
        }
    }
    EXPECT_GT(words, 500U);
    return beyond;
}

TEST(PdfReport, WithLongAndOddTexts_KeepsThemOnThePaper) {
    REQUIRE_POPPLER();
    const tarn_test::TempFolder folder;
    const auto file = folder / "UMFOR26.fcd";
    Season season = SoundSeason(4, 2);
    season.zones[0].name = std::string(50, 'W');
    season.zones[1].name = "Zażółć \xD0\x97\xD0\xBE\xD0\xBD\xD0\xB0";
    season.zones[2].name =
        "\xE6\x9D\xB1\xE3\x81\xAE \xD9\x85\xD9\x86\xD8\xB7 e\xCC\x81 \xF0\x9F\x94\xA5";
    season.zones[3].name = "Tab\tline\nend\x01";
    season.zones[0].locations[0].rows[0].values = {3e38F, -3e38F, 1e30F, -1e20F, 1e-40F, 0.005F};
    season.zones[0].classes[1] = {2, 1e30F, 3e38F};
    season.nvcResources[2].name = std::string(50, 'M');
    season.goals[0].explanation = std::string(300, 'x');
    for (int i = 4; i < 120; ++i) {
        season.resources.push_back({i, i, "Resource " + std::to_string(i), "R", "day", "time", 5});
    }
    for (int i = 0; i < 900; ++i) *season.goals[0].explanation += " and so on";
    season::WriteNew(season, file);
    for (const auto& [paper, width] : {std::pair("A4", 595.0), std::pair("Letter", 612.0)}) {
        const auto run = Report(file, folder / "r.pdf", std::string("--paper ") + paper);
        ASSERT_EQ(run.status, 0) << run.output;
        EXPECT_THAT(WordsBeyondMargins(folder / "r.pdf", width), testing::IsEmpty());
        const std::string words = Words(folder / "r.pdf");
        for (const char* const part :
             {"Zażółć", "\xD0\x97\xD0\xBE\xD0\xBD\xD0\xB0", "Tab line", "0.01", "(continued)"}) {
            EXPECT_THAT(words, HasSubstr(part));
        }
    }
}

TEST(PdfReport, WithoutFonts_IsASentence) {
    const tarn_test::TempFolder folder;
    const auto file = folder / "UMFOR26.fcd";
    season::WriteNew(SoundSeason(1, 1), file);
    std::filesystem::create_directory(folder / "none");
    std::ofstream(folder / "fonts.conf") << "<?xml version=\"1.0\"?><fontconfig><dir>" +
                                                (folder / "none").string() + "</dir></fontconfig>";
    const auto run = RunCommand("FONTCONFIG_FILE=" + Quoted(folder / "fonts.conf") +
                                " XDG_CACHE_HOME=" + Quoted(folder / "none") + " " +
                                Quoted(tarn_test::BuiltProgram("fcdtool")) + " report " +
                                Quoted(file) + " --to " + Quoted(folder / "r.pdf") + " 2>&1");
    EXPECT_EQ(run.status, 2);
    EXPECT_THAT(run.output, HasSubstr("No font is installed"));
    EXPECT_FALSE(std::filesystem::exists(folder / "r.pdf"));
}

TEST(PdfReport, TheScaleOfTheHeatMap_IsWhatWasTyped) {
    REQUIRE_POPPLER();
    const tarn_test::TempFolder folder;
    const auto file = folder / "UMFOR26.fcd";
    Season season = SoundSeason(1, 1);
    season.zones[0].locations[0].rows[0].values[5] = -88892.45F;
    season::WriteNew(season, file);
    ASSERT_EQ(Report(file, folder / "r.pdf", "--paper A4").status, 0);
    const std::string words = Words(folder / "r.pdf");
    EXPECT_THAT(words, testing::ContainsRegex("Heat map: +-88,892[.]45 +0 +88,892[.]45 +gains"));
    EXPECT_THAT(words, HasSubstr("gains have a dashed border"));
    EXPECT_THAT(words, testing::Not(HasSubstr("border; a dig\xE2\x80\xA6")));
}

TEST(PdfReport, WhatCannotBeWritten_IsASentenceAndLeavesNothing) {
    const tarn_test::TempFolder folder;
    const auto file = folder / "UMFOR26.fcd";
    season::WriteNew(SoundSeason(1, 1), file);
    std::filesystem::create_directory(folder / "taken.pdf");
    const std::vector<std::pair<std::filesystem::path, std::string>> sentences{
        {folder / "none" / "r.pdf", "The folder cannot be found."},
        {folder / "taken.pdf", "This is a folder."},
        {"/dev/full/r.pdf", "The folder cannot be found."}};
    for (const auto& [target, sentence] : sentences) {
        const auto run = Report(file, target);
        EXPECT_EQ(run.status, 2) << target;
        EXPECT_THAT(run.output, HasSubstr(target.string() + ": " + sentence)) << target;
    }
    EXPECT_FALSE(std::filesystem::exists(folder / "taken.pdf.part"));
}

}  // namespace
