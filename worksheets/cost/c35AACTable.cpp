#include "worksheets/cost/c35AACTable.h"

#include "datafile/FieldNames.h"
#include "datafile/FieldReaders.h"
#include "datafile/PrepDatatables.h"
#include "platform/FirstError.h"
#include "platform/RuntimeError.h"
#include "platform/text/Numbers.h"
#include "shell/u91Trace.h"

using PrepDatatables::tblSuppressionPerAcreCost;
using ZoneKeys::kCostClasses;

std::size_t c35AACTable::Position(int index) {
    if (index < 1 || index > kCostClasses) {
        throw platform::RuntimeError(platform::kSubscriptOutOfRange,
                                     QStringLiteral("Subscript out of range"));
    }
    return std::size_t(index - 1);
}

float c35AACTable::TopSize(int index) const {
    return classes_[Position(index)].topSize;
}

void c35AACTable::TopSize(int index, float acres) {
    classes_[Position(index)].topSize = acres;
    changed_ = true;
}

float c35AACTable::Cost(int index) const {
    return classes_[Position(index)].cost;
}

void c35AACTable::Cost(int index, float dollars) {
    classes_[Position(index)].cost = dollars;
    changed_ = true;
}

float c35AACTable::CostForSize(float acres) const {
    for (const SizeClass& sizeClass : classes_) {
        if (acres <= sizeClass.topSize) {
            return sizeClass.cost;
        }
    }
    return CostBeyondBounds();
}

// The open-ended class, else the last bounded one: from the end, the first class with a cost that
// has a bound itself or follows one that has.
float c35AACTable::CostBeyondBounds() const {
    for (int index = kCostClasses; index >= 1; --index) {
        if (Cost(index) <= 0) {
            continue;
        }
        if (TopSize(index) > 0 || index == 1 || TopSize(index - 1) > 0) {
            return Cost(index);
        }
    }
    return 0;
}

void c35AACTable::Initialize(std::int32_t zoneKey) {
    u91Trace::Procedure(QStringLiteral("c35AACTable.Initialize ") + platform::Str(zoneKey));
    zoneKey_ = zoneKey;
    for (int index = 1; index <= kCostClasses; ++index) {
        tblSuppressionPerAcreCost->Seek("=", {zoneKey, index});
        classes_[Position(index)] = {
            FieldReaders::SingleField(*tblSuppressionPerAcreCost, FieldNames::kTopSize),
            FieldReaders::SingleField(*tblSuppressionPerAcreCost, FieldNames::kCost)};
    }
}

void c35AACTable::SaveRow(int index) const {
    tblSuppressionPerAcreCost->Seek("=", {zoneKey_, index});
    tblSuppressionPerAcreCost->Edit();
    tblSuppressionPerAcreCost->SetField(FieldNames::kTopSize, TopSize(index));
    tblSuppressionPerAcreCost->SetField(FieldNames::kCost, Cost(index));
    tblSuppressionPerAcreCost->Update();
}

void c35AACTable::SaveChanges() {
    u91Trace::Procedure(QStringLiteral("c35AACTable.SaveChanges"));
    if (!changed_) {
        return;
    }
    platform::FirstError refused;
    for (int index = 1; index <= kCostClasses; ++index) {
        refused.Try([&] { SaveRow(index); });
    }
    refused.Rethrow();
    changed_ = false;
}
