#include "worksheets/zones/ZoneRecords.h"

#include <QCoreApplication>

#include <algorithm>
#include <set>
#include <utility>

#include "base/u91Trace.h"
#include "datafile/FieldNames.h"
#include "datafile/FieldReaders.h"
#include "datafile/PrepDatatables.h"
#include "platform/RuntimeError.h"

using PrepDatatables::tblFMZList;
using PrepDatatables::tblNVCPerAcre;
using PrepDatatables::tblSuppressionPerAcreCost;
using worksheets::Zone;
using ZoneKeys::FMZRLKey;
using ZoneKeys::kCostClasses;
using ZoneKeys::kMostLocations;
using ZoneKeys::kResources;
using ZoneKeys::kStep;
using ZoneKeys::kZonesReached;

namespace ZoneRecords {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(ZoneRecords)
};

QString NameOf(const QString& name, std::int32_t key) {
    return name.isEmpty() ? Texts::tr("The zone without a name (key %1)").arg(key) : name;
}

QString NewZone() {
    return Texts::tr("A new zone");
}
QString GoneZone() {
    return Texts::tr("a zone that is gone");
}

void WarnSmaller(const QString& name) {
    u91Trace::Warning(QStringLiteral("New RLCount is smaller for FMZ ") + name);
}

Zone Current() {
    return {.key = FieldReaders::LongField(*tblFMZList, FieldNames::kKey),
            .name = FieldReaders::TextField(*tblFMZList, FieldNames::kName),
            .locations = FieldReaders::LongField(*tblFMZList, FieldNames::kRLCount)};
}

// The other zone to which the rows at this key belong: the one whose key they spell, or one before
// it with so many locations that they reach this far.
std::optional<Zone> OwnerOf(std::int32_t fmzRLKey, std::int32_t besides) {
    for (std::int32_t back = 0; back <= kZonesReached; ++back) {
        const std::int32_t key = fmzRLKey / kStep - back;
        const std::int32_t location = fmzRLKey - key * kStep;
        const auto zone = key == besides ? std::nullopt : Find(key);
        if (zone && location > 0 && (back == 0 || zone->locations >= location)) {
            return zone;
        }
    }
    return std::nullopt;
}

// The rows from one key to another that are in the file: key and resource.
using RowKeys = std::set<std::pair<std::int32_t, std::int32_t>>;

RowKeys RowsBetween(std::int32_t first, std::int32_t last) {
    RowKeys rows;
    for (tblNVCPerAcre->Seek(">=", {first});
         !tblNVCPerAcre->NoMatch() && !tblNVCPerAcre->EndOfFile(); tblNVCPerAcre->MoveNext()) {
        const std::int32_t key = tblNVCPerAcre->Long(FieldNames::kFMZRLKey);
        if (key > last) {
            break;
        }
        rows.emplace(key, tblNVCPerAcre->Long(FieldNames::kResourceNumber));
    }
    return rows;
}

bool HasCostRows(std::int32_t zoneKey) {
    tblSuppressionPerAcreCost->Seek("=", {zoneKey});
    return !tblSuppressionPerAcreCost->NoMatch();
}

[[noreturn]] void RefuseFor(const QString& name, const QString& other) {
    throw platform::RuntimeError(
        platform::kDuplicateKey,
        Texts::tr("%1 has no room for so many representative locations: their rows would lie among "
                  "those of %2. A zone has room for %3 when another one follows.")
            .arg(name, other)
            .arg(kStep - 1));
}

void AddCostRow(std::int32_t zoneKey, const Dependents::Cost& row) {
    tblSuppressionPerAcreCost->AddNew();
    tblSuppressionPerAcreCost->SetField(FieldNames::kFMZKey, zoneKey);
    tblSuppressionPerAcreCost->SetField(FieldNames::kSequence, row.sequence);
    if (row.topSize.isValid()) {
        tblSuppressionPerAcreCost->SetField(FieldNames::kTopSize, row.topSize);
    }
    if (row.cost.isValid()) {
        tblSuppressionPerAcreCost->SetField(FieldNames::kCost, row.cost);
    }
    tblSuppressionPerAcreCost->Update();
}

const QString& Level(std::size_t level) {
    static const std::array<QString, ZoneKeys::kFilLevels> kNames{
        QStringLiteral("FIL1"), QStringLiteral("FIL2"), QStringLiteral("FIL3"),
        QStringLiteral("FIL4"), QStringLiteral("FIL5"), QStringLiteral("FIL6")};
    return kNames[level];
}

void AddValueRow(const Dependents::Values& row) {
    tblNVCPerAcre->AddNew();
    tblNVCPerAcre->SetField(FieldNames::kFMZRLKey, row.fmzRLKey);
    tblNVCPerAcre->SetField(FieldNames::kResourceNumber, row.resource);
    for (std::size_t level = 0; level < row.levels.size(); ++level) {
        if (row.levels[level].isValid()) {
            tblNVCPerAcre->SetField(Level(level), row.levels[level]);
        }
    }
    tblNVCPerAcre->Update();
}

// Adds the rows of these locations that are not there yet; gives the number of those that were.
int AddLocations(std::int32_t zoneKey, std::int32_t first, std::int32_t last) {
    const RowKeys there = RowsBetween(FMZRLKey(zoneKey, first), FMZRLKey(zoneKey, last));
    for (std::int32_t location = first; location <= last; ++location) {
        const std::int32_t key = FMZRLKey(zoneKey, location);
        for (std::int32_t resource = 1; resource <= kResources; ++resource) {
            if (there.count({key, resource}) == 0) {
                AddValueRow({.fmzRLKey = key, .resource = resource, .levels = {}});
            }
        }
    }
    return int(there.size());
}

void SetZone(const QString& name, std::int32_t locations) {
    tblFMZList->SetField(FieldNames::kName, name);
    tblFMZList->SetField(FieldNames::kRLCount, locations);
    tblFMZList->Update();
}

std::int32_t AddZone(const QString& name, std::int32_t locations) {
    const std::int32_t key = FieldReaders::BeginNew(*tblFMZList);
    SetZone(name, locations);
    return key;
}

// No current record (3021) where the file has no such zone.
Zone Stored(std::int32_t key) {
    if (const auto zone = Find(key)) {
        return *zone;
    }
    throw platform::RuntimeError(platform::kNoCurrentRecord, QStringLiteral("No current record."));
}

void Write(const Zone& zone) {
    tblFMZList->Seek("=", {zone.key});
    tblFMZList->Edit();
    SetZone(zone.name, zone.locations);
}

void DeleteZone(std::int32_t key) {
    tblFMZList->Seek("=", {key});
    tblFMZList->Delete();
}

bool KeysAreFree(std::int32_t zoneKey, std::int32_t locations) {
    return !HasCostRows(zoneKey) &&
           RowsBetween(FMZRLKey(zoneKey, 1), FMZRLKey(zoneKey, locations)).empty();
}

// Numbers come from the table's counter, which passes over those that it has given once.
std::int32_t AddZoneWithFreeKeys(const QString& name, std::int32_t locations) {
    constexpr int kMostTries = 2 * kZonesReached;
    for (int tries = 0;; ++tries) {
        const std::int32_t key = AddZone(name, locations);
        if (KeysAreFree(key, locations)) {
            return key;
        }
        if (tries == kMostTries) {
            const auto owner = OwnerOf(FMZRLKey(key, 1), key);
            RefuseFor(NewZone(), owner ? NameOf(owner->name, owner->key) : GoneZone());
        }
        DeleteZone(key);
    }
}

void CollectValues(Dependents& dependents, std::int32_t first, std::int32_t last) {
    for (const auto& [key, resource] : RowsBetween(first, last)) {
        tblNVCPerAcre->Seek("=", {key, resource});
        Dependents::Values row{.fmzRLKey = key, .resource = resource, .levels = {}};
        for (std::size_t level = 0; level < row.levels.size(); ++level) {
            row.levels[level] = tblNVCPerAcre->Field(Level(level));
        }
        dependents.values.push_back(row);
    }
}

bool IsEmpty(const Dependents::Values& row) {
    return std::all_of(row.levels.begin(), row.levels.end(),
                       [](const QVariant& value) { return value.toDouble() == 0; });
}

void DeleteValueRow(const Dependents::Values& row) {
    tblNVCPerAcre->Seek("=", {row.fmzRLKey, row.resource});
    tblNVCPerAcre->Delete();
}

// Refuses locations whose rows are those of another zone.
void RequireRoom(const Zone& zone, std::int32_t firstLocation) {
    const std::int32_t last = FMZRLKey(zone.key, zone.locations);
    for (const auto& [key, resource] : RowsBetween(FMZRLKey(zone.key, firstLocation), last)) {
        if (const auto owner = OwnerOf(key, zone.key)) {
            RefuseFor(NameOf(zone.name, zone.key), NameOf(owner->name, owner->key));
        }
    }
}

// Adds the rows of the locations that a zone is to have beyond those that it had; gives the number
// of rows that were there already.
int Grow(const Zone& zone, std::int32_t had) {
    if (zone.locations <= had) {
        return 0;
    }
    RequireSensible(zone.name, zone.locations);
    const std::int32_t first = std::max(had, 0) + 1;
    RequireRoom(zone, first);
    return zone.locations < first ? 0 : AddLocations(zone.key, first, zone.locations);
}

void RemoveEmptyLocations(const Zone& zone, std::int32_t lastLocation) {
    for (std::int32_t location = zone.locations + 1; location <= lastLocation; ++location) {
        Dependents dependents;
        const std::int32_t key = FMZRLKey(zone.key, location);
        CollectValues(dependents, key, key);
        if (std::all_of(dependents.values.begin(), dependents.values.end(), IsEmpty)) {
            for (const Dependents::Values& row : dependents.values) {
                DeleteValueRow(row);
            }
        }
    }
}

}  // namespace

std::optional<Zone> Find(std::int32_t key) {
    tblFMZList->Seek("=", {key});
    return tblFMZList->NoMatch() ? std::nullopt : std::optional(Current());
}

std::vector<Zone> All() {
    std::vector<Zone> zones;
    if (tblFMZList->RecordCount() == 0) {
        return zones;
    }
    for (tblFMZList->MoveFirst(); !tblFMZList->EndOfFile(); tblFMZList->MoveNext()) {
        zones.push_back(Current());
    }
    return zones;
}

void RequireSensible(const QString& name, std::int32_t locations) {
    if (locations > kMostLocations) {
        throw platform::RuntimeError(
            platform::kOverflow,
            Texts::tr("%1 cannot have %2 representative locations: a zone can have at most %3.")
                .arg(name.isEmpty() ? Texts::tr("A zone") : name)
                .arg(locations)
                .arg(kMostLocations));
    }
}

std::int32_t Create(const QString& name, std::int32_t locations) {
    if (locations < 1) {
        WarnSmaller(name);
        locations = 1;
    }
    RequireSensible(name, locations);
    const std::int32_t key = AddZoneWithFreeKeys(name, locations);
    for (std::int32_t sequence = 1; sequence <= kCostClasses; ++sequence) {
        AddCostRow(key, {.sequence = sequence, .topSize = {}, .cost = {}});
    }
    AddLocations(key, 1, locations);
    return key;
}

std::int32_t Change(const Zone& zone, bool belowOne) {
    const Zone stored = Stored(zone.key);
    Zone wanted = zone;
    if (belowOne || wanted.locations < stored.locations ||
        (wanted.locations < 1 && wanted.locations != stored.locations)) {
        WarnSmaller(wanted.name);
        wanted.locations = std::max(wanted.locations, 1);
    }
    if (Grow(wanted, stored.locations) > 0) {
        u91Trace::Warning(QStringLiteral("Kept NVC rows of an earlier RLCount for FMZ ") +
                          wanted.name);
    }
    if (wanted != stored) {
        Write(wanted);
    }
    return wanted.locations;
}

bool IsRefusal(const platform::RuntimeError& error) {
    return error.Number() == platform::kNoCurrentRecord ||
           error.Number() == platform::kDuplicateKey || error.Number() == platform::kOverflow;
}

void PutBack(const Zone& zone) {
    const Zone stored = Stored(zone.key);
    Grow(zone, stored.locations);
    RemoveEmptyLocations(zone, stored.locations);
    if (zone != stored) {
        Write(zone);
    }
}

Dependents Remove(const Zone& zone) {
    Dependents dependents;
    for (std::int32_t sequence = 1; sequence <= kCostClasses; ++sequence) {
        tblSuppressionPerAcreCost->Seek("=", {zone.key, sequence});
        if (!tblSuppressionPerAcreCost->NoMatch()) {
            dependents.costs.push_back(
                {.sequence = sequence,
                 .topSize = tblSuppressionPerAcreCost->Field(FieldNames::kTopSize),
                 .cost = tblSuppressionPerAcreCost->Field(FieldNames::kCost)});
            tblSuppressionPerAcreCost->Delete();
        }
    }
    // With rows that are left from a larger number of locations: nobody else can have those.
    const std::int32_t last = std::max(zone.locations, kStep - 1);
    CollectValues(dependents, FMZRLKey(zone.key, 1), FMZRLKey(zone.key, last));
    for (const Dependents::Values& row : dependents.values) {
        DeleteValueRow(row);
    }
    DeleteZone(zone.key);
    return dependents;
}

void Restore(const Zone& zone, const Dependents& dependents) {
    tblFMZList->AddNew();
    tblFMZList->SetField(FieldNames::kKey, zone.key);
    SetZone(zone.name, zone.locations);
    for (const Dependents::Cost& row : dependents.costs) {
        AddCostRow(zone.key, row);
    }
    for (const Dependents::Values& row : dependents.values) {
        AddValueRow(row);
    }
}

}  // namespace ZoneRecords
