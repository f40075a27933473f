// What differs from last year's file, line by line, and the largest changes as a chart.
#pragma once

#include <QWidget>

#include "plots/ChartLibrary.h"
#include "tarnreview/TextTable.h"

class QLabel;
class vsFlexGrid;

namespace tarnreview {

class ReviewCase;

class ComparePage : public QWidget {
    Q_OBJECT

public:
    ComparePage(const ReviewCase& reviewed, const plots::ChartView::Listener& listener,
                QWidget* parent);
    ~ComparePage() override;

    // After a file, or last year's, has been read.
    void ShowFile();

private:
    void MarkDifference(int row);

    const ReviewCase& case_;
    TextTable differences_;
    QLabel* lblCompared_ = nullptr;
    vsFlexGrid* grdDifferences_ = nullptr;
    plots::ChartView* pltChange_ = nullptr;
    QStringList changes_;  // the places of the chart's bars
};

}  // namespace tarnreview
