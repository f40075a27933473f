// SQLite's interface: through the pointers that a loading program hands over, or, where TARN_SQLITE
// says that the library itself is linked, directly.
#pragma once

#ifdef JETSQL_LINKED
#include <sqlite3.h>
#else
#include <sqlite3ext.h>
extern "C" {
SQLITE_EXTENSION_INIT3
}
#endif
