#include "platform/system/StartHelpers.h"

#include <QByteArray>
#include <QtGlobal>
#include <system_error>

#ifdef Q_OS_UNIX
#include <dlfcn.h>
#endif
#if QT_CONFIG(dbus)
#include <QDBusConnection>
#endif

namespace platform {

Beside::Beside(void (*work)()) {
    try {
        thread_ = std::thread(work);
    } catch (const std::system_error&) {
        // Without a thread it is done when it is needed.
        return;
    }
}

void Beside::Wait() {
    if (thread_.joinable()) {
        thread_.join();
    }
}

// The list is kept by a library that the toolkit brings along, on systems that have it. The
// toolkit's own loader would do, but the first thread that touches the toolkit becomes its main
// one.
void ReadFonts() {
#ifdef Q_OS_UNIX
    void* const library = ::dlopen("libfontconfig.so.1", RTLD_LAZY);
    if (library == nullptr) {
        return;
    }
    using Initialize = int (*)();
    if (const auto initialize = reinterpret_cast<Initialize>(::dlsym(library, "FcInit"))) {
        initialize();
    }
#endif
}

void FollowSystemColors() {
#ifdef Q_OS_WIN
    constexpr const char* kPlatform = "QT_QPA_PLATFORM";
    if (!qEnvironmentVariableIsSet(kPlatform)) {
        qputenv(kPlatform, "windows:darkmode=2");
    }
#endif
}

void ConnectToSessionBus() {
#if QT_CONFIG(dbus)
    QDBusConnection::sessionBus();
#endif
}

}  // namespace platform
