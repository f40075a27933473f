// Rules about zones and their locations.
#include <algorithm>
#include <map>
#include <string>

#include "review/figures.h"
#include "review/looking.h"
#include "review/pairs.h"
#include "review/rules.h"
#include "season/text.h"

namespace review {

using season::Zone;

void ZonesNone(const Subject& subject, Findings& findings) {
    if (subject.season.zones.empty()) {
        findings.Add({}, {}, "The file has no Fire Management Zone.",
                     "Add the unit's zones on the worksheet Fire Management Zones.");
    }
}

void ZoneBlankName(const Subject& subject, Findings& findings) {
    std::size_t line = 0;
    for (const Zone& zone : subject.season.zones) {
        ++line;
        if (season::IsBlank(season::Words(zone.name))) {
            findings.Add(PlaceOf(zone), {},
                         "The zone on line " + std::to_string(line) + " of the list (key " +
                             std::to_string(zone.key) + ") has no name.",
                         "Type its name on the worksheet Fire Management Zones.");
        }
    }
}

void ZoneDuplicateName(const Subject& subject, Findings& findings) {
    std::map<std::string, const Zone*> first;
    for (const Zone& zone : subject.season.zones) {
        const std::string name = season::NameKey(season::Words(zone.name));
        if (name.empty()) {
            continue;
        }
        const auto [known, isNew] = first.try_emplace(name, &zone);
        if (!isNew) {
            findings.Add(PlaceOf(zone), *zone.name,
                         "\"" + *zone.name + "\" (key " + std::to_string(zone.key) +
                             ") is also the name of an earlier zone (key " +
                             std::to_string(known->second->key) + ").",
                         "Give each zone a name of its own, or take out the one that was entered "
                         "twice.");
        }
    }
}

void ZoneRlCount(const Subject& subject, Findings& findings) {
    for (const Zone& zone : subject.season.zones) {
        const std::int32_t count = season::Amount(zone.rlCount);
        if (count < 1 || count > season::kLocationsWithRoom) {
            findings.Add(PlaceOf(zone), static_cast<double>(count),
                         PlaceOf(zone).Words() + ": the number of representative locations is " +
                             std::to_string(count) + ".",
                         "It must be 1 to " + std::to_string(season::kLocationsWithRoom) + ".");
        }
    }
}

void StaleLocations(const Subject& subject, Findings& findings) {
    for (const Zone& zone : subject.season.zones) {
        const std::int32_t count = season::Amount(zone.rlCount);
        const auto kept = std::count_if(
            zone.locations.begin(), zone.locations.end(),
            [count](const season::Location& location) { return location.number > count; });
        if (kept > 0) {
            findings.Add(PlaceOf(zone), static_cast<double>(kept),
                         PlaceOf(zone).Words() + ": the values of " +
                             Counted(static_cast<std::size_t>(kept), "location") + " beyond its " +
                             std::to_string(count) + " are kept in the file.",
                         "They do not count. Raising the number of locations brings them back; a "
                         "file made for the next year leaves them out.");
        }
    }
}

namespace {

bool HasFigures(const Zone& zone) {
    const auto isNotZero = [](const season::Single& number) { return season::Amount(number) != 0; };
    for (const season::CostClass& row : zone.classes) {
        if (isNotZero(row.topSize) || isNotZero(row.cost)) {
            return true;
        }
    }
    for (int number = 1; number <= season::LiveCount(zone); ++number) {
        const season::Location* const location = season::FindLocation(zone, number);
        if (location == nullptr) {
            continue;
        }
        for (const season::NvcRow& row : location->rows) {
            if (std::any_of(row.values.begin(), row.values.end(), isNotZero)) {
                return true;
            }
        }
    }
    return false;
}

}  // namespace

void UnchangedZone(const Subject& subject, Findings& findings) {
    if (subject.previous == nullptr) {
        return;
    }
    for (const auto& pair : PairZones(*subject.previous, subject.season)) {
        if (pair.older != nullptr && pair.newer != nullptr && HasFigures(*pair.newer) &&
            SameFigures(*pair.older, *pair.newer)) {
            findings.Add(PlaceOf(*pair.newer), {},
                         PlaceOf(*pair.newer).Words() +
                             ": all costs and values are those of the previous file.",
                         "That may be right; look whether they were meant to be brought up to "
                         "date.");
        }
    }
}

}  // namespace review
