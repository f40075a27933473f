#include "platform/system/Termination.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <cstdlib>
#include <memory>
#include <utility>

#ifdef Q_OS_UNIX
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <csignal>
#else
#include <QAbstractNativeEventFilter>

#include <windows.h>
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

namespace {

// The end of the session reaches the application object by itself there. This is for who asks the
// program to end and finds no window to close: the message goes to its thread then.
class EndMessages : public QAbstractNativeEventFilter {
public:
    explicit EndMessages(std::function<void()> handler) : handler_(std::move(handler)) {
        qApp->installNativeEventFilter(this);
    }

    bool nativeEventFilter(const QByteArray& /*type*/, void* event, qintptr* /*result*/) override {
        const auto* message = static_cast<const MSG*>(event);
        if (message->hwnd != nullptr || message->message != WM_CLOSE) {
            return false;
        }
        // The handler may be replaced while it is at work.
        const auto handler = handler_;
        handler();
        return true;
    }

private:
    std::function<void()> handler_;
};

std::unique_ptr<EndMessages> endMessages;

}  // namespace

void OnTermination(std::function<void()> handler) {
    endMessages.reset();
    if (handler) {
        endMessages = std::make_unique<EndMessages>(std::move(handler));
    }
}

#endif

}  // namespace platform
