#include "datafile/ZoneKeys.h"

#include <algorithm>
#include <exception>
#include <functional>
#include <iterator>
#include <limits>
#include <utility>
#include <vector>

#include "datafile/FieldNames.h"
#include "datafile/FieldReaders.h"
#include "datafile/PrepDatatables.h"
#include "shell/u91Trace.h"

using PrepDatatables::tblFMZList;
using PrepDatatables::tblNVCPerAcre;
using PrepDatatables::tblSuppressionPerAcreCost;

namespace ZoneKeys {

namespace {

constexpr std::int32_t kLocationsPerKey = 100;

[[noreturn]] void Refuse() {
    throw platform::RuntimeError(
        platform::kDuplicateKey,
        QStringLiteral("The rows of this location would lie among those of another zone. A zone "
                       "has room for 99 locations."));
}

using Step = std::function<void()>;

// Rows that could not be taken back when an add failed: a disk that is too full to add is too full
// to delete as well.
std::vector<Step> leftOver;

// Takes the last step first. A step that fails stays, the others can still be taken.
void TakeBack(std::vector<Step>& steps) {
    std::exception_ptr failure;
    for (auto step = steps.rbegin(); step != steps.rend(); ++step) {
        try {
            (*step)();
            *step = nullptr;
        } catch (const platform::RuntimeError&) {
            failure = std::current_exception();
        }
    }
    std::erase_if(steps, [](const Step& step) { return step == nullptr; });
    if (failure) {
        std::rethrow_exception(failure);
    }
}

// What has been added so far, to be deleted again when the rest is refused.
class Undo {
public:
    Undo() = default;
    Undo(const Undo&) = delete;
    Undo& operator=(const Undo&) = delete;
    ~Undo() {
        try {
            TakeBack(steps_);
        } catch (const platform::RuntimeError&) {
            // The error that led here is the one to report; the rest goes when there is room.
            std::move(steps_.begin(), steps_.end(), std::back_inserter(leftOver));
        }
    }
    void Add(Step step) {
        steps_.push_back(std::move(step));
        leftOver.reserve(leftOver.size() + steps_.size());  // the destructor must not fail
    }
    void Keep() { steps_.clear(); }

private:
    std::vector<Step> steps_;
};

void AddCostRow(std::int32_t zoneKey, int sequence) {
    tblSuppressionPerAcreCost->AddNew();
    tblSuppressionPerAcreCost->SetField(FieldNames::kFMZKey, zoneKey);
    tblSuppressionPerAcreCost->SetField(FieldNames::kSequence, sequence);
    tblSuppressionPerAcreCost->Update();
}

// Deleting after a seek that failed is an error, never the end of another row.
void DeleteCostRow(std::int32_t zoneKey, int sequence) {
    tblSuppressionPerAcreCost->Seek("=", {zoneKey, sequence});
    tblSuppressionPerAcreCost->Delete();
}

bool HasValueRow(std::int32_t key, int resource) {
    tblNVCPerAcre->Seek("=", {key, resource});
    return !tblNVCPerAcre->NoMatch();
}

void AddValueRow(std::int32_t key, int resource) {
    tblNVCPerAcre->AddNew();
    tblNVCPerAcre->SetField(FieldNames::kFMZRLKey, key);
    tblNVCPerAcre->SetField(FieldNames::kResourceNumber, resource);
    tblNVCPerAcre->Update();
}

void DeleteValueRow(std::int32_t key, int resource) {
    tblNVCPerAcre->Seek("=", {key, resource});
    tblNVCPerAcre->Delete();
}

void DeleteZone(std::int32_t zoneKey, const QString& name) {
    tblFMZList->Seek("=", {zoneKey});
    if (!tblFMZList->NoMatch() && tblFMZList->Text(FieldNames::kName) == name) {
        tblFMZList->Delete();
    }
}

// The number of locations of a zone, or -1 when there is no such zone.
std::int32_t LocationsOf(std::int32_t zoneKey) {
    tblFMZList->Seek("=", {zoneKey});
    return tblFMZList->NoMatch() ? -1 : FieldReaders::LongField(*tblFMZList, FieldNames::kRLCount);
}

// Whether another zone owns the rows at this location's key: the zone whose key they spell, or one
// before it with so many locations that they reach this far.
bool ReachesAnother(std::int32_t zoneKey, std::int32_t location) {
    const std::int32_t steps = location / kLocationsPerKey;
    const std::int32_t rest = location % kLocationsPerKey;
    if (steps > 0 && rest > 0 && LocationsOf(zoneKey + steps) >= 0) {
        return true;
    }
    // The grid takes three digits for the number of locations, so ten keys is the farthest reach.
    for (std::int32_t back = 1; back <= 10; ++back) {
        if (LocationsOf(zoneKey - back) >= location + back * kLocationsPerKey) {
            return true;
        }
    }
    return false;
}

bool BelongsToAnother(std::int32_t zoneKey, std::int32_t location) {
    const bool reaches = ReachesAnother(zoneKey, location);
    LocationsOf(zoneKey);  // callers are about to edit this zone's record
    return reaches;
}

// Adds the rows of one location, values left empty. Rows that exist already stay as they are when
// `keepExisting`; otherwise they are refused. Gives the number of rows that existed.
int AddValueRows(std::int32_t zoneKey, std::int32_t location, bool keepExisting, Undo& undo) {
    const std::int32_t key = FMZRLKey(zoneKey, location);
    int existed = 0;
    for (int resource = 1; resource <= kResources; ++resource) {
        if (HasValueRow(key, resource)) {
            if (!keepExisting || (existed == 0 && BelongsToAnother(zoneKey, location))) {
                Refuse();
            }
            ++existed;
            continue;
        }
        AddValueRow(key, resource);
        undo.Add([key, resource] { DeleteValueRow(key, resource); });
    }
    return existed;
}

struct Zone {
    std::int32_t key = 0;
    std::int32_t locations = 0;
    QString name;
};

std::vector<Zone> AllZones() {
    std::vector<Zone> zones;
    if (tblFMZList->RecordCount() == 0) {
        return zones;
    }
    for (tblFMZList->MoveFirst(); !tblFMZList->EndOfFile(); tblFMZList->MoveNext()) {
        zones.push_back({.key = FieldReaders::LongField(*tblFMZList, FieldNames::kKey),
                         .locations = FieldReaders::LongField(*tblFMZList, FieldNames::kRLCount),
                         .name = FieldReaders::TextField(*tblFMZList, FieldNames::kName)});
    }
    return zones;
}

void AddCostRows(std::int32_t zoneKey, Undo& undo) {
    for (int sequence = 1; sequence <= kCostClasses; ++sequence) {
        AddCostRow(zoneKey, sequence);
        undo.Add([zoneKey, sequence] { DeleteCostRow(zoneKey, sequence); });
    }
}

}  // namespace

std::int32_t FMZRLKey(std::int32_t zoneKey, std::int32_t location) {
    const std::int64_t key = std::int64_t{zoneKey} * kLocationsPerKey + location;
    if (key < std::numeric_limits<std::int32_t>::min() ||
        key > std::numeric_limits<std::int32_t>::max()) {
        throw platform::RuntimeError(platform::kOverflow, QStringLiteral("Overflow."));
    }
    return static_cast<std::int32_t>(key);
}

void TakeBackLeftOver() {
    TakeBack(leftOver);
}

void ForgetLeftOver() {
    leftOver.clear();
}

std::int32_t AddZone(const QString& name, std::int32_t locations) {
    TakeBackLeftOver();
    Undo undo;
    tblFMZList->AddNew();
    tblFMZList->SetField(FieldNames::kName, name);
    tblFMZList->SetField(FieldNames::kRLCount, locations);
    tblFMZList->Update();
    tblFMZList->MoveLast();
    const std::int32_t zoneKey = tblFMZList->Long(FieldNames::kKey);
    undo.Add([zoneKey, name] { DeleteZone(zoneKey, name); });
    AddCostRows(zoneKey, undo);
    for (std::int32_t location = 1; location <= locations; ++location) {
        AddValueRows(zoneKey, location, false, undo);
    }
    undo.Keep();
    return zoneKey;
}

int AddLocations(std::int32_t zoneKey, std::int32_t first, std::int32_t last) {
    TakeBackLeftOver();
    Undo undo;
    int existed = 0;
    for (std::int32_t location = first; location <= last; ++location) {
        existed += AddValueRows(zoneKey, location, true, undo);
    }
    undo.Keep();
    return existed;
}

int AddMissingCostRows(std::int32_t zoneKey) {
    Undo undo;
    int added = 0;
    for (int sequence = 1; sequence <= kCostClasses; ++sequence) {
        tblSuppressionPerAcreCost->Seek("=", {zoneKey, sequence});
        if (tblSuppressionPerAcreCost->NoMatch()) {
            AddCostRow(zoneKey, sequence);
            undo.Add([zoneKey, sequence] { DeleteCostRow(zoneKey, sequence); });
            ++added;
        }
    }
    undo.Keep();
    return added;
}

void CompleteZones() {
    for (const Zone& zone : AllZones()) {
        int added = AddMissingCostRows(zone.key);
        const std::int32_t locations = std::min(zone.locations, kLocationsPerKey - 1);
        for (std::int32_t location = 1; location <= locations; ++location) {
            added += kResources - AddLocations(zone.key, location, location);
        }
        if (added > 0) {
            u91Trace::Warning(QStringLiteral("ZoneKeys.CompleteZones: added %1 rows that an "
                                             "interrupted run had left out for FMZ ")
                                  .arg(added) +
                              zone.name);
        }
    }
}

}  // namespace ZoneKeys
