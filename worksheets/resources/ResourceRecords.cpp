#include "worksheets/resources/ResourceRecords.h"

#include "datafile/FieldNames.h"
#include "datafile/FieldReaders.h"
#include "datafile/PrepDatatables.h"

using FieldReaders::LongField;
using FieldReaders::SingleField;
using FieldReaders::TextField;
using PrepDatatables::tblSRMasterList;

namespace {

// Compares the current record, stopping at the first difference.
bool Differs(const Resource& resource) {
    return LongField(*tblSRMasterList, FieldNames::kSequence) != resource.sequence ||
           TextField(*tblSRMasterList, FieldNames::kLongName) != resource.longName ||
           TextField(*tblSRMasterList, FieldNames::kShortName) != resource.shortName ||
           TextField(*tblSRMasterList, FieldNames::kUnits) != resource.units ||
           SingleField(*tblSRMasterList, FieldNames::kCost) != resource.cost;
}

void SetTextsAndCost(const Resource& resource) {
    tblSRMasterList->SetField(FieldNames::kLongName, resource.longName);
    tblSRMasterList->SetField(FieldNames::kShortName, resource.shortName);
    tblSRMasterList->SetField(FieldNames::kUnits, resource.units);
    tblSRMasterList->SetField(FieldNames::kCost, resource.cost);
}

}  // namespace

namespace ResourceRecords {

std::int32_t Add(const Resource& resource, const QString& unitType) {
    tblSRMasterList->AddNew();
    SetTextsAndCost(resource);
    tblSRMasterList->SetField(FieldNames::kUnitType, unitType);
    tblSRMasterList->Update();
    tblSRMasterList->MoveLast();
    return tblSRMasterList->Long(FieldNames::kKey);
}

bool Save(const Resource& resource) {
    tblSRMasterList->Seek("=", {resource.key});
    if (!tblSRMasterList->NoMatch() && !Differs(resource)) {
        return false;
    }
    tblSRMasterList->Edit();
    tblSRMasterList->SetField(FieldNames::kSequence, resource.sequence);
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
