#include "worksheets/nvc/NVCResourceNames.h"

#include "datafile/FieldNames.h"
#include "datafile/FieldReaders.h"
#include "datafile/PrepDatatables.h"
#include "platform/RuntimeError.h"

using PrepDatatables::tblNVCResources;

namespace {

std::size_t Position(int resource) {
    if (resource < 1 || resource > ZoneKeys::kResources) {
        throw platform::RuntimeError(platform::kSubscriptOutOfRange,
                                     QStringLiteral("Subscript out of range"));
    }
    return std::size_t(resource - 1);
}

}  // namespace

void NVCResourceNames::Load() {
    for (int resource = 1; resource <= ZoneKeys::kResources; ++resource) {
        tblNVCResources->Seek("=", {resource});
        entries_[Position(resource)] = {
            FieldReaders::TextField(*tblNVCResources, FieldNames::kResourceName), false};
    }
}

const QString& NVCResourceNames::Name(int resource) const {
    return entries_[Position(resource)].name;
}

void NVCResourceNames::SetName(int resource, const QString& name) {
    Entry& entry = entries_[Position(resource)];
    if (entry.name != name) {
        entry = {name, true};
    }
}

void NVCResourceNames::Save() {
    for (int resource = 1; resource <= ZoneKeys::kResources; ++resource) {
        Entry& entry = entries_[Position(resource)];
        if (!entry.changed) {
            continue;
        }
        tblNVCResources->Seek("=", {resource});
        tblNVCResources->Edit();
        tblNVCResources->SetField(FieldNames::kResourceName, entry.name);
        tblNVCResources->Update();
        entry.changed = false;
    }
}
