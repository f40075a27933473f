#include "worksheets/zones/ZoneRecords.h"

#include <QCoreApplication>

#include <algorithm>

#include "datafile/FieldReaders.h"
#include "datafile/PrepDatatables.h"
#include "datafile/ZoneKeys.h"
#include "platform/RuntimeError.h"
#include "platform/text/Numbers.h"
#include "shell/u91Trace.h"

using PrepDatatables::tblFMZList;
using PrepDatatables::tblNVCPerAcre;
using PrepDatatables::tblSuppressionPerAcreCost;

namespace {

const QString kKey = QStringLiteral("Key");
const QString kName = QStringLiteral("Name");
const QString kLocations = QStringLiteral("RLCount");

QString Translate(const char* text) {
    return QCoreApplication::translate("ZoneRecords", text);
}

[[noreturn]] void RefuseKeys(const QString& otherZone) {
    throw platform::RuntimeError(
        platform::kDuplicateKey,
        Translate("The representative locations would take the place of those of the zone "
                  "\"%1\". Nothing was changed.")
            .arg(otherZone));
}

void RequireSensible(std::int32_t locations) {
    if (locations > ZoneRecords::kMostLocations) {
        throw platform::RuntimeError(
            platform::kOverflow, Translate("A zone can have at most %1 representative locations.")
                                     .arg(ZoneRecords::kMostLocations));
    }
}

// Refuses the locations `first` to `last` of a zone when another zone of the list owns one of
// their keys.
void RequireFreeKeys(std::int32_t zoneKey, std::int32_t first, std::int32_t last) {
    const std::int64_t lowest = std::int64_t{zoneKey} * 100 + first;
    const std::int64_t highest = std::int64_t{zoneKey} * 100 + last;
    for (tblFMZList->MoveFirst(); !tblFMZList->EndOfFile(); tblFMZList->MoveNext()) {
        const std::int32_t other = tblFMZList->Long(kKey);
        const std::int64_t from = std::int64_t{other} * 100 + 1;
        const std::int64_t to = std::int64_t{other} * 100 + tblFMZList->Long(kLocations);
        if (other != zoneKey && from <= highest && lowest <= to) {
            RefuseKeys(tblFMZList->Text(kName));
        }
    }
}

void RequireNoRows(dao::Recordset& table, std::int32_t first, std::int32_t second) {
    table.Seek("=", {first, second});
    if (!table.NoMatch()) {
        throw platform::RuntimeError(
            platform::kDuplicateKey,
            Translate("The new zone's rows are in the file already. The zone was not added."));
    }
}

// A new zone must find none of its rows in the file: only then may all of them be taken back.
void RequireNoDependentRows(std::int32_t zoneKey, std::int32_t locations) {
    for (int sequence = 1; sequence <= ZoneKeys::kCostClasses; ++sequence) {
        RequireNoRows(*tblSuppressionPerAcreCost, zoneKey, sequence);
    }
    for (std::int32_t location = 1; location <= locations; ++location) {
        for (int resource = 1; resource <= ZoneKeys::kResources; ++resource) {
            RequireNoRows(*tblNVCPerAcre, ZoneKeys::FMZRLKey(zoneKey, location), resource);
        }
    }
}

void DeleteRow(dao::Recordset& table, std::int32_t first, std::int32_t second) {
    table.Seek("=", {first, second});
    if (!table.NoMatch()) {
        table.Delete();
    }
}

void TakeBackDependentRows(std::int32_t zoneKey, std::int32_t locations) {
    for (int sequence = 1; sequence <= ZoneKeys::kCostClasses; ++sequence) {
        DeleteRow(*tblSuppressionPerAcreCost, zoneKey, sequence);
    }
    for (std::int32_t location = 1; location <= locations; ++location) {
        for (int resource = 1; resource <= ZoneKeys::kResources; ++resource) {
            DeleteRow(*tblNVCPerAcre, ZoneKeys::FMZRLKey(zoneKey, location), resource);
        }
    }
}

void TakeBackZone(std::int32_t zoneKey) {
    tblFMZList->Seek("=", {zoneKey});
    if (!tblFMZList->NoMatch()) {
        tblFMZList->Delete();
    }
}

std::int32_t AddZone(const QString& name, std::int32_t locations) {
    tblFMZList->AddNew();
    tblFMZList->SetField(kName, name);
    tblFMZList->SetField(kLocations, locations);
    tblFMZList->Update();
    tblFMZList->MoveLast();
    return tblFMZList->Long(kKey);
}

void AddDependentRows(std::int32_t zoneKey, std::int32_t locations) {
    ZoneKeys::AddCostRows(zoneKey);
    for (std::int32_t location = 1; location <= locations; ++location) {
        ZoneKeys::AddLocationRows(zoneKey, location, false);
    }
}

void WarnSmaller(const QString& name) {
    u91Trace::Warning(QStringLiteral("New RLCount is smaller for FMZ ") + name);
}

void Grow(std::int32_t zoneKey, const QString& name, std::int32_t from, std::int32_t to) {
    RequireSensible(to);
    RequireFreeKeys(zoneKey, from, to);
    int kept = 0;
    for (std::int32_t location = from; location <= to; ++location) {
        kept += ZoneKeys::AddLocationRows(zoneKey, location, true);
    }
    if (kept > 0) {
        u91Trace::Warning(QStringLiteral("Kept NVC rows of an earlier RLCount for FMZ ") + name);
    }
}

}  // namespace

namespace ZoneRecords {

std::int32_t LocationsFromText(const QString& text) {
    return platform::CLng(platform::Val(text));
}

std::int32_t Create(const QString& name, std::int32_t locations) {
    if (locations < 1) {
        WarnSmaller(name);
        locations = 1;
    }
    RequireSensible(locations);
    const std::int32_t zoneKey = AddZone(name, locations);
    try {
        RequireFreeKeys(zoneKey, 1, locations);
        RequireNoDependentRows(zoneKey, locations);
    } catch (...) {
        TakeBackZone(zoneKey);
        throw;
    }
    try {
        AddDependentRows(zoneKey, locations);
    } catch (...) {
        TakeBackDependentRows(zoneKey, locations);
        TakeBackZone(zoneKey);
        throw;
    }
    return zoneKey;
}

std::int32_t Change(std::int32_t zoneKey, const QString& name, std::int32_t locations) {
    tblFMZList->Seek("=", {zoneKey});
    if (tblFMZList->NoMatch()) {
        tblFMZList->Edit();  // no current record: refused before any row is added
    }
    const std::int32_t stored = FieldReaders::LongField(*tblFMZList, kLocations);
    const bool renamed = FieldReaders::TextField(*tblFMZList, kName) != name;
    if (locations < stored || (locations < 1 && locations != stored)) {
        WarnSmaller(name);
        locations = std::max(locations, 1);
    }
    if (locations > stored) {
        Grow(zoneKey, name, std::max(stored, 0) + 1, locations);
        tblFMZList->Seek("=", {zoneKey});
    }
    if (renamed || locations != stored) {
        tblFMZList->Edit();
        tblFMZList->SetField(kName, name);
        tblFMZList->SetField(kLocations, locations);
        tblFMZList->Update();
    }
    return locations;
}

}  // namespace ZoneRecords
