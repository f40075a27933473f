// A season made by code, in which there is nothing to find.
#pragma once

#include <cmath>
#include <filesystem>
#include <string>

#include "season/data_file.h"
#include "season/season.h"

namespace tarn_test {

inline season::Zone SoundZone(std::int32_t key, int locations) {
    season::Zone zone;
    zone.key = key;
    zone.name = "Zone " + std::to_string(key);
    zone.rlCount = locations;
    constexpr std::array<float, 5> kSizes{0.25F, 10, 100, 1000, 0};
    for (int number = 1; number <= season::kCostClasses; ++number) {
        season::CostClass row;
        row.number = number;
        if (number <= static_cast<int>(kSizes.size())) {
            row.topSize = kSizes[static_cast<std::size_t>(number - 1)];
            row.cost = 4000.0F / static_cast<float>(number) + static_cast<float>(key % 100);
        }
        zone.classes.push_back(row);
    }
    for (int number = 1; number <= locations; ++number) {
        season::Location location;
        location.number = number;
        for (int resource = 1; resource <= season::kNvcResources; ++resource) {
            season::NvcRow row;
            row.resource = resource;
            for (int fil = 1; fil <= season::kFilLevels; ++fil) {
                const double base = resource + number * 0.5 + (key % 100) * 0.25;
                row.values[static_cast<std::size_t>(fil - 1)] =
                    static_cast<float>(-std::round(base * fil * fil * 100) / 100);
            }
            location.rows.push_back(row);
        }
        zone.locations.push_back(location);
    }
    return zone;
}

inline season::Season SoundSeason(int zones = 3, int locations = 2) {
    season::Season made;
    made.format = "4.01.01";
    made.properties = {{"DataFormatID", "4.01.01"},
                       {"SRDataSource", "Rate sheets of the spring"},
                       {"UnitName", "Umatilla National Forest '26"}};
    made.goals = {{1, "Wilderness", "Let natural processes play their part."},
                  {2, "Interface", "Keep fires small."}};
    made.resources = {{1, 1, "Engine, type 6", "Engine T6", "day", "time", 1280.0F},
                      {2, 2, "Hand crew", "Crew", "day", "Time", 7400.0F},
                      {3, 3, "Retardant", "Ret.", "load", "item", 3850.5F}};
    for (int number = 1; number <= season::kNvcResources; ++number) {
        made.nvcResources.push_back({number, "Value " + std::to_string(number)});
    }
    for (int key = 1; key <= zones; ++key) {
        made.zones.push_back(SoundZone(key, locations));
    }
    return made;
}

}  // namespace tarn_test
