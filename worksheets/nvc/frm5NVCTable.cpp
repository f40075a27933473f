#include "worksheets/nvc/frm5NVCTable.h"

#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QVBoxLayout>

#include "platform/EventTrap.h"
#include "platform/FirstError.h"
#include "platform/RuntimeError.h"
#include "platform/controls/SSPanel.h"
#include "platform/controls/vsFlexGrid.h"
#include "platform/text/Numbers.h"
#include "shell/UIMode.h"
#include "shell/u91Trace.h"
#include "worksheets/GridParts.h"
#include "worksheets/nvc/ColumnTotals.h"
#include "worksheets/nvc/NVCTotals.h"
#include "worksheets/nvc/c34NVCTable.h"
#include "worksheets/zones/mFMZs.h"

using platform::EventTrap::Trapped;
using ZoneKeys::kFilLevels;
using ZoneKeys::kResources;

namespace {

constexpr int kShownOfLocation = 4;  // characters
constexpr int kMostOfTheRoom = 1000;
constexpr int kNameLength = 50;
constexpr int kValueLength = 10;
constexpr int kHelpContextId = 50;
const char* const kTag = "Tag";
const QString kMinusTyped = QStringLiteral("minus");

}  // namespace

frm5NVCTable::frm5NVCTable(WorksheetHost& host, QWidget* parent)
    : WorksheetPage(host, parent,
                    {.name = "frm5NVCTable",
                     .caption = tr("Net Value Change"),
                     .index = 5,
                     .id = "NVC",
                     .helpContextId = kHelpContextId}) {
    AddTitle(tr("Net Value Change"));
    BuildChoices();
    BuildTable();
    ConnectHandlers();
}

frm5NVCTable::~frm5NVCTable() = default;

void frm5NVCTable::BuildChoices() {
    QLabel* lblFMZ = PageParts::Label(this, "lblFMZ", tr("Fire Management &Zone"));
    cboFMZs_ = PageParts::Choice(this, "cboFMZs", *lblFMZ);
    QLabel* lblRepLoc = PageParts::Label(this, "lblRepLoc", tr("Representative Location"));
    cboRepLocs_ = PageParts::Choice(this, "cboRepLocs", *lblRepLoc);
    cboRepLocs_->setMinimumContentsLength(kShownOfLocation);

    auto* choices = new QGridLayout;
    choices->addWidget(lblFMZ, 0, 0);
    choices->addWidget(cboFMZs_, 0, 1, Qt::AlignLeft);
    choices->addWidget(lblRepLoc, 1, 0);
    choices->addWidget(cboRepLocs_, 1, 1, Qt::AlignLeft);
    choices->setColumnStretch(2, 1);
    Body().addLayout(choices);
    lblNoRepLocs_ = PageParts::Instruction(
        this, "lblNoRepLocs",
        tr("This zone has no representative locations, so it has no table to edit."));
    lblNoRepLocs_->hide();
    Body().addWidget(lblNoRepLocs_);
}

void frm5NVCTable::BuildTable() {
    grdNVC_ = new vsFlexGrid(this);
    PageParts::Name(*grdNVC_, "grdNVC", tr("Net value change, dollars per acre"));
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
    lblMinus_ =
        PageParts::Label(this, "lblMinus", tr("Be sure to include a minus sign (-) for losses."));
    lblMinus_->setProperty(kTag, QString());
    QSizePolicy keepsItsPlace = lblMinus_->sizePolicy();
    keepsItsPlace.setRetainSizeWhenHidden(true);
    lblMinus_->setSizePolicy(keepsItsPlace);
    lblMinus_->hide();
    Body().addWidget(grdNVC_, kMostOfTheRoom);
    Body().addWidget(totals_);
    Body().addWidget(lblMinus_);
    Body().addStretch(1);
    GridParts::EndAtLastRow(*grdNVC_);
}

void frm5NVCTable::ConnectHandlers() {
    connect(cboFMZs_, &QComboBox::activated, this,
            Trapped("frm5NVCTable.cboFMZs_Click", [this](int) { ChooseZone(); }));
    connect(cboRepLocs_, &QComboBox::activated, this,
            Trapped("frm5NVCTable.cboRepLocs_Click", [this](int) { ChooseLocation(); }));
    connect(grdNVC_, &vsFlexGrid::EnterCell, this,
            Trapped("frm5NVCTable.grdNVC_EnterCell", [this] { grdNVC_EnterCell(); }));
    connect(grdNVC_, &vsFlexGrid::BeforeEdit, this,
            Trapped("frm5NVCTable.grdNVC_BeforeEdit", [this](int /*row*/, int col, bool* cancel) {
                grdNVC_BeforeEdit(col, cancel);
            }));
    connect(grdNVC_, &vsFlexGrid::KeyPressEdit, this,
            Trapped("frm5NVCTable.grdNVC_KeyPressEdit",
                    [this](int row, int col, QChar key) { grdNVC_KeyPressEdit(row, col, key); }));
    connect(grdNVC_, &vsFlexGrid::KeyUpEdit, this,
            Trapped("frm5NVCTable.grdNVC_KeyUpEdit",
                    [this](int row, int col, int /*key*/) { grdNVC_KeyUpEdit(row, col); }));
    connect(grdNVC_, &vsFlexGrid::AfterEdit, this,
            Trapped("frm5NVCTable.SettleCell", [this](int row, int col) { SettleCell(row, col); }));
    connect(grdNVC_, &vsFlexGrid::EditCancelled, this,
            Trapped("frm5NVCTable.SettleCell", [this](int row, int col) { SettleCell(row, col); }));
}

void frm5NVCTable::Setup() {
    u91Trace::Procedure(QStringLiteral("frm5NVCTable.Setup"));
    BecomeCurrent();
    const BusyScope busy;
    SetupGrid();
    names_.Load();
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
        grdNVC_->SetTextMatrix(0, level, QStringLiteral("FIL %1").arg(level));
        grdNVC_->SetColWidth(level, 1020);
        grdNVC_->SetColAlignment(level, Qt::AlignRight | Qt::AlignVCenter);
        grdNVC_->SetFixedAlignment(level, Qt::AlignCenter);
        grdNVC_->SetColDataType(level, vsFlexGrid::DataType::kCurrency);
        grdNVC_->SetColFormat(level, QStringLiteral("#.00"));
    }
}

void frm5NVCTable::SaveChanges() {
    u91Trace::Procedure(QStringLiteral("frm5NVCTable.SaveChanges"));
    grdNVC_->FinishEdit();
    platform::FirstError refused;
    refused.Try([this] { names_.Save(); });
    if (table_) {
        refused.Try([this] { SaveTable(); });
    }
    refused.Rethrow();
}

// An import that was cut off leaves out rows of its last zone; what is typed there needs them.
void frm5NVCTable::SaveTable() {
    try {
        table_->SaveChanges();
    } catch (const platform::RuntimeError& error) {
        if (error.Number() != platform::kNoCurrentRecord || locationIndex_ < 0) {
            throw;
        }
        ZoneKeys::AddLocations(zoneKey_, locationIndex_ + 1, locationIndex_ + 1);
        table_->SaveChanges();
    }
}

// A table that cannot be saved stays on the grid; the boxes then go back to what it belongs to.
void frm5NVCTable::ChooseZone() {
    try {
        cboFMZs_Click();
    } catch (...) {
        RestoreChoices();
        throw;
    }
}

void frm5NVCTable::ChooseLocation() {
    try {
        cboRepLocs_Click();
    } catch (...) {
        RestoreChoices();
        throw;
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

void frm5NVCTable::cboFMZs_Click() {
    u91Trace::Procedure(QStringLiteral("cboFMZs_Click ") + cboFMZs_->currentText());
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
    }
}

void frm5NVCTable::cboRepLocs_Click() {
    u91Trace::Procedure(QStringLiteral("cboRepLocs_Click ") + cboRepLocs_->currentText());
    if (UIMode::NotBusy()) {
        SaveChanges();
    }
    auto table = std::make_unique<c34NVCTable>();
    table->Initialize(zoneKey_, cboRepLocs_->currentIndex() + 1);
    table_ = std::move(table);
    locationIndex_ = cboRepLocs_->currentIndex();
    ShowNVCTable();
}

void frm5NVCTable::ShowNVCTable() {
    u91Trace::Procedure(QStringLiteral("ShowNVCTable"));
    const BusyScope busy;
    std::array<std::array<float, kResources>, kFilLevels> columns{};
    for (int resource = 1; resource <= kResources; ++resource) {
        grdNVC_->SetTextMatrix(resource, 0, names_.Name(resource));
        for (int level = 1; level <= kFilLevels; ++level) {
            const float value = table_->NVCCellValue(resource, level);
            grdNVC_->SetTextMatrix(resource, level, platform::Str(value));
            columns[std::size_t(level - 1)][std::size_t(resource - 1)] = value;
        }
    }
    for (int level = 1; level <= kFilLevels; ++level) {
        ShowTotal(level, NVCTotals::Loaded(columns[std::size_t(level - 1)]));
    }
}

void frm5NVCTable::ShowTotals() {
    u91Trace::Procedure(QStringLiteral("ShowTotals"));
    for (int level = 1; level <= kFilLevels; ++level) {
        std::array<double, kResources> column{};
        for (int resource = 1; resource <= kResources; ++resource) {
            column[std::size_t(resource - 1)] = grdNVC_->ValueMatrix(resource, level);
        }
        ShowTotal(level, NVCTotals::Typed(column));
    }
}

void frm5NVCTable::ShowTotal(int level, double total) {
    SSPanel& panel = totals_->Panel(level);
    panel.SetCaption(NVCTotals::Text(total));
    panel.setToolTip(panel.Caption());
}

void frm5NVCTable::grdNVC_EnterCell() {
    u91Trace::Procedure(QStringLiteral("frm5NVCTable.grdNVC_EnterCell"));
    grdNVC_->EditCell();
}

void frm5NVCTable::grdNVC_BeforeEdit(int col, bool* cancel) {
    u91Trace::Procedure(QStringLiteral("frm5NVCTable.grdNVC_BeforeEdit"));
    grdNVC_->SetEditMaxLength(col == 0 ? kNameLength : kValueLength);
    // A zone without locations leaves the table that was shown before, which is not its own.
    *cancel = *cancel || locationIndex_ < 0;
}

void frm5NVCTable::grdNVC_KeyPressEdit(int row, int col, QChar key) {
    u91Trace::Procedure(QStringLiteral("frm5NVCTable.grdNVC_KeyPressEdit"));
    if (key == QLatin1Char('-')) {
        lblMinus_->hide();
        lblMinus_->setProperty(kTag, kMinusTyped);
        return;
    }
    const bool digit = key >= QLatin1Char('0') && key <= QLatin1Char('9');
    if (digit && row >= 1 && col >= 1 && grdNVC_->ValueMatrix(row, col) == 0 &&
        lblMinus_->property(kTag).toString() != kMinusTyped) {
        lblMinus_->show();
    }
}

void frm5NVCTable::grdNVC_KeyUpEdit(int row, int col) {
    u91Trace::Procedure(QStringLiteral("frm5NVCTable.grdNVC_KeyUpEdit"));
    const QString text = grdNVC_->EditText();
    // The release of the key that led into a cell comes here too, with the cell's own text.
    if (text == grdNVC_->TextMatrix(row, col)) {
        return;
    }
    if (col == 0) {
        names_.SetName(row, text);
        return;
    }
    if (StoreCell(row, col, text) == Stored::kRefused) {
        return;  // told once, when the edit ends
    }
    grdNVC_->SetTextMatrix(row, col, text);
    ShowTotals();
}

// What the last key release did not see (a key still held when the edit ended) is stored here, and
// what an abandoned edit had stored is taken back.
void frm5NVCTable::SettleCell(int row, int col) {
    const QString text = grdNVC_->TextMatrix(row, col);
    if (col == 0) {
        names_.SetName(row, text);
        return;
    }
    switch (StoreCell(row, col, text)) {
        case Stored::kAsBefore:
            return;
        case Stored::kChanged:
            ShowTotals();
            return;
        case Stored::kRefused:
            grdNVC_->SetTextMatrix(row, col, platform::Str(table_->NVCCellValue(row, col)));
            throw platform::RuntimeError(platform::kOverflow,
                                         tr("The number \"%1\" is too large.").arg(text));
    }
}

frm5NVCTable::Stored frm5NVCTable::StoreCell(int row, int col, const QString& text) {
    try {
        const float value = platform::ToSingle(platform::Val(text));
        if (value == table_->NVCCellValue(row, col)) {
            return Stored::kAsBefore;
        }
        table_->NVCCellValue(row, col, value);
        return Stored::kChanged;
    } catch (const platform::RuntimeError&) {
        return Stored::kRefused;
    }
}

void frm5NVCTable::Unload() {
    u91Trace::FormUnload(objectName());
}
