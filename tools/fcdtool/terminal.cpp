#include "tools/fcdtool/terminal.h"

#include <csignal>
#include <cstdlib>
#include <string>

#ifdef _WIN32
#define WIN32_LEAN_AND_MEAN
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <io.h>
#else
#include <unistd.h>
#endif

namespace fcdtool {

namespace {

volatile std::sig_atomic_t endWasRequested = 0;

void NoteRequest(int signal) {
    endWasRequested = 1;
    std::signal(signal, SIG_DFL);
}

}  // namespace

EndRequests::EndRequests() {
    std::signal(SIGINT, NoteRequest);
    std::signal(SIGTERM, NoteRequest);
}

EndRequests::~EndRequests() {
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
}

bool EndRequests::Came() {
    return endWasRequested != 0;
}

bool ErrorsGoToTerminal() {
    constexpr int kErrors = 2;
#ifdef _WIN32
    return _isatty(kErrors) != 0;
#else
    return isatty(kErrors) != 0;
#endif
}

#ifdef _WIN32

// As the user has set the country.
bool UsesLetter() {
    constexpr DWORD kLetter = 1;
    DWORD size = 0;
    const int got =
        ::GetLocaleInfoEx(LOCALE_NAME_USER_DEFAULT, LOCALE_IPAPERSIZE | LOCALE_RETURN_NUMBER,
                          reinterpret_cast<LPWSTR>(&size), sizeof size / sizeof(WCHAR));
    return got != 0 && size == kLetter;
}

#else

// The countries of North America and some of their neighbors, by the locale that messages or paper
// are set to.
bool UsesLetter() {
    for (const char* const name : {"LC_ALL", "LC_PAPER", "LANG"}) {
        const char* const value = std::getenv(name);
        if (value != nullptr && *value != '\0') {
            const std::string locale(value);
            for (const char* const country : {"_US", "_CA", "_MX", "_PR", "_PH", "_CL", "_CO"}) {
                if (locale.find(country) != std::string::npos) {
                    return true;
                }
            }
            return false;
        }
    }
    return false;
}

#endif

}  // namespace fcdtool
