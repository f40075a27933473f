// How the naming dialog's controls are made, named and laid out.
#include <QEvent>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "datafile/UnitBox.h"
#include "datafile/frmFCDName.h"
#include "platform/EventTrap.h"
#include "platform/controls/FittingFont.h"
#include "platform/controls/SSPanel.h"
#include "platform/controls/vsFlexGrid.h"
#include "platform/help/HelpViewer.h"
#include "platform/system/Host.h"

namespace {

constexpr int kHelpContext = 70;
constexpr int kSpace = 8;
constexpr int kWideSpace = 14;
constexpr QSize kDialogSize(760, 480);
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

void SetBoxWidth(QLineEdit* box, int characters) {
    const int room = box->fontMetrics().horizontalAdvance(QLatin1Char('W')) * characters;
    box->setFixedWidth(room + box->fontMetrics().averageCharWidth() * 3);
}

void Name(QWidget* control, const char* name, const QString& accessibleName) {
    control->setObjectName(QString::fromLatin1(name));
    control->setAccessibleName(accessibleName);
}

}  // namespace

frmFCDName::frmFCDName(QWidget* frame) : QDialog(frame) {
    setObjectName(QStringLiteral("frmFCDName"));
    setWindowTitle(QStringLiteral("Name the TARN Prep file"));
    setAccessibleName(windowTitle());
    platform::SetHelpContextId(*this, kHelpContext);
    CreateControls();
    NameControls();
    LayOutControls();
    SizeBoxes();
    platform::FitToScreen(*this, kDialogSize * (fontInfo().pixelSize() / kDialogFont));
    ConnectHandlers();
}

void frmFCDName::CreateControls() {
    txtUnitID = new UnitBox(UnitBox::Rule::kUnitID, 3, this);
    txtUnitName = new QLineEdit(this);
    txtUnitName->setMaxLength(100);
    txtState = new UnitBox(UnitBox::Rule::kState, 2, this);
    txtState->SelectTwoOnFocus();
    txtYear = new UnitBox(UnitBox::Rule::kYear, 2, this);
    txtYear->SelectTwoOnFocus();
    txtFileTitle = new QLineEdit(this);
    txtFileTitle->setReadOnly(true);
    lblExtension = MakeLabel("lblExtension", QStringLiteral(".FCD"), this);
    lblTie = MakeLabel("lblTie",
                       QStringLiteral("Units in more than one state have the same unit ID.\n"
                                      "Please select the Unit from the list at the right."),
                       this);
    Panel3D1 = new SSPanel(this);
    grdUnits = new vsFlexGrid(Panel3D1);
    cmdOK = new QPushButton(QStringLiteral("&OK"), this);
    cmdOK->setDefault(true);
    cmdCancel = new QPushButton(QStringLiteral("Cancel"), this);
    cmdCancel->setAutoDefault(false);
}

void frmFCDName::NameControls() {
    Name(txtUnitID, "txtUnitID", QStringLiteral("Unit identifier"));
    Name(txtUnitName, "txtUnitName", QStringLiteral("Unit name"));
    Name(txtState, "txtState", QStringLiteral("State abbreviation"));
    Name(txtYear, "txtYear", QStringLiteral("Year, two digits"));
    Name(txtFileTitle, "txtFileTitle", QStringLiteral("File name"));
    Name(Panel3D1, "Panel3D1", QStringLiteral("ID Finder"));
    Name(grdUnits, "grdUnits", QStringLiteral("ID Finder: units that match"));
    Name(cmdOK, "cmdOK", QStringLiteral("OK"));
    Name(cmdCancel, "cmdCancel", QStringLiteral("Cancel"));
}

// What depends on the font, which the screen may have made smaller.
void frmFCDName::SizeBoxes() {
    SetBoxWidth(txtUnitID, 4);
    SetBoxWidth(txtState, 2);
    SetBoxWidth(txtYear, 2);
    SetBoxWidth(txtFileTitle, 9);
}

void frmFCDName::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    if (event->type() == QEvent::FontChange && txtFileTitle != nullptr) {
        SizeBoxes();
    }
}

void frmFCDName::LayOutControls() {
    auto* columns = new QHBoxLayout;
    columns->setSpacing(kWideSpace);
    columns->addLayout(LayOutQuestions(), 1);
    Panel3D1->setLayout(LayOutFinder());
    columns->addWidget(Panel3D1);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);

    auto* page = new QVBoxLayout(this);
    page->setContentsMargins(kWideSpace, kWideSpace, kWideSpace, kWideSpace);
    page->setSpacing(kWideSpace);
    page->addLayout(columns, 1);
    page->addLayout(buttons);

    setTabOrder(txtUnitID, txtUnitName);
    setTabOrder(txtUnitName, txtState);
    setTabOrder(txtState, txtYear);
    setTabOrder(txtYear, grdUnits);
    setTabOrder(grdUnits, txtFileTitle);
    setTabOrder(txtFileTitle, cmdOK);
    setTabOrder(cmdOK, cmdCancel);
}

QLayout* frmFCDName::LayOutQuestions() {
    auto* column = new QVBoxLayout;
    column->setSpacing(kSpace);
    column->addWidget(MakeLabel("lblFileNameRule",
                                QStringLiteral("The file name consists of the Unit Identifier, the "
                                               "State abbreviation, and the current year."),
                                this));
    column->addWidget(MakeLabel("lblUnsure",
                                QStringLiteral("If you are unsure of the unit identifier, you may "
                                               "be able to find it using the ID Finder at the "
                                               "right."),
                                this));
    column->addSpacing(kSpace);
    auto* stepOne = MakeLabel("lblStep1",
                              QStringLiteral("1. Enter the 3-character unit identifier and the "
                                             "unit name  (Example:  GPF   Gifford Pinchot NF):"),
                              this);
    MakeBold(stepOne);
    column->addWidget(stepOne);
    column->addLayout(LayOutUnitRow());
    QSizePolicy keepsItsRoom = lblTie->sizePolicy();
    keepsItsRoom.setRetainSizeWhenHidden(true);
    lblTie->setSizePolicy(keepsItsRoom);
    lblTie->setAutoFillBackground(true);
    lblTie->setBackgroundRole(QPalette::ToolTipBase);
    lblTie->setForegroundRole(QPalette::ToolTipText);
    lblTie->setFrameStyle(QFrame::Box | QFrame::Plain);
    lblTie->setMargin(kSpace / 2);
    lblTie->hide();
    column->addWidget(lblTie);

    auto* stepTwo =
        MakeLabel("lblStep2", QStringLiteral("2. Fill in the State abbreviation and Year"), this);
    MakeBold(stepTwo);
    column->addWidget(stepTwo);
    auto* row = new QHBoxLayout;
    row->addWidget(MakeBoxLabel("lblState", QStringLiteral("&State:"), txtState));
    row->addWidget(txtState);
    row->addSpacing(kWideSpace);
    row->addWidget(MakeBoxLabel("lblYear", QStringLiteral("&Year:"), txtYear));
    row->addWidget(txtYear);
    row->addStretch();
    column->addLayout(row);

    column->addStretch();
    auto* result = new SSPanel(this);
    Name(result, "pnlFileName", QStringLiteral("File name"));
    result->setLayout(LayOutTitleRow());
    column->addWidget(result);
    return column;
}

QLayout* frmFCDName::LayOutUnitRow() {
    auto* grid = new QGridLayout;
    grid->setVerticalSpacing(2);
    grid->addWidget(MakeBoxLabel("lblUnitID", QStringLiteral("Unit &identifier:"), txtUnitID), 0,
                    0);
    grid->addWidget(MakeBoxLabel("lblUnitName", QStringLiteral("Unit &name:"), txtUnitName), 0, 1);
    grid->addWidget(txtUnitID, 1, 0);
    grid->addWidget(txtUnitName, 1, 1);
    grid->setColumnStretch(1, 1);
    return grid;
}

QLayout* frmFCDName::LayOutTitleRow() {
    auto* row = new QHBoxLayout;
    auto* label = MakeBoxLabel("lblFileName", QStringLiteral("File name:"), txtFileTitle);
    MakeBold(label);
    MakeBold(txtFileTitle);
    MakeBold(lblExtension);
    lblExtension->setWordWrap(false);
    row->addWidget(label);
    row->addWidget(txtFileTitle);
    row->addWidget(lblExtension);
    row->addStretch();
    return row;
}

QLayout* frmFCDName::LayOutFinder() {
    auto* title = MakeLabel("lblIDFinder", QStringLiteral("ID Finder"), Panel3D1);
    MakeBold(title);
    title->setBuddy(grdUnits);
    auto* hint = MakeLabel(
        "lblClickHint", QStringLiteral("Click the unit name if it appears in the list."), Panel3D1);
    grdUnits->setMinimumWidth(platform::ToPixels(3240 + 600 + 600) + 28);
    auto* column = new QVBoxLayout;
    column->setContentsMargins(kSpace, kSpace, kSpace, kSpace);
    column->setSpacing(kSpace);
    column->addWidget(title);
    column->addWidget(hint);
    column->addWidget(grdUnits, 1);
    return column;
}

void frmFCDName::ConnectHandlers() {
    using platform::EventTrap::Trapped;
    connect(txtUnitID, &QLineEdit::textChanged, this,
            Trapped("frmFCDName.txtUnitID_Change", [this](auto&&...) { txtUnitID_Change(); }));
    connect(txtUnitName, &QLineEdit::textChanged, this,
            Trapped("frmFCDName.txtUnitName_Change", [this](auto&&...) { txtUnitName_Change(); }));
    connect(txtState, &QLineEdit::textChanged, this,
            Trapped("frmFCDName.txtState_Change", [this](auto&&...) { txtState_Change(); }));
    connect(txtYear, &QLineEdit::textChanged, this,
            Trapped("frmFCDName.txtYear_Change", [this](auto&&...) { txtYear_Change(); }));
    connect(txtUnitID, &UnitBox::DownPressed, txtState, [this] { txtState->setFocus(); });
    connect(txtState, &UnitBox::DownPressed, txtYear, [this] { txtYear->setFocus(); });
    connect(grdUnits, &vsFlexGrid::Click, this,
            Trapped("frmFCDName.grdUnits_Click", [this](auto&&...) { grdUnits_Click(); }));
    connect(cmdOK, &QPushButton::clicked, this,
            Trapped("frmFCDName.cmdOK_Click", [this](auto&&...) { cmdOK_Click(); }));
    connect(cmdCancel, &QPushButton::clicked, this, [this] { reject(); });
}
