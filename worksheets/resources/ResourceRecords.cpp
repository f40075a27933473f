#include "worksheets/resources/ResourceRecords.h"

#include "datafile/FieldNames.h"
#include "datafile/FieldReaders.h"
#include "datafile/PrepDatatables.h"
#include "platform/dao/IndexScope.h"

using FieldReaders::LongField;
using FieldReaders::SingleField;
using FieldReaders::TextField;
using PrepDatatables::tblSRMasterList;
using worksheets::Resource;

namespace ResourceRecords {

namespace {

Resource Current() {
    Resource resource;
    resource.key = LongField(*tblSRMasterList, FieldNames::kKey);
    if (!tblSRMasterList->IsNull(FieldNames::kSequence)) {
        resource.sequence = LongField(*tblSRMasterList, FieldNames::kSequence);
    }
    resource.longName = TextField(*tblSRMasterList, FieldNames::kLongName);
    resource.shortName = TextField(*tblSRMasterList, FieldNames::kShortName);
    resource.units = TextField(*tblSRMasterList, FieldNames::kUnits);
    resource.unitType = TextField(*tblSRMasterList, FieldNames::kUnitType);
    if (!tblSRMasterList->IsNull(FieldNames::kCost)) {
        resource.cost = SingleField(*tblSRMasterList, FieldNames::kCost);
    }
    return resource;
}

// Compares the current record, stopping at the first difference.
bool Differs(const Resource& resource) {
    return LongField(*tblSRMasterList, FieldNames::kSequence) != resource.sequence.value_or(0) ||
           TextField(*tblSRMasterList, FieldNames::kLongName) != resource.longName ||
           TextField(*tblSRMasterList, FieldNames::kShortName) != resource.shortName ||
           TextField(*tblSRMasterList, FieldNames::kUnits) != resource.units ||
           SingleField(*tblSRMasterList, FieldNames::kCost) != resource.cost.value_or(0);
}

QVariant OrNull(const auto& number) {
    return number ? QVariant(*number) : QVariant();
}

void SetTextsAndCost(const Resource& resource) {
    tblSRMasterList->SetField(FieldNames::kLongName, resource.longName);
    tblSRMasterList->SetField(FieldNames::kShortName, resource.shortName);
    tblSRMasterList->SetField(FieldNames::kUnits, resource.units);
    tblSRMasterList->SetField(FieldNames::kCost, OrNull(resource.cost));
}

}  // namespace

std::vector<Resource> All() {
    std::vector<Resource> resources;
    if (tblSRMasterList->RecordCount() == 0) {
        return resources;
    }
    const dao::IndexScope inSequence(*tblSRMasterList, FieldNames::kSequence);
    for (tblSRMasterList->MoveFirst(); !tblSRMasterList->EndOfFile(); tblSRMasterList->MoveNext()) {
        resources.push_back(Current());
    }
    return resources;
}

std::int32_t Add(const Resource& resource) {
    const std::int32_t key = FieldReaders::BeginNew(*tblSRMasterList);
    SetTextsAndCost(resource);
    tblSRMasterList->SetField(FieldNames::kUnitType, resource.unitType);
    tblSRMasterList->Update();
    return key;
}

void Restore(const Resource& resource) {
    tblSRMasterList->AddNew();
    tblSRMasterList->SetField(FieldNames::kKey, resource.key);
    tblSRMasterList->SetField(FieldNames::kSequence, OrNull(resource.sequence));
    SetTextsAndCost(resource);
    tblSRMasterList->SetField(FieldNames::kUnitType, resource.unitType);
    tblSRMasterList->Update();
}

bool Save(const Resource& resource) {
    tblSRMasterList->Seek("=", {resource.key});
    if (!tblSRMasterList->NoMatch() && !Differs(resource)) {
        return false;
    }
    tblSRMasterList->Edit();
    tblSRMasterList->SetField(FieldNames::kSequence, OrNull(resource.sequence));
    SetTextsAndCost(resource);
    tblSRMasterList->Update();
    return true;
}

void SaveSequence(const Resource& resource) {
    tblSRMasterList->Seek("=", {resource.key});
    if (tblSRMasterList->NoMatch() || !resource.sequence ||
        LongField(*tblSRMasterList, FieldNames::kSequence) == *resource.sequence) {
        return;
    }
    tblSRMasterList->Edit();
    tblSRMasterList->SetField(FieldNames::kSequence, *resource.sequence);
    tblSRMasterList->Update();
}

bool Exists(std::int32_t key) {
    tblSRMasterList->Seek("=", {key});
    return !tblSRMasterList->NoMatch();
}

void Delete(std::int32_t key) {
    tblSRMasterList->Seek("=", {key});
    tblSRMasterList->Delete();
}

}  // namespace ResourceRecords
