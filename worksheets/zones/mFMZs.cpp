#include "worksheets/zones/mFMZs.h"

#include <QComboBox>
#include <QSignalBlocker>

#include <algorithm>
#include <vector>

#include "base/u91Trace.h"
#include "datafile/FieldNames.h"
#include "datafile/FieldReaders.h"
#include "datafile/PrepDatatables.h"
#include "datafile/ZoneKeys.h"

using PrepDatatables::tblFMZList;

namespace mFMZs {

void LoadFMZs(QComboBox& box) {
    u91Trace::Procedure(QStringLiteral("LoadFMZs"));
    const QSignalBlocker blocker(box);
    box.clear();
    if (tblFMZList->RecordCount() == 0) {
        return;
    }
    QStringList names;
    std::vector<std::int32_t> keys;
    for (tblFMZList->MoveFirst(); !tblFMZList->EndOfFile(); tblFMZList->MoveNext()) {
        names += tblFMZList->Text(FieldNames::kName);
        keys.push_back(tblFMZList->Long(FieldNames::kKey));
    }
    // All at once: the box measures itself anew for each item that is added.
    box.addItems(names);
    for (std::size_t zone = 0; zone < keys.size(); ++zone) {
        box.setItemData(static_cast<int>(zone), keys[zone]);
    }
}

void LoadRepLocs(QComboBox& box, std::int32_t zoneKey) {
    u91Trace::Procedure(QStringLiteral("LoadRepLocs"));
    const QSignalBlocker blocker(box);
    tblFMZList->Seek("=", {zoneKey});
    const std::int32_t stored = FieldReaders::LongField(*tblFMZList, FieldNames::kRLCount);
    box.clear();
    // A damaged number must not fill the memory.
    const std::int32_t locations = std::min(stored, ZoneKeys::kMostLocations);
    for (std::int32_t location = 1; location <= locations; ++location) {
        box.addItem(QString::number(location));
    }
}

}  // namespace mFMZs
