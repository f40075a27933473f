// Fills combo boxes with the zones and with the locations of a zone.
#pragma once

#include <cstdint>

class QComboBox;

namespace mFMZs {

// The zones in key order; each item's data is the zone's key. Nothing is signalled.
void LoadFMZs(QComboBox& box);
// "1", "2", ... up to the number of locations of this zone. Nothing is signalled.
void LoadRepLocs(QComboBox& box, std::int32_t zoneKey);

}  // namespace mFMZs
