#include "worksheets/resources/ResourceRecords.h"

#include "datafile/FieldReaders.h"
#include "datafile/PrepDatatables.h"

using FieldReaders::LongField;
using FieldReaders::SingleField;
using FieldReaders::TextField;
using PrepDatatables::tblSRMasterList;

namespace {

const QString kKey = QStringLiteral("Key");
const QString kSequence = QStringLiteral("Sequence");
const QString kLongName = QStringLiteral("LongName");
const QString kShortName = QStringLiteral("ShortName");
const QString kUnits = QStringLiteral("Units");
const QString kUnitType = QStringLiteral("UnitType");
const QString kCost = QStringLiteral("Cost");

// Compares the current record, stopping at the first difference.
bool Differs(const Resource& resource) {
    return LongField(*tblSRMasterList, kSequence) != resource.sequence ||
           TextField(*tblSRMasterList, kLongName) != resource.longName ||
           TextField(*tblSRMasterList, kShortName) != resource.shortName ||
           TextField(*tblSRMasterList, kUnits) != resource.units ||
           SingleField(*tblSRMasterList, kCost) != resource.cost;
}

void SetTextsAndCost(const Resource& resource) {
    tblSRMasterList->SetField(kLongName, resource.longName);
    tblSRMasterList->SetField(kShortName, resource.shortName);
    tblSRMasterList->SetField(kUnits, resource.units);
    tblSRMasterList->SetField(kCost, resource.cost);
}

}  // namespace

namespace ResourceRecords {

std::int32_t Add(const Resource& resource, const QString& unitType) {
    tblSRMasterList->AddNew();
    SetTextsAndCost(resource);
    tblSRMasterList->SetField(kUnitType, unitType);
    tblSRMasterList->Update();
    tblSRMasterList->MoveLast();
    return tblSRMasterList->Long(kKey);
}

bool Save(const Resource& resource) {
    tblSRMasterList->Seek("=", {resource.key});
    if (!tblSRMasterList->NoMatch() && !Differs(resource)) {
        return false;
    }
    tblSRMasterList->Edit();
    tblSRMasterList->SetField(kSequence, resource.sequence);
    SetTextsAndCost(resource);
    tblSRMasterList->Update();
    return true;
}

bool Delete(std::int32_t key) {
    tblSRMasterList->Seek("=", {key});
    if (tblSRMasterList->NoMatch()) {
        return false;
    }
    tblSRMasterList->Delete();
    return true;
}

}  // namespace ResourceRecords
