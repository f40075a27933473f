#include "worksheets/zones/mFMZs.h"

#include <QComboBox>
#include <QSignalBlocker>

#include <algorithm>

#include "base/u91Trace.h"
#include "datafile/ZoneKeys.h"
#include "worksheets/zones/ZoneRecords.h"

namespace mFMZs {

void LoadFMZs(QComboBox& box) {
    u91Trace::Procedure(QStringLiteral("LoadFMZs"));
    const QSignalBlocker blocker(box);
    box.clear();
    const auto zones = ZoneRecords::All();
    QStringList names;
    for (const auto& zone : zones) {
        names += zone.name;
    }
    // All at once: the box measures itself anew for each item that is added.
    box.addItems(names);
    for (std::size_t item = 0; item < zones.size(); ++item) {
        box.setItemData(static_cast<int>(item), zones[item].key);
    }
}

void LoadRepLocs(QComboBox& box, std::int32_t zoneKey) {
    u91Trace::Procedure(QStringLiteral("LoadRepLocs"));
    const QSignalBlocker blocker(box);
    const auto zone = ZoneRecords::Find(zoneKey);
    box.clear();
    // A damaged number must not fill the memory.
    const std::int32_t locations = zone ? std::min(zone->locations, ZoneKeys::kMostLocations) : 0;
    for (std::int32_t location = 1; location <= locations; ++location) {
        box.addItem(QString::number(location));
    }
}

}  // namespace mFMZs
