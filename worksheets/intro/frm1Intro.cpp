#include "worksheets/intro/frm1Intro.h"

#include <QLabel>
#include <QScrollArea>
#include <QVBoxLayout>

#include <algorithm>

#include "base/u91Trace.h"
#include "platform/controls/FLabel.h"
#include "platform/controls/SSPanel.h"

using worksheets::WorksheetHost;
using worksheets::WorksheetPage;

namespace {

constexpr int kHelpContextId = 10;
constexpr int kTextWidth = 900;  // pixels, before the text grows
constexpr int kInset = 14;
// The text grows with the page from this size on.
constexpr double kTextScale = 1.15;
constexpr double kDesignWidth = 800;
constexpr double kDesignHeight = 540;
constexpr double kLargestScale = 1.7;

constexpr const char* kTitle =
    QT_TRANSLATE_NOOP("frm1Intro", "Instructions for creating a TARN Prep file");

constexpr const char* kDescription = QT_TRANSLATE_NOOP(
    "frm1Intro",

    "The TARN Prep process involves collecting information in a single file so that it is easily "
    "accessible when needed for a Tactical Assessment of Response Needs (TARN).  "
    "|CR||BEFORE:180|Worksheet 1: Introduction.  This page."
    "|CR||BEFORE:90|Worksheet 2: Management Goals.  Management goals, objectives and guidelines "
    "can be entered to help ensure that suppression objectives in the TARN are consistent with "
    "resource management objectives for the area."
    "|CR|Worksheet 3: Suppression Resources.  You will select suppression resources from this list "
    "when describing alternatives in the TARN."
    "|CR|Worksheet 4: FMZs.  Import data from an BRAM file."
    "|CR|Worksheet 5: NVC Table.  The NVC Table will be used to compute impacts on natural "
    "resources in the TARN."
    "|CR|Worksheet 6: Suppression Cost / Acre.  This table will be used to estimate suppression "
    "costs based on historic cost per acre.");

// Scrolls the text where the window is too low for it.
QScrollArea* Scroller(QWidget* parent, FLabel* text) {
    auto* page = new QWidget;
    page->setObjectName(QStringLiteral("descriptionPage"));
    page->setAccessibleName(QScrollArea::tr("Instructions"));
    auto* center = new QVBoxLayout(page);
    center->setContentsMargins(kInset, kInset, kInset, kInset);
    center->addWidget(text);
    center->addStretch();
    auto* area = new QScrollArea(parent);
    area->setObjectName(QStringLiteral("descriptionArea"));
    area->setAccessibleName(QScrollArea::tr("Instructions"));
    area->setWidget(page);
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setBackgroundRole(QPalette::Base);
    area->viewport()->setObjectName(QStringLiteral("descriptionViewport"));
    return area;
}

}  // namespace

frm1Intro::frm1Intro(WorksheetHost& host, QWidget* parent)
    : WorksheetPage(host, parent,
                    {.name = "frm1Intro",
                     .caption = tr("Introduction"),
                     .id = kID,
                     .helpContextId = kHelpContextId}),
      flbDescription_(new FLabel) {
    UseWholeWidth();
    AddTitle(tr("Description of Section"));
    auto* pnlDescription = new SSPanel(this);
    pnlDescription->setObjectName(QStringLiteral("pnlDescription"));
    pnlDescription->setAccessibleName(tr("Description"));
    flbDescription_->setObjectName(QStringLiteral("flbDescription"));
    auto* inside = new QVBoxLayout(pnlDescription);
    inside->setContentsMargins(2, 2, 2, 2);
    inside->addWidget(Scroller(pnlDescription, flbDescription_));
    Body().addWidget(pnlDescription, 1);
}

void frm1Intro::Setup() {
    u91Trace::Procedure(QStringLiteral("frm1Intro.Setup"));
    BecomeCurrent();
    auto* lblTitle = findChild<QLabel*>(QStringLiteral("lblTitle"));
    const QString title = tr(kTitle);
    lblTitle->setText(title);
    lblTitle->setProperty("Caption", title);
    lblTitle->setAccessibleName(title);
    flbDescription_->SetCaption(tr(kDescription));
}

void frm1Intro::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    const double fitting = std::min(width() / kDesignWidth, height() / kDesignHeight);
    const double scale = std::clamp(fitting, 1.0, kLargestScale);
    QFont larger = font();
    larger.setPointSizeF(larger.pointSizeF() * kTextScale * scale);
    flbDescription_->setFont(larger);
    flbDescription_->setMaximumWidth(static_cast<int>(kTextWidth * scale));
}

void frm1Intro::Unload() {
    u91Trace::FormUnload(QStringLiteral("frm1Intro"));
}
