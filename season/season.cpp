#include "season/season.h"

#include <algorithm>

#include "season/text.h"

namespace season {

namespace {

constexpr std::int32_t kKeysPerZone = 100;

template <typename Items, typename Number>
auto Find(const Items& items, Number number, std::int32_t Items::value_type::*member) -> const
    typename Items::value_type* {
    const auto found =
        std::lower_bound(items.begin(), items.end(), number,
                         [member](const auto& item, Number n) { return item.*member < n; });
    return found != items.end() && (*found).*member == number ? &*found : nullptr;
}

}  // namespace

std::string Season::PropertyText(std::string_view name) const {
    const std::string wanted = Folded(name);
    for (const Property& property : properties) {
        if (Folded(property.name) == wanted) {
            return property.value.value_or(std::string());
        }
    }
    return {};
}

std::string Season::NvcName(std::int32_t number) const {
    const NvcResource* found = Find(nvcResources, number, &NvcResource::number);
    if (found == nullptr || IsBlank(Words(found->name))) {
        return "Resource " + std::to_string(number);
    }
    return *found->name;
}

std::size_t CountRows(const Season& season) {
    std::size_t rows = season.properties.size() + season.goals.size() + season.resources.size() +
                       season.nvcResources.size() + season.zones.size() + season.strayCosts.size() +
                       season.strayNvc.size();
    for (const Zone& zone : season.zones) {
        rows += zone.classes.size();
        for (const Location& location : zone.locations) {
            rows += location.rows.size();
        }
    }
    return rows;
}

int LiveCount(const Zone& zone) {
    return std::clamp<int>(Amount(zone.rlCount), 0, kLocationsWithRoom);
}

const Location* FindLocation(const Zone& zone, std::int32_t number) {
    return Find(zone.locations, number, &Location::number);
}

const NvcRow* FindRow(const Location& location, std::int32_t resource) {
    return Find(location.rows, resource, &NvcRow::resource);
}

const CostClass* FindClass(const Zone& zone, std::int32_t number) {
    return Find(zone.classes, number, &CostClass::number);
}

std::int64_t JoinKey(std::int32_t zone, std::int32_t location) {
    return std::int64_t{zone} * kKeysPerZone + location;
}

LocationKey SplitKey(std::int32_t key) {
    // Down to the next hundred, for negative keys too.
    const std::int64_t before = std::int64_t{key} - 1;
    const std::int64_t rest = (before % kKeysPerZone + kKeysPerZone) % kKeysPerZone;
    return {(before - rest) / kKeysPerZone, static_cast<std::int32_t>(rest + 1)};
}

}  // namespace season
