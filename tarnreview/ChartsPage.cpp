#include "tarnreview/ChartsPage.h"

#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QVBoxLayout>

#include <algorithm>

#include "platform/EventTrap.h"
#include "platform/controls/ScrolledPage.h"
#include "platform/help/HelpViewer.h"
#include "review/looking.h"
#include "review/report_charts.h"
#include "season/season.h"
#include "tarnreview/Charts.h"
#include "tarnreview/Parts.h"
#include "tarnreview/PlaceView.h"
#include "tarnreview/ReviewCase.h"

using platform::ScrolledPage;
using plots::ChartSpot;
using plots::ChartView;

namespace tarnreview {

using Parts::Text;
using platform::EventTrap::Trapped;

namespace {

constexpr int kHelpContextId = 91;
constexpr int kTwoColumnsFrom = 150;  // average characters
constexpr int kShownOfZone = 28;

}  // namespace

ChartsPage::ChartsPage(const ReviewCase& reviewed, const ChartView::Listener& listener,
                       QWidget* parent)
    : QWidget(parent), case_(reviewed) {
    platform::SetHelpContextId(*this, kHelpContextId);
    Parts::Name(*this, "pageCharts", tr("Charts"));
    auto* whole = new QVBoxLayout(this);
    whole->addWidget(BuildChoices());
    auto* scrolled = new ScrolledPage(this, "areaCharts", tr("Charts"));
    ground_ = &scrolled->Page();
    grid_ = new QGridLayout(ground_);
    grid_->setContentsMargins(0, 0, 0, 0);
    whole->addWidget(scrolled, 1);
    BuildCharts(listener);
    connect(cboZone_, &QComboBox::currentIndexChanged, this,
            Trapped("ChartsPage.ShowZone", [this](int) { ShowZone(); }));
    connect(cboLocation_, &QComboBox::currentIndexChanged, this,
            Trapped("ChartsPage.ShowLocation", [this](int) { ShowLocation(); }));
}

QWidget* ChartsPage::BuildChoices() {
    auto* row = new QWidget(this);
    Parts::Name(*row, "rowChoices", tr("What is shown"));
    auto* across = new QHBoxLayout(row);
    across->setContentsMargins(0, 0, 0, 0);
    const auto add = [&](const char* name, const QString& caption) {
        QLabel* label =
            platform::NamedLabel(row, (QByteArray("lbl") + (name + 3)).constData(), caption);
        auto* box = new QComboBox(row);
        platform::NameByLabel(*box, name, *label);
        box->setSizeAdjustPolicy(QComboBox::AdjustToContents);
        across->addWidget(label);
        across->addWidget(box);
        return box;
    };
    cboZone_ = add("cboZone", tr("Fire Management &Zone"));
    cboZone_->setMinimumContentsLength(kShownOfZone);
    cboZone_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    cboLocation_ = add("cboLocation", tr("Lo&cation"));
    across->addStretch(1);
    return row;
}

void ChartsPage::BuildCharts(const ChartView::Listener& listener) {
    const auto make = [&](const char* name, const QString& heard) {
        ChartView* const chart = Charts::Make(*ground_, name, heard);
        if (chart != nullptr) {
            chart->SetListener(listener);
        }
        return chart;
    };
    pltNVC_ = make("pltNVC", tr("Totals per acre by FIL"));
    pltHeat_ = make("pltHeat", tr("Values of a location"));
    pltCost_ = make("pltCost", tr("Cost per acre by fire size"));
    pltResources_ = make("pltResources", tr("Costs of suppression resources"));
    if (pltNVC_ == nullptr) {
        auto* why = Parts::Words(ground_, "lblNoCharts", tr("Charts"));
        why->setText(tr("The library for charts cannot be loaded, so there are none."));
        grid_->addWidget(why, 0, 0);
        cboZone_->setEnabled(false);
        cboLocation_->setEnabled(false);
        return;
    }
    Arrange();
}

void ChartsPage::ShowFile() {
    const season::Season& season = *case_.Season();
    const int zone = std::max(0, cboZone_->currentIndex());
    const int location = std::max(0, cboLocation_->currentIndex());
    largest_ = review::LargestAmount(season);
    {
        const QSignalBlocker quiet(cboZone_);
        cboZone_->clear();
        for (const season::Zone& one : season.zones) {
            cboZone_->addItem(Text(review::PlaceOf(one).Words()), one.key);
        }
        cboZone_->setCurrentIndex(std::min(zone, cboZone_->count() - 1));
    }
    ShowZone();
    cboLocation_->setCurrentIndex(std::min(location, cboLocation_->count() - 1));
    if (pltResources_ != nullptr) {
        pltResources_->Show(ResourceCosts(season), tr("Costs of suppression resources"), {});
    }
}

void ChartsPage::FillLocations() {
    const QSignalBlocker quiet(cboLocation_);
    cboLocation_->clear();
    const int at = cboZone_->currentIndex();
    if (at >= 0) {
        const int count = season::LiveCount(case_.Season()->zones.at(static_cast<std::size_t>(at)));
        for (int number = 1; number <= count; ++number) {
            cboLocation_->addItem(QString::number(number), number);
        }
    }
    cboLocation_->setEnabled(cboLocation_->count() > 0);
}

void ChartsPage::ShowZone() {
    FillLocations();
    const int at = cboZone_->currentIndex();
    if (pltNVC_ == nullptr) {
        return;
    }
    const QString totals = tr("Totals per acre by FIL, all locations on one scale");
    const QString costs = tr("Cost per acre by fire size");
    if (at < 0) {
        pltNVC_->Show(std::monostate(), totals, {});
        pltCost_->Show(std::monostate(), costs, {});
    } else {
        const season::Zone& zone = case_.Season()->zones.at(static_cast<std::size_t>(at));
        const QString place = cboZone_->currentText();
        pltNVC_->Show(review::TotalsChartOf(zone), totals, place);
        pltCost_->Show(review::CostChartOf(zone), costs, place);
        pltCost_->Mark(std::nullopt);
    }
    ShowLocation();
}

void ChartsPage::ShowLocation() {
    if (pltHeat_ == nullptr) {
        return;
    }
    const int at = cboZone_->currentIndex();
    const int location = cboLocation_->currentData().toInt();
    pltHeat_->Mark(std::nullopt);
    if (at < 0 || location < 1) {
        pltHeat_->Show(std::monostate(), tr("Values of a location"), {});
        return;
    }
    pltNVC_->Mark(ChartSpot{location - 1, -1});
    const season::Season& season = *case_.Season();
    const QString place = tr("%1, location %2").arg(cboZone_->currentText()).arg(location);
    pltHeat_->Show(review::HeatMapOf(season, season.zones.at(static_cast<std::size_t>(at)),
                                     location, largest_),
                   tr("%1: dollars per acre; the stronger the color, the larger").arg(place),
                   place);
}

void ChartsPage::GoTo(const review::Finding& finding) {
    const review::Place& place = finding.place;
    const season::Zone* const zone = ZoneAt(*case_.Season(), place);
    if (zone == nullptr || pltNVC_ == nullptr) {
        return;
    }
    cboZone_->setCurrentIndex(cboZone_->findData(zone->key));
    if (place.location) {
        cboLocation_->setCurrentIndex(cboLocation_->findData(*place.location));
        if (place.resource && place.fil) {
            pltHeat_->Mark(
                ChartSpot{RowOfResource(*case_.Season(), *place.resource), *place.fil - 1});
        } else {
            pltHeat_->Mark(std::nullopt);
            pltNVC_->Mark(ChartSpot{*place.location - 1, place.fil ? *place.fil - 1 : -1});
        }
    }
    pltCost_->Mark(place.sizeClass ? StepOf(review::CostChartOf(*zone), *zone, *place.sizeClass)
                                   : std::nullopt);
}

void ChartsPage::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    Arrange();
}

// Side by side where each chart has room enough, else below each other.
void ChartsPage::Arrange() {
    const int columns = width() >= kTwoColumnsFrom * fontMetrics().averageCharWidth() ? 2 : 1;
    if (columns == columns_ || pltNVC_ == nullptr) {
        return;
    }
    columns_ = columns;
    int at = 0;
    for (ChartView* chart : {pltNVC_, pltHeat_, pltCost_, pltResources_}) {
        grid_->addWidget(&chart->Widget(), at / columns, at % columns);
        ++at;
    }
    grid_->setColumnStretch(0, 1);
    grid_->setColumnStretch(1, columns == 2 ? 1 : 0);
}

}  // namespace tarnreview
