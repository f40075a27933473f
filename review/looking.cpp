#include "review/looking.h"

#include <algorithm>
#include <string>

#include "review/figures.h"
#include "season/text.h"

namespace review {

Place PlaceOf(const season::Zone& zone) {
    Place place;
    place.zone = zone.name.value_or(std::string());
    place.zoneKey = zone.key;
    return place;
}

Place PlaceOf(const season::Zone& zone, int location) {
    Place place = PlaceOf(zone);
    place.location = location;
    return place;
}

Place PlaceOf(const season::Season& season, const season::Zone& zone, int location,
              std::int32_t resource) {
    Place place = PlaceOf(zone, location);
    place.resource = season.NvcName(resource);
    return place;
}

Place PlaceOf(const season::Resource& resource) {
    Place place;
    place.resource = resource.longName.value_or(std::string());
    return place;
}

Place PlaceOf(const season::Goal& goal) {
    Place place;
    place.goal = season::IsBlank(season::Words(goal.area)) ? std::to_string(goal.key) : *goal.area;
    return place;
}

bool IsFinite(const season::Single& number) {
    return !number || std::isfinite(*number);
}

bool IsFinite(const season::NvcRow& row) {
    return std::all_of(row.values.begin(), row.values.end(),
                       [](const season::Single& number) { return IsFinite(number); });
}

ValueRow ValuesOf(const season::NvcRow& row) {
    ValueRow values{};
    std::transform(row.values.begin(), row.values.end(), values.begin(),
                   [](const season::Single& number) { return season::Amount(number); });
    return values;
}

std::vector<SizeClass> ClassesOf(const season::Zone& zone, bool withMissing) {
    std::vector<SizeClass> classes;
    for (int number = 1; number <= season::kCostClasses; ++number) {
        const season::CostClass* const row = season::FindClass(zone, number);
        if (row == nullptr) {
            if (withMissing) {
                classes.push_back({.number = number});
            }
        } else if (IsFinite(row->topSize) && IsFinite(row->cost)) {
            classes.push_back({number, season::Amount(row->topSize), season::Amount(row->cost)});
        }
    }
    return classes;
}

std::vector<SizeClass> UsedClassesOf(const season::Zone& zone) {
    std::vector<SizeClass> classes = ClassesOf(zone);
    std::erase_if(classes, [](const SizeClass& sizeClass) { return !sizeClass.IsUsed(); });
    return classes;
}

std::vector<const season::NvcRow*> SoundRowsOf(const season::Location* location) {
    std::vector<const season::NvcRow*> rows;
    if (location == nullptr) {
        return rows;
    }
    rows.reserve(location->rows.size());
    for (const season::NvcRow& row : location->rows) {
        if (row.resource >= 1 && row.resource <= season::kNvcResources && IsFinite(row)) {
            rows.push_back(&row);
        }
    }
    return rows;
}

ValueRow TotalsOf(const season::Location* location) {
    ValueRow totals{};
    for (const season::NvcRow* row : SoundRowsOf(location)) {
        const ValueRow values = ValuesOf(*row);
        for (std::size_t i = 0; i < totals.size(); ++i) {
            totals[i] += values[i];
        }
    }
    return totals;
}

}  // namespace review
