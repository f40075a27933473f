// The findings at the left, the place of the chosen one at the right.
#pragma once

#include <QWidget>

#include <functional>

#include "plots/ChartLibrary.h"
#include "review/finding.h"
#include "tarnreview/PlaceView.h"
#include "tarnreview/TextTable.h"

class QLabel;
class QSplitter;
class vsFlexGrid;

namespace tarnreview {

class ReviewCase;

class FindingsPage : public QWidget {
    Q_OBJECT

public:
    FindingsPage(const ReviewCase& reviewed, const plots::ChartView::Listener& listener,
                 QWidget* parent);
    ~FindingsPage() override;

    // After a file has been read.
    void ShowFile();

signals:
    void Chosen(const review::Finding& finding);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    [[nodiscard]] QWidget* BuildList();
    [[nodiscard]] QWidget* BuildPlace(const plots::ChartView::Listener& listener);
    void Choose(int row);
    void ShowPlace(const PlaceView& view);
    void ShowTable(const review::Table& table);
    // The width that the findings have, or their place.
    [[nodiscard]] int RoomOfASide() const;

    const ReviewCase& case_;
    TextTable findings_;
    TextTable place_;
    QSplitter* splitter_;
    QLabel* lblSummary_ = nullptr;
    vsFlexGrid* grdFindings_ = nullptr;
    QLabel* lblPlace_ = nullptr;
    QLabel* lblFinding_ = nullptr;
    QLabel* lblAdvice_ = nullptr;
    QLabel* lblTable_ = nullptr;
    vsFlexGrid* grdPlace_ = nullptr;
    plots::ChartView* pltPlace_ = nullptr;
    bool isDivided_ = false;
};

}  // namespace tarnreview
