// A font small enough for its text.
#pragma once

#include <QFont>
#include <QStringList>

namespace platform {

// `font`, or a smaller one, down to three quarters of it, in which each of the texts takes at most
// `width` pixels.
QFont FittingFont(const QFont& font, const QStringList& texts, int width);

}  // namespace platform
