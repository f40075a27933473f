#include "worksheets/cost/c35AACTable.h"

#include <QCoreApplication>
#include <QStringList>

#include "base/u91Trace.h"
#include "datafile/FieldNames.h"
#include "datafile/FieldReaders.h"
#include "datafile/PrepDatatables.h"
#include "platform/RuntimeError.h"
#include "platform/text/Numbers.h"
#include "worksheets/MissingRows.h"

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
    u91Trace::Procedure(QStringLiteral("c35AACTable.TopSize"));
    return Class(index).topSize;
}

void c35AACTable::TopSize(int index, float acres) {
    u91Trace::Procedure(QStringLiteral("c35AACTable.TopSize"));
    classes_[Position(index)].topSize = acres;
    changed_ = true;
}

float c35AACTable::Cost(int index) const {
    u91Trace::Procedure(QStringLiteral("c35AACTable.Cost"));
    return Class(index).cost;
}

void c35AACTable::Cost(int index, float dollars) {
    u91Trace::Procedure(QStringLiteral("c35AACTable.Cost"));
    classes_[Position(index)].cost = dollars;
    changed_ = true;
}

const c35AACTable::SizeClass& c35AACTable::Class(int index) const {
    return classes_[Position(index)];
}

float c35AACTable::CostForSize(float acres) const {
    u91Trace::Procedure(QStringLiteral("c35AACTable.CostForSize"));
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
        const float cost = Class(index).cost;
        if (cost <= 0) {
            continue;
        }
        if (Class(index).topSize > 0 || index == 1 || Class(index - 1).topSize > 0) {
            return cost;
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

bool c35AACTable::SaveRow(int index) const {
    tblSuppressionPerAcreCost->Seek("=", {zoneKey_, index});
    if (tblSuppressionPerAcreCost->NoMatch()) {
        return false;
    }
    tblSuppressionPerAcreCost->Edit();
    tblSuppressionPerAcreCost->SetField(FieldNames::kTopSize, Class(index).topSize);
    tblSuppressionPerAcreCost->SetField(FieldNames::kCost, Class(index).cost);
    tblSuppressionPerAcreCost->Update();
    return true;
}

void c35AACTable::SaveChanges() {
    u91Trace::Procedure(QStringLiteral("c35AACTable.SaveChanges"));
    if (!changed_) {
        return;
    }
    const QStringList missing =
        MissingRows::StoreOthers(kCostClasses, [this](int index) { return SaveRow(index); });
    changed_ = false;
    if (!missing.isEmpty()) {
        throw platform::RuntimeError(
            platform::kNoCurrentRecord,
            QCoreApplication::translate(
                "c35AACTable",
                "The data file has no row of this zone for class %1. Sizes and costs typed there "
                "cannot be stored; all others are stored.")
                .arg(missing.join(QStringLiteral(", "))));
    }
}
