#include "worksheets/nvc/frm5NVCTable.h"

#include <QLabel>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

#include "base/Handle.h"
#include "base/UIMode.h"
#include "base/u91Trace.h"
#include "platform/EventTrap.h"
#include "platform/FirstError.h"
#include "platform/RuntimeError.h"
#include "platform/controls/SSPanel.h"
#include "platform/controls/vsFlexGrid.h"
#include "platform/plots/PlotLibrary.h"
#include "worksheets/ChoiceBox.h"
#include "worksheets/ChoicesRow.h"
#include "worksheets/GridParts.h"
#include "worksheets/MissingRows.h"
#include "worksheets/NoteLine.h"
#include "worksheets/PlotBeside.h"
#include "worksheets/Subjects.h"
#include "worksheets/nvc/ColumnTotals.h"
#include "worksheets/nvc/NVCTotals.h"
#include "worksheets/zones/mFMZs.h"

using base::Entry;
using base::Handle;
using platform::LivePlot;
using UIMode::BusyScope;
using worksheets::ChoicesRow;
using worksheets::ColumnTotals;
using worksheets::NoteLine;
using worksheets::NVCGridTable;
using worksheets::PlotBeside;
using worksheets::WorksheetHost;
using worksheets::WorksheetPage;
using ZoneKeys::kFilLevels;
using ZoneKeys::kResources;

namespace {

constexpr int kShownOfLocation = 4;  // characters
constexpr int kHelpContextId = 50;
const char* const kTag = "Tag";
const QString kMinusTyped = QStringLiteral("minus");

// Wraps only where the page is too narrow for one line.
class Reminder : public QLabel {
public:
    Reminder(const QString& text, QWidget* parent) : QLabel(text, parent) {
        setTextFormat(Qt::PlainText);
        setWordWrap(true);
        setProperty("Caption", text);
        PageParts::Name(*this, "lblMinus", text);
    }
    [[nodiscard]] QSize sizeHint() const override {
        const int line = fontMetrics().horizontalAdvance(text());
        return {line, heightForWidth(line)};
    }
};

}  // namespace

frm5NVCTable::frm5NVCTable(WorksheetHost& host, QWidget* parent)
    : WorksheetPage(host, parent,
                    {.name = "frm5NVCTable",
                     .caption = tr("Net Value Change"),
                     .id = kID,
                     .helpContextId = kHelpContextId}),
      table_([this](const QString& name, const NVCGridTable::Changes& changes) {
          platform::EventTrap::Run("frm5NVCTable.ActionDone", [&] { ActionDone(name, changes); });
      }) {
    AddTitle(tr("Net Value Change"));
    BuildChoices();
    BuildTable();
    ConnectHandlers();
}

// The grid goes before the table that it shows.
frm5NVCTable::~frm5NVCTable() {
    grdNVC_->SetTable(nullptr);
}

void frm5NVCTable::BuildChoices() {
    auto* choices = new ChoicesRow(this);
    QLabel* lblFMZ = PageParts::Label(this, "lblFMZ", tr("Fire Management &Zone"));
    cboFMZs_ = PageParts::Choice(this, "cboFMZs", *lblFMZ, PageParts::kShownOfZone);
    choices->Add(*lblFMZ, *cboFMZs_);
    QLabel* lblRepLoc = PageParts::Label(this, "lblRepLoc", tr("Representative Location"));
    cboRepLocs_ = PageParts::Choice(this, "cboRepLocs", *lblRepLoc, kShownOfLocation);
    choices->Add(*lblRepLoc, *cboRepLocs_);
    Body().addWidget(choices);
    AddStepKeys(*cboFMZs_, Qt::ALT | Qt::Key_PageUp, Qt::ALT | Qt::Key_PageDown);
    AddStepKeys(*cboRepLocs_, Qt::ALT | Qt::Key_Up, Qt::ALT | Qt::Key_Down);
    lblNoRepLocs_ = PageParts::Instruction(
        this, "lblNoRepLocs",
        tr("This zone has no representative locations, so it has no table to edit."));
    lblNoRepLocs_->hide();
    Body().addWidget(lblNoRepLocs_);
}

void frm5NVCTable::BuildTable() {
    grdNVC_ = new vsFlexGrid(this);
    PageParts::Name(*grdNVC_, "grdNVC", tr("Net value change, dollars per acre"));
    plot_ = new PlotBeside(
        *grdNVC_, "pltNVC", [this](LivePlot& plot) { ShowPlot(plot); }, this);
    GridParts::AddFramed(Body(), *grdNVC_, plot_);
    BuildTotals();
    BuildNotes();
    Body().addStretch(1);
}

void frm5NVCTable::BuildTotals() {
    auto* pnlLabel = new SSPanel(this);
    PageParts::Name(*pnlLabel, "pnlLabel", tr("Gain or loss per acre"));
    pnlLabel->SetCaption(tr("Gain or loss per acre"));
    std::vector<SSPanel*> panels{pnlLabel};
    for (int level = 1; level <= kFilLevels; ++level) {
        auto* panel = new SSPanel(this);
        panel->setObjectName(QStringLiteral("pnlAcreImpact_%1").arg(level));
        panel->setAccessibleName(tr("Total of FIL %1").arg(level));
        panel->SetCaptionAlignment(Qt::AlignRight | Qt::AlignVCenter);
        panels.push_back(panel);
    }
    totals_ = new ColumnTotals(*grdNVC_, std::move(panels), this);
    totals_->setObjectName(QStringLiteral("pnlTotals"));
    totals_->setAccessibleName(tr("Totals"));
    Body().addWidget(totals_);
}

void frm5NVCTable::BuildNotes() {
    auto* lblNote = new NoteLine(*grdNVC_, this);
    lblMinus_ = new Reminder(tr("Be sure to include a minus sign (-) for losses."), this);
    lblMinus_->setProperty(kTag, QString());
    lblMinus_->hide();
    GridParts::AddNote(Body(), *lblNote, lblMinus_);
}

void frm5NVCTable::ConnectHandlers() {
    Handle<&frm5NVCTable::cboFMZs_Click, Entry::kOwn>(cboFMZs_, &QComboBox::activated, this);
    Handle<&frm5NVCTable::cboRepLocs_Click, Entry::kOwn>(cboRepLocs_, &QComboBox::activated, this);
    Handle<&frm5NVCTable::grdNVC_EnterCell>(grdNVC_, &vsFlexGrid::EnterCell, this);
    Handle<&frm5NVCTable::grdNVC_BeforeEdit>(grdNVC_, &vsFlexGrid::BeforeEdit, this);
    Handle<&frm5NVCTable::grdNVC_KeyPressEdit>(grdNVC_, &vsFlexGrid::KeyPressEdit, this);
    Handle<&frm5NVCTable::grdNVC_KeyUpEdit>(grdNVC_, &vsFlexGrid::KeyUpEdit, this);
}

void frm5NVCTable::Setup() {
    u91Trace::Procedure(QStringLiteral("frm5NVCTable.Setup"));
    BecomeCurrent();
    const BusyScope busy;
    SetupGrid();
    table_.LoadNames();
    grdNVC_->SetTable(&table_);
    mFMZs::LoadFMZs(*cboFMZs_);
    if (cboFMZs_->count() > 0) {
        PageParts::SelectSilently(*cboFMZs_, 0);
        cboFMZs_Click();
    }
}

void frm5NVCTable::SetupGrid() {
    u91Trace::Procedure(QStringLiteral("frm5NVCTable.SetupGrid"));
    grdNVC_->SetCols(kFilLevels + 1);
    grdNVC_->SetFixedRows(1);
    grdNVC_->SetRows(kResources + 1);
    grdNVC_->SetColWidth(0, 2640);
    grdNVC_->SetColAccessibleName(0, tr("Resource"));
    for (int level = 1; level <= kFilLevels; ++level) {
        grdNVC_->SetTextMatrix(0, level, tr("FIL %1").arg(level));
        grdNVC_->SetColWidth(level, 1020);
        grdNVC_->SetColAlignment(level, Qt::AlignRight | Qt::AlignVCenter);
        grdNVC_->SetFixedAlignment(level, Qt::AlignCenter);
        grdNVC_->SetColDataType(level, vsFlexGrid::DataType::kCurrency);
        grdNVC_->SetColFormat(level, QStringLiteral("#.00"));
    }
    KeepWidths(*grdNVC_);
}

void frm5NVCTable::SaveChanges() {
    u91Trace::Procedure(QStringLiteral("frm5NVCTable.SaveChanges"));
    grdNVC_->FinishEdit();
    platform::FirstError refused;
    refused.Try(
        [this] { MissingRows::Shown("frm5NVCTable.SaveChanges", [this] { table_.SaveNames(); }); });
    if (c34NVCTable* table = table_.Table()) {
        refused.Try([this, table] {
            MissingRows::Shown("frm5NVCTable.SaveChanges", [this, table] {
                platform::Concerning([this] { return ShownTable(); },
                                     [table] { table->SaveChanges(); });
            });
        });
    }
    refused.Rethrow();
}

QString frm5NVCTable::ShownTable() const {
    const QString zone = Subjects::Shown(cboFMZs_->itemText(zoneIndex_));
    return tr("%1, location %2").arg(zone).arg(locationIndex_ + 1);
}

bool frm5NVCTable::EndOpenEdit() {
    const bool typed = grdNVC_->EditIsChanged();
    grdNVC_->FinishEdit();
    return typed;
}

void frm5NVCTable::ActionDone(const QString& name, const NVCGridTable::Changes& changes) {
    ShowTotals();
    if (changes.empty()) {
        return;
    }
    const Place place{zoneKey_, locationIndex_ + 1};
    Did<frm5NVCTable>(
        name,
        [place, changes](frm5NVCTable& form) {
            form.PutBack(place, changes, &undo::CellChange<NVCGridTable::Cell>::before);
        },
        [place, changes](frm5NVCTable& form) {
            form.PutBack(place, changes, &undo::CellChange<NVCGridTable::Cell>::after);
        });
}

void frm5NVCTable::PutBack(const Place& place, const NVCGridTable::Changes& changes,
                           CellState state) {
    // The names are the same at every location.
    const bool ofLocation = std::any_of(changes.begin(), changes.end(), [](const auto& change) {
        return change.col != NVCGridTable::kName;
    });
    if (ofLocation) {
        GoTo(place);
    }
    for (const auto& change : changes) {
        table_.Put(change.row, change.col, change.*state);
    }
    grdNVC_->Refresh();
    ShowTotals();
    GridParts::Show(*grdNVC_, changes.front().row, changes.front().col);
}

// Choosing saves what was shown before.
void frm5NVCTable::GoTo(const Place& place) {
    const int zone = cboFMZs_->findData(place.zoneKey);
    if (zone < 0) {
        throw undo::GoneError(tr("The zone whose values this step would change is gone."));
    }
    if (zone != zoneIndex_) {
        PageParts::SelectSilently(*cboFMZs_, zone);
        cboFMZs_Click();
    }
    const int location = place.location - 1;
    if (location >= cboRepLocs_->count()) {
        throw undo::GoneError(tr("The zone no longer has the location %1, whose values this step "
                                 "would change.")
                                  .arg(place.location));
    }
    if (location != locationIndex_) {
        PageParts::SelectSilently(*cboRepLocs_, location);
        cboRepLocs_Click();
    }
}

void frm5NVCTable::RestoreChoices() {
    if (zoneIndex_ != cboFMZs_->currentIndex()) {
        PageParts::SelectSilently(*cboFMZs_, zoneIndex_);
    }
    if (cboRepLocs_->currentIndex() != locationIndex_) {
        PageParts::SelectSilently(*cboRepLocs_, locationIndex_);
    }
}

// A table that cannot be saved stays on the grid; the boxes then go back to what it belongs to.
void frm5NVCTable::OrRestoreChoices(const std::function<void()>& choose) {
    try {
        choose();
    } catch (...) {
        RestoreChoices();
        throw;
    }
}

void frm5NVCTable::cboFMZs_Click() {
    u91Trace::Procedure(QStringLiteral("cboFMZs_Click ") + cboFMZs_->currentText());
    OrRestoreChoices([this] { ShowZone(); });
}

void frm5NVCTable::ShowZone() {
    if (UIMode::NotBusy()) {
        SaveChanges();
    }
    zoneIndex_ = cboFMZs_->currentIndex();
    zoneKey_ = cboFMZs_->currentData().toInt();
    locationIndex_ = -1;
    mFMZs::LoadRepLocs(*cboRepLocs_, zoneKey_);
    lblNoRepLocs_->setVisible(cboRepLocs_->count() == 0);
    if (cboRepLocs_->count() > 0) {
        PageParts::SelectSilently(*cboRepLocs_, 0);
        cboRepLocs_Click();
    } else {
        // The table that was shown before stays, but it is not this zone's.
        table_.StopTyping();
        plot_->Refresh();
    }
}

void frm5NVCTable::cboRepLocs_Click() {
    u91Trace::Procedure(QStringLiteral("cboRepLocs_Click ") + cboRepLocs_->currentText());
    OrRestoreChoices([this] { ShowLocation(); });
}

void frm5NVCTable::ShowLocation() {
    if (UIMode::NotBusy()) {
        SaveChanges();
    }
    auto table = std::make_unique<c34NVCTable>();
    table->Initialize(zoneKey_, cboRepLocs_->currentIndex() + 1);
    table_.Show(std::move(table));
    locationIndex_ = cboRepLocs_->currentIndex();
    ShowNVCTable();
}

void frm5NVCTable::ShowNVCTable() {
    u91Trace::Procedure(QStringLiteral("ShowNVCTable"));
    const BusyScope busy;
    grdNVC_->Refresh();
    for (int level = 1; level <= kFilLevels; ++level) {
        ShowTotal(level, table_.LoadedTotal(level));
    }
    plot_->Refresh();
}

void frm5NVCTable::ShowTotals() {
    u91Trace::Procedure(QStringLiteral("ShowTotals"));
    for (int level = 1; level <= kFilLevels; ++level) {
        ShowTotal(level, table_.ShownTotal(level));
    }
    plot_->Refresh();
}

// The totals as the panels show them; a zone without locations has none.
void frm5NVCTable::ShowPlot(LivePlot& plot) const {
    if (table_.Table() == nullptr || locationIndex_ < 0) {
        plot.ShowNothing();
        return;
    }
    std::array<double, kFilLevels> totals{};
    for (int level = 1; level <= kFilLevels; ++level) {
        totals[static_cast<std::size_t>(level - 1)] = table_.ShownTotal(level);
    }
    plot.ShowTotals(ShownTable(), totals);
}

void frm5NVCTable::ShowTotal(int level, double total) {
    SSPanel& panel = totals_->Panel(level);
    panel.SetCaption(NVCTotals::Text(total));
    panel.setToolTip(panel.Caption());
    grdNVC_->SetColRoom(level, panel.sizeHint().width());
}

void frm5NVCTable::grdNVC_EnterCell() {
    grdNVC_->EditCell();
}

// How long a text may be, and whether the cell takes one, the table decides.
void frm5NVCTable::grdNVC_BeforeEdit() {}

void frm5NVCTable::grdNVC_KeyPressEdit(int row, int col, QChar key) {
    if (key == QLatin1Char('-')) {
        lblMinus_->hide();
        lblMinus_->setProperty(kTag, kMinusTyped);
        return;
    }
    const bool digit = key >= QLatin1Char('0') && key <= QLatin1Char('9');
    if (digit && row >= 1 && col >= 1 && table_.Value(row, col) == 0 &&
        lblMinus_->property(kTag).toString() != kMinusTyped) {
        lblMinus_->show();
    }
}

void frm5NVCTable::grdNVC_KeyUpEdit(int /*row*/, int col) {
    grdNVC_->OfferEdit();
    if (col != NVCGridTable::kName) {
        ShowTotals();
    }
}

void frm5NVCTable::Unload() {
    u91Trace::FormUnload(objectName());
}
