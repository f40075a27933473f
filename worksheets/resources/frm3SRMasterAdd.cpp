#include "worksheets/resources/frm3SRMasterAdd.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>

#include <optional>

#include "base/Handle.h"
#include "base/u91Trace.h"
#include "platform/EventTrap.h"
#include "platform/RuntimeError.h"
#include "platform/controls/FlexGridPastePlan.h"
#include "platform/controls/ScrolledPage.h"
#include "platform/dialogs/MsgBox.h"
#include "platform/help/HelpViewer.h"
#include "platform/system/Screen.h"
#include "platform/text/Numbers.h"
#include "worksheets/MomentLabel.h"
#include "worksheets/TextBox.h"
#include "worksheets/WorksheetPage.h"
#include "worksheets/resources/KeyFilters.h"
#include "worksheets/resources/ResourceList.h"
#include "worksheets/resources/RowOrder.h"

using base::Entry;
using base::Handle;
using platform::EventTrap::Trapped;
using worksheets::MomentLabel;
using worksheets::Resource;
using worksheets::ResourceList;
using worksheets::TextBox;

namespace {

constexpr int kSelectedAtEntry = 5;  // characters
constexpr int kHelpContextId = 31;
constexpr int kNarrowBox = 120;  // pixels

// "12,5" is no number: the conversion would read its comma as one between thousands.
std::optional<float> CostFromText(const QString& text) {
    const QString plain = FlexGridPastePlan::AsTyped(text.trimmed(), true, 0);
    if (!platform::IsPlainNumber(plain)) {
        return std::nullopt;
    }
    try {
        return platform::CSng(plain);
    } catch (const platform::RuntimeError&) {
        return std::nullopt;
    }
}

// What else is typed is discarded with a remark, so that 1450.75 does not become 145075 unnoticed.
bool TakeDigit(const char* handler, const QString& typed, MomentLabel& cue) {
    platform::EventTrap::Run(handler,
                             [handler] { u91Trace::Procedure(QString::fromLatin1(handler)); });
    const bool takes = KeyFilters::TakesDigits(typed);
    if (!takes) {
        cue.ShowForAMoment();
    }
    return takes;
}

}  // namespace

frm3SRMasterAdd::frm3SRMasterAdd(ResourceList& list, QWidget& frame)
    : QDialog(&frame), list_(list) {
    u91Trace::FormLoad(QStringLiteral("frm3SRMasterAdd"));
    setObjectName(QStringLiteral("frm3SRMasterAdd"));
    setWindowTitle(tr("Add Suppression Resource"));
    setModal(true);
    platform::SetHelpContextId(*this, kHelpContextId);
    auto* rows = new QGridLayout(this);
    rows->setColumnStretch(2, 1);
    BuildTexts(*rows);
    ConnectHandlers();
    txtResourceName_->setFocus();
    platform::FitToScreen(*this, QSize());
    platform::PlaceOver(*this, frame);
}

TextBox* frm3SRMasterAdd::AddBox(QGridLayout& rows, int row, const char* name, const QString& label,
                                 int length) {
    QLabel* text = PageParts::Label(this, (QByteArray("lbl") + (name + 3)).constData(), label);
    auto* box = new TextBox(this);
    box->setMaxLength(length);
    platform::NameByLabel(*box, name, *text);
    rows.addWidget(text, row, 0);
    rows.addWidget(box, row, 1);
    return box;
}

void frm3SRMasterAdd::BuildTexts(QGridLayout& rows) {
    txtResourceName_ = AddBox(rows, 0, "txtResourceName", tr("Resource Name"), 50);
    rows.addWidget(txtResourceName_, 0, 1, 1, 2);
    txtResourceName_->setMinimumWidth(3 * kNarrowBox);
    txtShortName_ = AddBox(rows, 1, "txtShortName", tr("Short Name"), 20);
    BuildCostMeasure(rows);
    txtUnits_ = AddBox(rows, 5, "txtUnits", tr("Units"), 10);
    rows.addWidget(PageParts::Label(this, "lblUnitsHint", tr("(hours, shifts, days, loads, etc.)")),
                   5, 2);
    txtCost_ = AddBox(rows, 6, "txtCost", tr("Cost  $"), 5);
    txtPosition_ = AddBox(rows, 7, "txtPosition", tr("Position in List"), 4);
    lblCostCue_ = new MomentLabel("lblCostCue", tr("whole dollars, digits only"), *txtCost_, this);
    rows.addWidget(lblCostCue_, 6, 2);
    lblPositionCue_ = new MomentLabel("lblPositionCue", tr("digits only"), *txtPosition_, this);
    rows.addWidget(lblPositionCue_, 7, 2);
    for (TextBox* box : {txtShortName_, txtUnits_, txtCost_, txtPosition_}) {
        box->setMinimumWidth(kNarrowBox);
    }
    BuildButtons(rows);
}

void frm3SRMasterAdd::BuildCostMeasure(QGridLayout& rows) {
    optTime_ = new QRadioButton(tr("Per time unit"), this);
    optItem_ = new QRadioButton(tr("Per item"), this);
    PageParts::Name(*optTime_, "optTime", tr("Cost per time unit"));
    PageParts::Name(*optItem_, "optItem", tr("Cost per item"));
    optTime_->setChecked(true);
    QLabel* lblMeasure = PageParts::Label(this, "lblMeasure", tr("How is cost measured?"));
    QLabel* lblTimeExample =
        PageParts::Label(this, "lblTimeExample", tr("Example: Engine cost per day"));
    QLabel* lblItemExample =
        PageParts::Label(this, "lblItemExample", tr("Example: Retardant cost per load"));
    rows.addWidget(lblMeasure, 2, 0, 1, 3);
    rows.addWidget(optTime_, 3, 0, 1, 2);
    rows.addWidget(lblTimeExample, 3, 2);
    rows.addWidget(optItem_, 4, 0, 1, 2);
    rows.addWidget(lblItemExample, 4, 2);
}

void frm3SRMasterAdd::BuildButtons(QGridLayout& rows) {
    cmdOK_ = new QPushButton(tr("&OK"), this);
    cmdCancel_ = new QPushButton(tr("&Cancel"), this);
    PageParts::Name(*cmdOK_, "cmdOK", tr("OK"));
    PageParts::Name(*cmdCancel_, "cmdCancel", tr("Cancel"));
    cmdOK_->setDefault(true);
    cmdOK_->setEnabled(false);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(cmdOK_);
    buttons->addWidget(cmdCancel_);
    rows.addLayout(buttons, 8, 0, 1, 3);
}

void frm3SRMasterAdd::ConnectHandlers() {
    for (TextBox* box : {txtResourceName_, txtShortName_, txtUnits_, txtCost_, txtPosition_}) {
        ConnectBox(box);
    }
    txtCost_->SetKeyFilter([this](const QString& typed) { return txtCost_KeyPress(typed); });
    txtPosition_->SetKeyFilter(
        [this](const QString& typed) { return txtPosition_KeyPress(typed); });
    txtCost_->SetPastesNumbers([this] { lblCostCue_->ShowForAMoment(); });
    txtPosition_->SetPastesNumbers([this] { lblPositionCue_->ShowForAMoment(); });
    for (QRadioButton* option : {optTime_, optItem_}) {
        const QString entry = QStringLiteral("frm3SRMasterAdd.%1_Click").arg(option->objectName());
        connect(option, &QRadioButton::clicked, this,
                Trapped("frm3SRMasterAdd.optTime_Click",
                        [entry](bool) { u91Trace::Procedure(entry); }));
    }
    Handle<&frm3SRMasterAdd::cmdOK_Click, Entry::kBare>(cmdOK_, &QPushButton::clicked, this);
    Handle<&frm3SRMasterAdd::cmdCancel_Click, Entry::kBare>(cmdCancel_, &QPushButton::clicked,
                                                            this);
}

void frm3SRMasterAdd::ConnectBox(TextBox* box) {
    const QString name = QStringLiteral("frm3SRMasterAdd.") + box->objectName();
    const bool holdsNumber = box == txtCost_ || box == txtPosition_;
    connect(box, &TextBox::GotFocus, this,
            Trapped("frm3SRMasterAdd.GotFocus", [box, name, holdsNumber] {
                u91Trace::Procedure(name + QStringLiteral("_GotFocus"));
                if (holdsNumber) {
                    box->setSelection(0, kSelectedAtEntry);
                }
            }));
    if (box != txtPosition_) {
        connect(box, &TextBox::textChanged, this,
                Trapped("frm3SRMasterAdd.Change", [this, name](const QString&) {
                    u91Trace::Procedure(name + QStringLiteral("_Change"));
                    EnableOK();
                }));
    }
}

void frm3SRMasterAdd::SetPosition(int position) {
    txtPosition_->setText(QString::number(position));
}

// A key without a character moves or erases.
bool frm3SRMasterAdd::txtCost_KeyPress(const QString& typed) {
    return typed.isEmpty() || TakeDigit("frm3SRMasterAdd.txtCost_KeyPress", typed, *lblCostCue_);
}

bool frm3SRMasterAdd::txtPosition_KeyPress(const QString& typed) {
    return typed.isEmpty() ||
           TakeDigit("frm3SRMasterAdd.txtPosition_KeyPress", typed, *lblPositionCue_);
}

void frm3SRMasterAdd::EnableOK() {
    u91Trace::Procedure(QStringLiteral("frm3SRMasterAdd.EnableOK"));
    bool complete = true;
    for (const TextBox* box : {txtResourceName_, txtShortName_, txtUnits_, txtCost_}) {
        complete = complete && !box->text().isEmpty();
    }
    cmdOK_->setEnabled(complete);
}

void frm3SRMasterAdd::cmdOK_Click() {
    const std::optional<float> cost = CostFromText(txtCost_->text());
    if (!cost) {
        platform::MsgOptions options;
        options.icon = platform::MsgIcon::kExclamation;
        platform::MsgBox(tr("The cost must be a number."), options);
        txtCost_->setFocus();
        return;
    }
    Resource resource;
    resource.longName = txtResourceName_->text();
    resource.shortName = txtShortName_->text();
    resource.units = txtUnits_->text();
    resource.unitType = optTime_->isChecked() ? QStringLiteral("time") : QStringLiteral("item");
    resource.cost = *cost;
    const int place = RowOrder::NewPlace(txtPosition_->text(), list_.RowCount());
    list_.Insert(tr("Add Item"), resource, place);
    addedRow_ = place;
    accept();
}

void frm3SRMasterAdd::cmdCancel_Click() {
    QDialog::reject();
}

// Esc and the close button.
void frm3SRMasterAdd::reject() {
    cmdCancel_->click();
}

void frm3SRMasterAdd::Unload() {
    u91Trace::FormUnload(objectName());
}
