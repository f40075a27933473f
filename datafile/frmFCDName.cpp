#include "datafile/frmFCDName.h"

#include <QDate>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "base/Handle.h"
#include "base/UIMode.h"
#include "base/u13Folders.h"
#include "base/u91Trace.h"
#include "datafile/UnitBox.h"
#include "platform/controls/vsFlexGrid.h"
#include "platform/dialogs/MsgBox.h"
#include "platform/dialogs/RunModal.h"
#include "platform/system/Files.h"
#include "platform/system/ProgramFolder.h"
#include "platform/system/Screen.h"

using datafile::UnitFinder;
using UIMode::BusyScope;

namespace {

constexpr int kNameColumn = 0;
constexpr int kIDColumn = 1;
constexpr int kStateColumn = 2;

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
        platform::MsgOptions options;
        options.informative = reason_;
        platform::MsgBox(tr("Error loading Unit Names from fcdname.dat"), options);
        outcome_.fileStatus = kNoUnitNames;
        Unload();
        return false;
    }
    ShowUnits(finder_.ListByName(QString()), kNameColumn, QString());
    txtYear_->SetProgramText(QDate::currentDate().toString(QStringLiteral("yy")));
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
    grdUnits_->SetCols(3);
    grdUnits_->SetFixedRows(1);
    grdUnits_->SetColWidth(kNameColumn, kNameWidth);
    grdUnits_->SetColWidth(kIDColumn, kCodeWidth);
    grdUnits_->SetColWidth(kStateColumn, kCodeWidth);
    grdUnits_->SetColFills(kNameColumn);
    grdUnits_->SetRows(1);
    grdUnits_->SetTextMatrix(0, kNameColumn, tr("Unit Name"));
    grdUnits_->SetTextMatrix(0, kIDColumn, tr("Unit ID"));
    grdUnits_->SetTextMatrix(0, kStateColumn, tr("State"));
    grdUnits_->FitHeadings();
}

bool frmFCDName::OpenNameTables() {
    u91Trace::Procedure(QStringLiteral("frmFCDName.OpenNameTables"));
    try {
        finder_.Open(platform::FindFile(platform::ProgramFolder(), QStringLiteral("fcdname.dat")));
        return true;
    } catch (const platform::RuntimeError& error) {
        reason_ = error.Description();
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
    ShowUnitName(answer.unit.name);
    txtState_->SetProgramText(answer.unit.state);
    return answer.code;
}

UnitFinder::Code frmFCDName::GetUnitState(const QString& id, const QString& state) {
    u91Trace::Procedure(QStringLiteral("frmFCDName.GetUnitState ") + id);
    const UnitFinder::Answer answer = finder_.FindUnitInState(id, state);
    if (answer.code == UnitFinder::kFound) {
        const BusyScope busy;
        ShowUnitName(answer.unit.name);
    }
    return answer.code;
}

void frmFCDName::GetMatchingIDs(const QString& text) {
    u91Trace::Procedure(QStringLiteral("frmFCDName.GetMatchingIDs ") + text);
    ShowUnits(finder_.ListByID(text), kIDColumn, text);
}

void frmFCDName::GetMatchingNames(const QString& text) {
    u91Trace::Procedure(QStringLiteral("frmFCDName.GetMatchingNames ") + text);
    ShowUnits(finder_.ListByName(text), kNameColumn, text);
}

// Of a name that is wider than its box, the beginning shows.
void frmFCDName::ShowUnitName(const QString& name) {
    txtUnitName_->setText(name);
    txtUnitName_->setCursorPosition(0);
}

// The third of four digits of a year stands for no year yet.
void frmFCDName::CreateFileTitle() {
    const QString year = txtYear_->text();
    yearIsMissing_ = year.size() > kYearLength;
    txtFileTitle_->setText(yearIsMissing_ ? QString()
                                          : txtUnitID_->text() + txtState_->text() + year);
    u91Trace::Procedure(QStringLiteral("frmFCDName.CreateFileTitle ") + txtFileTitle_->text());
}

void frmFCDName::txtUnitID_Change() {
    if (!UIMode::NotBusy()) {
        return;
    }
    DropStaleTitle();
    lblTie_->hide();
    const QString id = txtUnitID_->text();
    if (!id.isEmpty() && id.size() < kIDLength) {
        GetMatchingIDs(id);
    }
    if (id.size() != kIDLength) {
        return;
    }
    switch (GetUnit(id)) {
        case UnitFinder::kNotFound:
            GetMatchingIDs(id);
            txtUnitName_->setFocus();
            break;
        case UnitFinder::kFound:
            MarkUnit(id, txtState_->text());
            CreateFileTitle();
            txtYear_->setFocus();
            break;
        case UnitFinder::kInSeveralStates:
            if (!ListShows(id)) {
                GetMatchingIDs(id);  // the user is sent to the list, so it must hold the unit
            }
            lblTie_->show();
            txtState_->setFocus();
            break;
    }
}

void frmFCDName::txtUnitName_Change() {
    if (UIMode::NotBusy() && !txtUnitName_->text().isEmpty()) {
        GetMatchingNames(txtUnitName_->text());
    }
}

void frmFCDName::txtState_Change() {
    if (!UIMode::NotBusy()) {
        return;
    }
    DropStaleTitle();
    if (txtState_->text().size() == kStateLength && txtUnitID_->text().size() == kIDLength) {
        if (LookUpState()) {
            txtYear_->setFocus();
        } else {
            txtUnitName_->setFocus();
        }
    }
}

// The keyboard stays in the box: somebody who types all four digits of a year has typed two of them
// when the title is composed first.
void frmFCDName::txtYear_Change() {
    if (!UIMode::NotBusy()) {
        return;
    }
    const QString year = txtYear_->text();
    if (year.size() == kWholeYearLength) {
        txtYear_->SetProgramText(year.right(kYearLength));
        return;  // the new text has come here by itself
    }
    const bool hadTitle = yearIsMissing_ || !txtFileTitle_->text().isEmpty();
    DropStaleTitle();
    if (year.size() == kYearLength && hadTitle) {
        LookUpState();
    } else {
        yearIsMissing_ = hadTitle;
    }
}

bool frmFCDName::LookUpState() {
    CreateFileTitle();
    if (GetUnitState(txtUnitID_->text(), txtState_->text()) == UnitFinder::kFound) {
        MarkUnit(txtUnitID_->text(), txtState_->text());
        lblTie_->hide();
        return true;
    }
    GetMatchingIDs(txtUnitID_->text());
    return false;
}

void frmFCDName::grdUnits_Click() {
    const int row = grdUnits_->MouseRow();
    if (row < grdUnits_->FixedRows() || row >= grdUnits_->Rows()) {
        return;
    }
    u91Trace::Procedure(QStringLiteral("grdUnits_Click"));
    {
        const BusyScope busy;
        ShowUnitName(grdUnits_->TextMatrix(row, kNameColumn));
        txtUnitID_->SetProgramText(grdUnits_->TextMatrix(row, kIDColumn));
        txtState_->SetProgramText(grdUnits_->TextMatrix(row, kStateColumn));
    }
    lblTie_->hide();
    CreateFileTitle();
    txtYear_->setFocus();
}

void frmFCDName::cmdOK_Click() {
    if (txtFileTitle_->text().isEmpty()) {
        if (!txtUnitName_->text().isEmpty()) {
            txtUnitID_->setFocus();
            return;
        }
        outcome_.fileStatus = kCancelled;
        QDialog::reject();
        return;
    }
    const QString fileName = txtFileTitle_->text() + kFileExtension;
    if (!platform::Dir(platform::JoinPath(u13Folders::CostsPath(), fileName)).isEmpty()) {
        platform::MsgOptions options;
        options.title = tr("Replace file?");
        options.icon = platform::MsgIcon::kStop;
        options.buttons = platform::MsgButtons::kYesNo;
        options.secondIsDefault = true;
        const auto answer =
            platform::MsgBox(tr("The file already exists.  Do you want to overwrite it?"), options);
        if (answer != platform::MsgAnswer::kYes) {
            outcome_.fileStatus = kCancelled;
            return;
        }
    }
    outcome_.fileName = fileName;
    outcome_.unitDescription = txtUnitName_->text() + QStringLiteral(" '") + txtYear_->text();
    outcome_.fileStatus = kChosen;
    accept();
}

void frmFCDName::cmdCancel_Click() {
    outcome_.fileStatus = kCancelled;
}

// Cancel, Esc and the window's close button all come here.
void frmFCDName::reject() {
    base::RunHandler<&frmFCDName::cmdCancel_Click>(*this);
    QDialog::reject();
}

// The first unit from the text on is scrolled into view, with its neighbors around it. It is the
// current one, and marked, only where it begins with the text.
void frmFCDName::ShowUnits(const UnitFinder::Listing& listing, int column, const QString& text) {
    grdUnits_->SetRows(1 + static_cast<int>(listing.units.size()));
    int row = 1;
    for (const UnitFinder::Unit& unit : listing.units) {
        grdUnits_->SetTextMatrix(row, kNameColumn, unit.name);
        grdUnits_->SetTextMatrix(row, kIDColumn, unit.id);
        grdUnits_->SetTextMatrix(row, kStateColumn, unit.state);
        ++row;
    }
    if (listing.units.empty()) {
        return;
    }
    const int first = listing.match < 0 ? grdUnits_->Rows() - 1 : listing.match + 1;
    grdUnits_->Select(first, kNameColumn);
    if (text.isEmpty() ||
        !grdUnits_->TextMatrix(first, column).startsWith(text, Qt::CaseInsensitive)) {
        grdUnits_->selectionModel()->clear();
    }
}

void frmFCDName::MarkCurrentUnit() {
    QItemSelectionModel& marks = *grdUnits_->selectionModel();
    marks.select(marks.currentIndex(),
                 QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

void frmFCDName::MarkUnit(const QString& id, const QString& state) {
    if (!ListShows(id)) {
        ShowUnits(finder_.ListByID(id), kIDColumn, id);
    }
    for (int row = 1; row < grdUnits_->Rows(); ++row) {
        if (grdUnits_->TextMatrix(row, kIDColumn) == id &&
            grdUnits_->TextMatrix(row, kStateColumn) == state) {
            grdUnits_->Select(row, kNameColumn);
            MarkCurrentUnit();
            return;
        }
    }
}

bool frmFCDName::ListShows(const QString& id) const {
    for (int row = 1; row < grdUnits_->Rows(); ++row) {
        if (grdUnits_->TextMatrix(row, kIDColumn) == id) {
            return true;
        }
    }
    return false;
}

void frmFCDName::DropStaleTitle() {
    if (txtFileTitle_->text() != txtUnitID_->text() + txtState_->text() + txtYear_->text()) {
        txtFileTitle_->clear();
    }
    yearIsMissing_ = false;
}
