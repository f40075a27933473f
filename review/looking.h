// What several rules share: how places are named and what of a season is looked at.
#pragma once

#include <array>
#include <cmath>
#include <optional>
#include <vector>

#include "review/finding.h"
#include "season/season.h"

namespace review {

using ValueRow = std::array<double, season::kFilLevels>;

Place PlaceOf(const season::Zone& zone);
Place PlaceOf(const season::Zone& zone, int location);
Place PlaceOf(const season::Season& season, const season::Zone& zone, int location,
              std::int32_t resource);
Place PlaceOf(const season::Resource& resource);
Place PlaceOf(const season::Goal& goal);

bool IsFinite(const season::Single& number);
bool IsFinite(const season::NvcRow& row);
// The row's numbers, null as 0.
ValueRow ValuesOf(const season::NvcRow& row);

// A class of fire size as the rules see it.
struct SizeClass {
    int number = 0;
    double topSize = 0;
    double cost = 0;
    [[nodiscard]] bool IsUsed() const { return topSize != 0 || cost != 0; }
};
// Classes 1 to 9 in order, those left out whose numbers are infinite or none. A class without a
// record is there with 0 when `withMissing`.
std::vector<SizeClass> ClassesOf(const season::Zone& zone, bool withMissing = false);
std::vector<SizeClass> UsedClassesOf(const season::Zone& zone);

// The rows of resources 1 to 14 whose numbers are finite.
std::vector<const season::NvcRow*> SoundRowsOf(const season::Location* location);
// The sum of each level over these rows.
ValueRow TotalsOf(const season::Location* location);

// Calls `look(zone, number, location)` for each live location; `location` is null where no row is.
template <typename Look>
void EachLive(const season::Season& season, const Look& look) {
    for (const season::Zone& zone : season.zones) {
        const int count = season::LiveCount(zone);
        for (int number = 1; number <= count; ++number) {
            look(zone, number, season::FindLocation(zone, number));
        }
    }
}

}  // namespace review
