// The rules, one function each; `check.cpp` holds their table.
#pragma once

#include "review/check.h"

namespace review {

// Zones and their locations.
void ZonesNone(const Subject& subject, Findings& findings);
void ZoneBlankName(const Subject& subject, Findings& findings);
void ZoneDuplicateName(const Subject& subject, Findings& findings);
void ZoneRlCount(const Subject& subject, Findings& findings);
void StaleLocations(const Subject& subject, Findings& findings);
void UnchangedZone(const Subject& subject, Findings& findings);

// Costs per acre.
void CostMissingClass(const Subject& subject, Findings& findings);
void CostOrder(const Subject& subject, Findings& findings);
void CostNegative(const Subject& subject, Findings& findings);
void CostNone(const Subject& subject, Findings& findings);
void CostZero(const Subject& subject, Findings& findings);
void CostRises(const Subject& subject, Findings& findings);
void CostNoOpenClass(const Subject& subject, Findings& findings);

// Net value change.
void NvcMissingRow(const Subject& subject, Findings& findings);
void NvcAllZero(const Subject& subject, Findings& findings);
void NvcSameAs(const Subject& subject, Findings& findings);
void NvcGainHigh(const Subject& subject, Findings& findings);
void NvcImproves(const Subject& subject, Findings& findings);
void NvcSignFlip(const Subject& subject, Findings& findings);
void NvcSlip(const Subject& subject, Findings& findings);
void Outlier(const Subject& subject, Findings& findings);

// The unit, its goals and its resources.
void UnitBlank(const Subject& subject, Findings& findings);
void UnitYear(const Subject& subject, Findings& findings);
void GoalsNone(const Subject& subject, Findings& findings);
void GoalBlank(const Subject& subject, Findings& findings);
void ResourcesNone(const Subject& subject, Findings& findings);
void ResourceSequence(const Subject& subject, Findings& findings);
void ResourceBlankName(const Subject& subject, Findings& findings);
void ResourceDuplicateName(const Subject& subject, Findings& findings);
void ResourceUnitType(const Subject& subject, Findings& findings);
void ResourceCostZero(const Subject& subject, Findings& findings);
void SourceNoteMissing(const Subject& subject, Findings& findings);
// Values, costs and resources alike.
void NumberNotFinite(const Subject& subject, Findings& findings);

}  // namespace review
