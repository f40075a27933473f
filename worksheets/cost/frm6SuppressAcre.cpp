#include "worksheets/cost/frm6SuppressAcre.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include <tuple>

#include "platform/EventTrap.h"
#include "platform/RuntimeError.h"
#include "platform/controls/vsFlexGrid.h"
#include "platform/text/Numbers.h"
#include "shell/UIMode.h"
#include "shell/u91Trace.h"
#include "worksheets/GridParts.h"
#include "worksheets/cost/LowerBound.h"
#include "worksheets/cost/c35AACTable.h"
#include "worksheets/zones/mFMZs.h"

using platform::EventTrap::Trapped;
using ZoneKeys::kCostClasses;

namespace {

constexpr int kMostOfTheRoom = 1000;
constexpr int kFrom = 0;
constexpr int kTo = 1;
constexpr int kCost = 2;
constexpr int kColumns = 3;
constexpr int kHeaderRows = 2;
constexpr int kRows = kHeaderRows + kCostClasses;
constexpr int kToLength = 9;
constexpr int kCostLength = 7;
constexpr int kHelpContextId = 60;

// The row of class 1 is the first below the two header rows.
int ClassOfRow(int row) {
    return row - kHeaderRows + 1;
}

int RowOfClass(int index) {
    return index + kHeaderRows - 1;
}

}  // namespace

frm6SuppressAcre::frm6SuppressAcre(WorksheetHost& host, QWidget* parent)
    : WorksheetPage(host, parent,
                    {.name = "frm6SuppressAcre",
                     .caption = tr("Edit suppression costs per acre"),
                     .index = 6,
                     .id = "SCA",
                     .helpContextId = kHelpContextId,
                     .loadName = "frmSuppressAcre"}) {
    Build();
    ConnectHandlers();
}

frm6SuppressAcre::~frm6SuppressAcre() = default;

void frm6SuppressAcre::Build() {
    AddTitle(tr("Suppression Cost per Acre"));
    QLabel* lblFMZ = PageParts::Label(this, "lblFMZ", tr("Fire Management &Zone"));
    cboFMZs_ = PageParts::Choice(this, "cboFMZs", *lblFMZ);
    auto* choice = new QHBoxLayout;
    choice->addWidget(lblFMZ);
    choice->addWidget(cboFMZs_);
    choice->addStretch(1);
    Body().addLayout(choice);
    grdCosts_ = new vsFlexGrid(this);
    PageParts::Name(*grdCosts_, "grdCosts", tr("Suppression cost per acre by fire size"));
    Body().addWidget(grdCosts_, kMostOfTheRoom);
    Body().addStretch(1);
    GridParts::EndAtLastRow(*grdCosts_);
}

void frm6SuppressAcre::ConnectHandlers() {
    connect(cboFMZs_, &QComboBox::activated, this,
            Trapped("frm6SuppressAcre.cboFMZs_Click", [this](int) { ChooseZone(); }));
    connect(grdCosts_, &vsFlexGrid::EnterCell, this,
            Trapped("frm6SuppressAcre.grdCosts_EnterCell", [this] { grdCosts_EnterCell(); }));
    connect(grdCosts_, &vsFlexGrid::BeforeEdit, this,
            Trapped("frm6SuppressAcre.grdCosts_BeforeEdit", [this](int row, int col, bool* cancel) {
                grdCosts_BeforeEdit(row, col, cancel);
            }));
    connect(grdCosts_, &vsFlexGrid::ChangeEdit, this,
            Trapped("frm6SuppressAcre.grdCosts_ChangeEdit", [this] { grdCosts_ChangeEdit(); }));
    connect(grdCosts_, &vsFlexGrid::AfterEdit, this,
            Trapped("frm6SuppressAcre.grdCosts_AfterEdit",
                    [this](int row, int col) { grdCosts_AfterEdit(row, col); }));
    connect(grdCosts_, &vsFlexGrid::EditCancelled, this,
            Trapped("frm6SuppressAcre.grdCosts_EditCancelled",
                    [this](int row, int col) { PutBack(row, col); }));
}

void frm6SuppressAcre::Setup() {
    u91Trace::Procedure(QStringLiteral("frmSuppressAcre.Setup"));
    BecomeCurrent();
    const BusyScope busy;
    FormatCostGrid();
    mFMZs::LoadFMZs(*cboFMZs_);
    if (cboFMZs_->count() > 0) {
        PageParts::SelectSilently(*cboFMZs_, 0);
        cboFMZs_Click();
    }
}

void frm6SuppressAcre::FormatCostGrid() {
    grdCosts_->SetCols(kColumns);
    grdCosts_->SetFixedRows(kHeaderRows);
    grdCosts_->SetRows(kRows);
    const QString cost = tr("Suppression cost") + QStringLiteral("\r") + tr("per acre");
    const QString size = tr("Fire size, in acres");
    for (const auto& [row, from, to] :
         {std::tuple(0, size, size), std::tuple(1, tr("From"), tr("To"))}) {
        grdCosts_->SetTextMatrix(row, kFrom, from);
        grdCosts_->SetTextMatrix(row, kTo, to);
        grdCosts_->SetTextMatrix(row, kCost, cost);
    }
    grdCosts_->SetMergeFixed(true);
    grdCosts_->SetRowNameColumn(-1);
    for (int col = 0; col < kColumns; ++col) {
        const bool isSize = col != kCost;
        grdCosts_->SetColWidth(col, isSize ? 1400 : 1440);
        grdCosts_->SetColAlignment(col, Qt::AlignRight | Qt::AlignVCenter);
        grdCosts_->SetFixedAlignment(col, Qt::AlignCenter);
        grdCosts_->SetColDataType(
            col, isSize ? vsFlexGrid::DataType::kSingle : vsFlexGrid::DataType::kCurrency);
        grdCosts_->SetColFormat(col, isSize ? QStringLiteral("#,#.00") : QStringLiteral("$#,#"));
    }
}

// A table that cannot be saved stays on the grid; the box then goes back to its zone.
void frm6SuppressAcre::ChooseZone() {
    try {
        cboFMZs_Click();
    } catch (...) {
        PageParts::SelectSilently(*cboFMZs_, zoneIndex_);
        throw;
    }
}

void frm6SuppressAcre::cboFMZs_Click() {
    u91Trace::Procedure(QStringLiteral("frmCostPerAcre.cboFMZs_Click"));
    if (UIMode::NotBusy()) {
        SaveChanges();
    }
    auto table = std::make_unique<c35AACTable>();
    table->Initialize(cboFMZs_->currentData().toInt());
    table_ = std::move(table);
    zoneIndex_ = cboFMZs_->currentIndex();
    DisplayData();
}

void frm6SuppressAcre::DisplayData() {
    grdCosts_->SetTextMatrix(kHeaderRows, kFrom, QStringLiteral("0"));
    for (int index = 1; index <= kCostClasses; ++index) {
        const int row = RowOfClass(index);
        ShowStored(row, kTo);
        ShowStored(row, kCost);
        if (index < kCostClasses) {
            ShowNextLowerBound(row + 1, table_->TopSize(index));
        }
    }
}

void frm6SuppressAcre::ShowNextLowerBound(int row, float top) {
    grdCosts_->SetTextMatrix(row, kFrom, NextLowerBound(top));
}

void frm6SuppressAcre::ShowStored(int row, int col) {
    const float value = Stored(row, col);
    const bool empty = col == kTo && !(value > 0);
    grdCosts_->SetTextMatrix(row, col, empty ? QString() : platform::Str(value));
}

float frm6SuppressAcre::Stored(int row, int col) const {
    const int index = ClassOfRow(row);
    return col == kTo ? table_->TopSize(index) : table_->Cost(index);
}

void frm6SuppressAcre::Store(int row, int col, float value) {
    if (col == kTo) {
        table_->TopSize(ClassOfRow(row), value);
    } else {
        table_->Cost(ClassOfRow(row), value);
    }
}

void frm6SuppressAcre::SaveChanges() {
    u91Trace::Procedure(QStringLiteral("frmSuppressAcre.SaveChanges"));
    grdCosts_->FinishEdit();
    if (!table_) {
        return;
    }
    try {
        table_->SaveChanges();
    } catch (const platform::RuntimeError& error) {
        // An import that was cut off leaves out rows of its last zone.
        if (error.Number() != platform::kNoCurrentRecord) {
            throw;
        }
        ZoneKeys::AddMissingCostRows(cboFMZs_->itemData(zoneIndex_).toInt());
        table_->SaveChanges();
    }
}

void frm6SuppressAcre::grdCosts_EnterCell() {
    u91Trace::Procedure(QStringLiteral("frmSuppressAcre.grdCosts_EnterCell"));
    if (grdCosts_->Col() != kFrom && UIMode::NotBusy()) {
        grdCosts_->EditCell();
    }
}

void frm6SuppressAcre::grdCosts_BeforeEdit(int row, int col, bool* cancel) {
    if (col == kFrom || !table_) {
        *cancel = true;
        return;
    }
    grdCosts_->SetEditMaxLength(col == kTo ? kToLength : kCostLength);
    valueBeforeEdit_ = Stored(row, col);
}

void frm6SuppressAcre::grdCosts_ChangeEdit() {
    try {
        Store(grdCosts_->Row(), grdCosts_->Col(),
              platform::ToSingle(platform::Val(grdCosts_->EditText())));
    } catch (const platform::RuntimeError&) {
        // Larger than the file can hold: told once, when the edit ends.
    }
}

void frm6SuppressAcre::grdCosts_AfterEdit(int row, int col) {
    u91Trace::Procedure(
        QStringLiteral("frmSuppressAcre.grdCosts_AfterEdit %1, %2").arg(row).arg(col));
    RequireStored(row, col);
    if (col == kTo && row + 1 < kRows) {
        ShowNextLowerBound(row + 1, platform::ToSingle(grdCosts_->ValueMatrix(row, kTo)));
    }
}

// A number that was too large to be stored does not stay on the screen.
void frm6SuppressAcre::RequireStored(int row, int col) {
    const QString text = grdCosts_->TextMatrix(row, col);
    try {
        (void)platform::ToSingle(platform::Val(text));
    } catch (const platform::RuntimeError& error) {
        PutBack(row, col);
        ShowStored(row, col);
        throw platform::RuntimeError(error.Number(),
                                     tr("The number \"%1\" is too large.").arg(text));
    }
}

// Every keystroke was stored, so giving up an edit takes back what it stored.
void frm6SuppressAcre::PutBack(int row, int col) {
    if (table_ && Stored(row, col) != valueBeforeEdit_) {
        Store(row, col, valueBeforeEdit_);
    }
}

void frm6SuppressAcre::Unload() {
    u91Trace::FormUnload(objectName());
}
