#include "review/check.h"

#include <algorithm>
#include <utility>

#include "review/rules.h"

namespace review {

namespace {

constexpr Severity kError = Severity::kError;
constexpr Severity kWarning = Severity::kWarning;
constexpr Severity kNote = Severity::kNote;

const Rule kRules[] = {
    {"zone-blank-name", kError, "a zone without a name", ZoneBlankName},
    {"zone-duplicate-name", kError, "a zone with the name of an earlier one", ZoneDuplicateName},
    {"zone-rl-count", kError, "fewer than 1 or more than 99 locations", ZoneRlCount},
    {"cost-missing-class", kError, "a cost class without a record, or one too many",
     CostMissingClass},
    {"cost-order", kError, "a bound that does not rise, or a gap before a class", CostOrder},
    {"cost-negative", kError, "a negative bound or cost", CostNegative},
    {"nvc-missing-row", kError, "a resource without a record of its values", NvcMissingRow},
    {"resource-sequence", kError, "resources that are not numbered 1 to N", ResourceSequence},
    {"resource-blank-name", kError, "a resource without a name", ResourceBlankName},
    {"resource-unit-type", kError, "a kind of cost other than time or item", ResourceUnitType},
    {"number-not-finite", kError, "a number that is infinite or none", NumberNotFinite},
    {"unit-blank", kWarning, "no name of the unit", UnitBlank},
    {"unit-year", kWarning, "another year in the unit's name than in the file's", UnitYear},
    {"source-note-missing", kWarning, "no source of the resources' costs", SourceNoteMissing},
    {"goals-none", kWarning, "no management goal", GoalsNone},
    {"goal-blank", kWarning, "a goal without heading or text", GoalBlank},
    {"resources-none", kWarning, "no suppression resource", ResourcesNone},
    {"zones-none", kWarning, "no zone", ZonesNone},
    {"resource-duplicate-name", kWarning, "a resource with the name of an earlier one",
     ResourceDuplicateName},
    {"resource-cost-zero", kWarning, "a resource that costs nothing", ResourceCostZero},
    {"cost-none", kWarning, "a zone without costs", CostNone},
    {"cost-zero", kWarning, "a class with a bound and without a cost", CostZero},
    {"cost-rises", kWarning, "a cost per acre above that of smaller fires", CostRises},
    {"nvc-all-zero", kWarning, "a location with nothing but 0", NvcAllZero},
    {"nvc-same-as", kWarning, "a location with the values of an earlier one", NvcSameAs},
    {"nvc-gain-high", kWarning, "a gain at the highest intensity", NvcGainHigh},
    {"nvc-improves", kWarning, "a total that gets better from FIL 3 on", NvcImproves},
    {"nvc-sign-flip", kWarning, "values that change their sign more than once", NvcSignFlip},
    {"nvc-slip", kWarning, "a value that lacks a digit or has one too many", NvcSlip},
    {"outlier", kWarning, "an amount far from those of other files", Outlier},
    {"cost-no-open-class", kNote, "no class for all larger fires", CostNoOpenClass},
    {"stale-locations", kNote, "values of locations that were dropped", StaleLocations},
    {"unchanged-zone", kNote, "a zone with last year's figures (--previous)", UnchangedZone},
};

}  // namespace

void Findings::Add(Place place, FoundValue value, std::string text, std::string advice) {
    found_.push_back({.rule = rule_->name,
                      .severity = rule_->severity,
                      .place = std::move(place),
                      .value = std::move(value),
                      .text = std::move(text),
                      .advice = std::move(advice)});
}

std::span<const Rule> Rules() {
    return kRules;
}

bool IsRule(std::string_view name) {
    return std::any_of(std::begin(kRules), std::end(kRules),
                       [name](const Rule& rule) { return rule.name == name; });
}

std::vector<Finding> Check(const Subject& subject, const std::set<std::string>& ignored) {
    Findings findings;
    for (const Rule& rule : kRules) {
        if (!ignored.contains(std::string(rule.name))) {
            findings.Begin(rule);
            rule.look(subject, findings);
        }
    }
    return findings.Take();
}

}  // namespace review
