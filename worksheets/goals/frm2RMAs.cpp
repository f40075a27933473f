#include "worksheets/goals/frm2RMAs.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "datafile/FieldNames.h"
#include "datafile/FieldReaders.h"
#include "datafile/PrepDatatables.h"
#include "platform/EventTrap.h"
#include "platform/text/Numbers.h"
#include "shell/UIMode.h"
#include "shell/u91Trace.h"
#include "shell/u92Utilities.h"
#include "worksheets/TextBox.h"
#include "worksheets/goals/LineBreaks.h"

using platform::EventTrap::Trapped;
using PrepDatatables::tblManagementGoals;

namespace {

constexpr int kHeadingLength = 100;
constexpr int kHelpContextId = 20;

}  // namespace

frm2RMAs::frm2RMAs(WorksheetHost& host, QWidget* parent)
    : WorksheetPage(host, parent,
                    {.name = "frm2RMAs",
                     .caption = tr("Management Goals"),
                     .index = 2,
                     .id = "RMA",
                     .helpContextId = kHelpContextId}) {
    AddTitle(tr("Objectives for Resource Management Areas"));
    auto* columns = new QHBoxLayout;
    columns->setSpacing(16);
    columns->addLayout(BuildList(), 2);
    columns->addLayout(BuildBoxes(), 3);
    Body().addLayout(columns, 1);
    EnableBoxes(false);
    cmdDelete_->setEnabled(false);
    ConnectHandlers();
}

QVBoxLayout* frm2RMAs::BuildList() {
    QLabel* lblList = PageParts::Label(this, "lblList", tr("Resource Management Areas"));
    lstRMAs_ = new QListWidget(this);
    PageParts::Name(*lstRMAs_, "lstRMAs", tr("Resource Management Areas"));
    lblList->setBuddy(lstRMAs_);
    cmdAdd_ = new QPushButton(tr("&Add Management Area"), this);
    PageParts::Name(*cmdAdd_, "cmdAdd", tr("Add a management area"));
    cmdDelete_ = new QPushButton(tr("&Delete Management Area"), this);
    PageParts::Name(*cmdDelete_, "cmdDelete", tr("Delete the management area"));
    auto* rows = new QVBoxLayout;
    rows->setSpacing(Body().spacing());
    rows->addWidget(lblList);
    rows->addWidget(lstRMAs_, 1);
    rows->addWidget(PageParts::Instruction(
        this, "lblInstruction",
        tr("Add a Resource Management Area (RMA) by clicking the button below.  Then type the RMA "
           "name and objectives relevant to fire suppression in the boxes on the right.")));
    rows->addWidget(cmdAdd_);
    rows->addWidget(cmdDelete_);
    return rows;
}

QVBoxLayout* frm2RMAs::BuildBoxes() {
    QLabel* lblHeading = PageParts::Label(this, "lblHeading", tr("Resource Management Area"));
    txtHeading_ = new TextBox(this);
    txtHeading_->setMaxLength(kHeadingLength);
    PageParts::Name(*txtHeading_, "txtHeading", tr("Resource Management Area"));
    lblHeading->setBuddy(txtHeading_);
    QLabel* lblBody = PageParts::Label(this, "lblBody", tr("Management Objectives"));
    txtBody_ = new QPlainTextEdit(this);
    txtBody_->setTabChangesFocus(true);
    PageParts::Name(*txtBody_, "txtBody", tr("Management Objectives"));
    lblBody->setBuddy(txtBody_);
    auto* rows = new QVBoxLayout;
    rows->setSpacing(Body().spacing());
    rows->addWidget(lblHeading);
    rows->addWidget(txtHeading_);
    rows->addWidget(lblBody);
    rows->addWidget(txtBody_, 1);
    return rows;
}

void frm2RMAs::ConnectHandlers() {
    connect(lstRMAs_, &QListWidget::currentRowChanged, this,
            Trapped("frm2RMAs.lstRMAs_Click", [this](int row) {
                if (row >= 0) {
                    lstRMAs_Click();
                }
            }));
    connect(txtHeading_, &TextBox::GotFocus, this, Trapped("frm2RMAs.txtHeading_GotFocus", [] {
                u91Trace::Procedure(QStringLiteral("frm2RMAs.txtHeading_GotFocus"));
            }));
    connect(txtHeading_, &QLineEdit::textChanged, this,
            Trapped("frm2RMAs.txtHeading_Change", [this](const QString&) { txtHeading_Change(); }));
    connect(txtBody_, &QPlainTextEdit::textChanged, this,
            Trapped("frm2RMAs.txtBody_Change", [this] { txtBody_Change(); }));
    connect(cmdAdd_, &QPushButton::clicked, this,
            Trapped("frm2RMAs.cmdAdd_Click", [this](bool) { cmdAdd_Click(); }));
    connect(cmdDelete_, &QPushButton::clicked, this,
            Trapped("frm2RMAs.cmdDelete_Click", [this](bool) { cmdDelete_Click(); }));
}

void frm2RMAs::Setup() {
    u91Trace::Procedure(QStringLiteral("frm2RMAs.Setup"));
    BecomeCurrent();
    const BusyScope busy;
    LoadList();
    if (lstRMAs_->count() > 0) {
        lstRMAs_->setCurrentRow(0);
        cmdDelete_->setEnabled(true);
    }
}

void frm2RMAs::LoadList() {
    u91Trace::Procedure(QStringLiteral("frm2RMAs.LoadList"));
    const QSignalBlocker blocker(lstRMAs_);
    lstRMAs_->clear();
    if (tblManagementGoals->RecordCount() == 0) {
        return;
    }
    for (tblManagementGoals->MoveFirst(); !tblManagementGoals->EndOfFile();
         tblManagementGoals->MoveNext()) {
        AddEntry(tblManagementGoals->Text(FieldNames::kManagementArea),
                 tblManagementGoals->Long(FieldNames::kKey));
    }
}

void frm2RMAs::AddEntry(const QString& heading, std::int32_t key) {
    auto* entry = new QListWidgetItem(heading, lstRMAs_);
    entry->setData(Qt::UserRole, key);
}

void frm2RMAs::ShowItem() {
    u91Trace::Procedure(QStringLiteral("frm2RMAs.ShowItem"));
    const BusyScope busy;
    tblManagementGoals->Seek("=", {currentKey_});
    txtHeading_->setText(FieldReaders::TextField(*tblManagementGoals, FieldNames::kManagementArea));
    // Of a text that is wider than the box, the beginning shows.
    txtHeading_->setCursorPosition(0);
    storedBody_ = FieldReaders::TextField(*tblManagementGoals, FieldNames::kExplanation);
    txtBody_->setPlainText(storedBody_);
    changed_ = false;
    bodyChanged_ = false;
    EnableBoxes(true);
}

void frm2RMAs::EnableBoxes(bool enabled) {
    txtHeading_->setEnabled(enabled);
    txtBody_->setEnabled(enabled);
}

void frm2RMAs::lstRMAs_Click() {
    u91Trace::Procedure(QStringLiteral("lstRMAs_Click ") + lstRMAs_->currentItem()->text());
    try {
        Update();
    } catch (...) {
        SelectShown();
        throw;
    }
    currentKey_ = lstRMAs_->currentItem()->data(Qt::UserRole).toInt();
    ShowItem();
}

// An area that cannot be saved stays in the boxes; the list then goes back to it.
void frm2RMAs::SelectShown() {
    const QSignalBlocker blocker(lstRMAs_);
    for (int row = 0; row < lstRMAs_->count(); ++row) {
        if (lstRMAs_->item(row)->data(Qt::UserRole).toInt() == currentKey_) {
            lstRMAs_->setCurrentRow(row);
        }
    }
}

void frm2RMAs::txtHeading_Change() {
    u91Trace::Procedure(QStringLiteral("frm2RMAs.txtHeading_Change"));
    if (!UIMode::NotBusy()) {
        return;
    }
    if (QListWidgetItem* entry = lstRMAs_->currentItem()) {
        entry->setText(txtHeading_->text());
    }
    changed_ = true;
}

void frm2RMAs::txtBody_Change() {
    u91Trace::Procedure(QStringLiteral("frm2RMAs.txtBody_Change"));
    if (UIMode::NotBusy()) {
        changed_ = true;
        bodyChanged_ = true;
    }
}

void frm2RMAs::Update() {
    if (!changed_) {
        return;
    }
    u91Trace::Procedure(QStringLiteral("Update ") + platform::Str(currentKey_));
    if (bodyChanged_) {
        storedBody_ = LineBreaks::ForFile(txtBody_->document()->toRawText());
        bodyChanged_ = false;
    }
    tblManagementGoals->Seek("=", {currentKey_});
    tblManagementGoals->Edit();
    tblManagementGoals->SetField(FieldNames::kManagementArea, txtHeading_->text());
    tblManagementGoals->SetField(FieldNames::kExplanation, storedBody_);
    tblManagementGoals->Update();
    changed_ = false;
}

void frm2RMAs::cmdAdd_Click() {
    u91Trace::Procedure(QStringLiteral("cmdAdd_Click"));
    Update();
    tblManagementGoals->AddNew();
    tblManagementGoals->SetField(FieldNames::kManagementArea, QString(QLatin1String("")));
    tblManagementGoals->SetField(FieldNames::kExplanation, QString(QLatin1String("")));
    tblManagementGoals->Update();
    tblManagementGoals->MoveLast();
    {
        const QSignalBlocker blocker(lstRMAs_);
        AddEntry(QString(), tblManagementGoals->Long(FieldNames::kKey));
    }
    lstRMAs_->setCurrentRow(lstRMAs_->count() - 1);
    cmdDelete_->setEnabled(true);
    txtHeading_->setFocus();
}

void frm2RMAs::cmdDelete_Click() {
    u91Trace::Procedure(QStringLiteral("cmdDelete_Click"));
    Update();
    const QListWidgetItem* entry = lstRMAs_->currentItem();
    if (!entry || !u92Utilities::ConfirmDelete(entry->text())) {
        return;
    }
    tblManagementGoals->Seek("=", {entry->data(Qt::UserRole).toInt()});
    tblManagementGoals->Delete();
    tblManagementGoals->MoveNext();
    LoadList();
    if (lstRMAs_->count() > 0) {
        lstRMAs_->setCurrentRow(0);
    } else {
        ShowNothing();
    }
}

void frm2RMAs::ShowNothing() {
    {
        const BusyScope busy;
        txtHeading_->clear();
        txtBody_->clear();
    }
    currentKey_ = 0;
    EnableBoxes(false);
    cmdDelete_->setEnabled(false);
}

void frm2RMAs::Unload() {
    u91Trace::FormUnload(objectName());
}
