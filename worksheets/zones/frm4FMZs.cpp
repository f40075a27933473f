#include "worksheets/zones/frm4FMZs.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

#include "base/Handle.h"
#include "base/u91Trace.h"
#include "datafile/PrepDatafile.h"
#include "import/mImport.h"
#include "platform/FirstError.h"
#include "platform/controls/vsFlexGrid.h"
#include "platform/dialogs/MsgBox.h"
#include "worksheets/GridParts.h"
#include "worksheets/MissingRows.h"
#include "worksheets/NoteLine.h"
#include "worksheets/zones/ImportNote.h"
#include "worksheets/zones/ImportProgressBox.h"

using base::Handle;
using worksheets::ImportProgressBox;
using worksheets::NoteLine;
using worksheets::WorksheetHost;
using worksheets::WorksheetPage;
using worksheets::Zone;
using worksheets::ZoneList;

namespace {

constexpr int kName = ZoneList::kName;
constexpr int kLocations = ZoneList::kLocations;
constexpr int kHelpContextId = 40;

}  // namespace

frm4FMZs::frm4FMZs(WorksheetHost& host, QWidget* parent)
    : WorksheetPage(host, parent,
                    {.name = "frm4FMZs",
                     .caption = tr("Fire Management Zones"),
                     .id = kID,
                     .helpContextId = kHelpContextId}) {
    Build();
    ConnectHandlers();
}

void frm4FMZs::ConnectHandlers() {
    Handle<&frm4FMZs::cmdAdd_Click>(cmdAdd_, &QPushButton::clicked, this);
    Handle<&frm4FMZs::cmdImport_Click>(cmdImport_, &QPushButton::clicked, this);
    Handle<&frm4FMZs::grdFMZs_EnterCell>(grdFMZs_, &vsFlexGrid::EnterCell, this);
    Handle<&frm4FMZs::grdFMZs_BeforeEdit>(grdFMZs_, &vsFlexGrid::BeforeEdit, this);
    zones_.SetListener(
        [this](const QString& name, const auto& change) { DoneInList(name, change); });
}

void frm4FMZs::Build() {
    AddTitle(tr("Fire Management Zones"));
    Body().addWidget(PageParts::Instruction(
        this, "lblInstruction",
        tr("List the Fire Management Zones (FMZs) of the unit and the number of Representative "
           "Locations (RLs) in each, or copy them from a BRAM file.")));
    grdFMZs_ = new vsFlexGrid(this);
    PageParts::Name(*grdFMZs_, "grdFMZs", tr("Fire Management Zones"));
    cmdAdd_ = new QPushButton(tr("&Add Item"), this);
    PageParts::Name(*cmdAdd_, "cmdAdd", tr("Add a zone"));
    cmdImport_ = new QPushButton(tr("&Import from BRAM..."), this);
    PageParts::Name(*cmdImport_, "cmdImport", tr("Import zones from a BRAM file"));
    note_ = new NoteLine(*grdFMZs_, this);
    GridParts::AddFramed(Body(), *grdFMZs_);
    GridParts::AddNote(Body(), *note_);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdAdd_);
    buttons->addWidget(cmdImport_);
    buttons->addStretch(1);
    Body().addLayout(buttons);
    Body().addStretch(1);
}

void frm4FMZs::FMZ_Setup() {
    u91Trace::Procedure(QStringLiteral("frm4FMZs.Setup"));
    BecomeCurrent();
    SetupGrid();
    FMZ_LoadGrid();
}

void frm4FMZs::SetupGrid() {
    u91Trace::Procedure(QStringLiteral("frm4FMZs.SetupGrid"));
    grdFMZs_->SetCols(ZoneList::kColumns);
    grdFMZs_->SetFixedRows(1);
    grdFMZs_->SetTable(&zones_);
    grdFMZs_->SetTextMatrix(0, kName, tr("Fire Management Zone"));
    grdFMZs_->SetTextMatrix(0, kLocations, tr("# RLs"));
    grdFMZs_->SetColWidth(kName, 3600);
    grdFMZs_->SetColWidth(kLocations, 720);
    grdFMZs_->SetColAlignment(kName, Qt::AlignLeft | Qt::AlignVCenter);
    grdFMZs_->SetColAlignment(kLocations, Qt::AlignCenter);
    grdFMZs_->SetColDataType(kLocations, vsFlexGrid::DataType::kLong);
    grdFMZs_->SetColFormat(kLocations, QStringLiteral("#"));
    KeepWidths(*grdFMZs_);
}

void frm4FMZs::FMZ_LoadGrid() {
    u91Trace::Procedure(QStringLiteral("frm4FMZs.FMZ_LoadGrid"));
    grdFMZs_->FinishEdit();
    zones_.Load(tr("Import"));
    grdFMZs_->Refresh();
}

void frm4FMZs::FMZ_Update() {
    u91Trace::Procedure(QStringLiteral("FMZ_Update"));
    grdFMZs_->FinishEdit();
    MissingRows::Shown("frm4FMZs.FMZ_Update",
                       [this] { zones_.Save([this](int row) { FMZ_UpdateRecord(row); }); });
}

void frm4FMZs::FMZ_CreateRecord(int row) {
    u91Trace::Procedure(QStringLiteral("FMZ_CreateRecord %1").arg(row));
    zones_.Add(tr("Add Item"));
}

void frm4FMZs::FMZ_UpdateRecord(int row) {
    u91Trace::Procedure(QStringLiteral("FMZ_UpdateRecord %1").arg(row));
    zones_.SaveRow(row);
}

bool frm4FMZs::EndOpenEdit() {
    const bool typed = grdFMZs_->EditIsChanged();
    grdFMZs_->FinishEdit();
    return typed;
}

// What an action did is known by the zones' keys: the form that takes it back may be another one.
void frm4FMZs::DoneInList(const QString& name, const std::shared_ptr<ZoneList::Change>& change) {
    Did<frm4FMZs>(
        name,
        [change](frm4FMZs& form) {
            form.zones_.TakeBack(*change);
            form.ShowChange(change->list.Reversed());
        },
        [change](frm4FMZs& form) {
            form.zones_.Repeat(*change);
            form.ShowChange(change->list);
        });
}

// Makes the first row current that is not as it was.
void frm4FMZs::ShowChange(const undo::ListChange<Zone>& list) {
    const int col = grdFMZs_->Col();
    grdFMZs_->Refresh();
    if (const auto row = list.FirstPlace(); row && zones_.RowCount() > 0) {
        grdFMZs_->SetRow(std::min(static_cast<int>(*row) + 1, zones_.RowCount()));
        grdFMZs_->SetCol(col);
    }
}

void frm4FMZs::cmdAdd_Click() {
    grdFMZs_->FinishEdit();
    const int row = zones_.RowCount() + 1;
    FMZ_CreateRecord(row);
    grdFMZs_->Refresh();
    GridParts::EnterAndEdit(*grdFMZs_, row, kName);
}

void frm4FMZs::cmdImport_Click() {
    grdFMZs_->FinishEdit();
    if (!MayDropTyped()) {
        return;
    }
    ImportProgressBox progress(&Host().Frame());
    if (mImport::BRAM_CopyFMZs(&Host().Frame(), &progress) == mImport::kCopied) {
        ShowImported();
    }
}

// The list is filled anew by an import, without what was typed and is not in the file yet.
bool frm4FMZs::MayDropTyped() const {
    if (!zones_.IsChanged()) {
        return true;
    }
    platform::MsgOptions options;
    options.icon = platform::MsgIcon::kQuestion;
    options.buttons = platform::MsgButtons::kYesNo;
    options.secondIsDefault = true;
    options.informative =
        tr("The import shows the stored list again. To keep what was typed, choose No, go to "
           "another worksheet and come back: that stores it.");
    return platform::MsgBox(
               tr("Names or numbers that were typed here are not stored yet (%1). Import all the "
                  "same, without them?")
                   .arg(zones_.ChangedNames().join(QStringLiteral(", "))),
               options) == platform::MsgAnswer::kYes;
}

// Shows the first new zone and says what has come.
void frm4FMZs::ShowImported() {
    const int known = zones_.RowCount();
    FMZ_LoadGrid();
    if (zones_.RowCount() > known) {
        grdFMZs_->Select(known + 1, kName);
    }
    note_->Say(ImportNote::Text(mImport::LastImport()));
}

void frm4FMZs::grdFMZs_EnterCell() {
    grdFMZs_->EditCell();
    // Clicks and keys wait: they could unload this form before its grid has finished entering.
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

void frm4FMZs::grdFMZs_BeforeEdit(int /*row*/, int col) {
    grdFMZs_->SetEditMaxLength(zones_.MaxLength(col));
}

void frm4FMZs::Unload() {
    platform::FirstError refused;
    if (PrepDatafile::IsDatafileOpen()) {
        refused.Try([this] { FMZ_Update(); });
    }
    u91Trace::FormUnload(objectName());
    refused.Rethrow();
}
