// Rules about suppression costs per acre.
#include <cmath>
#include <optional>
#include <string>

#include "review/figures.h"
#include "review/looking.h"
#include "review/rules.h"

namespace review {

namespace {

using season::Zone;

Place PlaceOfClass(const Zone& zone, int number) {
    Place place = PlaceOf(zone);
    place.sizeClass = number;
    return place;
}

std::string Acres(double size) {
    return Figure(static_cast<float>(size)) + " acres";
}

std::string Dollars(double cost) {
    const auto number = static_cast<float>(cost);
    const bool isWhole = std::trunc(number) == number;
    const std::string figure =
        isWhole || std::abs(number) < 0.01F ? Figure(number) : Fixed(number, 2);
    return cost < 0 ? "-$" + figure.substr(1) : "$" + figure;
}

double Value(double number) {
    return Typed(static_cast<float>(number));
}

// Why a class breaks the order; empty when it does not. `before` is the used class before it.
std::string WhyOutOfOrder(const SizeClass& sizeClass, const std::optional<SizeClass>& before,
                          bool afterGap, bool isLast) {
    if (afterGap) {
        return "it is used after a class that is not.";
    }
    if (sizeClass.topSize == 0) {
        return isLast ? "" : "it has no upper bound, and a class after it is used.";
    }
    if (before && sizeClass.topSize <= before->topSize) {
        return "its bound of " + Acres(sizeClass.topSize) + " is not above that of class " +
               std::to_string(before->number) + ", " + Acres(before->topSize) + ".";
    }
    return {};
}

void LookAtOrder(const Zone& zone, Findings& findings) {
    const std::vector<SizeClass> used = UsedClassesOf(zone);
    bool afterGap = false;
    std::optional<SizeClass> before;
    for (const SizeClass& sizeClass : ClassesOf(zone, true)) {
        if (!sizeClass.IsUsed()) {
            afterGap = true;
            continue;
        }
        const bool isLast = sizeClass.number == used.back().number;
        const std::string why = WhyOutOfOrder(sizeClass, before, afterGap, isLast);
        if (!why.empty()) {
            const Place place = PlaceOfClass(zone, sizeClass.number);
            findings.Add(place, Value(sizeClass.topSize), place.Words() + ": " + why,
                         "Classes are filled from the first on, with rising bounds; only the last "
                         "may be without one, for all larger fires.");
        }
        afterGap = false;
        before = sizeClass;
    }
}

}  // namespace

void CostMissingClass(const Subject& subject, Findings& findings) {
    const char* const advice =
        "TARN Prep cannot keep costs there. A file made for the next year from a sound copy, or "
        "jetdoctor, may help.";
    for (const Zone& zone : subject.season.zones) {
        for (int number = 1; number <= season::kCostClasses; ++number) {
            if (season::FindClass(zone, number) == nullptr) {
                const Place place = PlaceOfClass(zone, number);
                findings.Add(place, {}, place.Words() + ": the file has no record of this class.",
                             advice);
            }
        }
        for (const season::CostClass& row : zone.classes) {
            if (row.number < 1 || row.number > season::kCostClasses) {
                const Place place = PlaceOfClass(zone, row.number);
                findings.Add(place, {}, place.Words() + ": there are classes 1 to 9 only.",
                             "TARN Prep does not show this record.");
            }
        }
    }
}

void CostOrder(const Subject& subject, Findings& findings) {
    for (const Zone& zone : subject.season.zones) {
        LookAtOrder(zone, findings);
    }
}

void CostNegative(const Subject& subject, Findings& findings) {
    for (const Zone& zone : subject.season.zones) {
        for (const SizeClass& sizeClass : ClassesOf(zone)) {
            if (sizeClass.topSize >= 0 && sizeClass.cost >= 0) {
                continue;
            }
            const Place place = PlaceOfClass(zone, sizeClass.number);
            const bool isBound = sizeClass.topSize < 0;
            findings.Add(place, Value(isBound ? sizeClass.topSize : sizeClass.cost),
                         place.Words() +
                             (isBound ? ": the bound is " + Acres(sizeClass.topSize)
                                      : ": the cost is " + Dollars(sizeClass.cost)) +
                             ".",
                         "Sizes and costs are not negative.");
        }
    }
}

void CostNone(const Subject& subject, Findings& findings) {
    for (const Zone& zone : subject.season.zones) {
        if (UsedClassesOf(zone).empty()) {
            findings.Add(PlaceOf(zone), {},
                         PlaceOf(zone).Words() + ": no suppression cost per acre is entered.",
                         "Enter the zone's costs on the worksheet Suppression Cost per Acre.");
        }
    }
}

void CostZero(const Subject& subject, Findings& findings) {
    for (const Zone& zone : subject.season.zones) {
        for (const SizeClass& sizeClass : ClassesOf(zone)) {
            if (sizeClass.topSize != 0 && sizeClass.cost == 0) {
                const Place place = PlaceOfClass(zone, sizeClass.number);
                findings.Add(
                    place, 0.0,
                    place.Words() + ": fires up to " + Acres(sizeClass.topSize) + " cost nothing.",
                    "The cost per acre is missing.");
            }
        }
    }
}

void CostRises(const Subject& subject, Findings& findings) {
    for (const Zone& zone : subject.season.zones) {
        const std::vector<SizeClass> used = UsedClassesOf(zone);
        for (std::size_t i = 1; i < used.size(); ++i) {
            if (used[i].cost > used[i - 1].cost) {
                const Place place = PlaceOfClass(zone, used[i].number);
                findings.Add(place, Value(used[i].cost),
                             place.Words() + ": " + Dollars(used[i].cost) +
                                 " per acre is more than the " + Dollars(used[i - 1].cost) +
                                 " of class " + std::to_string(used[i - 1].number) + ".",
                             "An acre of a larger fire costs less as a rule; a digit may be too "
                             "many here or missing there.");
            }
        }
    }
}

void CostNoOpenClass(const Subject& subject, Findings& findings) {
    for (const Zone& zone : subject.season.zones) {
        const std::vector<SizeClass> used = UsedClassesOf(zone);
        if (!used.empty() && used.size() < season::kCostClasses && used.back().topSize != 0) {
            findings.Add(PlaceOf(zone), Value(used.back().topSize),
                         PlaceOf(zone).Words() + ": no class is left open for fires above " +
                             Acres(used.back().topSize) + ".",
                         "They cost as much per acre as the last class. Leave the bound of the "
                         "last class empty to say so.");
        }
    }
}

}  // namespace review
