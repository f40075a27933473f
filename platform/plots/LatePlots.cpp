#include "platform/plots/LatePlots.h"

#include <QTimer>
#include <QWidget>

#include <utility>

#include "platform/EventTrap.h"
#include "platform/plots/PlotLibrary.h"
#include "platform/system/LateLibrary.h"

namespace platform {

// What is to be drawn has been when a timer without a delay comes round.
void WhenPlotsAreLoaded(QWidget& context, std::function<void(PlotLibrary&)> ready) {
    QTimer::singleShot(
        0, &context, EventTrap::Trapped("LatePlots.Load", [ready = std::move(ready)] {
            if (auto* const library = LateLibrary<PlotLibrary>(QStringLiteral("tarnplots"))) {
                ready(*library);
            }
        }));
}

}  // namespace platform
