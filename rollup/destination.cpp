#include "rollup/destination.h"

#include "rollup/destination_name.h"
#include "rollup/sqlite_destination.h"

namespace rollup {

std::unique_ptr<Destination> OpenDestination(const std::string& name, const Waiting& waiting) {
    const DestinationName parsed = ParseDestination(name);
    return OpenSqlite(parsed.rest, waiting);
}

}  // namespace rollup
