#include "shell/frm0Start.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

#include "base/Handle.h"
#include "base/u91Trace.h"
#include "platform/controls/FLabel.h"
#include "platform/controls/FontScale.h"
#include "platform/controls/SSPanel.h"
#include "platform/controls/ScrolledPage.h"
#include "platform/help/HelpViewer.h"
#include "shell/ProgramTexts.h"
#include "shell/Scenery.h"
#include "shell/a1Prep.h"
#include "shell/frm0_Prep.h"

using base::Entry;
using base::Handle;
using platform::ScrolledPage;

namespace {

constexpr int kHelpContextId = 1;
// The client area for which the sizes below are meant; on a larger one everything grows with it.
constexpr double kDesignWidth = 800;
constexpr double kDesignHeight = 560;
constexpr double kSmallestScale = 0.7;
constexpr double kLargestScale = 1.8;
constexpr double kTitleSize = 2.9;  // of the font, like the two below
constexpr double kSmallestTitle = 1.5;
constexpr double kTextSize = 1.15;
constexpr double kCopyrightLimit = 1.3;
constexpr double kTitleLines = 1.4;  // the least height of the title's strip, a quarter below it
constexpr int kColumnWidth = 764;
constexpr int kColumnHeight = 300;
constexpr int kBanner = 130;
constexpr int kGap = 18;
constexpr int kButtonHeight = 36;

constexpr const char* kOverview =
    QT_TRANSLATE_NOOP("frm0Start",
                      "|BEFORE:90|This program is used to collect and store data "
                      "for later use during a Tactical Assessment of Response Needs (TARN)."
                      "|CR|Information that can be collected and stored includes:"
                      "|BEFORE:15||CR|   Management Objectives,"
                      "|CR|   Suppression Resource Costs,"
                      "|CR|   Net Value Change (NVC Table), and"
                      "|CR|   Suppression Cost per Acre."
                      "|BEFORE:90||CR|NVC and Suppression Cost per Acre data "
                      "can be copied from an BRAM file, or entered by hand.");

constexpr const char* kInstructions =
    QT_TRANSLATE_NOOP("frm0Start",
                      "To create a new data file,|CR|click the New button."
                      "|BEFORE:180||CR|To review or update an existing data file,"
                      "|BEFORE:0||CR|click the Open button.");

void SetPoints(QWidget& control, double points, bool bold = false) {
    QFont font = control.parentWidget()->font();
    font.setPointSizeF(points);
    font.setBold(bold);
    control.setFont(font);
}

SSPanel* MakePanel(QWidget* parent, const char* name, const QString& accessibleName) {
    auto* panel = new SSPanel(parent);
    panel->setObjectName(QLatin1String(name));
    panel->setAccessibleName(accessibleName);
    panel->setFrameStyle(QFrame::StyledPanel | QFrame::Plain);
    panel->setBackgroundRole(QPalette::Base);
    panel->setAutoFillBackground(true);
    return panel;
}

}  // namespace

frm0Start::frm0Start(QWidget* clientArea)
    : QWidget(clientArea),
      lblTitle_(new QLabel(ProgramTexts::kName, this)),
      column_(new ScrolledPage(this, "startColumn", tr("Start"))) {
    setObjectName(QStringLiteral("frm0Start"));
    setAccessibleName(tr("Start screen"));
    platform::SetHelpContextId(*this, kHelpContextId);
    lblTitle_->setObjectName(QStringLiteral("lblTitle"));
    lblTitle_->setAccessibleName(ProgramTexts::kName);
    lblTitle_->setProperty("Caption", ProgramTexts::kName);
    lblTitle_->setForegroundRole(QPalette::HighlightedText);
    lblCopyright_ = new QLabel(this);
    lblCopyright_->setObjectName(QStringLiteral("lblCopyright"));
    lblCopyright_->setAlignment(Qt::AlignCenter);
    lblCopyright_->setWordWrap(true);
    BuildOverview();
    BuildButtons();
    ArrangeControls();
}

void frm0Start::BuildOverview() {
    pnlOverview_ = MakePanel(&column_->Page(), "pnlOverview", tr("Overview"));
    flbOverview_ = new FLabel(pnlOverview_);
    flbOverview_->setObjectName(QStringLiteral("flbOverview"));
    auto* inside = new QVBoxLayout(pnlOverview_);
    inside->setContentsMargins(kGap, kGap, kGap, kGap);
    inside->addWidget(flbOverview_);
    inside->addStretch();
}

void frm0Start::BuildButtons() {
    pnlButtons_ = MakePanel(&column_->Page(), "pnlButtons", tr("New, Open or Exit"));
    flbStart_ = new FLabel(pnlButtons_);
    flbStart_->setObjectName(QStringLiteral("flbStart"));
    auto* inside = new QVBoxLayout(pnlButtons_);
    inside->setContentsMargins(kGap, kGap, kGap, kGap);
    inside->addWidget(flbStart_);
    inside->addSpacing(kGap);
    cmdNew_ = AddButton(*inside, "cmdNew", tr("&New"), tr("New data file"));
    QPushButton* cmdOpen = AddButton(*inside, "cmdOpen", tr("&Open"), tr("Open data file"));
    QPushButton* cmdExit = AddButton(*inside, "cmdExit", tr("E&xit"), tr("Exit the program"));
    Handle<&frm0Start::cmdNew_Click>(cmdNew_, &QPushButton::clicked, this);
    Handle<&frm0Start::cmdOpen_Click>(cmdOpen, &QPushButton::clicked, this);
    Handle<&frm0Start::cmdExit_Click, Entry::kOwn>(cmdExit, &QPushButton::clicked, this);
    inside->addStretch();
}

QPushButton* frm0Start::AddButton(QVBoxLayout& column, const char* name, const QString& caption,
                                  const QString& accessibleName) {
    auto* button = new QPushButton(caption, pnlButtons_);
    button->setObjectName(QLatin1String(name));
    button->setAccessibleName(accessibleName);
    button->setMinimumHeight(kButtonHeight);
    column.addWidget(button);
    return button;
}

void frm0Start::ArrangeControls() {
    auto* panels = new QHBoxLayout(&column_->Page());
    panels->setContentsMargins(0, 0, 0, 0);
    panels->setSpacing(kGap);
    panels->addWidget(pnlOverview_, 5);
    panels->addWidget(pnlButtons_, 4);
    auto* center = new QHBoxLayout;
    center->addStretch(1);
    center->addWidget(column_, 1000);
    center->addStretch(1);
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(kGap, 0, kGap, kGap / 2);
    rows->setSpacing(kGap);
    rows->addWidget(lblTitle_);
    rows->addLayout(center, 1000);
    rows->addStretch(1);
    rows->addWidget(lblCopyright_);
}

void frm0Start::Form_Load() {
    u91Trace::FormLoad(QStringLiteral("frm0Start"));
    move(0, 0);
    flbOverview_->SetCaption(tr(kOverview));
    flbStart_->SetCaption(tr(kInstructions));
    lblCopyright_->setText(ProgramTexts::NoticeOfRights());
    lblCopyright_->setProperty("Caption", ProgramTexts::NoticeOfRights());
    lblCopyright_->setAccessibleName(ProgramTexts::NoticeOfRights());
    FitToSize();  // before anything is measured in a font that would not stay
    cmdNew_->setFocus();
}

void frm0Start::Form_Unload() {
    u91Trace::FormUnload(QStringLiteral("frm0Start"));
}

void frm0Start::SetBackground() {
    u91Trace::Procedure(QStringLiteral("frm0Start.SetBackground"));
    ShowPanels(false);
}

void frm0Start::SetForeground() {
    u91Trace::Procedure(QStringLiteral("frm0Start.SetForeground"));
    ShowPanels(true);
    cmdNew_->setFocus();
}

// A hidden button would keep the keyboard, and Space would still press it; a form that is not
// enabled gives the keyboard away.
void frm0Start::ShowPanels(bool shown) {
    pnlOverview_->setVisible(shown);
    pnlButtons_->setVisible(shown);
    column_->setVisible(shown);
    setEnabled(shown);
}

void frm0Start::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    Scenery::Paint(painter, QRectF(0, 0, width(), lblTitle_->geometry().bottom() + 1), palette());
}

void frm0Start::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (size() != fittedSize_ || font() != fittedFont_) {
        FitToSize();
    }
}

void frm0Start::FitToSize() {
    fittedSize_ = size();
    fittedFont_ = font();
    const double fitting = std::min(width() / kDesignWidth, height() / kDesignHeight);
    const double size = std::clamp(fitting, kSmallestScale, kLargestScale);
    const auto pixels = [size](int designed) { return static_cast<int>(designed * size); };
    for (QPushButton* button : pnlButtons_->findChildren<QPushButton*>()) {
        button->setMinimumHeight(pixels(kButtonHeight));
    }
    for (SSPanel* panel : {pnlOverview_, pnlButtons_}) {
        const int inset = pixels(kGap);
        panel->layout()->setContentsMargins(inset, inset, inset, inset);
    }
    // Letters that are large already need not grow with the window as well.
    const double usual = fontInfo().pointSizeF();
    const double standard = std::min(usual, platform::kStandardPoints) * std::max(size, 1.0);
    SetPoints(*lblTitle_, std::max(kTitleSize * standard, kSmallestTitle * usual), true);
    SetPoints(*lblCopyright_, std::min(std::max(standard, usual), kCopyrightLimit * usual));
    const int wanted = static_cast<int>(pixels(kColumnWidth) * platform::FontScale(font()));
    const int columnWidth = std::max(std::min(wanted, width() - 2 * kGap), 0);
    const int indent = (width() - 2 * kGap - columnWidth) / 2;
    SizeTexts(std::max(kTextSize * standard, usual));
    int needed = platform::HeightAtWidth(column_->Page(), columnWidth);
    if (needed > RoomBesideTitle() - TitleStrip()) {
        SizeTexts(usual);
        needed = platform::HeightAtWidth(column_->Page(), columnWidth);
    }
    FitTitle(pixels(kBanner), needed);
    lblTitle_->setContentsMargins(indent, 0, 0, lblTitle_->height() / 4);
    column_->setMaximumSize(columnWidth, std::max(pixels(kColumnHeight), needed));
}

// The least height of the strip that the title stands in.
int frm0Start::TitleStrip() const {
    return static_cast<int>(lblTitle_->fontMetrics().height() * kTitleLines);
}

void frm0Start::FitTitle(int share, int columnHeight) {
    const int left = RoomBesideTitle() - columnHeight;
    lblTitle_->setFixedHeight(std::clamp(left, TitleStrip(), std::max(share, TitleStrip())));
}

void frm0Start::SizeTexts(double points) {
    SetPoints(*flbOverview_, points);
    SetPoints(*flbStart_, points);
    for (QPushButton* button : pnlButtons_->findChildren<QPushButton*>()) {
        SetPoints(*button, points);
    }
}

// What is left of the window's height for the title and the column.
int frm0Start::RoomBesideTitle() const {
    const int notice = lblCopyright_->heightForWidth(width() - 2 * kGap);
    return height() - notice - 2 * kGap - kGap / 2;
}

// Return presses the button that has the keyboard, as Space does.
void frm0Start::keyPressEvent(QKeyEvent* event) {
    auto* button = qobject_cast<QPushButton*>(focusWidget());
    if (button != nullptr && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)) {
        button->click();
        return;
    }
    QWidget::keyPressEvent(event);
}

void frm0Start::cmdNew_Click() {
    a1Prep::NewDatafile();
}

void frm0Start::cmdOpen_Click() {
    a1Prep::OpenDatafile();
}

void frm0Start::cmdExit_Click() {
    u91Trace::Start(QStringLiteral("frm0Start.cmdExit_Click"));
    frm0_Prep::Loaded().close();
}
