// The library of the charts, loaded late: a worksheet is drawn first, and then its chart comes.
#pragma once

#include <functional>

class QWidget;

namespace platform {

class PlotLibrary;

// Calls `ready` from the event loop once, when the window of `context` has been drawn; never when
// the library is not there or `context` goes before. `ready` runs under the program's last trap.
void WhenPlotsAreLoaded(QWidget& context, std::function<void(PlotLibrary&)> ready);

}  // namespace platform
