// The charts of a zone and of one of its locations, and the costs of the resources.
#pragma once

#include <QWidget>

#include <vector>

#include "plots/ChartLibrary.h"
#include "review/finding.h"

class QComboBox;
class QGridLayout;
class QLabel;

namespace tarnreview {

class ReviewCase;

class ChartsPage : public QWidget {
    Q_OBJECT

public:
    ChartsPage(const ReviewCase& reviewed, const plots::ChartView::Listener& listener,
               QWidget* parent);

    // After a file has been read; the zone and the location stay where they are still there.
    void ShowFile();
    // Shows and marks the place of a finding.
    void GoTo(const review::Finding& finding);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    [[nodiscard]] QWidget* BuildChoices();
    void BuildCharts(const plots::ChartView::Listener& listener);
    void FillLocations();
    void ShowZone();
    void ShowLocation();
    void Arrange();

    const ReviewCase& case_;
    QComboBox* cboZone_ = nullptr;
    QComboBox* cboLocation_ = nullptr;
    QWidget* ground_ = nullptr;
    QGridLayout* grid_ = nullptr;
    plots::ChartView* pltNVC_ = nullptr;
    plots::ChartView* pltHeat_ = nullptr;
    plots::ChartView* pltCost_ = nullptr;
    plots::ChartView* pltResources_ = nullptr;
    double largest_ = 0;  // the amount that is darkest in all heat maps
    int columns_ = 0;
};

}  // namespace tarnreview
