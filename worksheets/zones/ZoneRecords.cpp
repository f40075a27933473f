#include "worksheets/zones/ZoneRecords.h"

#include <QCoreApplication>

#include <algorithm>

#include "datafile/FieldNames.h"
#include "datafile/FieldReaders.h"
#include "datafile/PrepDatatables.h"
#include "datafile/ZoneKeys.h"
#include "platform/RuntimeError.h"
#include "platform/text/Numbers.h"
#include "shell/u91Trace.h"

using PrepDatatables::tblFMZList;

namespace {

QString Translate(const char* text) {
    return QCoreApplication::translate("ZoneRecords", text);
}

void RequireSensible(std::int32_t locations) {
    if (locations > ZoneRecords::kMostLocations) {
        throw platform::RuntimeError(
            platform::kOverflow, Translate("A zone can have at most %1 representative locations.")
                                     .arg(ZoneRecords::kMostLocations));
    }
}

void WarnSmaller(const QString& name) {
    u91Trace::Warning(QStringLiteral("New RLCount is smaller for FMZ ") + name);
}

void Grow(std::int32_t zoneKey, const QString& name, std::int32_t from, std::int32_t to) {
    RequireSensible(to);
    const int kept = ZoneKeys::AddLocations(zoneKey, from, to);
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
    return ZoneKeys::AddZone(name, locations);
}

std::int32_t Change(std::int32_t zoneKey, const QString& name, std::int32_t locations) {
    tblFMZList->Seek("=", {zoneKey});
    if (tblFMZList->NoMatch()) {
        tblFMZList->Edit();  // no current record: refused before any row is added
    }
    const std::int32_t stored = FieldReaders::LongField(*tblFMZList, FieldNames::kRLCount);
    const bool renamed = FieldReaders::TextField(*tblFMZList, FieldNames::kName) != name;
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
        tblFMZList->SetField(FieldNames::kName, name);
        tblFMZList->SetField(FieldNames::kRLCount, locations);
        tblFMZList->Update();
    }
    return locations;
}

}  // namespace ZoneRecords
