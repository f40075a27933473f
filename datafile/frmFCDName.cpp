#include "datafile/frmFCDName.h"

#include <QDate>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "datafile/UnitBox.h"
#include "platform/EventTrap.h"
#include "platform/controls/vsFlexGrid.h"
#include "platform/dialogs/MsgBox.h"
#include "platform/dialogs/RunModal.h"
#include "platform/system/Host.h"
#include "shell/UIMode.h"
#include "shell/u13Folders.h"
#include "shell/u91Trace.h"

namespace {

constexpr int kNameColumn = 0;
constexpr int kIDColumn = 1;
constexpr int kStateColumn = 2;

constexpr int kIDLength = 3;
constexpr int kStateLength = 2;
constexpr int kYearLength = 2;

const QString kFileExtension = QStringLiteral(".FCD");

}  // namespace

frmFCDName::Outcome frmFCDName::ShowModal(QWidget* frame) {
    frmFCDName dialog(frame);
    if (dialog.Load()) {
        platform::RunModal(dialog);
    }
    dialog.Unload();
    return dialog.Result();
}

bool frmFCDName::Load() {
    u91Trace::FormLoad(QStringLiteral("frmFCDName"));
    loaded_ = true;
    if (parentWidget() != nullptr) {
        platform::PlaceOver(*this, *parentWidget()->window());
    }
    const BusyScope busy;
    SetupGrid();
    if (!OpenNameTables()) {
        platform::MsgBox(QStringLiteral("Error loading Unit Names from fcdname.dat"));
        outcome_.fileStatus = kNoUnitNames;
        Unload();
        return false;
    }
    txtYear->SetProgramText(QDate::currentDate().toString(QStringLiteral("yy")));
    return true;
}

void frmFCDName::Unload() {
    if (!loaded_) {
        return;
    }
    loaded_ = false;
    u91Trace::FormUnload(QStringLiteral("frmFCDName"));
    CloseNameTables();
}

void frmFCDName::SetupGrid() {
    u91Trace::Procedure(QStringLiteral("frmFCDName.SetupGrid"));
    grdUnits->SetCols(3);
    grdUnits->SetFixedRows(1);
    grdUnits->SetColWidth(kNameColumn, 3240);
    grdUnits->SetColWidth(kIDColumn, 600);
    grdUnits->SetColWidth(kStateColumn, 600);
    ShowUnits({});
}

bool frmFCDName::OpenNameTables() {
    u91Trace::Procedure(QStringLiteral("frmFCDName.OpenNameTables"));
    try {
        finder_.Open(platform::FindFile(platform::ProgramFolder(), QStringLiteral("fcdname.dat")));
        return true;
    } catch (const platform::RuntimeError&) {
        u91Trace::Warning(QStringLiteral("frmFCDName.OpenNameTables: Unsuccessful"));
        return false;
    }
}

void frmFCDName::CloseNameTables() {
    u91Trace::Procedure(QStringLiteral("frmFCDName.CloseNameTables"));
    finder_.Close();
}

UnitFinder::Code frmFCDName::GetUnit(const QString& id) {
    u91Trace::Procedure(QStringLiteral("frmFCDName.GetUnit ") + id);
    const UnitFinder::Answer answer = finder_.FindUnit(id);
    const BusyScope busy;
    txtUnitName->setText(answer.unit.name);
    txtState->SetProgramText(answer.unit.state);
    return answer.code;
}

UnitFinder::Code frmFCDName::GetUnitState(const QString& id, const QString& state) {
    u91Trace::Procedure(QStringLiteral("frmFCDName.GetUnitState ") + id);
    const UnitFinder::Answer answer = finder_.FindUnitInState(id, state);
    if (answer.code == UnitFinder::kFound) {
        const BusyScope busy;
        txtUnitName->setText(answer.unit.name);
    }
    return answer.code;
}

void frmFCDName::GetMatchingIDs(const QString& text) {
    u91Trace::Procedure(QStringLiteral("frmFCDName.GetMatchingIDs ") + text);
    ShowUnits(finder_.ListByID(text));
}

void frmFCDName::GetMatchingNames(const QString& text) {
    u91Trace::Procedure(QStringLiteral("frmFCDName.GetMatchingNames ") + text);
    ShowUnits(finder_.ListByName(text));
}

void frmFCDName::CreateFileTitle() {
    yearIsMissing_ = false;
    txtFileTitle->setText(txtUnitID->text() + txtState->text() + txtYear->text());
    u91Trace::Procedure(QStringLiteral("frmFCDName.CreateFileTitle ") + txtFileTitle->text());
}

void frmFCDName::txtUnitID_Change() {
    if (!UIMode::NotBusy()) {
        return;
    }
    DropStaleTitle();
    lblTie->hide();
    const QString id = txtUnitID->text();
    if (!id.isEmpty() && id.size() < kIDLength) {
        GetMatchingIDs(id);
    }
    if (id.size() != kIDLength) {
        return;
    }
    switch (GetUnit(id)) {
        case UnitFinder::kNotFound:
            GetMatchingIDs(id);
            txtUnitName->setFocus();
            break;
        case UnitFinder::kFound:
            CreateFileTitle();
            txtYear->setFocus();
            break;
        case UnitFinder::kInSeveralStates:
            if (!ListShows(id)) {
                GetMatchingIDs(id);  // the user is sent to the list, so it must hold the unit
            }
            lblTie->show();
            txtState->setFocus();
            break;
    }
}

void frmFCDName::txtUnitName_Change() {
    if (UIMode::NotBusy() && !txtUnitName->text().isEmpty()) {
        GetMatchingNames(txtUnitName->text());
    }
}

void frmFCDName::txtState_Change() {
    if (!UIMode::NotBusy()) {
        return;
    }
    DropStaleTitle();
    if (txtState->text().size() == kStateLength && txtUnitID->text().size() == kIDLength) {
        LookUpState(txtYear);
    }
}

void frmFCDName::txtYear_Change() {
    if (!UIMode::NotBusy()) {
        return;
    }
    const bool hadTitle = yearIsMissing_ || !txtFileTitle->text().isEmpty();
    DropStaleTitle();
    if (txtYear->text().size() == kYearLength && hadTitle) {
        LookUpState(cmdOK);
    } else {
        yearIsMissing_ = hadTitle;
    }
}

void frmFCDName::LookUpState(QWidget* next) {
    CreateFileTitle();
    if (GetUnitState(txtUnitID->text(), txtState->text()) == UnitFinder::kFound) {
        lblTie->hide();
        next->setFocus();
        return;
    }
    GetMatchingIDs(txtUnitID->text());
    txtUnitName->setFocus();
}

void frmFCDName::grdUnits_Click() {
    const int row = grdUnits->MouseRow();
    if (row < grdUnits->FixedRows() || row >= grdUnits->Rows()) {
        return;
    }
    u91Trace::Procedure(QStringLiteral("grdUnits_Click"));
    {
        const BusyScope busy;
        txtUnitName->setText(grdUnits->TextMatrix(row, kNameColumn));
        txtUnitID->SetProgramText(grdUnits->TextMatrix(row, kIDColumn));
        txtState->SetProgramText(grdUnits->TextMatrix(row, kStateColumn));
    }
    lblTie->hide();
    CreateFileTitle();
    txtYear->setFocus();
}

void frmFCDName::cmdOK_Click() {
    u91Trace::Procedure(QStringLiteral("frmFCDName.cmdOK_Click"));
    if (txtFileTitle->text().isEmpty()) {
        if (!txtUnitName->text().isEmpty()) {
            txtUnitID->setFocus();
            return;
        }
        outcome_.fileStatus = kCancelled;
        QDialog::reject();
        return;
    }
    const QString fileName = txtFileTitle->text() + kFileExtension;
    if (!platform::Dir(platform::JoinPath(u13Folders::CostsPath(), fileName)).isEmpty()) {
        platform::MsgOptions options;
        options.title = QStringLiteral("Replace file?");
        options.icon = platform::MsgIcon::kStop;
        options.buttons = platform::MsgButtons::kYesNo;
        options.secondIsDefault = true;
        const auto answer = platform::MsgBox(
            QStringLiteral("The file already exists.  Do you want to overwrite it?"), options);
        if (answer != platform::MsgAnswer::kYes) {
            outcome_.fileStatus = kCancelled;
            return;
        }
    }
    outcome_.fileName = fileName;
    outcome_.unitDescription = txtUnitName->text() + QStringLiteral(" '") + txtYear->text();
    outcome_.fileStatus = kChosen;
    accept();
}

void frmFCDName::cmdCancel_Click() {
    u91Trace::Procedure(QStringLiteral("frmFCDName.cmdCancel_Click"));
    outcome_.fileStatus = kCancelled;
}

// Cancel, Esc and the window's close button all come here.
void frmFCDName::reject() {
    platform::EventTrap::Run("frmFCDName.cmdCancel_Click", [this] { cmdCancel_Click(); });
    QDialog::reject();
}

void frmFCDName::ShowUnits(const std::vector<UnitFinder::Unit>& units) {
    grdUnits->SetRows(1);
    grdUnits->SetTextMatrix(0, kNameColumn, QStringLiteral("Unit Name"));
    grdUnits->SetTextMatrix(0, kIDColumn, QStringLiteral("Unit ID"));
    grdUnits->SetTextMatrix(0, kStateColumn, QStringLiteral("State"));
    grdUnits->SetRows(1 + static_cast<int>(units.size()));
    int row = 1;
    for (const UnitFinder::Unit& unit : units) {
        grdUnits->SetTextMatrix(row, kNameColumn, unit.name);
        grdUnits->SetTextMatrix(row, kIDColumn, unit.id);
        grdUnits->SetTextMatrix(row, kStateColumn, unit.state);
        ++row;
    }
}

bool frmFCDName::ListShows(const QString& id) const {
    for (int row = 1; row < grdUnits->Rows(); ++row) {
        if (grdUnits->TextMatrix(row, kIDColumn) == id) {
            return true;
        }
    }
    return false;
}

void frmFCDName::DropStaleTitle() {
    if (txtFileTitle->text() != txtUnitID->text() + txtState->text() + txtYear->text()) {
        txtFileTitle->clear();
    }
    yearIsMissing_ = false;
}
