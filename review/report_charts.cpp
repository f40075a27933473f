#include "review/report_charts.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "review/difference_words.h"
#include "review/figures.h"
#include "review/looking.h"
#include "review/tables.h"

namespace review {

namespace {

using season::Zone;

std::string WordsOf(const CostChart::Step& step) {
    const std::string size = step.to > 0     ? "up to " + AcresText(step.to)
                             : step.from > 0 ? "above " + AcresText(step.from)
                                             : "of any size";
    return size + " acres " + DollarsText(step.cost);
}

}  // namespace

CostChart CostChartOf(const Zone& zone) {
    CostChart chart;
    chart.words.caption = "Cost per acre by fire size (both axes logarithmic)";
    double from = 0;
    std::string words;
    for (const SizeClass& sizeClass : UsedClassesOf(zone)) {
        const bool isDrawn =
            sizeClass.cost > 0 && (sizeClass.topSize == 0 || sizeClass.topSize > from);
        if (isDrawn) {
            chart.steps.push_back({from, sizeClass.topSize, sizeClass.cost});
            words += (words.empty() ? "" : "; ") + WordsOf(chart.steps.back());
        }
        from = std::max(from, sizeClass.topSize);
    }
    chart.words.alternative = "Cost per acre by fire size: " + words + ".";
    return chart;
}

TotalsChart TotalsChartOf(const Zone& zone) {
    TotalsChart chart;
    chart.words.caption = "Totals per acre by FIL, all locations on one scale";
    std::string words;
    for (int number = 1; number <= season::LiveCount(zone); ++number) {
        TotalsChart::Panel panel;
        panel.title = "Location " + std::to_string(number);
        const ValueRow totals = TotalsOf(season::FindLocation(zone, number));
        std::copy(totals.begin(), totals.end(), panel.totals.begin());
        words += " " + panel.title + ":";
        for (std::size_t i = 0; i < totals.size(); ++i) {
            words += std::string(i == 0 ? " " : ", ") + DollarsText(totals[i]);
        }
        words += ".";
        chart.panels.push_back(panel);
    }
    chart.words.alternative = "Totals from FIL 1 to 6." + words;
    return chart;
}

HeatMap HeatMapOf(const season::Season& season, const Zone& zone, int location, double largest) {
    HeatMap map;
    map.words.caption = PlaceOf(zone, location).Words() +
                        ": the darker, the larger; brown losses, blue gains with a dashed border";
    map.largest = largest;
    double lowest = 0;
    double highest = 0;
    std::string lowestPlace;
    std::string highestPlace;
    const season::Location* const found = season::FindLocation(zone, location);
    for (int resource = 1; resource <= season::kNvcResources; ++resource) {
        const season::NvcRow* const row =
            found != nullptr ? season::FindRow(*found, resource) : nullptr;
        map.rows.push_back(season.NvcName(resource));
        std::array<double, 6>& values = map.values.emplace_back();
        for (std::size_t i = 0; row != nullptr && i < values.size(); ++i) {
            values[i] = season::Amount(row->values[i]);
            const std::string place = map.rows.back() + ", FIL " + std::to_string(i + 1);
            if (values[i] < lowest) {
                lowest = values[i];
                lowestPlace = place;
            } else if (values[i] > highest) {
                highest = values[i];
                highestPlace = place;
            }
        }
    }
    map.words.alternative = "The values of the table above as shades.";
    if (lowest < 0) {
        map.words.alternative += " The largest loss is " + ValueText(static_cast<float>(lowest)) +
                                 " (" + lowestPlace + ").";
    }
    if (highest > 0) {
        map.words.alternative += " The largest gain is " + ValueText(static_cast<float>(highest)) +
                                 " (" + highestPlace + ").";
    }
    return map;
}

double LargestAmount(const season::Season& season) {
    double largest = 0;
    EachLive(season, [&largest](const Zone&, int, const season::Location* location) {
        for (const season::NvcRow* row : SoundRowsOf(location)) {
            for (const double value : ValuesOf(*row)) {
                largest = std::max(largest, std::abs(value));
            }
        }
    });
    return largest;
}

BarChart LargestChanges(const std::vector<Difference>& differences) {
    constexpr std::size_t kMost = 12;
    BarChart chart;
    chart.words.caption = "The largest changes of values and costs, dollars per acre";
    for (const Difference& difference : differences) {
        const bool isPerAcre =
            difference.kind == Change::kChanged &&
            (difference.what == "nvc" || (difference.what == "cost" && difference.field == "Cost"));
        const auto* const older = std::get_if<float>(&difference.older);
        const auto* const newer = std::get_if<float>(&difference.newer);
        if (!isPerAcre) {
            continue;
        }
        const double before = older != nullptr ? static_cast<double>(*older) : 0;
        const double after = newer != nullptr ? static_cast<double>(*newer) : 0;
        if (std::isfinite(before) && std::isfinite(after)) {
            const DifferenceWords words = WordsOf(difference);
            chart.bars.push_back({words.place, after - before, words.older + " to " + words.newer});
        }
    }
    std::stable_sort(chart.bars.begin(), chart.bars.end(), [](const auto& a, const auto& b) {
        return std::abs(a.value) > std::abs(b.value);
    });
    chart.bars.resize(std::min(chart.bars.size(), kMost));
    chart.words.alternative = "The largest changes:";
    for (const BarChart::Bar& bar : chart.bars) {
        chart.words.alternative += " " + bar.label + ": " + bar.text + ".";
    }
    return chart;
}

}  // namespace review
