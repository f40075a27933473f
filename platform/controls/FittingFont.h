// Fonts small enough for what they have room for.
#pragma once

#include <QFont>
#include <QSize>
#include <QString>

class QWidget;

namespace platform {

// `font`, or a smaller one, down to half of it, in which the text has room when its lines are
// broken between words.
QFont FittingFont(const QFont& font, const QString& text, QSize room);

// Gives a page, whose size is decided by others, the font of what it lies in, or a smaller one when
// its controls would not have room with that.
void FitToSize(QWidget& page);

}  // namespace platform
