#include "tools/fcdtool/late_library.h"

#include <dlfcn.h>

#include <stdexcept>

namespace fcdtool {

void* LateSymbol(const char* library, const char* name) {
    // It is looked for beside the program first, as the program's own run path says. It stays
    // loaded: Qt is not made to be unloaded.
    void* const loaded = dlopen(library, RTLD_NOW | RTLD_LOCAL);
    void* const found = loaded != nullptr ? dlsym(loaded, name) : nullptr;
    if (found == nullptr) {
        const char* const reason = dlerror();
        throw std::runtime_error(std::string("The library ") + library + " cannot be loaded" +
                                 (reason != nullptr ? std::string(": ") + reason : "") + ".");
    }
    return found;
}

}  // namespace fcdtool
