#include "review/report.h"

#include <algorithm>
#include <array>

#include "review/difference.h"
#include "review/difference_words.h"
#include "review/figures.h"
#include "review/report_charts.h"
#include "review/tables.h"
#include "season/file_name.h"
#include "season/text.h"

namespace review {

namespace {

using season::Season;
using season::Zone;

std::string OrDash(const season::Text& text) {
    return season::IsBlank(season::Words(text)) ? "-" : *text;
}

std::string YearOf(const Season& season) {
    auto year = season::YearOfUnitName(season.PropertyText("UnitName"));
    if (!year) {
        if (const auto name = season::ParseFileName(season.path)) {
            year = name->year;
        }
    }
    return year ? std::to_string(season::FullYear(*year)) : "not named";
}

std::size_t CountOf(const std::vector<Finding>& findings, Severity severity) {
    return static_cast<std::size_t>(
        std::count_if(findings.begin(), findings.end(),
                      [severity](const Finding& finding) { return finding.severity == severity; }));
}

std::string SummaryOf(const std::vector<Finding>& findings) {
    if (findings.empty()) {
        return "none";
    }
    std::string words;
    for (const Severity severity : {Severity::kError, Severity::kWarning, Severity::kNote}) {
        if (const std::size_t number = CountOf(findings, severity)) {
            words += (words.empty() ? "" : ", ") + Counted(number, SeverityName(severity));
        }
    }
    return words;
}

std::size_t LocationsOf(const Season& season) {
    std::size_t locations = 0;
    for (const Zone& zone : season.zones) {
        locations += static_cast<std::size_t>(season::LiveCount(zone));
    }
    return locations;
}

Section GoalsOf(const Season& season) {
    Section section;
    section.heading = "Management goals";
    if (season.goals.empty()) {
        section.blocks.push_back(Paragraph{"None are entered."});
    }
    return section;
}

void AddGoals(Document& document, const Season& season) {
    document.sections.push_back(GoalsOf(season));
    for (const season::Goal& goal : season.goals) {
        Section section;
        section.level = 3;
        section.heading = season::IsBlank(season::Words(goal.area))
                              ? "Without a heading (" + std::to_string(goal.key) + ")"
                              : *goal.area;
        section.blocks.push_back(Paragraph{OrDash(goal.explanation)});
        document.sections.push_back(std::move(section));
    }
}

Section ResourcesOf(const Season& season) {
    Section section;
    section.heading = "Suppression resources";
    Table table;
    table.caption = "Resources and their costs";
    table.head = {HeadCell("#"),     HeadCell("Name"), HeadCell("Short name"),
                  HeadCell("Units"), HeadCell("Kind"), HeadCell("Cost")};
    table.head.back().isNumber = true;
    for (const season::Resource& resource : season.resources) {
        table.rows.push_back({NumberCell(std::to_string(season::Amount(resource.sequence))),
                              HeadCell(OrDash(resource.longName)),
                              TextCell(OrDash(resource.shortName)),
                              TextCell(OrDash(resource.units)), TextCell(OrDash(resource.unitType)),
                              NumberCell(DollarsText(season::Amount(resource.cost)))});
    }
    if (table.rows.empty()) {
        section.blocks.push_back(Paragraph{"None are entered."});
    } else {
        section.blocks.push_back(std::move(table));
    }
    const std::string source = season.PropertyText("SRDataSource");
    section.blocks.push_back(
        Paragraph{"Source of data: " + (season::IsBlank(source) ? "not noted" : source)});
    return section;
}

Section ZoneOf(const Season& season, const Zone& zone, double largest) {
    Section section;
    section.heading = season::IsBlank(season::Words(zone.name))
                          ? "Zone without a name (key " + std::to_string(zone.key) + ")"
                          : *zone.name;
    section.onNewPage = true;
    const int locations = season::LiveCount(zone);
    section.blocks.push_back(
        Paragraph{"Fire Management Zone with " +
                  Counted(static_cast<std::size_t>(locations), "representative location") + "."});
    Table costs = CostTable(zone, nullptr, 0);
    if (costs.rows.empty()) {
        section.blocks.push_back(Paragraph{"No suppression cost per acre is entered."});
    } else {
        section.blocks.push_back(std::move(costs));
    }
    CostChart chart = CostChartOf(zone);
    if (!chart.steps.empty()) {
        section.blocks.push_back(std::move(chart));
    }
    if (locations > 0) {
        section.blocks.push_back(TotalsChartOf(zone));
    }
    for (int location = 1; location <= locations; ++location) {
        section.blocks.push_back(NvcTable(season, zone, location, nullptr, 0));
        section.blocks.push_back(HeatMapOf(season, zone, location, largest));
    }
    return section;
}

Section FindingsOf(const std::vector<Finding>& findings) {
    Section section;
    section.heading = "Findings";
    section.onNewPage = true;
    if (findings.empty()) {
        section.blocks.push_back(Paragraph{"Nothing was found."});
        return section;
    }
    Table table;
    table.caption = "What was found: " + SummaryOf(findings);
    table.head = {HeadCell("Severity"), HeadCell("Finding"), HeadCell("Advice")};
    for (const Finding& finding : findings) {
        table.rows.push_back({TextCell(std::string(SeverityName(finding.severity))),
                              TextCell(finding.text), TextCell(finding.advice)});
    }
    section.blocks.push_back(std::move(table));
    return section;
}

Section DifferencesOf(const Season& older, const Season& newer) {
    const std::vector<Difference> differences = Compare(older, newer);
    Section section;
    section.heading = "Differences from " + season::TitleOf(older.path);
    section.onNewPage = true;
    if (differences.empty()) {
        section.blocks.push_back(Paragraph{"There is no difference."});
        return section;
    }
    BarChart chart = LargestChanges(differences);
    if (!chart.bars.empty()) {
        section.blocks.push_back(std::move(chart));
    }
    Table table;
    table.caption = Counted(differences.size(), "difference");
    table.head = {HeadCell("Kind"), HeadCell("What"), HeadCell("Place"), HeadCell("Old"),
                  HeadCell("New")};
    bool areFigures = true;
    for (const Difference& difference : differences) {
        const DifferenceWords words = WordsOf(difference);
        const auto side = words.isFigure ? NumberCell : TextCell;
        areFigures = areFigures && words.isFigure;
        table.rows.push_back({TextCell(std::string(ChangeName(difference.kind))),
                              TextCell(words.what), HeadCell(words.place), side(words.older),
                              side(words.newer)});
    }
    table.head[3].isNumber = areFigures;
    table.head[4].isNumber = areFigures;
    section.blocks.push_back(std::move(table));
    return section;
}

}  // namespace

Document ReportOf(const ReportParts& parts) {
    const Season& season = parts.season;
    const std::string unit = season.PropertyText("UnitName");
    Document document;
    document.title = "TARN Prep: " + (season::IsBlank(unit) ? season::TitleOf(season.path) : unit);
    document.facts = {{"Unit", season::IsBlank(unit) ? "not named" : unit},
                      {"Year", YearOf(season)},
                      {"File", season::TitleOf(season.path)},
                      {"Date of this report", parts.date},
                      {"Zones", Counted(season.zones.size(), "zone") + " with " +
                                    Counted(LocationsOf(season), "representative location")},
                      {"Findings", SummaryOf(parts.findings)}};
    AddGoals(document, season);
    document.sections.push_back(ResourcesOf(season));
    const double largest = LargestAmount(season);
    for (const Zone& zone : season.zones) {
        document.sections.push_back(ZoneOf(season, zone, largest));
    }
    document.sections.push_back(FindingsOf(parts.findings));
    if (parts.previous != nullptr) {
        document.sections.push_back(DifferencesOf(*parts.previous, season));
    }
    return document;
}

}  // namespace review
