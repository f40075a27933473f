#include "review/report.h"

#include <fstream>
#include <set>

#include "review/check.h"
#include "review/figures.h"
#include "review/html.h"
#include "review/planted_file.h"
#include "review/report_charts.h"
#include "review/tables.h"
#include "support/command.h"

namespace {

using season::Season;
using tarn_test::Quoted;
using tarn_test::SoundSeason;
using testing::HasSubstr;
using testing::Not;

std::string Report(const Season& season, const Season* previous = nullptr) {
    return review::HtmlOf(review::ReportOf({.season = season,
                                            .previous = previous,
                                            .findings = review::Check({season, previous, nullptr}),
                                            .date = "2026-04-15"}));
}

// The parts of a page between tags that are not balanced; empty when all are.
std::string Unbalanced(const std::string& html) {
    std::vector<std::string> open;
    const std::set<std::string> alone{"meta", "path", "line", "rect", "!DOCTYPE"};
    for (std::size_t at = html.find('<'); at != std::string::npos; at = html.find('<', at + 1)) {
        const std::size_t end = html.find_first_of(" >/\n", at + 2);
        const bool closes = html[at + 1] == '/';
        const std::string name = html.substr(at + (closes ? 2 : 1), end - at - (closes ? 2 : 1));
        if (alone.contains(name)) continue;
        if (!closes) {
            open.push_back(name);
        } else if (open.empty() || open.back() != name) {
            return "</" + name + "> at " + std::to_string(at);
        } else {
            open.pop_back();
        }
    }
    return open.empty() ? "" : open.back();
}

TEST(Report, HoldsEveryFigureAsText) {
    const Season season = SoundSeason(2, 3);
    const std::string html = Report(season);
    EXPECT_EQ(Unbalanced(html), "");
    for (const season::Zone& zone : season.zones) {
        EXPECT_THAT(html, HasSubstr(">" + *zone.name + "</h2>"));
        for (const season::CostClass& row : zone.classes) {
            if (row.cost) {
                EXPECT_THAT(html, HasSubstr(">" + review::DollarsText(*row.cost) + "</td>"));
            }
        }
        for (const season::Location& location : zone.locations) {
            for (const season::NvcRow& row : location.rows) {
                for (const season::Single& value : row.values) {
                    EXPECT_THAT(html,
                                HasSubstr("<td class=\"n\">" + review::ValueText(value) + "</td>"));
                }
            }
        }
    }
    for (const char* const words :
         {"<title>TARN Prep: Umatilla National Forest '26</title>", "Let natural processes",
          "Source of data: Rate sheets of the spring", "Hand crew", "$7,400", "2026-04-15",
          "Nothing was found.", "<dt>Year</dt><dd>2026</dd>"}) {
        EXPECT_THAT(html, HasSubstr(words));
    }
    EXPECT_THAT(html, Not(HasSubstr("<script")));
    EXPECT_THAT(html, Not(HasSubstr("src=")));
}

TEST(Report, WithFaults_GivesThemInTheSentencesOfCheck) {
    const tarn_test::TempFolder folder;
    const Season season = tarn_test::PlantedFile(folder / "UMFOR26.fcd", [](Season& s) {
        s.zones[0].name = "A <b> & \"c\"";
        s.zones[1].name = "";
        s.zones[1].rlCount = 0;
        s.zones[2].classes.clear();
        s.goals.clear();
        s.resources.clear();
    });
    const auto findings = review::Check({season});
    const std::string html = Report(season);
    EXPECT_EQ(Unbalanced(html), "");
    ASSERT_GT(findings.size(), 4U);
    for (const review::Finding& finding : findings) {
        EXPECT_THAT(html, HasSubstr(review::HtmlText(finding.text)));
    }
    EXPECT_THAT(html, HasSubstr("<h2 id=\"s3\">A &lt;b&gt; &amp; &quot;c&quot;</h2>"));
    EXPECT_THAT(html, HasSubstr("Zone without a name (key 2)"));
    EXPECT_THAT(html, HasSubstr("No suppression cost per acre is entered."));
}

TEST(Report, WithPrevious_ShowsDifferencesAndTheLargestChanges) {
    const Season older = SoundSeason(1, 1);
    Season newer = SoundSeason(1, 1);
    newer.zones[0].locations[0].rows[3].values[2] = -1100.0F;
    newer.zones[0].classes[2].cost = 1400.0F;
    const std::string html = Report(newer, &older);
    EXPECT_EQ(Unbalanced(html), "");
    EXPECT_THAT(html, HasSubstr("<caption>2 differences</caption>"));
    EXPECT_THAT(html, HasSubstr("The largest changes: Zone 1, location 1, Value 4, FIL 3: -42.75 "
                                "to -1100.00. Zone 1, class 3, cost: $1,334 to $1,400."));
}

TEST(Counted, AgreesWithItsNumber) {
    EXPECT_EQ(review::Counted(1, "zone"), "1 zone");
    EXPECT_EQ(review::Counted(0, "zone"), "0 zones");
    EXPECT_EQ(review::Counted(2168, "difference"), "2,168 differences");
}

TEST(ReportCharts, SayInWordsWhatTheyShow) {
    season::Zone zone = tarn_test::SoundZone(1, 2);
    EXPECT_EQ(review::CostChartOf(zone).words.alternative,
              "Cost per acre by fire size: up to 0.25 acres $4,001; up to 10.00 acres $2,001; up "
              "to 100.00 acres $1,334; up to 1,000.00 acres $1,001; above 1,000.00 acres $801.");
    zone.classes[2].topSize = 5.0F;
    EXPECT_EQ(review::CostChartOf(zone).steps.size(), 4U) << "a bound that falls is not drawn";
    EXPECT_EQ(review::TotalsChartOf(zone).panels.size(), 2U);
    Season season = SoundSeason(1, 1);
    season.zones[0].locations[0].rows[3].values[2] = 7.5F;
    const review::HeatMap map = review::HeatMapOf(season, season.zones[0], 1, 900);
    EXPECT_EQ(map.rows.size(), 14U);
    EXPECT_EQ(map.words.alternative,
              "The values of the table above as shades. The largest loss is -531.00 (Value 14, FIL "
              "6). The largest gain is 7.50 (Value 4, FIL 3).");
}

TEST(ReportCommand, WritesAPageAndLeavesTheSourceAlone) {
    const tarn_test::TempFolder folder;
    const auto file = folder / "UMFOR26.fcd";
    season::WriteNew(SoundSeason(), file);
    const auto time = std::filesystem::last_write_time(file);
    const auto page = folder / "page.html";
    const auto run = [&](const std::string& target) {
        return tarn_test::RunCommand(
            "SOURCE_DATE_EPOCH=1767225600 " + Quoted(tarn_test::BuiltProgram("fcdtool")) +
            " report " + Quoted(file) + " --previous " + Quoted(file) + " --to " + target);
    };
    EXPECT_EQ(run(Quoted(page)).status, 0);
    std::ifstream in(page);
    const std::string html{std::istreambuf_iterator<char>(in), {}};
    EXPECT_THAT(html, HasSubstr("<dt>Date of this report</dt><dd>2026-01-01</dd>"));
    EXPECT_THAT(html, HasSubstr("There is no difference."));
    EXPECT_EQ(std::filesystem::last_write_time(file), time);
    EXPECT_EQ(run(Quoted(file)).status, 2);
    EXPECT_EQ(run(Quoted(folder / "page.txt")).status, 2);
    EXPECT_EQ(run(Quoted(folder / "none" / "page.html")).status, 2);
}

}  // namespace
