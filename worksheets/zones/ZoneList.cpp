#include "worksheets/zones/ZoneList.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "datafile/PrepDatatables.h"
#include "platform/FirstError.h"
#include "platform/RuntimeError.h"
#include "platform/text/Numbers.h"
#include "worksheets/Subjects.h"

using platform::GridTable;

namespace worksheets {

namespace {

constexpr int kNameLength = 46;

}  // namespace

void ZoneList::Load(const QString& actionName) {
    const std::vector<Zone> typed = std::exchange(zones_, ZoneRecords::All());
    unsaved_.clear();
    std::vector<Zone> stored;
    for (const Zone& zone : typed) {
        if (const auto row = RowOf(zone.key)) {
            stored.push_back(At(*row));
        }
    }
    if (stored.size() == typed.size()) {
        Done(actionName, typed, stored);
    }
}

QStringList ZoneList::ChangedNames() const {
    QStringList names;
    for (const Zone& zone : zones_) {
        if (unsaved_.count(zone.key) > 0) {
            names += Subjects::Shown(zone.name);
        }
    }
    return names;
}

QString ZoneList::Text(int row, int col) const {
    const Zone& zone = At(row);
    return col == kName ? zone.name : platform::Str(zone.locations);
}

GridTable::Takes ZoneList::CellTakes(int /*row*/, int col) const {
    return col == kName ? Takes::kText : Takes::kNumber;
}

int ZoneList::MaxLength(int col) const {
    return col == kName ? kNameLength : ZoneKeys::kLocationDigits;
}

GridTable::Answer ZoneList::Offer(int row, int col, const QString& typed) {
    Zone& zone = Row(row);
    if (col == kLocations) {
        return OfferLocations(zone, typed);
    }
    zone.name = typed;
    unsaved_.try_emplace(zone.key);
    return {};
}

// A number below 1 becomes 1: each zone has a location.
GridTable::Answer ZoneList::OfferLocations(Zone& zone, const QString& typed) {
    try {
        const double wanted = platform::Val(typed);
        if (std::abs(wanted) > std::numeric_limits<std::int32_t>::max()) {
            return {Answer::Kind::kRefused, platform::TooLarge(typed)};
        }
        const std::int32_t locations = platform::CLng(wanted);
        ZoneRecords::RequireSensible(zone.name, locations);
        unsaved_[zone.key].lowered = locations < 1 && locations != zone.locations;
        zone.locations = locations == zone.locations ? locations : std::max(locations, 1);
    } catch (const platform::RuntimeError& error) {
        return {Answer::Kind::kRefused, error.Description()};
    }
    const QString stored = platform::Str(zone.locations);
    return {stored == typed ? Answer::Kind::kStored : Answer::Kind::kChanged, stored};
}

void ZoneList::BeginAction(const QString& name) {
    actionName_ = name;
    before_ = zones_;
}

void ZoneList::EndAction() {
    Done(actionName_, std::exchange(before_, {}), zones_);
}

void ZoneList::Done(const QString& name, const std::vector<Zone>& before,
                    const std::vector<Zone>& after) {
    auto change = std::make_shared<Change>();
    change->list = undo::ListChange<Zone>::Between(before, after);
    if (listener_ && !change->list.IsEmpty()) {
        listener_(name, change);
    }
}

void ZoneList::Add(const QString& actionName) {
    const std::int32_t key =
        platform::Concerning([] { return QCoreApplication::translate("ZoneList", "New zone"); },
                             [] {
                                 auto transaction = PrepDatatables::Begin();
                                 const std::int32_t created = ZoneRecords::Create(QString(), 1);
                                 transaction.Commit();
                                 return created;
                             });
    BeginAction(actionName);
    zones_.push_back({.key = key, .name = QString(), .locations = 1});
    EndAction();
}

void ZoneList::Save(const std::function<void(int row)>& saveRow) {
    platform::Concerning([this] { return Subjects::Of(ChangedNames()); },
                         [&] { SaveAll(saveRow); });
}

void ZoneList::SaveAll(const std::function<void(int row)>& saveRow) {
    auto transaction = PrepDatatables::Begin();
    platform::FirstError refused;
    platform::FirstError missing;
    saved_.clear();
    for (int row = 1; row <= RowCount(); ++row) {
        try {
            saveRow(row);
        } catch (const platform::RuntimeError& error) {
            if (!ZoneRecords::IsRefusal(error)) {
                throw;
            }
            const bool isMissing = error.Number() == platform::kNoCurrentRecord;
            (isMissing ? missing : refused).Try([] { throw; });
        }
    }
    transaction.Commit();
    for (const std::int32_t key : saved_) {
        unsaved_.erase(key);
    }
    refused.Rethrow();
    missing.Rethrow();
}

void ZoneList::SaveRow(int row) {
    Zone& zone = Row(row);
    const auto unsaved = unsaved_.find(zone.key);
    if (unsaved == unsaved_.end()) {
        return;
    }
    zone.locations =
        platform::Concerning([&zone] { return Subjects::Shown(zone.name); },
                             [&] { return ZoneRecords::Change(zone, unsaved->second.lowered); });
    saved_.push_back(zone.key);
}

void ZoneList::Carry(Change& change, const undo::ListChange<Zone>& list) {
    CarryToFile(change, list);
    zones_ = list.AppliedTo(zones_);
    for (const auto& step : list.steps) {
        unsaved_.erase(step.Key());
    }
}

void ZoneList::CarryToFile(Change& change, const undo::ListChange<Zone>& list) {
    auto transaction = PrepDatatables::Begin();
    for (const auto& step : list.steps) {
        platform::Concerning(
            [&step] {
                return Subjects::Shown(step.after ? step.after->row.name : step.before->row.name);
            },
            [&] { CarryStep(change, step); });
    }
    transaction.Commit();
}

void ZoneList::CarryStep(Change& change, const undo::ListChange<Zone>::Step& step) {
    if (!step.after) {
        change.removed[step.Key()] = ZoneRecords::Remove(step.before->row);
    } else if (!step.before) {
        ZoneRecords::Restore(step.after->row, change.removed[step.Key()]);
    } else {
        ZoneRecords::PutBack(step.after->row);
    }
}

}  // namespace worksheets
