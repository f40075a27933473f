// What the virtual tables have in common: errors on their way to SQLite, and the files of a
// connection as its modules hold them.
#pragma once

#include <memory>
#include <new>

#include "jet/error.h"
#include "jetsql/OpenedFile.h"
#include "jetsql/Sqlite.h"

namespace jetsql {

using SharedFiles = std::shared_ptr<OpenedFiles>;

inline void DeleteSharedFiles(void* files) {
    delete static_cast<SharedFiles*>(files);
}

// SQLite's result code for what the engine reports.
int ResultCode(const jet::Error& error);
// Makes the engine's sentence SQLite's message; `place` is a table's zErrMsg, or where xConnect
// wants its own.
void SetMessage(char*& place, const char* sentence);

// Runs `body`, which gives a result code; what it throws becomes one, with its message in `place`.
template <typename Body>
int Guarded(char*& place, Body&& body) noexcept {
    try {
        return body();
    } catch (const jet::Error& error) {
        SetMessage(place, error.what());
        return ResultCode(error);
    } catch (const std::bad_alloc&) {
        return SQLITE_NOMEM;
    } catch (const std::exception& error) {
        SetMessage(place, error.what());
        return SQLITE_ERROR;
    }
}

}  // namespace jetsql
