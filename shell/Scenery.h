// The picture of the program: hills in the evening, in the colors of the user's palette.
#pragma once

#include <QIcon>

class QPainter;
class QPalette;
class QRectF;

namespace Scenery {

// Fills `area`; the nearest hills have the color of a window, so that the picture ends in it.
void Paint(QPainter& painter, const QRectF& area, const QPalette& palette);
// The same in a small square.
QIcon Icon(const QPalette& palette);

}  // namespace Scenery
