#include "datafile/ZoneKeys.h"

#include <limits>

#include "platform/RuntimeError.h"

namespace ZoneKeys {

std::int32_t FMZRLKey(std::int32_t zoneKey, std::int32_t location) {
    const std::int64_t key = std::int64_t{zoneKey} * kStep + location;
    if (key < std::numeric_limits<std::int32_t>::min() ||
        key > std::numeric_limits<std::int32_t>::max()) {
        throw platform::RuntimeError(platform::kOverflow, QStringLiteral("Overflow."));
    }
    return static_cast<std::int32_t>(key);
}

}  // namespace ZoneKeys
