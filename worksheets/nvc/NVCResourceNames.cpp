#include "worksheets/nvc/NVCResourceNames.h"

#include <QCoreApplication>
#include <QStringList>

#include <algorithm>

#include "datafile/FieldNames.h"
#include "datafile/FieldReaders.h"
#include "datafile/PrepDatatables.h"
#include "platform/RuntimeError.h"

namespace worksheets {

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

bool NVCResourceNames::SaveName(int resource) const {
    tblNVCResources->Seek("=", {resource});
    if (tblNVCResources->NoMatch()) {
        return false;
    }
    tblNVCResources->Edit();
    tblNVCResources->SetField(FieldNames::kResourceName, Name(resource));
    tblNVCResources->Update();
    return true;
}

void NVCResourceNames::Save() {
    const bool changed = std::any_of(entries_.begin(), entries_.end(),
                                     [](const Entry& entry) { return entry.changed; });
    if (!changed) {
        return;
    }
    dao::Transaction transaction = PrepDatatables::Begin();
    QStringList missing;
    for (int resource = 1; resource <= ZoneKeys::kResources; ++resource) {
        if (entries_[Position(resource)].changed && !SaveName(resource)) {
            missing += QString::number(resource);
        }
    }
    transaction.Commit();
    for (Entry& entry : entries_) {
        entry.changed = false;
    }
    if (!missing.isEmpty()) {
        throw platform::RuntimeError(
            platform::kNoCurrentRecord,
            QCoreApplication::translate("NVCResourceNames",
                                        "The data file has no row for the name of resource number "
                                        "%1, so the name cannot be stored.")
                .arg(missing.join(QStringLiteral(", "))));
    }
}

}  // namespace worksheets
