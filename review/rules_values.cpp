// Rules about net value change.
#include <algorithm>
#include <cmath>
#include <map>
#include <string>

#include "review/figures.h"
#include "review/looking.h"
#include "review/rules.h"

namespace review {

namespace {

using season::Location;
using season::NvcRow;
using season::Zone;

std::string FigureOf(double value) {
    return Figure(static_cast<float>(value));
}

std::string Dollars(double total) {
    const std::string figure = Fixed(total, 0);
    return figure.starts_with('-') ? "-$" + figure.substr(1) : "$" + figure;
}

Place PlaceOfFil(Place place, int fil) {
    place.fil = fil;
    return place;
}

int Sign(double value) {
    return value < 0 ? -1 : value > 0 ? 1 : 0;
}

// Calls `look(place, values)` for each row of each live location.
template <typename Look>
void EachSoundRow(const season::Season& season, const Look& look) {
    EachLive(season, [&](const Zone& zone, int number, const Location* location) {
        for (const NvcRow* row : SoundRowsOf(location)) {
            const ValueRow values = ValuesOf(*row);
            look(*row, values, [&] { return PlaceOf(season, zone, number, row->resource); });
        }
    });
}

using SoundRows = std::vector<const NvcRow*>;

bool SameRow(const NvcRow& a, const NvcRow& b) {
    return a.resource == b.resource && ValuesOf(a) == ValuesOf(b);
}

bool SameTable(const SoundRows& a, const SoundRows& b) {
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(),
                      [](const NvcRow* one, const NvcRow* other) { return SameRow(*one, *other); });
}

bool HasValues(const SoundRows& rows) {
    return std::any_of(rows.begin(), rows.end(), [](const NvcRow* row) {
        return std::any_of(row->values.begin(), row->values.end(),
                           [](const season::Single& value) { return season::Amount(value) != 0; });
    });
}

// At least 8 times, or at most an eighth of, the geometric mean of the two beside it.
bool IsSlip(double value, double before, double after) {
    const int sign = Sign(value);
    if (sign == 0 || Sign(before) != sign || Sign(after) != sign) {
        return false;
    }
    // Squares of singles are exact here.
    constexpr double kTimesSquared = 64;
    const double square = value * value;
    const double product = before * after;
    return square >= kTimesSquared * product || square * kTimesSquared <= product;
}

}  // namespace

void NvcMissingRow(const Subject& subject, Findings& findings) {
    EachLive(subject.season, [&](const Zone& zone, int number, const Location* location) {
        for (int resource = 1; resource <= season::kNvcResources; ++resource) {
            if (location == nullptr || season::FindRow(*location, resource) == nullptr) {
                const Place place = PlaceOf(subject.season, zone, number, resource);
                findings.Add(place, {}, place.Words() + ": the file has no record of its values.",
                             "TARN Prep cannot keep values there. Lowering and raising the zone's "
                             "number of locations adds what is missing.");
            }
        }
    });
}

void NvcAllZero(const Subject& subject, Findings& findings) {
    EachLive(subject.season, [&](const Zone& zone, int number, const Location* location) {
        const SoundRows rows = SoundRowsOf(location);
        if (rows.size() == season::kNvcResources && !HasValues(rows)) {
            const Place place = PlaceOf(zone, number);
            findings.Add(place, {}, place.Words() + ": all values are 0.",
                         "Nothing seems to have been entered for this location.");
        }
    });
}

void NvcSameAs(const Subject& subject, Findings& findings) {
    for (const Zone& zone : subject.season.zones) {
        std::vector<SoundRows> earlier;
        for (int number = 1; number <= season::LiveCount(zone); ++number) {
            const SoundRows& rows =
                earlier.emplace_back(SoundRowsOf(season::FindLocation(zone, number)));
            const auto first =
                std::find_if(earlier.begin(), earlier.end(),
                             [&rows](const SoundRows& others) { return SameTable(others, rows); });
            const auto same = first - earlier.begin() + 1;
            if (same < number && HasValues(rows)) {
                const Place place = PlaceOf(zone, number);
                findings.Add(place, static_cast<double>(same),
                             place.Words() + ": all values equal those of location " +
                                 std::to_string(same) + ".",
                             "The table may have been copied and not yet been changed.");
            }
        }
    }
}

void NvcGainHigh(const Subject& subject, Findings& findings) {
    // Sums of decimal numbers that cancel out leave a rest in the last binary digits.
    constexpr double kNoise = 1e-7;
    EachLive(subject.season, [&](const Zone& zone, int number, const Location* location) {
        double amounts = 0;
        for (const NvcRow* row : SoundRowsOf(location)) {
            amounts += std::abs(season::Amount(row->values.back()));
        }
        const double total = TotalsOf(location).back();
        if (total > amounts * kNoise) {
            const Place place = PlaceOfFil(PlaceOf(zone, number), season::kFilLevels);
            findings.Add(place, total,
                         place.Words() + ": the total is a gain of " + Fixed(total, 2) +
                             " dollars per acre.",
                         "Fires of the highest intensity cause losses as a rule; minus signs may "
                         "be missing.");
        }
    });
}

void NvcImproves(const Subject& subject, Findings& findings) {
    constexpr double kPart = 0.005;
    constexpr double kLeast = 0.005;
    EachLive(subject.season, [&](const Zone& zone, int number, const Location* location) {
        const ValueRow totals = TotalsOf(location);
        for (int fil = 3; fil < season::kFilLevels; ++fil) {
            const double low = totals[static_cast<std::size_t>(fil - 1)];
            const double high = totals[static_cast<std::size_t>(fil)];
            if (high - low > kPart * std::abs(low) && high - low > kLeast) {
                const Place place = PlaceOfFil(PlaceOf(zone, number), fil + 1);
                findings.Add(place, high,
                             place.Words() + ": the total of " + Dollars(high) +
                                 " is better than the " + Dollars(low) + " of FIL " +
                                 std::to_string(fil) + ".",
                             "Losses grow with the intensity of the fire as a rule; look for a "
                             "value that lacks a digit or its minus sign.");
                return;
            }
        }
    });
}

void NvcSignFlip(const Subject& subject, Findings& findings) {
    EachSoundRow(subject.season, [&](const NvcRow&, const ValueRow& values, const auto& placeOf) {
        int changes = 0;
        int last = 0;
        std::string listed;
        for (const double value : values) {
            const int sign = Sign(value);
            changes += sign != 0 && last != 0 && sign != last ? 1 : 0;
            last = sign != 0 ? sign : last;
            listed += (listed.empty() ? "" : "; ") + FigureOf(value);
        }
        if (changes > 1) {
            const Place place = placeOf();
            findings.Add(place, static_cast<double>(changes),
                         place.Words() + ": gains and losses change " + std::to_string(changes) +
                             " times from FIL 1 to 6 (" + listed + ").",
                         "A minus sign may be missing, or one too many.");
        }
    });
}

void NvcSlip(const Subject& subject, Findings& findings) {
    EachSoundRow(subject.season, [&](const NvcRow&, const ValueRow& values, const auto& placeOf) {
        for (std::size_t i = 1; i + 1 < values.size(); ++i) {
            if (!IsSlip(values[i], values[i - 1], values[i + 1])) {
                continue;
            }
            const bool isSmall = values[i] * values[i] < values[i - 1] * values[i + 1];
            const Place place = PlaceOfFil(placeOf(), static_cast<int>(i) + 1);
            findings.Add(place, Typed(static_cast<float>(values[i])),
                         place.Words() + ": " + FigureOf(values[i]) + " beside " +
                             FigureOf(values[i - 1]) + " and " + FigureOf(values[i + 1]) + ".",
                         isSmall ? "A digit may be missing, or a comma was typed."
                                 : "A digit may be too many, or a decimal point is missing.");
        }
    });
}

void Outlier(const Subject& subject, Findings& findings) {
    if (subject.others == nullptr) {
        return;
    }
    constexpr std::uint64_t kFewest = 20;
    constexpr double kFar = 5;
    constexpr double kLikeStandardDeviation = 1.4826;
    std::map<std::tuple<std::int32_t, int, bool>, Usual> found;
    EachSoundRow(subject.season, [&](const NvcRow& row, const ValueRow& values,
                                     const auto& placeOf) {
        for (int fil = 1; fil <= season::kFilLevels; ++fil) {
            const double value = values[static_cast<std::size_t>(fil - 1)];
            if (value == 0) {
                continue;
            }
            const auto [usual, isNew] = found.try_emplace({row.resource, fil, value < 0}, Usual());
            if (isNew) {
                usual->second = subject.others->UsualOf(row.resource, fil, value < 0);
            }
            const auto [count, median, distance] = usual->second;
            const double far = kFar * kLikeStandardDeviation * distance;
            if (count >= kFewest && distance > 0 &&
                std::abs(std::log10(std::abs(value)) - median) > far) {
                const Place place = PlaceOfFil(placeOf(), fil);
                const double middle = std::copysign(std::pow(10, median), value);
                findings.Add(place, Typed(static_cast<float>(value)),
                             place.Words() + ": " + FigureOf(value) + " lies far from the " +
                                 Fixed(middle, 2) + " that is usual elsewhere.",
                             "Look whether a digit is missing or too many.");
            }
        }
    });
}

}  // namespace review
