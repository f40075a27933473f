#include "platform/plots/LatePlots.h"

#include <QCoreApplication>
#include <QPluginLoader>
#include <QTimer>
#include <QWidget>

#include <utility>

#include "platform/EventTrap.h"
#include "platform/plots/PlotLibrary.h"
#include "platform/system/Host.h"

namespace platform {

namespace {

PlotLibrary* Library() {
    static QPluginLoader loader(
        JoinPath(QCoreApplication::applicationDirPath(), QStringLiteral("libtarnplots")));
    return qobject_cast<PlotLibrary*>(loader.instance());
}

}  // namespace

// What is to be drawn has been when a timer without a delay comes round.
void WhenPlotsAreLoaded(QWidget& context, std::function<void(PlotLibrary&)> ready) {
    QTimer::singleShot(0, &context,
                       EventTrap::Trapped("LatePlots.Load", [ready = std::move(ready)] {
                           if (PlotLibrary* const library = Library()) {
                               ready(*library);
                           }
                       }));
}

}  // namespace platform
