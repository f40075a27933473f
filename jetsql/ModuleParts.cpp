#include "jetsql/ModuleParts.h"

namespace jetsql {

int ResultCode(const jet::Error& error) {
    switch (error.Kind()) {
        case jet::ErrorKind::kDamaged:
            return SQLITE_CORRUPT;
        case jet::ErrorKind::kIo:
            return SQLITE_IOERR;
        case jet::ErrorKind::kOutOfMemory:
            return SQLITE_NOMEM;
        case jet::ErrorKind::kFileNotFound:
        case jet::ErrorKind::kFileInUse:
        case jet::ErrorKind::kNotADatabase:
        case jet::ErrorKind::kUnsupportedVersion:
        case jet::ErrorKind::kEncrypted:
        case jet::ErrorKind::kPermissionDenied:
        case jet::ErrorKind::kReadOnly:
            return SQLITE_CANTOPEN;
        default:
            return SQLITE_ERROR;
    }
}

void SetMessage(char*& place, const char* sentence) {
    sqlite3_free(place);
    place = sqlite3_mprintf("%s", sentence);
}

}  // namespace jetsql
