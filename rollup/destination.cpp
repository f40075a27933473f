#include "rollup/destination.h"

#include "rollup/csv_destination.h"
#include "rollup/destination_name.h"
#include "rollup/postgres_destination.h"
#include "rollup/sqlite_destination.h"

namespace rollup {

std::unique_ptr<Destination> OpenDestination(const std::string& name, const Waiting& waiting) {
    const DestinationName parsed = ParseDestination(name);
    switch (parsed.kind) {
        case DestinationKind::kPostgres:
            return OpenPostgres(parsed.rest, waiting);
        case DestinationKind::kCsv:
            return OpenCsv(parsed.rest, waiting);
        case DestinationKind::kSqlite:
            break;
    }
    return OpenSqlite(parsed.rest, waiting);
}

}  // namespace rollup
