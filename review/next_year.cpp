#include "review/next_year.h"

#include <algorithm>
#include <set>

#include "season/file_name.h"
#include "season/schema.h"
#include "season/text.h"

namespace review {

namespace {

void DropZones(season::Season& season, const std::vector<std::string>& names) {
    const auto nameOf = [](const season::Zone& zone) {
        return season::NameKey(season::Words(zone.name));
    };
    std::set<std::string> dropped;
    for (const std::string& name : names) {
        const std::string key = season::NameKey(name);
        const bool isThere = std::any_of(season.zones.begin(), season.zones.end(),
                                         [&](const auto& zone) { return nameOf(zone) == key; });
        if (!isThere) {
            throw UnknownZone("There is no zone \"" + name + "\".");
        }
        dropped.insert(key);
    }
    std::erase_if(season.zones, [&](const auto& zone) { return dropped.contains(nameOf(zone)); });
}

void SetProperties(season::Season& season, int year) {
    for (season::Property& property : season.properties) {
        const std::string name = season::Folded(property.name);
        if (name == "dataformatid") {
            property.value = season::kCurrentFormat;
        } else if (name == "unitname" && property.value) {
            property.value = season::WithYear(*property.value, year);
        }
    }
}

template <typename Records>
void NumberKeys(Records& records) {
    std::int32_t key = 0;
    for (auto& record : records) {
        record.key = ++key;
    }
}

}  // namespace

season::Season NextYear(const season::Season& older, int year,
                        const std::vector<std::string>& droppedZones) {
    season::Season season = older;
    season.format = season::kCurrentFormat;
    DropZones(season, droppedZones);
    SetProperties(season, year);
    for (season::Zone& zone : season.zones) {
        const int live = season::LiveCount(zone);
        std::erase_if(zone.locations, [live](const season::Location& location) {
            return location.number < 1 || location.number > live;
        });
    }
    season.strayCosts.clear();
    season.strayNvc.clear();
    NumberKeys(season.goals);
    NumberKeys(season.resources);
    NumberKeys(season.zones);
    return season;
}

}  // namespace review
