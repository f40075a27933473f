// Which style the programs draw with.
#pragma once

#include <QPalette>
#include <QString>

namespace platform {

// The name of the style that fits these colors on this platform of Qt's. It is empty for the
// desktop's own, which does but for Windows: its own style draws light boxes whatever the colors
// are.
QString FittingStyle(const QString& platform, const QPalette& colors);

// Gives the application that style, made legible, and the other one when the system's colors have
// changed. Needs the application object.
void InstallLegibleStyle();

}  // namespace platform
