// The screen that the main frame is on.
#pragma once

#include <QSize>

class QWidget;

namespace platform {

// Its size in twips.
QSize ScreenSize();

// Puts a dialog over the middle of the main frame, inside the screen.
void PlaceOver(QWidget& dialog, const QWidget& frame);

}  // namespace platform
