#include "worksheets/cost/frm6SuppressAcre.h"

#include <QLabel>
#include <QVBoxLayout>

#include <memory>
#include <tuple>
#include <utility>
#include <vector>

#include "base/Handle.h"
#include "base/UIMode.h"
#include "base/u91Trace.h"
#include "platform/EventTrap.h"
#include "platform/RuntimeError.h"
#include "platform/controls/vsFlexGrid.h"
#include "platform/plots/PlotLibrary.h"
#include "worksheets/ChoiceBox.h"
#include "worksheets/ChoicesRow.h"
#include "worksheets/GridParts.h"
#include "worksheets/MissingRows.h"
#include "worksheets/NoteLine.h"
#include "worksheets/PlotBeside.h"
#include "worksheets/Subjects.h"
#include "worksheets/zones/mFMZs.h"

using base::Entry;
using base::Handle;
using platform::LivePlot;
using UIMode::BusyScope;
using worksheets::ChoicesRow;
using worksheets::CostGridTable;
using worksheets::NoteLine;
using worksheets::PlotBeside;
using worksheets::WorksheetHost;
using worksheets::WorksheetPage;
using ZoneKeys::kCostClasses;

namespace {

constexpr int kFrom = CostGridTable::kFrom;
constexpr int kTo = CostGridTable::kTo;
constexpr int kCost = CostGridTable::kCost;
constexpr int kHeaderRows = 2;
constexpr int kRows = kHeaderRows + kCostClasses;
constexpr int kHelpContextId = 60;

// The row of class 1 is the first below the two header rows.
int ClassOfRow(int row) {
    return row - kHeaderRows + 1;
}

}  // namespace

frm6SuppressAcre::frm6SuppressAcre(WorksheetHost& host, QWidget* parent)
    : WorksheetPage(host, parent,
                    {.name = "frm6SuppressAcre",
                     .caption = tr("Edit suppression costs per acre"),
                     .id = kID,
                     .helpContextId = kHelpContextId,
                     .loadName = "frmSuppressAcre"}),
      table_([this](const QString& name, const CostGridTable::Changes& changes) {
          platform::EventTrap::Run("frm6SuppressAcre.ActionDone",
                                   [&] { ActionDone(name, changes); });
      }) {
    Build();
    ConnectHandlers();
}

// The grid goes before the table that it shows.
frm6SuppressAcre::~frm6SuppressAcre() {
    grdCosts_->SetTable(nullptr);
}

void frm6SuppressAcre::Build() {
    AddTitle(tr("Suppression Cost per Acre"));
    auto* choices = new ChoicesRow(this);
    QLabel* lblFMZ = PageParts::Label(this, "lblFMZ", tr("Fire Management &Zone"));
    cboFMZs_ = PageParts::Choice(this, "cboFMZs", *lblFMZ, PageParts::kShownOfZone);
    choices->Add(*lblFMZ, *cboFMZs_);
    Body().addWidget(choices);
    AddStepKeys(*cboFMZs_, Qt::ALT | Qt::Key_PageUp, Qt::ALT | Qt::Key_PageDown);
    grdCosts_ = new vsFlexGrid(this);
    PageParts::Name(*grdCosts_, "grdCosts", tr("Suppression cost per acre by fire size"));
    plot_ = new PlotBeside(
        *grdCosts_, "pltCost", [this](LivePlot& plot) { ShowPlot(plot); }, this);
    GridParts::AddFramed(Body(), *grdCosts_, plot_);
    auto* lblNote = new NoteLine(*grdCosts_, this);
    GridParts::AddNote(Body(), *lblNote);
    Body().addStretch(1);
}

void frm6SuppressAcre::ConnectHandlers() {
    Handle<&frm6SuppressAcre::cboFMZs_Click, Entry::kOwn>(cboFMZs_, &QComboBox::activated, this);
    Handle<&frm6SuppressAcre::grdCosts_EnterCell, Entry::kOwn>(grdCosts_, &vsFlexGrid::EnterCell,
                                                               this);
    Handle<&frm6SuppressAcre::grdCosts_BeforeEdit, Entry::kOwn>(grdCosts_, &vsFlexGrid::BeforeEdit,
                                                                this);
    Handle<&frm6SuppressAcre::grdCosts_ChangeEdit, Entry::kOwn>(grdCosts_, &vsFlexGrid::ChangeEdit,
                                                                this);
    Handle<&frm6SuppressAcre::grdCosts_AfterEdit, Entry::kOwn>(grdCosts_, &vsFlexGrid::AfterEdit,
                                                               this);
}

void frm6SuppressAcre::Setup() {
    u91Trace::Procedure(QStringLiteral("frmSuppressAcre.Setup"));
    BecomeCurrent();
    const BusyScope busy;
    FormatCostGrid();
    grdCosts_->SetTable(&table_);
    mFMZs::LoadFMZs(*cboFMZs_);
    if (cboFMZs_->count() > 0) {
        PageParts::SelectSilently(*cboFMZs_, 0);
        cboFMZs_Click();
    }
}

void frm6SuppressAcre::FormatCostGrid() {
    u91Trace::Procedure(QStringLiteral("frmSuppressAcre.FormatCostGrid"));
    grdCosts_->SetCols(CostGridTable::kColumns);
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
    for (int col = 0; col < CostGridTable::kColumns; ++col) {
        const bool isSize = col != kCost;
        grdCosts_->SetColWidth(col, isSize ? 1400 : 1440);
        grdCosts_->SetColAlignment(col, Qt::AlignRight | Qt::AlignVCenter);
        grdCosts_->SetFixedAlignment(col, Qt::AlignCenter);
        grdCosts_->SetColDataType(
            col, isSize ? vsFlexGrid::DataType::kSingle : vsFlexGrid::DataType::kCurrency);
        grdCosts_->SetColFormat(col, isSize ? QStringLiteral("#,#.00") : QStringLiteral("$#,#"));
    }
    grdCosts_->FitHeadings();
    KeepWidths(*grdCosts_);
}

// A table that cannot be saved stays on the grid; the box then goes back to its zone.
void frm6SuppressAcre::cboFMZs_Click() {
    u91Trace::Procedure(QStringLiteral("frmCostPerAcre.cboFMZs_Click"));
    try {
        ShowZone();
    } catch (...) {
        PageParts::SelectSilently(*cboFMZs_, zoneIndex_);
        throw;
    }
}

void frm6SuppressAcre::ShowZone() {
    if (UIMode::NotBusy()) {
        SaveChanges();
    }
    auto table = std::make_unique<c35AACTable>();
    table->Initialize(cboFMZs_->currentData().toInt());
    table_.Show(std::move(table));
    zoneIndex_ = cboFMZs_->currentIndex();
    DisplayData();
}

void frm6SuppressAcre::DisplayData() {
    u91Trace::Procedure(QStringLiteral("frmSuppressAcre.DisplayData"));
    for (int index = 1; index < kCostClasses; ++index) {
        ShowNextLowerBound(index + kHeaderRows, table_.Value(index, kTo));
    }
    grdCosts_->Refresh();
    plot_->Refresh();
}

void frm6SuppressAcre::ShowPlot(LivePlot& plot) const {
    const c35AACTable* const table = table_.Table();
    if (table == nullptr) {
        plot.ShowNothing();
        return;
    }
    std::vector<LivePlot::SizeClass> classes;
    for (int index = 1; index <= kCostClasses; ++index) {
        const c35AACTable::SizeClass& one = table->Class(index);
        classes.push_back({double(one.topSize), double(one.cost)});
    }
    plot.ShowCosts(cboFMZs_->itemText(zoneIndex_), classes);
}

void frm6SuppressAcre::ShowNextLowerBound(int row, float top) {
    u91Trace::Procedure(QStringLiteral("frmSuppressAcre.ShowNextLowerBound"));
    const int index = ClassOfRow(row);
    table_.SetNextLowerBound(index, top);
    grdCosts_->RowsChanged(index, index);
}

void frm6SuppressAcre::SaveChanges() {
    u91Trace::Procedure(QStringLiteral("frmSuppressAcre.SaveChanges"));
    grdCosts_->FinishEdit();
    if (c35AACTable* table = table_.Table()) {
        MissingRows::Shown("frmSuppressAcre.SaveChanges", [this, table] {
            platform::Concerning([this] { return Subjects::Shown(cboFMZs_->itemText(zoneIndex_)); },
                                 [table] { table->SaveChanges(); });
        });
    }
}

bool frm6SuppressAcre::EndOpenEdit() {
    const bool typed = grdCosts_->EditIsChanged();
    grdCosts_->FinishEdit();
    return typed;
}

void frm6SuppressAcre::ActionDone(const QString& name, const CostGridTable::Changes& changes) {
    plot_->Refresh();
    if (changes.empty()) {
        return;
    }
    const std::int32_t zoneKey = cboFMZs_->itemData(zoneIndex_).toInt();
    Did<frm6SuppressAcre>(
        name,
        [zoneKey, changes](frm6SuppressAcre& form) {
            form.PutBack(zoneKey, changes, &undo::CellChange<float>::before);
        },
        [zoneKey, changes](frm6SuppressAcre& form) {
            form.PutBack(zoneKey, changes, &undo::CellChange<float>::after);
        });
}

void frm6SuppressAcre::PutBack(std::int32_t zoneKey, const CostGridTable::Changes& changes,
                               CellState state) {
    GoTo(zoneKey);
    for (const auto& change : changes) {
        table_.Put(change.row, change.col, change.*state);
    }
    DisplayData();
    GridParts::Show(*grdCosts_, changes.front().row, changes.front().col);
}

// Choosing saves what was shown before.
void frm6SuppressAcre::GoTo(std::int32_t zoneKey) {
    const int zone = cboFMZs_->findData(zoneKey);
    if (zone < 0) {
        throw undo::GoneError(tr("The zone whose costs this step would change is gone."));
    }
    if (zone != zoneIndex_) {
        PageParts::SelectSilently(*cboFMZs_, zone);
        cboFMZs_Click();
    }
}

void frm6SuppressAcre::grdCosts_EnterCell() {
    u91Trace::Procedure(QStringLiteral("frmSuppressAcre.grdCosts_EnterCell"));
    if (grdCosts_->Col() != kFrom && UIMode::NotBusy()) {
        grdCosts_->EditCell();
    }
}

// How long a text may be, and whether the cell takes one, the table decides.
void frm6SuppressAcre::grdCosts_BeforeEdit() {
    u91Trace::Procedure(QStringLiteral("frmSuppressAcre.grdCosts_BeforeEdit"));
}

void frm6SuppressAcre::grdCosts_ChangeEdit() {
    u91Trace::Procedure(QStringLiteral("frmSuppressAcre.grdCosts_ChangeEdit"));
    grdCosts_->OfferEdit();
    plot_->Refresh();
}

void frm6SuppressAcre::grdCosts_AfterEdit(int row, int col) {
    u91Trace::Procedure(
        QStringLiteral("frmSuppressAcre.grdCosts_AfterEdit %1, %2").arg(row).arg(col));
    if (col == kTo && row + 1 < kRows) {
        ShowNextLowerBound(row + 1, table_.Value(ClassOfRow(row), kTo));
    }
    plot_->Refresh();
}

void frm6SuppressAcre::Unload() {
    u91Trace::FormUnload(objectName());
}
