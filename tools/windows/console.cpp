// Linked into each command: it prints UTF-8, which a console of Windows has to be told.
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace {

// The console stays when the command is over, and is left as it was found.
class PrintsUtf8 {
public:
    PrintsUtf8() : before_(::GetConsoleOutputCP()) { ::SetConsoleOutputCP(CP_UTF8); }
    PrintsUtf8(const PrintsUtf8&) = delete;
    PrintsUtf8& operator=(const PrintsUtf8&) = delete;
    ~PrintsUtf8() {
        if (before_ != 0) {
            ::SetConsoleOutputCP(before_);
        }
    }

private:
    UINT before_;
};

const PrintsUtf8 printsUtf8;

}  // namespace
