#include "tools/fcdtool/terminal.h"

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace fcdtool {

bool ErrorsGoToTerminal() {
    constexpr int kErrors = 2;
#ifdef _WIN32
    return _isatty(kErrors) != 0;
#else
    return isatty(kErrors) != 0;
#endif
}

}  // namespace fcdtool
