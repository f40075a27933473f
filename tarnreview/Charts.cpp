#include "tarnreview/Charts.h"

#include <QWidget>

#include "platform/system/LateLibrary.h"

using plots::ChartContent;
using plots::ChartLibrary;
using plots::ChartLook;
using plots::ChartView;

namespace {

ChartLibrary* Library() {
    return platform::LateLibrary<ChartLibrary>(QStringLiteral("tarnplots"));
}

}  // namespace

namespace Charts {

ChartView* Make(QWidget& parent, const char* name, const QString& accessibleName) {
    ChartLibrary* const library = Library();
    if (library == nullptr) {
        return nullptr;
    }
    ChartView& chart = library->MakeChart(parent);
    chart.Widget().setObjectName(QString::fromLatin1(name));
    chart.Show(std::monostate(), accessibleName, {});
    return &chart;
}

QImage Picture(const ChartContent& content, int width, const ChartLook& look) {
    ChartLibrary* const library = Library();
    return library != nullptr ? library->Picture(content, width, look) : QImage();
}

int HeightOf(const ChartContent& content, int width) {
    ChartLibrary* const library = Library();
    return library != nullptr ? library->HeightOf(content, width) : 0;
}

}  // namespace Charts
