#include "tools/fcdtool/late_library.h"

#ifdef _WIN32
#define WIN32_LEAN_AND_MEAN
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <system_error>
#else
#include <dlfcn.h>
#endif

#include <stdexcept>

namespace fcdtool {

namespace {

[[noreturn]] void ThrowNotLoaded(const std::string& file, const std::string& reason) {
    throw std::runtime_error("The library " + file + " cannot be loaded" +
                             (reason.empty() ? "" : ": " + reason) + ".");
}

}  // namespace

// It stays loaded: Qt is not made to be unloaded.
#ifdef _WIN32

void* LateSymbol(const char* library, const char* name) {
    const std::string file = std::string(library) + ".dll";
    // Beside the program, and in the system's own folder: never where the user happens to be.
    const HMODULE loaded = ::LoadLibraryExA(
        file.c_str(), nullptr, LOAD_LIBRARY_SEARCH_APPLICATION_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32);
    const FARPROC found = loaded != nullptr ? ::GetProcAddress(loaded, name) : nullptr;
    if (found == nullptr) {
        ThrowNotLoaded(file, std::system_category().message(static_cast<int>(::GetLastError())));
    }
    return reinterpret_cast<void*>(found);
}

#else

void* LateSymbol(const char* library, const char* name) {
    const std::string file = "lib" + std::string(library) + ".so";
    // It is looked for beside the program first, as the program's own run path says.
    void* const loaded = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    void* const found = loaded != nullptr ? dlsym(loaded, name) : nullptr;
    if (found == nullptr) {
        const char* const reason = dlerror();
        ThrowNotLoaded(file, reason != nullptr ? reason : "");
    }
    return found;
}

#endif

}  // namespace fcdtool
