// What SQLite calls when it loads the library.
#include "jetsql/JetTable.h"

#ifndef JETSQL_LINKED
extern "C" {
SQLITE_EXTENSION_INIT1
}
#endif

// The name follows from that of the library, libjetsql.
extern "C" __attribute__((visibility("default"))) int sqlite3_jetsql_init(
    sqlite3* connection, char** /*message*/, const sqlite3_api_routines* api) {
#ifdef JETSQL_LINKED
    static_cast<void>(api);
#else
    SQLITE_EXTENSION_INIT2(api)
#endif
    const auto files = std::make_shared<jetsql::OpenedFiles>();
    const int code = jetsql::AddJetModule(connection, files);
    return code != SQLITE_OK ? code : jetsql::AddTablesFunction(connection, files);
}
