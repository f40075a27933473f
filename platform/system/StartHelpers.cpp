#include "platform/system/StartHelpers.h"

#include <QLibrary>
#include <system_error>

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

// The list is kept by a library that the toolkit brings along, on systems that have it.
void ReadFonts() {
    using Initialise = int (*)();
    const auto initialise =
        reinterpret_cast<Initialise>(QLibrary::resolve(QStringLiteral("fontconfig"), 1, "FcInit"));
    if (initialise != nullptr) {
        initialise();
    }
}

void ConnectToSessionBus() {
#if QT_CONFIG(dbus)
    QDBusConnection::sessionBus();
#endif
}

}  // namespace platform
