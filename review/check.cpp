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
    {"zone-blank-name", kError, ZoneBlankName},
    {"zone-duplicate-name", kError, ZoneDuplicateName},
    {"zone-rl-count", kError, ZoneRlCount},
    {"cost-missing-class", kError, CostMissingClass},
    {"cost-order", kError, CostOrder},
    {"cost-negative", kError, CostNegative},
    {"nvc-missing-row", kError, NvcMissingRow},
    {"resource-sequence", kError, ResourceSequence},
    {"resource-blank-name", kError, ResourceBlankName},
    {"resource-unit-type", kError, ResourceUnitType},
    {"number-not-finite", kError, NumberNotFinite},
    {"unit-blank", kWarning, UnitBlank},
    {"unit-year", kWarning, UnitYear},
    {"source-note-missing", kWarning, SourceNoteMissing},
    {"goals-none", kWarning, GoalsNone},
    {"goal-blank", kWarning, GoalBlank},
    {"resources-none", kWarning, ResourcesNone},
    {"zones-none", kWarning, ZonesNone},
    {"resource-duplicate-name", kWarning, ResourceDuplicateName},
    {"resource-cost-zero", kWarning, ResourceCostZero},
    {"cost-none", kWarning, CostNone},
    {"cost-zero", kWarning, CostZero},
    {"cost-rises", kWarning, CostRises},
    {"nvc-all-zero", kWarning, NvcAllZero},
    {"nvc-same-as", kWarning, NvcSameAs},
    {"nvc-gain-high", kWarning, NvcGainHigh},
    {"nvc-improves", kWarning, NvcImproves},
    {"nvc-sign-flip", kWarning, NvcSignFlip},
    {"nvc-slip", kWarning, NvcSlip},
    {"outlier", kWarning, Outlier},
    {"cost-no-open-class", kNote, CostNoOpenClass},
    {"stale-locations", kNote, StaleLocations},
    {"unchanged-zone", kNote, UnchangedZone},
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
