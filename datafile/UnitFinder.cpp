#include "datafile/UnitFinder.h"

#include "datafile/FieldNames.h"
#include "platform/dao/IndexScope.h"

namespace datafile {

namespace {

const QString kUnitID = QStringLiteral("UnitID");
const QString kUnitName = QStringLiteral("UnitName");
const QString kState = QStringLiteral("State");

void CloseQuietly(std::unique_ptr<dao::Recordset>& records) {
    if (!records) {
        return;
    }
    try {
        records->Close();
    } catch (const platform::RuntimeError&) {
        // Nothing was written through it, so nothing is lost.
    }
    records.reset();
}

}  // namespace

UnitFinder::~UnitFinder() {
    Close();
}

void UnitFinder::Open(const QString& path) {
    database_ = dao::Database::Open(path, dao::OpenMode::kReading);
    properties_ = database_->OpenTable(QStringLiteral("Properties"));
    properties_->SetIndex(FieldNames::kPrimaryKey);
    units_ = database_->OpenTable(QStringLiteral("Units"));
    units_->SetIndex(FieldNames::kPrimaryKey);
}

void UnitFinder::Close() {
    CloseQuietly(properties_);
    CloseQuietly(units_);
    database_.reset();
}

UnitFinder::Answer UnitFinder::FindUnit(const QString& id) {
    const dao::IndexScope byID(*units_, kUnitID);
    units_->Seek("=", {id});
    if (units_->NoMatch()) {
        return {};
    }
    units_->MoveNext();
    if (!units_->EndOfFile() && units_->Text(kUnitID) == id) {
        return {kInSeveralStates, {}};
    }
    units_->Seek("=", {id});
    return {kFound, Current()};
}

UnitFinder::Answer UnitFinder::FindUnitInState(const QString& id, const QString& state) {
    units_->Seek("=", {id, state});
    if (units_->NoMatch()) {
        return {};
    }
    return {kFound, Current()};
}

UnitFinder::Listing UnitFinder::ListByID(const QString& text) {
    return List(kUnitID, text);
}

UnitFinder::Listing UnitFinder::ListByName(const QString& text) {
    return List(kUnitName, text);
}

UnitFinder::Unit UnitFinder::Current() const {
    return {units_->Text(kUnitName), units_->Text(kUnitID), units_->Text(kState)};
}

UnitFinder::Listing UnitFinder::List(const QString& index, const QString& text) {
    const dao::IndexScope scope(*units_, index);
    Listing listing;
    if (units_->RecordCount() == 0) {
        return listing;
    }
    units_->Seek(">=", {text});
    const bool found = !units_->NoMatch();
    if (!found) {
        units_->MoveLast();
        StepBack(2);
    }
    const int neighbors = StepBack(3);
    while (!units_->EndOfFile() && listing.units.size() < kListRows) {
        listing.units.push_back(Current());
        units_->MoveNext();
    }
    if (found) {
        listing.match = neighbors;
    }
    return listing;
}

int UnitFinder::StepBack(int steps) {
    int taken = 0;
    for (int step = 0; step < steps; ++step) {
        units_->MovePrevious();
        if (units_->BeginOfFile()) {
            units_->MoveFirst();
        } else {
            ++taken;
        }
    }
    return taken;
}

}  // namespace datafile
