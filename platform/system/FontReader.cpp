#include "platform/system/FontReader.h"

#include <QLibrary>
#include <system_error>

namespace platform {
namespace {

// The list is kept by a library that the toolkit brings along, on systems that have it.
void Read() {
    using Initialise = int (*)();
    const auto initialise =
        reinterpret_cast<Initialise>(QLibrary::resolve(QStringLiteral("fontconfig"), 1, "FcInit"));
    if (initialise != nullptr) {
        initialise();
    }
}

}  // namespace

FontReader::FontReader() {
    try {
        thread_ = std::thread(Read);
    } catch (const std::system_error&) {
        // Without a thread the list is read when it is needed.
        return;
    }
}

void FontReader::Wait() {
    if (thread_.joinable()) {
        thread_.join();
    }
}

}  // namespace platform
