#include "tools/fcdtool/terminal.h"

#include <csignal>

#ifdef _WIN32
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

}  // namespace fcdtool
