#include "tarnreview/ComparePage.h"

#include <QHeaderView>
#include <QLabel>
#include <QVBoxLayout>

#include "platform/EventTrap.h"
#include "platform/controls/vsFlexGrid.h"
#include "platform/help/HelpViewer.h"
#include "review/difference.h"
#include "review/difference_words.h"
#include "review/figures.h"
#include "review/report_charts.h"
#include "season/file_name.h"
#include "tarnreview/Charts.h"
#include "tarnreview/Parts.h"
#include "tarnreview/ReviewCase.h"

using plots::ChartSpot;
using plots::ChartView;

namespace tarnreview {

using Parts::Text;
using platform::EventTrap::Trapped;

namespace {

constexpr int kHelpContextId = 94;
constexpr int kMostOfPlace = 80;

QString OneLine(const std::string& text) {
    return Text(text).simplified();
}

}  // namespace

ComparePage::ComparePage(const ReviewCase& reviewed, const ChartView::Listener& listener,
                         QWidget* parent)
    : QWidget(parent), case_(reviewed) {
    platform::SetHelpContextId(*this, kHelpContextId);
    Parts::Name(*this, "pageCompare", tr("Compare"));
    auto* whole = new QVBoxLayout(this);
    lblCompared_ = Parts::Words(this, "lblCompared", tr("What is compared"));
    whole->addWidget(lblCompared_);
    grdDifferences_ = Parts::List(this, "grdDifferences", tr("Differences from last year"),
                                  {tr("Kind"), tr("What"), tr("Place"), tr("Last year"), tr("Now")},
                                  differences_);
    differences_.SetNameColumn(2);
    grdDifferences_->SetRowNameColumn(2);
    whole->addWidget(grdDifferences_, 1);
    pltChange_ = Charts::Make(*this, "pltChange", tr("The largest changes"));
    if (pltChange_ != nullptr) {
        pltChange_->SetListener(listener);
        whole->addWidget(&pltChange_->Widget(), 1);
    }
    connect(
        grdDifferences_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
        Trapped("ComparePage.MarkDifference",
                [this](const QModelIndex& row, const QModelIndex&) { MarkDifference(row.row()); }));
    ShowFile();
}

// The grid goes before the table that it shows.
ComparePage::~ComparePage() {
    grdDifferences_->SetTable(nullptr);
}

void ComparePage::ShowFile() {
    const season::Season* const older = case_.Previous();
    std::vector<QStringList> rows;
    for (const review::Difference& difference : case_.Differences()) {
        const review::DifferenceWords words = review::WordsOf(difference);
        rows.push_back({QString::fromUtf8(review::ChangeName(difference.kind).data()),
                        Text(words.what), Text(words.place), OneLine(words.older),
                        OneLine(words.newer)});
    }
    differences_.SetRows(std::move(rows));
    Parts::ShowRows(*grdDifferences_, differences_, kMostOfPlace, window()->width());
    grdDifferences_->setVisible(older != nullptr);
    if (older == nullptr) {
        lblCompared_->setText(
            tr("Choose last year's file with the button Last Year to see what "
               "differs from it."));
    } else {
        lblCompared_->setText(
            tr("%1 from %2")
                .arg(Text(review::Counted(case_.Differences().size(), "difference")),
                     Text(season::TitleOf(older->path))));
    }
    if (pltChange_ != nullptr) {
        const review::BarChart chart = review::LargestChanges(case_.Differences());
        changes_.clear();
        for (const review::BarChart::Bar& bar : chart.bars) {
            changes_ += Text(bar.label);
        }
        pltChange_->Widget().setVisible(older != nullptr);
        pltChange_->Mark(std::nullopt);
        pltChange_->Show(chart, tr("The largest changes of values and costs, dollars per acre"),
                         {});
    }
}

void ComparePage::MarkDifference(int row) {
    if (pltChange_ == nullptr || row < 0 || row >= differences_.RowCount()) {
        return;
    }
    const qsizetype bar = changes_.indexOf(differences_.Text(row + 1, 2));
    pltChange_->Mark(bar < 0 ? std::nullopt : std::optional(ChartSpot{0, static_cast<int>(bar)}));
}

}  // namespace tarnreview
