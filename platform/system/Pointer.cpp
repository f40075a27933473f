#include "platform/system/Pointer.h"

#include <QCursor>
#include <QGuiApplication>

namespace platform {
namespace {

bool hourglass = false;

}  // namespace

void SetMousePointer(Pointer pointer) {
    const bool wanted = pointer == Pointer::kHourglass;
    if (wanted == hourglass) {
        return;
    }
    hourglass = wanted;
    // Qt keeps a stack of pointers; there is never more than this one entry on it.
    if (wanted) {
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    } else {
        QGuiApplication::restoreOverrideCursor();
    }
}

Pointer MousePointer() {
    return hourglass ? Pointer::kHourglass : Pointer::kDefault;
}

}  // namespace platform
