#include "worksheets/zones/frm4FMZs.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "datafile/FieldNames.h"
#include "datafile/PrepDatafile.h"
#include "datafile/PrepDatatables.h"
#include "import/ImportProgressBox.h"
#include "import/mImport.h"
#include "platform/EventTrap.h"
#include "platform/FirstError.h"
#include "platform/controls/vsFlexGrid.h"
#include "platform/text/Numbers.h"
#include "shell/u91Trace.h"
#include "worksheets/GridParts.h"
#include "worksheets/zones/ZoneRecords.h"

using platform::EventTrap::Trapped;
using PrepDatatables::tblFMZList;

namespace {

constexpr int kName = 0;
constexpr int kLocations = 1;
constexpr int kColumns = 2;
constexpr int kNameLength = 46;
constexpr int kLocationsLength = 3;
constexpr int kHelpContextId = 40;

}  // namespace

frm4FMZs::frm4FMZs(WorksheetHost& host, QWidget* parent)
    : WorksheetPage(host, parent,
                    {.name = "frm4FMZs",
                     .caption = tr("Fire Management Zones"),
                     .index = 4,
                     .id = "FMZ",
                     .helpContextId = kHelpContextId}) {
    Build();
    connect(cmdAdd_, &QPushButton::clicked, this,
            Trapped("frm4FMZs.cmdAdd_Click", [this](bool) { cmdAdd_Click(); }));
    connect(cmdImport_, &QPushButton::clicked, this,
            Trapped("frm4FMZs.cmdImport_Click", [this](bool) { cmdImport_Click(); }));
    connect(grdFMZs_, &vsFlexGrid::EnterCell, this,
            Trapped("frm4FMZs.grdFMZs_EnterCell", [this] { grdFMZs_EnterCell(); }));
    connect(grdFMZs_, &vsFlexGrid::BeforeEdit, this,
            Trapped("frm4FMZs.grdFMZs_BeforeEdit",
                    [this](int /*row*/, int col, bool* /*cancel*/) { grdFMZs_BeforeEdit(col); }));
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
    Body().addWidget(grdFMZs_, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdAdd_);
    buttons->addWidget(cmdImport_);
    buttons->addStretch(1);
    Body().addLayout(buttons);
}

void frm4FMZs::FMZ_Setup() {
    u91Trace::Procedure(QStringLiteral("frm4FMZs.Setup"));
    BecomeCurrent();
    SetupGrid();
    FMZ_LoadGrid();
}

void frm4FMZs::SetupGrid() {
    u91Trace::Procedure(QStringLiteral("frm4FMZs.SetupGrid"));
    grdFMZs_->SetCols(kColumns);
    grdFMZs_->SetFixedRows(1);
    grdFMZs_->SetRows(1);
    grdFMZs_->SetTextMatrix(0, kName, tr("Fire Management Zone"));
    grdFMZs_->SetTextMatrix(0, kLocations, tr("# RLs"));
    grdFMZs_->SetColWidth(kName, 3600);
    grdFMZs_->SetColWidth(kLocations, 720);
    grdFMZs_->SetColAlignment(kName, Qt::AlignLeft | Qt::AlignVCenter);
    grdFMZs_->SetColAlignment(kLocations, Qt::AlignCenter);
    grdFMZs_->SetColDataType(kLocations, vsFlexGrid::DataType::kLong);
    grdFMZs_->SetColFormat(kLocations, QStringLiteral("#"));
}

void frm4FMZs::FMZ_LoadGrid() {
    u91Trace::Procedure(QStringLiteral("frm4FMZs.FMZ_LoadGrid"));
    grdFMZs_->FinishEdit();
    const std::int32_t records = tblFMZList->RecordCount();
    grdFMZs_->SetRows(records + 1);
    if (records == 0) {
        return;
    }
    int row = 1;
    for (tblFMZList->MoveFirst(); !tblFMZList->EndOfFile() && row <= records;
         tblFMZList->MoveNext(), ++row) {
        grdFMZs_->SetTextMatrix(row, kName, tblFMZList->Text(FieldNames::kName));
        grdFMZs_->SetTextMatrix(row, kLocations,
                                platform::Str(tblFMZList->Long(FieldNames::kRLCount)));
        grdFMZs_->SetRowData(row, tblFMZList->Long(FieldNames::kKey));
    }
    grdFMZs_->SetRows(row);
}

void frm4FMZs::FMZ_Update() {
    u91Trace::Procedure(QStringLiteral("FMZ_Update"));
    grdFMZs_->FinishEdit();
    platform::FirstError refused;
    for (int row = 1; row < grdFMZs_->Rows(); ++row) {
        refused.Try([&] {
            if (grdFMZs_->RowData(row) != 0) {
                FMZ_UpdateRecord(row);
            } else {
                FMZ_CreateRecord(row);
            }
        });
    }
    refused.Rethrow();
}

void frm4FMZs::FMZ_CreateRecord(int row) {
    u91Trace::Procedure(QStringLiteral("FMZ_CreateRecord %1").arg(row));
    grdFMZs_->SetRowData(
        row,
        ZoneRecords::Create(grdFMZs_->TextMatrix(row, kName),
                            ZoneRecords::LocationsFromText(grdFMZs_->TextMatrix(row, kLocations))));
}

void frm4FMZs::FMZ_UpdateRecord(int row) {
    u91Trace::Procedure(QStringLiteral("FMZ_UpdateRecord %1").arg(row));
    const std::int32_t stored =
        ZoneRecords::Change(grdFMZs_->RowData(row), grdFMZs_->TextMatrix(row, kName),
                            ZoneRecords::LocationsFromText(grdFMZs_->TextMatrix(row, kLocations)));
    grdFMZs_->SetTextMatrix(row, kLocations, platform::Str(stored));
}

void frm4FMZs::cmdAdd_Click() {
    u91Trace::Procedure(QStringLiteral("frm4FMZs.cmdAdd_Click"));
    grdFMZs_->FinishEdit();
    grdFMZs_->AddItem(QStringLiteral("\t1"));
    const int row = grdFMZs_->Rows() - 1;
    try {
        FMZ_CreateRecord(row);
    } catch (...) {
        grdFMZs_->RemoveItem(row);
        throw;
    }
    GridParts::EnterAndEdit(*grdFMZs_, row, kName);
}

void frm4FMZs::cmdImport_Click() {
    u91Trace::Procedure(QStringLiteral("frm4FMZs.cmdImport_Click"));
    ImportProgressBox progress(&Host().Frame());
    if (mImport::BRAM_CopyFMZs(&Host().Frame(), &progress) == mImport::kCopied) {
        FMZ_LoadGrid();
    }
}

void frm4FMZs::grdFMZs_EnterCell() {
    u91Trace::Procedure(QStringLiteral("frm4FMZs.grdFMZs_EnterCell"));
    grdFMZs_->EditCell();
    // Clicks and keys wait: they could unload this form before its grid has finished entering.
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

void frm4FMZs::grdFMZs_BeforeEdit(int col) {
    u91Trace::Procedure(QStringLiteral("frm4FMZs.grdFMZs_BeforeEdit"));
    grdFMZs_->SetEditMaxLength(col == kName ? kNameLength : kLocationsLength);
}

void frm4FMZs::Unload() {
    platform::FirstError refused;
    if (PrepDatafile::IsDatafileOpen()) {
        refused.Try([this] { FMZ_Update(); });
    }
    u91Trace::FormUnload(objectName());
    refused.Rethrow();
}
