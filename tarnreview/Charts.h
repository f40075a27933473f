// The library of the charts, loaded when the first chart is wanted.
#pragma once

#include "plots/ChartLibrary.h"

namespace Charts {

// A chart in a widget, named like everything in the window; null when the library is not there.
plots::ChartView* Make(QWidget& parent, const char* name, const QString& accessibleName);

// A chart as a picture, and the height that it takes; nothing, and 0, without the library.
QImage Picture(const plots::ChartContent& content, int width, const plots::ChartLook& look);
int HeightOf(const plots::ChartContent& content, int width);

}  // namespace Charts
