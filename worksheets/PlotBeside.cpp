#include "worksheets/PlotBeside.h"

#include <QEvent>

#include <algorithm>
#include <utility>

#include "platform/controls/vsFlexGrid.h"
#include "platform/plots/LatePlots.h"
#include "platform/plots/PlotLibrary.h"

using platform::LivePlot;
using platform::PlotLibrary;

namespace worksheets {

namespace {

constexpr int kFrameFrom = 1000;  // pixels of width
constexpr int kGap = 12;
constexpr int kLeast = 200;

}  // namespace

PlotBeside::PlotBeside(vsFlexGrid& grid, const char* name, std::function<void(LivePlot&)> show,
                       QWidget* parent)
    : QWidget(parent), grid_(grid), name_(name), show_(std::move(show)) {
    setObjectName(QStringLiteral("pnlPlot"));
    setAccessibleName(tr("Chart"));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Ignored);
    setMaximumHeight(grid_.maximumHeight());
    grid_.installEventFilter(this);
}

void PlotBeside::Refresh() {
    if (plot_ != nullptr && !plot_->Widget().isHidden()) {
        show_(*plot_);
    }
}

// No taller than the grid, so that what stands below that stays where it is. The frame may become
// wide enough without any change of this part of it.
bool PlotBeside::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize && watched == window()) {
        Arrange();
    } else if (event->type() == QEvent::Resize || event->type() == QEvent::LayoutRequest) {
        setMaximumHeight(grid_.maximumHeight());
    }
    return QWidget::eventFilter(watched, event);
}

void PlotBeside::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    window()->installEventFilter(this);
    Arrange();
}

void PlotBeside::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    Arrange();
}

bool PlotBeside::HasRoom() const {
    const int least =
        plot_ != nullptr ? std::max(kLeast, plot_->Widget().minimumSizeHint().width()) : kLeast;
    const int leastHeight = plot_ != nullptr ? plot_->Widget().minimumSizeHint().height() : 0;
    return window()->width() >= kFrameFrom && width() >= least + kGap && height() >= leastHeight;
}

void PlotBeside::Arrange() {
    if (!isVisible()) {
        return;
    }
    if (plot_ == nullptr) {
        if (!isWanted_ && HasRoom()) {
            isWanted_ = true;
            platform::WhenPlotsAreLoaded(*this, [this](PlotLibrary& library) {
                plot_ = &library.MakePlot(*this);
                plot_->Widget().setObjectName(QString::fromLatin1(name_));
                plot_->Widget().hide();
                show_(*plot_);
                Arrange();
            });
        }
        return;
    }
    QWidget& chart = plot_->Widget();
    const bool shows = HasRoom();
    if (shows) {
        chart.setGeometry(kGap, 0, width() - kGap, height());
    }
    if (shows == chart.isHidden()) {
        chart.setVisible(shows);
        Refresh();
    }
}

}  // namespace worksheets
