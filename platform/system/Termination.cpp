#include "platform/system/Termination.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <cstdlib>
#include <utility>

#ifdef Q_OS_UNIX
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <csignal>
#endif

namespace platform {
namespace {

std::function<void()> exitHandler;

}  // namespace

ExitWatch::ExitWatch(std::function<void()> handler) {
    exitHandler = std::move(handler);
    [[maybe_unused]] static const int registered = std::atexit([] {
        if (const auto handle = std::exchange(exitHandler, {})) {
            handle();
        }
    });
}

ExitWatch::~ExitWatch() {
    exitHandler = {};
}

#ifdef Q_OS_UNIX

namespace {

constexpr std::array kSignals{SIGTERM, SIGHUP, SIGINT};

std::function<void()> terminationHandler;
// A signal handler may do next to nothing: it writes a byte at one end, and the event loop, which
// watches the other end, does the work.
std::array<int, 2> ends{-1, -1};

extern "C" void PassOn(int /*signal*/) {
    const char byte = 1;
    [[maybe_unused]] const auto written = ::write(ends[0], &byte, sizeof(byte));
}

void Watch() {
    if (ends[0] >= 0 || ::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) {
        return;
    }
    auto* notifier = new QSocketNotifier(ends[1], QSocketNotifier::Read, qApp);
    QObject::connect(notifier, &QSocketNotifier::activated, qApp, [] {
        char byte = 0;
        if (::read(ends[1], &byte, sizeof(byte)) > 0 && terminationHandler) {
            terminationHandler();
        }
    });
}

}  // namespace

void OnTermination(std::function<void()> handler) {
    terminationHandler = std::move(handler);
    if (terminationHandler) {
        Watch();
    }
    struct sigaction action = {};
    action.sa_handler = terminationHandler ? PassOn : SIG_DFL;
    action.sa_flags = SA_RESTART;
    for (const int signal : kSignals) {
        ::sigaction(signal, &action, nullptr);
    }
    // A file that reaches the largest size allowed makes the write fail, like any other error.
    action.sa_handler = terminationHandler ? SIG_IGN : SIG_DFL;
    ::sigaction(SIGXFSZ, &action, nullptr);
}

#else

// The session manager's requests reach the application object by themselves there.
void OnTermination(std::function<void()> /*handler*/) {}

#endif

}  // namespace platform
