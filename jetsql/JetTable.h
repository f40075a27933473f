// The virtual table: CREATE VIRTUAL TABLE t USING jet('FILE', 'TABLE').
//
// Read-only. A query walks the whole table, or the part of an index that its conditions leave
// (jetsql/Plan.h). Columns are read only when they are asked for. A file that changes after it was
// opened fails the query with SQLITE_BUSY_SNAPSHOT rather than give an answer from two states;
// damage is SQLITE_CORRUPT, a file that cannot be opened SQLITE_CANTOPEN.
#pragma once

#include <memory>

#include "jetsql/OpenedFile.h"
#include "jetsql/Sqlite.h"

namespace jetsql {

// Adds the module "jet" to a connection. The files are shared by all tables of the connection.
int AddJetModule(sqlite3* connection, std::shared_ptr<OpenedFiles> files);
// Adds the table-valued function jet_tables('FILE'): columns "name", "records".
int AddTablesFunction(sqlite3* connection, std::shared_ptr<OpenedFiles> files);

}  // namespace jetsql
