// How the naming dialog's controls are made, named and laid out.
#include <QEvent>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "base/Handle.h"
#include "datafile/UnitBox.h"
#include "datafile/frmFCDName.h"
#include "platform/controls/FontScale.h"
#include "platform/controls/Named.h"
#include "platform/controls/SSPanel.h"
#include "platform/controls/ScrolledPage.h"
#include "platform/controls/vsFlexGrid.h"
#include "platform/help/HelpViewer.h"
#include "platform/system/Twips.h"

using datafile::UnitBox;
using platform::ScrolledPage;

namespace {

constexpr int kHelpContextId = 70;
constexpr int kSpace = 8;
constexpr int kWideSpace = 14;
constexpr int kScrollBarRoom = 28;
constexpr QSize kDialogSize(792, 480);
constexpr double kDialogFont = 12;  // pixels, with which it has that size

QLabel* MakeLabel(const char* name, const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setObjectName(QString::fromLatin1(name));
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

QLabel* MakeBoxLabel(const char* name, const QString& text, QWidget* box) {
    auto* label = new QLabel(text, box->parentWidget());
    label->setObjectName(QString::fromLatin1(name));
    label->setBuddy(box);
    return label;
}

void MakeBold(QWidget* widget) {
    QFont font = widget->font();
    font.setBold(true);
    widget->setFont(font);
}

// Like the text around it rather than like a box to type into.
void LookComposed(QLineEdit* box) {
    box->setFrame(false);
    QPalette palette;
    palette.setBrush(QPalette::Base, QBrush(Qt::transparent));
    box->setPalette(palette);
}

void SetBoxWidth(QLineEdit* box, int characters) {
    const int room = box->fontMetrics().horizontalAdvance(QLatin1Char('W')) * characters;
    box->setFixedWidth(room + box->fontMetrics().averageCharWidth() * 3);
}

}  // namespace

frmFCDName::frmFCDName(QWidget* frame) : QDialog(frame) {
    setObjectName(QStringLiteral("frmFCDName"));
    setWindowTitle(tr("Name the TARN Prep file"));
    setAccessibleName(windowTitle());
    platform::SetHelpContextId(*this, kHelpContextId);
    CreateControls();
    NameControls();
    LayOutControls();
    SizeBoxes();
    platform::FitToScreen(*this, kDialogSize * (fontInfo().pixelSize() / kDialogFont));
    ConnectHandlers();
}

void frmFCDName::CreateControls() {
    txtUnitID_ = new UnitBox(UnitBox::Rule::kUnitID, kIDLength, this);
    txtUnitName_ = new QLineEdit(this);
    txtUnitName_->setMaxLength(kUnitNameLength);
    txtState_ = new UnitBox(UnitBox::Rule::kState, kStateLength, this);
    txtState_->SelectTwoOnFocus();
    txtYear_ = new UnitBox(UnitBox::Rule::kYear, kWholeYearLength, this);
    txtYear_->SelectTwoOnFocus();
    txtFileTitle_ = new QLineEdit(this);
    txtFileTitle_->setReadOnly(true);
    LookComposed(txtFileTitle_);
    lblExtension_ = MakeLabel("lblExtension", kFileExtension, this);
    lblTie_ = MakeLabel("lblTie",
                        tr("Units in more than one state have the same unit ID.\n"
                           "Please select the Unit from the list at the right."),
                        this);
    Panel3D1_ = new SSPanel(this);
    grdUnits_ = new vsFlexGrid(Panel3D1_);
    cmdOK_ = new QPushButton(tr("&OK"), this);
    cmdOK_->setDefault(true);
    cmdCancel_ = new QPushButton(tr("Cancel"), this);
    cmdCancel_->setAutoDefault(false);
}

void frmFCDName::NameControls() {
    platform::Name(*txtUnitID_, "txtUnitID", tr("Unit identifier"));
    platform::Name(*txtUnitName_, "txtUnitName", tr("Unit name"));
    platform::Name(*txtState_, "txtState", tr("State abbreviation"));
    platform::Name(*txtYear_, "txtYear", tr("Year, two digits"));
    platform::Name(*txtFileTitle_, "txtFileTitle", tr("File name"));
    platform::Name(*Panel3D1_, "Panel3D1", tr("ID Finder"));
    platform::Name(*grdUnits_, "grdUnits", tr("ID Finder: units that match"));
    platform::Name(*cmdOK_, "cmdOK", tr("OK"));
    platform::Name(*cmdCancel_, "cmdCancel", tr("Cancel"));
}

// What depends on the font.
void frmFCDName::SizeBoxes() {
    SetBoxWidth(txtUnitID_, 4);
    SetBoxWidth(txtState_, 2);
    SetBoxWidth(txtYear_, 3);
    FitTitleBox();
}

// As wide as the title, so that the extension stands next to it.
void frmFCDName::FitTitleBox() {
    constexpr int kMarginsAndCaret = 5;
    txtFileTitle_->setFixedWidth(
        txtFileTitle_->fontMetrics().horizontalAdvance(txtFileTitle_->text()) + kMarginsAndCaret);
}

void frmFCDName::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    if (event->type() == QEvent::FontChange && txtFileTitle_ != nullptr) {
        SizeBoxes();
    }
}

void frmFCDName::LayOutControls() {
    auto* scrolled = new ScrolledPage(this, "pnlQuestions", windowTitle());
    auto* columns = new QHBoxLayout(&scrolled->Page());
    columns->setContentsMargins(0, 0, 0, 0);
    columns->setSpacing(kWideSpace);
    columns->addLayout(LayOutQuestions(), 3);
    Panel3D1_->setLayout(LayOutFinder());
    // Names are long, and none should be cut beside free room.
    columns->addWidget(Panel3D1_, 4);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOK_);
    buttons->addWidget(cmdCancel_);

    auto* page = new QVBoxLayout(this);
    page->setContentsMargins(kWideSpace, kWideSpace, kWideSpace, kWideSpace);
    page->setSpacing(kWideSpace);
    page->addWidget(scrolled, 1);
    page->addLayout(buttons);

    setTabOrder(txtUnitID_, txtUnitName_);
    setTabOrder(txtUnitName_, txtState_);
    setTabOrder(txtState_, txtYear_);
    setTabOrder(txtYear_, txtFileTitle_);
    setTabOrder(txtFileTitle_, grdUnits_);
    setTabOrder(grdUnits_, cmdOK_);
    setTabOrder(cmdOK_, cmdCancel_);
}

QLayout* frmFCDName::LayOutQuestions() {
    auto* column = new QVBoxLayout;
    column->setSpacing(kSpace);
    column->addWidget(MakeLabel("lblFileNameRule",
                                tr("The file name consists of the Unit Identifier, the "
                                   "State abbreviation, and the current year."),
                                this));
    column->addWidget(MakeLabel("lblUnsure",
                                tr("If you are unsure of the unit identifier, you may "
                                   "be able to find it using the ID Finder at the "
                                   "right."),
                                this));
    column->addSpacing(kSpace);
    auto* stepOne = MakeLabel("lblStep1",
                              tr("1. Enter the 3-character unit identifier and the "
                                 "unit name  (Example:  GPF   Gifford Pinchot NF):"),
                              this);
    MakeBold(stepOne);
    column->addWidget(stepOne);
    column->addLayout(LayOutUnitRow());
    QSizePolicy keepsItsRoom = lblTie_->sizePolicy();
    keepsItsRoom.setRetainSizeWhenHidden(true);
    lblTie_->setSizePolicy(keepsItsRoom);
    lblTie_->setAutoFillBackground(true);
    lblTie_->setBackgroundRole(QPalette::ToolTipBase);
    lblTie_->setForegroundRole(QPalette::ToolTipText);
    lblTie_->setFrameStyle(QFrame::Box | QFrame::Plain);
    lblTie_->setMargin(kSpace / 2);
    lblTie_->hide();
    column->addWidget(lblTie_);

    auto* stepTwo = MakeLabel("lblStep2", tr("2. Fill in the State abbreviation and Year"), this);
    MakeBold(stepTwo);
    column->addWidget(stepTwo);
    auto* row = new QHBoxLayout;
    row->addWidget(MakeBoxLabel("lblState", tr("&State:"), txtState_));
    row->addWidget(txtState_);
    row->addSpacing(kWideSpace);
    row->addWidget(MakeBoxLabel("lblYear", tr("&Year:"), txtYear_));
    row->addWidget(txtYear_);
    row->addStretch();
    column->addLayout(row);

    column->addStretch();
    auto* result = new SSPanel(this);
    platform::Name(*result, "pnlFileName", tr("File name"));
    result->setLayout(LayOutTitleRow());
    column->addWidget(result);
    return column;
}

QLayout* frmFCDName::LayOutUnitRow() {
    auto* grid = new QGridLayout;
    grid->setVerticalSpacing(2);
    grid->addWidget(MakeBoxLabel("lblUnitID", tr("Unit &identifier:"), txtUnitID_), 0, 0);
    grid->addWidget(MakeBoxLabel("lblUnitName", tr("Unit &name:"), txtUnitName_), 0, 1);
    grid->addWidget(txtUnitID_, 1, 0);
    grid->addWidget(txtUnitName_, 1, 1);
    grid->setColumnStretch(1, 1);
    return grid;
}

QLayout* frmFCDName::LayOutTitleRow() {
    auto* row = new QHBoxLayout;
    auto* label = MakeBoxLabel("lblFileName", tr("File name:"), txtFileTitle_);
    MakeBold(label);
    MakeBold(txtFileTitle_);
    MakeBold(lblExtension_);
    lblExtension_->setWordWrap(false);
    row->addWidget(label);
    row->addSpacing(kSpace);
    row->setSpacing(0);
    row->addWidget(txtFileTitle_);
    row->addWidget(lblExtension_);
    row->addStretch();
    return row;
}

QLayout* frmFCDName::LayOutFinder() {
    auto* title = MakeLabel("lblIDFinder", tr("ID Finder"), Panel3D1_);
    MakeBold(title);
    title->setBuddy(grdUnits_);
    auto* hint =
        MakeLabel("lblClickHint", tr("Click the unit name if it appears in the list."), Panel3D1_);
    grdUnits_->setMinimumWidth(platform::ToPixels(kNameWidth + 2 * kCodeWidth) + kScrollBarRoom);
    auto* column = new QVBoxLayout;
    column->setContentsMargins(kSpace, kSpace, kSpace, kSpace);
    column->setSpacing(kSpace);
    column->addWidget(title);
    column->addWidget(hint);
    column->addWidget(grdUnits_, 1);
    return column;
}

void frmFCDName::ConnectHandlers() {
    using base::Entry;
    using base::Handle;
    Handle<&frmFCDName::MarkCurrentUnit, Entry::kOwn>(grdUnits_->selectionModel(),
                                                      &QItemSelectionModel::currentChanged, this);
    Handle<&frmFCDName::txtUnitID_Change>(txtUnitID_, &QLineEdit::textChanged, this);
    Handle<&frmFCDName::txtUnitName_Change>(txtUnitName_, &QLineEdit::textChanged, this);
    Handle<&frmFCDName::txtState_Change>(txtState_, &QLineEdit::textChanged, this);
    Handle<&frmFCDName::txtYear_Change>(txtYear_, &QLineEdit::textChanged, this);
    Handle<&frmFCDName::FitTitleBox, Entry::kOwn>(txtFileTitle_, &QLineEdit::textChanged, this);
    connect(txtUnitID_, &UnitBox::DownPressed, txtState_, qOverload<>(&QWidget::setFocus));
    connect(txtState_, &UnitBox::DownPressed, txtYear_, qOverload<>(&QWidget::setFocus));
    Handle<&frmFCDName::grdUnits_Click, Entry::kOwn>(grdUnits_, &vsFlexGrid::Click, this);
    Handle<&frmFCDName::cmdOK_Click>(cmdOK_, &QPushButton::clicked, this);
    connect(cmdCancel_, &QPushButton::clicked, this, &QDialog::reject);
}
