#include "worksheets/resources/frm3SRMaster.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

#include "datafile/FieldNames.h"
#include "datafile/PrepDatafile.h"
#include "datafile/PrepDatatables.h"
#include "platform/EventTrap.h"
#include "platform/FirstError.h"
#include "platform/RuntimeError.h"
#include "platform/controls/vsFlexGrid.h"
#include "platform/dialogs/RunModal.h"
#include "platform/text/Numbers.h"
#include "shell/UIMode.h"
#include "shell/u91Trace.h"
#include "shell/u92Utilities.h"
#include "worksheets/GridParts.h"
#include "worksheets/resources/ResourceColumns.h"
#include "worksheets/resources/ResourceRecords.h"
#include "worksheets/resources/RowOrder.h"
#include "worksheets/resources/frm3SRMasterAdd.h"

using platform::EventTrap::Trapped;
using PrepDatatables::tblSRMasterList;
using namespace ResourceColumns;

namespace {

constexpr int kSourceLength = 255;
constexpr int kHelpContextId = 30;

QString CostText() {
    return tblSRMasterList->IsNull(FieldNames::kCost)
               ? QString()
               : platform::Str(tblSRMasterList->Single(FieldNames::kCost));
}

}  // namespace

frm3SRMaster::frm3SRMaster(WorksheetHost& host, QWidget* parent)
    : WorksheetPage(host, parent,
                    {.name = "frm3SRMaster",
                     .caption = tr("Edit resources and costs"),
                     .index = 3,
                     .id = "SRM",
                     .helpContextId = kHelpContextId}) {
    Build();
    connect(grdMasterList_, &vsFlexGrid::EnterCell, this,
            Trapped("frm3SRMaster.grdMasterList_EnterCell", [this] { grdMasterList_EnterCell(); }));
    connect(grdMasterList_, &vsFlexGrid::BeforeEdit, this,
            Trapped("frm3SRMaster.grdMasterList_BeforeEdit",
                    [this](int row, int col, bool*) { grdMasterList_BeforeEdit(row, col); }));
    connect(grdMasterList_, &vsFlexGrid::AfterEdit, this,
            Trapped("frm3SRMaster.grdMasterList_AfterEdit",
                    [this](int row, int col) { grdMasterList_AfterEdit(row, col); }));
    connect(
        txtSource_, &QLineEdit::textChanged, this,
        Trapped("frm3SRMaster.txtSource_Change", [this](const QString&) { txtSource_Change(); }));
    connect(cmdAdd_, &QPushButton::clicked, this,
            Trapped("frm3SRMaster.cmdAdd_Click", [this](bool) { cmdAdd_Click(); }));
    connect(cmdDelete_, &QPushButton::clicked, this,
            Trapped("frm3SRMaster.cmdDelete_Click", [this](bool) { cmdDelete_Click(); }));
}

void frm3SRMaster::Build() {
    AddTitle(tr("Suppression Resources"));
    Body().addWidget(PageParts::Instruction(
        this, "lblInstruction",
        tr("List specific fire management resources available in your area and current costs for "
           "those resources.") +
            QStringLiteral("  ") +
            tr("Cost data can be found in the Standards for Interagency Incident Business "
               "Management.")));
    Body().addWidget(PageParts::Instruction(
        this, "lblAnnual", tr("It is recommended that cost data be updated annually.")));
    grdMasterList_ = new vsFlexGrid(this);
    PageParts::Name(*grdMasterList_, "grdMasterList", tr("Suppression resources"));
    cmdAdd_ = new QPushButton(tr("&Add Item"), this);
    PageParts::Name(*cmdAdd_, "cmdAdd", tr("Add a resource"));
    cmdDelete_ = new QPushButton(tr("&Delete Item"), this);
    PageParts::Name(*cmdDelete_, "cmdDelete", tr("Delete the resource"));
    Body().addWidget(grdMasterList_, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdAdd_);
    buttons->addWidget(cmdDelete_);
    buttons->addStretch(1);
    Body().addLayout(buttons);
    BuildSource();
}

void frm3SRMaster::BuildSource() {
    QLabel* lblSource = PageParts::Label(this, "lblSource", tr("Source of data"));
    txtSource_ = new QLineEdit(this);
    txtSource_->setMaxLength(kSourceLength);
    PageParts::Name(*txtSource_, "txtSource", tr("Source of data"));
    lblSource->setBuddy(txtSource_);
    auto* source = new QHBoxLayout;
    source->addWidget(lblSource);
    source->addWidget(txtSource_, 1);
    Body().addLayout(source);
    Body().addWidget(PageParts::Instruction(
        this, "lblSourceHint",
        tr("If you modify the list, provide the source for the data, the date, and your name in "
           "the box above.")));
}

void frm3SRMaster::Setup() {
    u91Trace::Procedure(QStringLiteral("Setup"));
    BecomeCurrent();
    {
        const BusyScope busy;
        FormatGrid();
        LoadGrid();
        txtSource_->setText(source_.Get());
        // Of a text that is wider than the box, the beginning shows.
        txtSource_->setCursorPosition(0);
    }
    show();
}

void frm3SRMaster::FormatGrid() {
    u91Trace::Procedure(QStringLiteral("frm3SRMaster.FormatGrid"));
    grdMasterList_->SetFixedRows(1);
    grdMasterList_->SetFormatString(
        tr("#  |Name                                                |Short Name        |Units     "
           "            |Cost                  |"));
    grdMasterList_->SetRows(1);
    struct Column {
        int col = 0;
        int twips = 0;
        Qt::Alignment alignment;
    };
    const std::array<Column, kVisible> columns{
        {{kNumber, 480, Qt::AlignCenter},
         {kName, 3600, Qt::AlignLeft | Qt::AlignVCenter},
         {kShortName, 1500, Qt::AlignLeft | Qt::AlignVCenter},
         {kUnits, 900, Qt::AlignCenter},
         {kCost, 1320, Qt::AlignRight | Qt::AlignVCenter}}};
    for (const Column& column : columns) {
        grdMasterList_->SetColWidth(column.col, column.twips);
        grdMasterList_->SetColAlignment(column.col, column.alignment);
        grdMasterList_->SetFixedAlignment(column.col, Qt::AlignCenter);
    }
    grdMasterList_->SetColDataType(kNumber, vsFlexGrid::DataType::kLong);
    grdMasterList_->SetColFormat(kNumber, QStringLiteral("#"));
    grdMasterList_->SetColDataType(kCost, vsFlexGrid::DataType::kLong);
    grdMasterList_->SetColFormat(kCost, QStringLiteral("$#,0"));
    grdMasterList_->SetColHidden(kKey, true);
    grdMasterList_->SetRowNameColumn(kName);
}

void frm3SRMaster::LoadGrid() {
    u91Trace::Procedure(QStringLiteral("frm3SRMaster.LoadGrid"));
    const std::int32_t records = tblSRMasterList->RecordCount();
    grdMasterList_->SetRows(records + 1);
    if (records == 0) {
        return;
    }
    tblSRMasterList->SetIndex(QStringLiteral("Sequence"));
    try {
        int row = 1;
        for (tblSRMasterList->MoveFirst(); !tblSRMasterList->EndOfFile() && row <= records;
             tblSRMasterList->MoveNext(), ++row) {
            LoadRow(row);
        }
        grdMasterList_->SetRows(row);
    } catch (...) {
        // All later look-ups seek by key.
        tblSRMasterList->SetIndex(FieldNames::kPrimaryKey);
        throw;
    }
    tblSRMasterList->SetIndex(FieldNames::kPrimaryKey);
}

void frm3SRMaster::LoadRow(int row) {
    grdMasterList_->SetTextMatrix(row, kNumber, tblSRMasterList->Text(FieldNames::kSequence));
    grdMasterList_->SetTextMatrix(row, kName, tblSRMasterList->Text(FieldNames::kLongName));
    grdMasterList_->SetTextMatrix(row, kShortName, tblSRMasterList->Text(FieldNames::kShortName));
    grdMasterList_->SetTextMatrix(row, kUnits, tblSRMasterList->Text(FieldNames::kUnits));
    grdMasterList_->SetTextMatrix(row, kCost, CostText());
    grdMasterList_->SetTextMatrix(row, kKey, tblSRMasterList->Text(FieldNames::kKey));
}

void frm3SRMaster::grdMasterList_EnterCell() {
    u91Trace::Procedure(QStringLiteral("frm3SRMaster.grdMasterList_EnterCell"));
    grdMasterList_->EditCell();
}

void frm3SRMaster::grdMasterList_BeforeEdit(int row, int col) {
    u91Trace::Procedure(QStringLiteral("frm3SRMaster.grdMasterList_BeforeEdit"));
    static constexpr std::array<int, kVisible> kLengths{4, 50, 20, 10, 5};
    if (col < kVisible) {
        grdMasterList_->SetEditMaxLength(kLengths[std::size_t(col)]);
    }
    textBeforeEdit_ = grdMasterList_->TextMatrix(row, col);
}

void frm3SRMaster::grdMasterList_AfterEdit(int row, int col) {
    u91Trace::Procedure(QStringLiteral("frm3SRMaster.grdMasterList_AfterEdit"));
    if (col == kCost) {
        RequireCost(row);
    }
    if (col != kNumber || grdMasterList_->TextMatrix(row, kNumber) == textBeforeEdit_) {
        return;
    }
    const std::optional<int> place =
        RowOrder::Place(grdMasterList_->TextMatrix(row, kNumber), grdMasterList_->Rows() - 1);
    grdMasterList_->SetTextMatrix(row, kNumber, place ? QString::number(*place) : textBeforeEdit_);
    if (place && *place != row) {
        MoveRow(row, *place);
    }
}

// A number that is too large to be stored does not stay on the screen.
void frm3SRMaster::RequireCost(int row) {
    const QString text = grdMasterList_->TextMatrix(row, kCost);
    try {
        (void)platform::ToSingle(platform::Val(text));
    } catch (const platform::RuntimeError& error) {
        grdMasterList_->SetTextMatrix(row, kCost, textBeforeEdit_);
        throw platform::RuntimeError(error.Number(),
                                     tr("The number \"%1\" is too large.").arg(text));
    }
}

void frm3SRMaster::MoveRow(int from, int to) {
    u91Trace::Procedure(QStringLiteral("MoveRow"));
    std::vector<int> numbers;
    for (int row = 1; row < grdMasterList_->Rows(); ++row) {
        numbers.push_back(Number(row));
    }
    RowOrder::Move(numbers, from, to);
    for (int row = std::min(from, to); row <= std::max(from, to); ++row) {
        grdMasterList_->SetTextMatrix(row, kNumber, QString::number(numbers[std::size_t(row - 1)]));
    }
    grdMasterList_->SortNumericAscending(kNumber);
}

std::int32_t frm3SRMaster::Number(int row) const {
    return platform::CLng(grdMasterList_->ValueMatrix(row, kNumber));
}

void frm3SRMaster::txtSource_Change() {
    u91Trace::Procedure(QStringLiteral("frm3SRMaster.txtSource_Change"));
    if (UIMode::NotBusy()) {
        source_.Let(txtSource_->text());
    }
}

void frm3SRMaster::cmdAdd_Click() {
    u91Trace::Procedure(QStringLiteral("cmdAdd_Click"));
    grdMasterList_->FinishEdit();
    frm3SRMasterAdd dialog(*grdMasterList_, Host().Frame());
    dialog.SetPosition(grdMasterList_->Row() + 1);
    platform::RunModal(dialog);
    dialog.Unload();
}

void frm3SRMaster::cmdDelete_Click() {
    u91Trace::Procedure(QStringLiteral("cmdDelete_Click"));
    grdMasterList_->FinishEdit();
    const int row = grdMasterList_->Row();
    if (row < grdMasterList_->FixedRows()) {
        return;
    }
    if (!u92Utilities::ConfirmDelete(grdMasterList_->TextMatrix(row, kName))) {
        return;
    }
    const QString key = grdMasterList_->TextMatrix(row, kKey);
    if (!ResourceRecords::Delete(platform::CLng(platform::Val(key)))) {
        u91Trace::Warning(QStringLiteral("tblSRMasterList.NoMatch ") + key);
        return;
    }
    grdMasterList_->RemoveItem(row);
    for (int number = 1; number < grdMasterList_->Rows(); ++number) {
        grdMasterList_->SetTextMatrix(number, kNumber, QString::number(number));
    }
}

void frm3SRMaster::SaveChanges() {
    u91Trace::Procedure(QStringLiteral("frm3SRMaster.SaveChanges"));
    grdMasterList_->FinishEdit();
    source_.Save();
}

void frm3SRMaster::UpdateTable() {
    u91Trace::Procedure(QStringLiteral("UpdateTable"));
    grdMasterList_->FinishEdit();
    platform::FirstError refused;
    for (int row = 1; row < grdMasterList_->Rows(); ++row) {
        refused.Try([&] { SaveRow(row); });
    }
    refused.Rethrow();
}

void frm3SRMaster::SaveRow(int row) {
    u91Trace::Procedure(QStringLiteral("frm3SRMaster.SaveRow"));
    Resource resource;
    resource.key = platform::CLng(grdMasterList_->ValueMatrix(row, kKey));
    resource.sequence = Number(row);
    resource.longName = grdMasterList_->TextMatrix(row, kName);
    resource.shortName = grdMasterList_->TextMatrix(row, kShortName);
    resource.units = grdMasterList_->TextMatrix(row, kUnits);
    resource.cost = platform::ToSingle(grdMasterList_->ValueMatrix(row, kCost));
    ResourceRecords::Save(resource);
}

void frm3SRMaster::Save() {
    platform::FirstError refused;
    refused.Try([this] { SaveChanges(); });
    refused.Try([this] { UpdateTable(); });
    refused.Rethrow();
}

void frm3SRMaster::Unload() {
    platform::FirstError refused;
    if (PrepDatafile::IsDatafileOpen()) {
        refused.Try([this] { UpdateTable(); });
    }
    u91Trace::FormUnload(objectName());
    refused.Rethrow();
}
