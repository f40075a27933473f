#include "worksheets/resources/frm3SRMaster.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <array>
#include <utility>

#include "base/Handle.h"
#include "base/UIMode.h"
#include "base/u91Trace.h"
#include "base/u92Utilities.h"
#include "datafile/PrepDatafile.h"
#include "platform/EventTrap.h"
#include "platform/FirstError.h"
#include "platform/controls/vsFlexGrid.h"
#include "platform/dialogs/RunModal.h"
#include "platform/text/Numbers.h"
#include "worksheets/GridParts.h"
#include "worksheets/MissingRows.h"
#include "worksheets/NoteLine.h"
#include "worksheets/resources/frm3SRMasterAdd.h"

using base::Entry;
using base::Handle;
using UIMode::BusyScope;
using worksheets::NoteLine;
using worksheets::ResourceList;
using worksheets::WorksheetHost;
using worksheets::WorksheetPage;

namespace {

constexpr int kSourceLength = 255;
constexpr int kHelpContextId = 30;
constexpr int kNumber = ResourceList::kNumber;
constexpr int kName = ResourceList::kName;
constexpr int kShortName = ResourceList::kShortName;
constexpr int kUnits = ResourceList::kUnits;
constexpr int kCost = ResourceList::kCost;
constexpr int kKey = ResourceList::kKey;

}  // namespace

frm3SRMaster::frm3SRMaster(WorksheetHost& host, QWidget* parent)
    : WorksheetPage(host, parent,
                    {.name = "frm3SRMaster",
                     .caption = tr("Edit resources and costs"),
                     .id = kID,
                     .helpContextId = kHelpContextId}) {
    Build();
    ConnectHandlers();
    Listen();
}

void frm3SRMaster::ConnectHandlers() {
    Handle<&frm3SRMaster::grdMasterList_EnterCell>(grdMasterList_, &vsFlexGrid::EnterCell, this);
    Handle<&frm3SRMaster::grdMasterList_BeforeEdit>(grdMasterList_, &vsFlexGrid::BeforeEdit, this);
    Handle<&frm3SRMaster::grdMasterList_AfterEdit>(grdMasterList_, &vsFlexGrid::AfterEdit, this);
    Handle<&frm3SRMaster::txtSource_Change>(txtSource_, &QLineEdit::textChanged, this);
    Handle<&frm3SRMaster::cmdAdd_Click, Entry::kBare>(cmdAdd_, &QPushButton::clicked, this);
    Handle<&frm3SRMaster::cmdDelete_Click, Entry::kBare>(cmdDelete_, &QPushButton::clicked, this);
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
    note_ = new NoteLine(*grdMasterList_, this);
    GridParts::AddFramed(Body(), *grdMasterList_);
    GridParts::AddNote(Body(), *note_);
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
    platform::NameByLabel(*txtSource_, "txtSource", *lblSource);
    txtSource_->installEventFilter(this);
    auto* source = new QHBoxLayout;
    source->addWidget(lblSource);
    source->addWidget(txtSource_, 1);
    Body().addLayout(source);
    Body().addWidget(PageParts::Instruction(
        this, "lblSourceHint",
        tr("If you modify the list, provide the source for the data, the date, and your name in "
           "the box above.")));
    Body().addStretch(1);
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
    grdMasterList_->SetTable(&resources_);
    struct Column {
        int col = 0;
        int twips = 0;
        Qt::Alignment alignment;
    };
    const std::array<Column, kKey> columns{{{kNumber, 480, Qt::AlignCenter},
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
    // Whole dollars on the screen only: a cost that has cents keeps them.
    grdMasterList_->SetColDataType(kCost, vsFlexGrid::DataType::kCurrency);
    grdMasterList_->SetColFormat(kCost, QStringLiteral("$#,0"));
    grdMasterList_->SetColHidden(kKey, true);
    grdMasterList_->SetRowNameColumn(kName);
    KeepWidths(*grdMasterList_);
}

void frm3SRMaster::LoadGrid() {
    u91Trace::Procedure(QStringLiteral("frm3SRMaster.LoadGrid"));
    resources_.Load();
    grdMasterList_->Refresh();
    EnableDelete();
}

void frm3SRMaster::EnableDelete() {
    cmdDelete_->setEnabled(resources_.RowCount() > 0);
}

void frm3SRMaster::Listen() {
    resources_.SetMover([this](int from, int to) { MoveRow(from, to); });
    resources_.SetDropListener([this] { grdMasterList_->Refresh(); });
    resources_.SetListener(
        [this](const QString& name, const auto& change) { DoneInList(name, change); });
}

// What an action did is known by the resources' keys: the form that takes it back may be another.
void frm3SRMaster::DoneInList(const QString& name,
                              const std::shared_ptr<ResourceList::Change>& change) {
    EnableDelete();
    // A number that was typed numbers the whole list.
    grdMasterList_->RowsChanged(1, resources_.RowCount());
    Did<frm3SRMaster>(
        name,
        [change](frm3SRMaster& form) {
            form.resources_.TakeBack(*change);
            form.ShowChange(change->Reversed());
        },
        [change](frm3SRMaster& form) {
            form.resources_.Repeat(*change);
            form.ShowChange(*change);
        });
}

// Makes the first row current that is not as it was.
void frm3SRMaster::ShowChange(const ResourceList::Change& change) {
    const int col = std::max(grdMasterList_->Col(), 0);
    grdMasterList_->Refresh();
    EnableDelete();
    if (const auto row = change.FirstPlace(); row && resources_.RowCount() > 0) {
        grdMasterList_->Select(std::min(static_cast<int>(*row) + 1, resources_.RowCount()), col);
    }
}

bool frm3SRMaster::EndOpenEdit() {
    const bool typed = grdMasterList_->EditIsChanged() || sourceBefore_.has_value();
    grdMasterList_->FinishEdit();
    EndTypingSource();
    return typed;
}

void frm3SRMaster::grdMasterList_EnterCell() {
    grdMasterList_->EditCell();
}

void frm3SRMaster::grdMasterList_BeforeEdit(int /*row*/, int col) {
    grdMasterList_->SetEditMaxLength(resources_.MaxLength(col));
}

// The list has taken the text, and moves the row when the action ends.
void frm3SRMaster::grdMasterList_AfterEdit() {}

void frm3SRMaster::MoveRow(int from, int to) {
    u91Trace::Procedure(QStringLiteral("MoveRow"));
    resources_.MoveRow(from, to);
    grdMasterList_->RowMoved(from, to);
}

void frm3SRMaster::txtSource_Change() {
    if (UIMode::NotBusy()) {
        if (!sourceBefore_) {
            sourceBefore_ = source_.Get();
        }
        source_.Let(txtSource_->text());
    }
}

// What was typed into the box is one action, from its first change until the box is left.
void frm3SRMaster::EndTypingSource() {
    const std::optional<QString> before = std::exchange(sourceBefore_, std::nullopt);
    const QString after = txtSource_->text();
    if (before && *before != after) {
        Did<frm3SRMaster>(
            tr("Typing"), [text = *before](frm3SRMaster& form) { form.PutSource(text); },
            [text = after](frm3SRMaster& form) { form.PutSource(text); });
    }
}

// Screen and file get the same.
void frm3SRMaster::PutSource(const QString& text) {
    source_.Let(text);
    source_.Save();
    {
        const BusyScope busy;
        txtSource_->setText(text);
    }
    txtSource_->setFocus();
}

bool frm3SRMaster::eventFilter(QObject* watched, QEvent* event) {
    if (watched == txtSource_ && event->type() == QEvent::FocusOut) {
        platform::EventTrap::Run("frm3SRMaster.EndTypingSource", [this] { EndTypingSource(); });
    }
    return WorksheetPage::eventFilter(watched, event);
}

void frm3SRMaster::cmdAdd_Click() {
    grdMasterList_->FinishEdit();
    frm3SRMasterAdd dialog(resources_, Host().Frame());
    dialog.SetPosition(grdMasterList_->Row() + 1);
    platform::RunModal(dialog);
    if (const std::optional<int> row = dialog.AddedRow()) {
        grdMasterList_->Refresh();
        EnableDelete();
        grdMasterList_->Select(*row, kName);
    }
    dialog.Unload();
}

// Asks about the resource that was current when the button was pressed: the end of an open edit may
// move it.
void frm3SRMaster::cmdDelete_Click() {
    const int current = grdMasterList_->Row();
    if (current < 1 || current > resources_.RowCount()) {
        return;
    }
    const std::int32_t key = resources_.At(current).key;
    grdMasterList_->FinishEdit();
    const int row = resources_.RowOf(key).value_or(current);
    if (!u92Utilities::ConfirmDelete(resources_.At(row).longName)) {
        return;
    }
    if (!resources_.Delete(tr("Delete Item"), row)) {
        u91Trace::Warning(QStringLiteral("tblSRMasterList.NoMatch ") + platform::Str(key));
        return;
    }
    grdMasterList_->RowRemoved(row);
    grdMasterList_->Refresh();
    EnableDelete();
}

void frm3SRMaster::SaveChanges() {
    u91Trace::Procedure(QStringLiteral("frm3SRMaster.SaveChanges"));
    grdMasterList_->FinishEdit();
    EndTypingSource();
    source_.Save();
}

void frm3SRMaster::UpdateTable() {
    u91Trace::Procedure(QStringLiteral("UpdateTable"));
    grdMasterList_->FinishEdit();
    MissingRows::Shown("frm3SRMaster.UpdateTable",
                       [this] { resources_.Save([this](int row) { SaveRow(row); }); });
}

void frm3SRMaster::SaveRow(int row) {
    u91Trace::Procedure(QStringLiteral("frm3SRMaster.SaveRow"));
    resources_.SaveRow(row);
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
