// Fonts and windows small enough for what they have room for.
#pragma once

#include <QFont>
#include <QSize>
#include <QString>

class QWidget;

namespace platform {

// `font`, or a smaller one, down to half of it, in which the text has room when its lines are
// broken between words.
QFont FittingFont(const QFont& font, const QString& text, QSize room);

// The height that a widget's layout needs at a width, with the fonts as they are at this moment.
int HeightAtWidth(QWidget& widget, int width);

// Gives a dialog that is not shown yet the size that its controls need, and no less than `wanted`.
// Where the screen is too small for that, the dialog gets a smaller font instead.
void FitToScreen(QWidget& dialog, QSize wanted);

// Gives a page, whose size is decided by others, the font of what it lies in, or a smaller one when
// its controls would not have room with that.
void FitToSize(QWidget& page);

}  // namespace platform
