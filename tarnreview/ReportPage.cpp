#include "tarnreview/ReportPage.h"

#include <QComboBox>
#include <QLabel>
#include <QVBoxLayout>

#include "platform/EventTrap.h"
#include "platform/help/HelpViewer.h"
#include "platform/system/Pointer.h"
#include "tarnreview/Parts.h"
#include "tarnreview/ReportText.h"
#include "tarnreview/ReviewCase.h"
#include "tarnreview/SaveAs.h"

namespace tarnreview {

using platform::EventTrap::Trapped;

namespace {

constexpr int kHelpContextId = 93;
// Reports with more sections are shown one section at a time.
constexpr std::size_t kMostAtOnce = 40;
constexpr int kShownOfPart = 40;  // characters

}  // namespace

ReportPage::ReportPage(const ReviewCase& reviewed, QWidget* parent)
    : QWidget(parent),
      case_(reviewed),
      cboPart_(new QComboBox(this)),
      txtReport_(new ReportText(this)) {
    platform::SetHelpContextId(*this, kHelpContextId);
    Parts::Name(*this, "pageReport", tr("Report"));
    QLabel* label = platform::NamedLabel(this, "lblPart", tr("P&art of the report"));
    platform::NameByLabel(*cboPart_, "cboPart", *label);
    cboPart_->setMinimumContentsLength(kShownOfPart);
    cboPart_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    Parts::Name(*txtReport_, "txtReport", tr("Report"));
    auto* across = new QHBoxLayout;
    across->addWidget(label);
    across->addWidget(cboPart_);
    across->addStretch(1);
    auto* whole = new QVBoxLayout(this);
    whole->addLayout(across);
    whole->addWidget(txtReport_, 1);
    connect(cboPart_, &QComboBox::currentIndexChanged, this,
            Trapped("ReportPage.ShowPart", [this](int part) { ShowPart(part); }));
}

ReportPage::~ReportPage() = default;

void ReportPage::ShowFile() {
    isOld_ = true;
    if (isVisible()) {
        Fill();
    }
}

void ReportPage::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    platform::EventTrap::Run("ReportPage.Fill", [this] { Fill(); });
}

void ReportPage::Fill() {
    if (!isOld_ || case_.Season() == nullptr) {
        return;
    }
    isOld_ = false;
    report_ = case_.Report(SaveAs::Today());
    const bool inParts = report_.sections.size() > kMostAtOnce;
    {
        const QSignalBlocker quiet(cboPart_);
        cboPart_->clear();
        if (!inParts) {
            cboPart_->addItem(tr("The whole report"), -1);
        }
        for (std::size_t i = 0; i < report_.sections.size(); ++i) {
            cboPart_->addItem(Parts::Text(report_.sections[i].heading), static_cast<int>(i));
        }
    }
    ShowPart(cboPart_->currentIndex());
}

void ReportPage::ShowPart(int part) {
    const platform::PointerScope busy(platform::Pointer::kHourglass);
    const int section = part < 0 ? -1 : cboPart_->itemData(part).toInt();
    txtReport_->ShowDocument(report_, section);
}

}  // namespace tarnreview
