// The chart in the room to the right of a worksheet's grid.
//
// It is there where the frame is wide enough, and from the moment on when the library of the charts
// is loaded; otherwise nothing is, and the worksheet is the same as ever.
#pragma once

#include <QWidget>

#include <functional>

class vsFlexGrid;

namespace platform {
class LivePlot;
}

namespace worksheets {

class PlotBeside : public QWidget {
    Q_OBJECT

public:
    // `show` gives the chart what it shows at that moment; it runs when the chart comes and at each
    // Refresh. `name` is the chart's own.
    PlotBeside(vsFlexGrid& grid, const char* name, std::function<void(platform::LivePlot&)> show,
               QWidget* parent);

    // After what is shown has changed.
    void Refresh();

    [[nodiscard]] QSize sizeHint() const override { return {0, 0}; }
    [[nodiscard]] QSize minimumSizeHint() const override { return {0, 0}; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    [[nodiscard]] bool HasRoom() const;
    void Arrange();

    vsFlexGrid& grid_;
    const char* name_;
    std::function<void(platform::LivePlot&)> show_;
    platform::LivePlot* plot_ = nullptr;
    bool isWanted_ = false;  // the library has been asked for
};

}  // namespace worksheets
