// The charts beside the worksheets.
#pragma once

#include "platform/plots/PlotLibrary.h"

namespace plots {

// An empty one; the parent owns its widget, which owns it.
platform::LivePlot& MakeLivePlot(QWidget& parent);

}  // namespace plots
