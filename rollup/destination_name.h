// What kind of destination a name means.
#pragma once

#include <string>

namespace rollup {

enum class DestinationKind { kSqlite, kPostgres, kCsv };

struct DestinationName {
    DestinationKind kind = DestinationKind::kSqlite;
    std::string rest;  // the file, the connection string, the folder
};

// "sqlite:FILE", "csv:DIR", "postgresql:CONNECTION", "postgresql://..."; a plain path is SQLite.
// Throws DestinationError for a kind that is not known, and where nothing follows it.
DestinationName ParseDestination(const std::string& name);

}  // namespace rollup
