#include "tarnreview/PlaceView.h"

#include <QObject>

#include <algorithm>
#include <cmath>

#include "review/looking.h"
#include "review/pairs.h"
#include "review/report_charts.h"
#include "review/tables.h"
#include "season/text.h"
#include "tarnreview/Parts.h"

using plots::ChartSpot;

namespace tarnreview {

using Parts::Text;

namespace {

using review::HeadCell;
using review::NumberCell;
using review::TextCell;

// Columns of the cost table.
constexpr int kTo = 2;
constexpr int kCost = 3;

std::string Words(const season::Text& text) {
    return std::string(season::Words(text));
}

std::string UnitOf(const season::Resource& resource) {
    const std::string units = Words(resource.units);
    return season::IsBlank(units) ? std::string() : " per " + units;
}

std::string ZoneName(const season::Zone& zone) {
    return review::PlaceOf(zone).Words();
}

review::Table ResourceTable(const season::Season& season) {
    review::Table table;
    table.caption = "Suppression resources";
    table.head = {HeadCell("Number"), HeadCell("Name"), HeadCell("Short name"),
                  HeadCell("Units"),  HeadCell("Type"), HeadCell("Cost")};
    for (const season::Resource& resource : season.resources) {
        table.rows.push_back({NumberCell(std::to_string(season::Amount(resource.sequence))),
                              HeadCell(Words(resource.longName)),
                              TextCell(Words(resource.shortName)), TextCell(Words(resource.units)),
                              TextCell(Words(resource.unitType)),
                              NumberCell(review::DollarsText(season::Amount(resource.cost)))});
    }
    return table;
}

review::Table GoalTable(const season::Season& season) {
    review::Table table;
    table.caption = "Management goals";
    table.head = {HeadCell("Area"), HeadCell("Goals")};
    for (const season::Goal& goal : season.goals) {
        table.rows.push_back({HeadCell(Words(goal.area)), TextCell(Words(goal.explanation))});
    }
    return table;
}

review::Table ZoneTable(const season::Season& season) {
    review::Table table;
    table.caption = "Fire Management Zones";
    table.head = {HeadCell("Zone"), HeadCell("Locations")};
    for (const season::Zone& zone : season.zones) {
        table.rows.push_back(
            {HeadCell(ZoneName(zone)), NumberCell(std::to_string(season::Amount(zone.rlCount)))});
    }
    return table;
}

review::Table FactTable(const season::Season& season) {
    review::Table table;
    table.caption = "About the unit";
    table.head = {HeadCell("What"), HeadCell("As stored")};
    for (const season::Property& property : season.properties) {
        table.rows.push_back({HeadCell(property.name), TextCell(Words(property.value))});
    }
    return table;
}

// The row whose cell in this column is the text; -1 for none.
int RowWith(const review::Table& table, std::size_t column, const std::string& text) {
    const auto found = std::find_if(table.rows.begin(), table.rows.end(), [&](const auto& row) {
        return row.size() > column && row[column].text == text;
    });
    return found == table.rows.end() ? -1 : static_cast<int>(found - table.rows.begin());
}

// A resource's six values side by side, which shows the odd one out.
review::BarChart ProfileOf(const season::NvcRow* row) {
    review::BarChart chart;
    chart.words.caption = "Values by FIL";
    chart.words.alternative = "Values from FIL 1 to 6:";
    for (std::size_t level = 0; level < season::kFilLevels; ++level) {
        const season::Single value = row != nullptr ? row->values[level] : season::Single();
        const std::string text = review::ValueText(value);
        chart.bars.push_back({"FIL " + std::to_string(level + 1), season::Amount(value), text});
        chart.words.alternative += (level == 0 ? " " : ", ") + text;
    }
    chart.words.alternative += ".";
    return chart;
}

void ShowCosts(PlaceView& view, const season::Zone& zone, const review::Finding& finding) {
    const review::Place& place = finding.place;
    view.table = review::CostTable(zone, nullptr, review::kUsualTolerance);
    const review::CostChart chart = review::CostChartOf(zone);
    if (place.sizeClass) {
        view.row = RowWith(view.table, 0, std::to_string(*place.sizeClass));
        view.column = finding.rule == "cost-order" ? kTo : kCost;
        view.spot = StepOf(chart, zone, *place.sizeClass);
    }
    view.chart = chart;
    view.chartTitle = QObject::tr("Cost per acre by fire size");
    view.chartPlace = Text(ZoneName(zone));
}

void ShowTotals(PlaceView& view, const season::Zone& zone, int location,
                const review::Place& place) {
    review::TotalsChart chart = review::TotalsChartOf(zone);
    if (place.fil) {
        view.spot = ChartSpot{location - 1, *place.fil - 1};
        view.row = season::kNvcResources;
    } else {
        view.spot = ChartSpot{location - 1, -1};
    }
    view.column = place.fil.value_or(0);
    view.chart = std::move(chart);
    view.chartTitle = QObject::tr("Totals per acre by FIL");
    view.chartPlace = Text(ZoneName(zone));
}

void ShowValues(PlaceView& view, const season::Season& season, const season::Zone& zone,
                const review::Place& place) {
    const int location = *place.location;
    view.table = review::NvcTable(season, zone, location, nullptr, review::kUsualTolerance);
    if (!place.resource) {
        ShowTotals(view, zone, location, place);
        return;
    }
    view.row = RowOfResource(season, *place.resource);
    view.column = place.fil.value_or(0);
    const season::Location* const found = season::FindLocation(zone, location);
    view.chart = ProfileOf(found != nullptr ? season::FindRow(*found, view.row + 1) : nullptr);
    view.chartTitle = QObject::tr("%1 by FIL").arg(Text(*place.resource));
    view.chartPlace = Text(review::PlaceOf(zone, location).Words() + ", " + *place.resource);
    if (place.fil) {
        view.spot = ChartSpot{0, *place.fil - 1};
    }
}

void ShowResources(PlaceView& view, const season::Season& season, const std::string* name) {
    view.table = ResourceTable(season);
    const review::BarChart chart = ResourceCosts(season);
    if (name != nullptr) {
        view.row = RowWith(view.table, 1, *name);
        view.column = 1;
        const auto bar = std::find_if(chart.bars.begin(), chart.bars.end(),
                                      [name](const auto& one) { return one.label == *name; });
        if (bar != chart.bars.end()) {
            view.spot = ChartSpot{0, static_cast<int>(bar - chart.bars.begin())};
        }
    }
    view.chart = chart;
    view.chartTitle = QObject::tr("Costs of suppression resources");
}

// Places that are no figure: a goal, a zone, the list of zones, the unit.
void ShowOthers(PlaceView& view, const season::Season& season, const review::Finding& finding) {
    const std::string rule(finding.rule);
    if (finding.place.goal || rule.starts_with("goal")) {
        view.table = GoalTable(season);
        view.row = finding.place.goal ? RowWith(view.table, 0, *finding.place.goal) : -1;
    } else if (rule.starts_with("zone")) {
        view.table = ZoneTable(season);
        const season::Zone* const zone = ZoneAt(season, finding.place);
        view.row = zone != nullptr ? static_cast<int>(zone - season.zones.data()) : -1;
        view.column = rule == "zone-rl-count" ? 1 : 0;
    } else if (rule.starts_with("resource")) {
        ShowResources(view, season, nullptr);
    } else {
        view.table = FactTable(season);
        view.row =
            RowWith(view.table, 0, rule == "source-note-missing" ? "SRDataSource" : "UnitName");
        view.column = 1;
    }
}

}  // namespace

const season::Zone* ZoneAt(const season::Season& season, const review::Place& place) {
    for (const season::Zone& zone : season.zones) {
        if (place.zoneKey == zone.key) {
            return &zone;
        }
    }
    return nullptr;
}

review::BarChart ResourceCosts(const season::Season& season) {
    review::BarChart chart;
    chart.words.caption = "Costs of suppression resources, the dearest first";
    for (const season::Resource& resource : season.resources) {
        const double cost = season::Amount(resource.cost);
        chart.bars.push_back(
            {Words(resource.longName), cost, review::DollarsText(cost) + UnitOf(resource)});
    }
    std::stable_sort(chart.bars.begin(), chart.bars.end(), [](const auto& a, const auto& b) {
        return std::isfinite(a.value) && (!std::isfinite(b.value) || a.value > b.value);
    });
    chart.words.alternative = "Costs, the dearest first:";
    for (const review::BarChart::Bar& bar : chart.bars) {
        chart.words.alternative += " " + bar.label + " " + bar.text + ".";
    }
    return chart;
}

std::optional<ChartSpot> StepOf(const review::CostChart& chart, const season::Zone& zone,
                                int sizeClass) {
    const season::CostClass* const row = season::FindClass(zone, sizeClass);
    if (row == nullptr) {
        return std::nullopt;
    }
    for (std::size_t i = 0; i < chart.steps.size(); ++i) {
        if (chart.steps[i].to == season::Amount(row->topSize) &&
            chart.steps[i].cost == season::Amount(row->cost)) {
            return ChartSpot{0, static_cast<int>(i)};
        }
    }
    return std::nullopt;
}

int RowOfResource(const season::Season& season, const std::string& name) {
    for (int number = 1; number <= season::kNvcResources; ++number) {
        if (season.NvcName(number) == name) {
            return number - 1;
        }
    }
    return -1;
}

PlaceView PlaceOfFinding(const season::Season& season, const review::Finding& finding) {
    PlaceView view;
    const review::Place& place = finding.place;
    view.title = Text(place.Words());
    const season::Zone* const zone = ZoneAt(season, place);
    const bool isOfCosts = place.sizeClass || finding.rule.starts_with("cost");
    if (zone != nullptr && isOfCosts) {
        ShowCosts(view, *zone, finding);
    } else if (zone != nullptr && place.location) {
        ShowValues(view, season, *zone, place);
    } else if (place.resource) {
        ShowResources(view, season, &*place.resource);
    } else {
        ShowOthers(view, season, finding);
    }
    return view;
}

}  // namespace tarnreview
