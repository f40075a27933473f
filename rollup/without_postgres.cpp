// Stands for PostgreSQL's library where there is none.
#include "rollup/destination.h"
#include "rollup/postgres_destination.h"
#include "rollup/postgres_values.h"

namespace rollup {

namespace {

[[noreturn]] void Refuse() {
    throw DestinationError(
        "This build of fcdtool lacks PostgreSQL's library. Roll up into SQLite or CSV files, or do "
        "it on Linux.");
}

}  // namespace

std::unique_ptr<Destination> OpenPostgres(const std::string& /*connection*/,
                                          const Waiting& /*waiting*/) {
    Refuse();
}

std::unique_ptr<ValueSource> OpenPostgresValues(const std::string& /*connection*/) {
    Refuse();
}

}  // namespace rollup
