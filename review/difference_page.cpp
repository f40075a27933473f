#include "review/difference_page.h"

#include <algorithm>
#include <string>

#include "review/difference.h"
#include "review/difference_words.h"
#include "review/figures.h"
#include "review/tables.h"
#include "season/file_name.h"
#include "season/text.h"

namespace review {

namespace {

using season::Season;
using season::Zone;

std::string FactsOf(const Season& season) {
    const std::string unit = season.PropertyText("UnitName");
    return season::TitleOf(season.path) + (season::IsBlank(unit) ? "" : " - " + unit);
}

Section Overview(const std::vector<Difference>& differences) {
    Section section;
    section.heading = "Overview";
    if (differences.empty()) {
        section.blocks.push_back(Paragraph{"There is no difference."});
        return section;
    }
    Table table;
    table.caption = "Number of differences";
    table.head = {HeadCell("Kind"), HeadCell("What"), HeadCell("Number")};
    for (const DifferenceCount& count : CountDifferences(differences)) {
        table.rows.push_back({TextCell(std::string(ChangeName(count.kind))),
                              TextCell(std::string(count.what)),
                              NumberCell(std::to_string(count.number))});
    }
    section.blocks.push_back(table);
    return section;
}

// Figures and texts that stand in no zone's tables, and zones and locations that came or went.
Section Lists(const std::vector<Difference>& differences) {
    Section section;
    section.heading = "Names, goals, resources, zones and locations";
    Table table;
    table.caption = "Differences outside the tables of figures";
    table.head = {HeadCell("Kind"), HeadCell("What"), HeadCell("Place"), HeadCell("Old"),
                  HeadCell("New")};
    for (const Difference& difference : differences) {
        const bool isFigure = difference.what == "cost" || difference.what == "nvc";
        if (isFigure && difference.kind == Change::kChanged) {
            continue;
        }
        const DifferenceWords words = WordsOf(difference);
        table.rows.push_back({TextCell(std::string(ChangeName(difference.kind))),
                              TextCell(words.what), HeadCell(words.place), TextCell(words.older),
                              TextCell(words.newer)});
    }
    if (table.rows.empty()) {
        section.blocks.push_back(Paragraph{"None."});
    } else {
        section.blocks.push_back(table);
    }
    return section;
}

std::string NameOf(const Zone& zone) {
    return season::IsBlank(season::Words(zone.name))
               ? "Zone without a name (key " + std::to_string(zone.key) + ")"
               : *zone.name;
}

Section ZoneSection(const Season& newer, const Pair<Zone>& pair, double tolerance) {
    Section section;
    const Zone& zone = pair.newer != nullptr ? *pair.newer : *pair.older;
    section.heading = NameOf(zone);
    if (pair.older == nullptr) {
        section.heading += " (added)";
    } else if (pair.newer == nullptr) {
        section.heading += " (removed)";
        section.blocks.push_back(Paragraph{"The newer file does not have this zone."});
        return section;
    } else if (season::NameKey(NameOf(*pair.older)) != season::NameKey(NameOf(zone))) {
        section.heading += " (formerly " + NameOf(*pair.older) + ")";
    }
    section.isFolded = pair.older != nullptr && SameFigures(*pair.older, zone, tolerance);
    if (section.isFolded) {
        section.heading += " - unchanged";
    }
    section.blocks.push_back(CostTable(zone, pair.older, tolerance));
    for (int location = 1; location <= season::LiveCount(zone); ++location) {
        section.blocks.push_back(NvcTable(newer, zone, location, pair.older, tolerance));
    }
    if (pair.older != nullptr && season::LiveCount(*pair.older) > season::LiveCount(zone)) {
        section.blocks.push_back(Paragraph{
            "Removed: " +
            Counted(
                static_cast<std::size_t>(season::LiveCount(*pair.older) - season::LiveCount(zone)),
                "location") +
            "."});
    }
    return section;
}

}  // namespace

Document DifferencePage(const Season& older, const Season& newer, double tolerance) {
    const std::vector<Difference> differences = Compare(older, newer, tolerance);
    Document document;
    document.title = "Differences between " + season::TitleOf(older.path) + " and " +
                     season::TitleOf(newer.path);
    document.facts = {{"Old", FactsOf(older)},
                      {"New", FactsOf(newer)},
                      {"Differences", std::to_string(differences.size())}};
    document.sections.push_back(Overview(differences));
    document.sections.push_back(Lists(differences));
    for (const Pair<Zone>& pair : PairZones(older, newer, tolerance)) {
        document.sections.push_back(ZoneSection(newer, pair, tolerance));
    }
    return document;
}

}  // namespace review
