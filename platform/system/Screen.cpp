#include "platform/system/Screen.h"

#include <QApplication>
#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

#include <algorithm>

#include "platform/system/Twips.h"

namespace platform {
namespace {

QScreen* FrameScreen() {
    for (const QWidget* window : QApplication::topLevelWidgets()) {
        if (window->objectName() == QLatin1String("frm0_Prep")) {
            return window->screen();
        }
    }
    return QGuiApplication::primaryScreen();
}

}  // namespace

QSize ScreenSize() {
    const QScreen* screen = FrameScreen();
    return screen == nullptr ? QSize() : screen->geometry().size() * kTwipsPerPixel;
}

void PlaceOver(QWidget& dialog, const QWidget& frame) {
    dialog.ensurePolished();
    if (!dialog.testAttribute(Qt::WA_Resized)) {
        dialog.adjustSize();
    }
    QRect place(QPoint(), dialog.size());
    place.moveCenter(frame.frameGeometry().center());
    if (const QScreen* screen = frame.screen()) {
        const QRect room = screen->availableGeometry();
        place.moveRight(std::min(place.right(), room.right()));
        place.moveBottom(std::min(place.bottom(), room.bottom()));
        place.moveLeft(std::max(place.left(), room.left()));
        place.moveTop(std::max(place.top(), room.top()));
    }
    dialog.move(place.topLeft());
}

}  // namespace platform
