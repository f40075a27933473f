// Rules about the unit, its goals and its suppression resources, and about numbers everywhere.
#include <algorithm>
#include <cmath>
#include <map>
#include <string>

#include "review/figures.h"
#include "review/looking.h"
#include "review/rules.h"
#include "season/file_name.h"
#include "season/text.h"

namespace review {

namespace {

using season::Resource;

std::string NameOf(const Resource& resource) {
    return season::IsBlank(season::Words(resource.longName))
               ? "Resource " + std::to_string(season::Amount(resource.sequence)) + " of the list"
               : *resource.longName;
}

void AddNotFinite(Findings& findings, const Place& place, const std::string& what, float number) {
    findings.Add(place, static_cast<double>(number), what + " is " + Figure(number) + ".",
                 "Another program must have stored it; type the right number.");
}

void LookAtNumbers(const season::Season& season, const season::Zone& zone,
                   const season::Location& location, Findings& findings) {
    for (const season::NvcRow& row : location.rows) {
        for (std::size_t i = 0; i < row.values.size(); ++i) {
            if (!IsFinite(row.values[i])) {
                Place place = PlaceOf(season, zone, location.number, row.resource);
                place.fil = static_cast<int>(i) + 1;
                AddNotFinite(findings, place, place.Words() + ": the value", *row.values[i]);
            }
        }
    }
}

}  // namespace

void UnitBlank(const Subject& subject, Findings& findings) {
    if (season::IsBlank(subject.season.PropertyText("UnitName"))) {
        findings.Add({}, {}, "The file does not name its unit.",
                     "A new file gets the name from the dialog that names it.");
    }
}

void UnitYear(const Subject& subject, Findings& findings) {
    const std::string unitName = subject.season.PropertyText("UnitName");
    const auto fileName = season::ParseFileName(subject.season.path);
    if (season::IsBlank(unitName) || !fileName) {
        return;
    }
    const auto year = season::YearOfUnitName(unitName);
    if (year == fileName->year) {
        return;
    }
    const std::string there =
        year ? "is of the year " + std::to_string(season::FullYear(*year)) : "names no year";
    findings.Add({}, year ? FoundValue(static_cast<double>(*year)) : FoundValue(),
                 "The unit's name \"" + unitName + "\" " + there + ", the file's name of " +
                     std::to_string(season::FullYear(fileName->year)) + ".",
                 "Last year's file may have been copied; fcdtool newyear makes a file for the next "
                 "year that says so.");
}

void SourceNoteMissing(const Subject& subject, Findings& findings) {
    if (!subject.season.resources.empty() &&
        season::IsBlank(subject.season.PropertyText("SRDataSource"))) {
        findings.Add({}, {}, "The source of the resources' costs is not noted.",
                     "Type source, date and your name on the worksheet Suppression Resources.");
    }
}

void GoalsNone(const Subject& subject, Findings& findings) {
    if (subject.season.goals.empty()) {
        findings.Add({}, {}, "The file has no management goal.",
                     "Add the unit's areas and goals on the worksheet Management Goals.");
    }
}

void GoalBlank(const Subject& subject, Findings& findings) {
    for (const season::Goal& goal : subject.season.goals) {
        const bool noHeading = season::IsBlank(season::Words(goal.area));
        const bool noText = season::IsBlank(season::Words(goal.explanation));
        if (!noHeading && !noText) {
            continue;
        }
        const std::string which =
            noHeading ? "The goal with number " + std::to_string(goal.key) : *goal.area;
        findings.Add(PlaceOf(goal), {},
                     which + (noHeading && noText ? ": heading and text are missing."
                              : noHeading         ? ": the heading is missing."
                                                  : ": the text is missing."),
                     "Complete it on the worksheet Management Goals, or delete the area.");
    }
}

void ResourcesNone(const Subject& subject, Findings& findings) {
    if (subject.season.resources.empty()) {
        findings.Add({}, {}, "The file has no suppression resource.",
                     "Add the unit's resources on the worksheet Suppression Resources.");
    }
}

void ResourceSequence(const Subject& subject, Findings& findings) {
    std::int32_t expected = 0;
    for (const Resource& resource : subject.season.resources) {
        if (season::Amount(resource.sequence) == ++expected) {
            continue;
        }
        findings.Add({}, {},
                     "The resources are not numbered 1 to " +
                         std::to_string(subject.season.resources.size()) + ".",
                     "Give one of them another number on the worksheet Suppression Resources and "
                     "leave it; TARN Prep then stores all numbers anew.");
        return;
    }
}

void ResourceBlankName(const Subject& subject, Findings& findings) {
    for (const Resource& resource : subject.season.resources) {
        if (season::IsBlank(season::Words(resource.longName))) {
            findings.Add(PlaceOf(resource), {}, NameOf(resource) + " has no name.",
                         "Type its name on the worksheet Suppression Resources.");
        }
    }
}

void ResourceDuplicateName(const Subject& subject, Findings& findings) {
    std::map<std::string, const Resource*> first;
    for (const Resource& resource : subject.season.resources) {
        const std::string name = season::NameKey(season::Words(resource.longName));
        if (name.empty()) {
            continue;
        }
        const auto [known, isNew] = first.try_emplace(name, &resource);
        if (!isNew) {
            findings.Add(PlaceOf(resource), *resource.longName,
                         "\"" + *resource.longName + "\" (number " +
                             std::to_string(season::Amount(resource.sequence)) +
                             ") is also the name of an earlier resource (number " +
                             std::to_string(season::Amount(known->second->sequence)) + ").",
                         "Whoever picks a resource cannot tell them apart.");
        }
    }
}

void ResourceUnitType(const Subject& subject, Findings& findings) {
    for (const Resource& resource : subject.season.resources) {
        const std::string type(season::Words(resource.unitType));
        const std::string folded = season::Folded(type);
        if (folded != "time" && folded != "item") {
            findings.Add(PlaceOf(resource), type,
                         NameOf(resource) + ": the kind of cost is " +
                             (type.empty() ? "not set" : "\"" + type + "\"") + ".",
                         "It is \"time\" for a cost per time unit or \"item\" for a cost per "
                         "item. Delete the resource and add it anew.");
        }
    }
}

void ResourceCostZero(const Subject& subject, Findings& findings) {
    for (const Resource& resource : subject.season.resources) {
        if (season::Amount(resource.cost) == 0) {
            findings.Add(PlaceOf(resource), 0.0, NameOf(resource) + " costs nothing.",
                         "The cost per unit is missing.");
        }
    }
}

void NumberNotFinite(const Subject& subject, Findings& findings) {
    for (const Resource& resource : subject.season.resources) {
        if (!IsFinite(resource.cost)) {
            AddNotFinite(findings, PlaceOf(resource), NameOf(resource) + ": the cost",
                         *resource.cost);
        }
    }
    for (const season::Zone& zone : subject.season.zones) {
        for (const season::CostClass& row : zone.classes) {
            Place place = PlaceOf(zone);
            place.sizeClass = row.number;
            if (!IsFinite(row.topSize)) {
                AddNotFinite(findings, place, place.Words() + ": the bound", *row.topSize);
            }
            if (!IsFinite(row.cost)) {
                AddNotFinite(findings, place, place.Words() + ": the cost", *row.cost);
            }
        }
        for (int number = 1; number <= season::LiveCount(zone); ++number) {
            if (const season::Location* location = season::FindLocation(zone, number)) {
                LookAtNumbers(subject.season, zone, *location, findings);
            }
        }
    }
}

}  // namespace review
