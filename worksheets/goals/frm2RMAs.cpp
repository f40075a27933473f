#include "worksheets/goals/frm2RMAs.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

#include "base/Handle.h"
#include "base/UIMode.h"
#include "base/u91Trace.h"
#include "base/u92Utilities.h"
#include "platform/EventTrap.h"
#include "platform/text/Numbers.h"
#include "worksheets/TextBox.h"
#include "worksheets/goals/AreaList.h"
#include "worksheets/goals/LineBreaks.h"

using base::Entry;
using base::Handle;
using UIMode::BusyScope;
using worksheets::AreaList;
using worksheets::GoalList;
using worksheets::TextBox;
using worksheets::WorksheetHost;
using worksheets::WorksheetPage;

namespace {

constexpr int kHeadingLength = 100;
constexpr int kHelpContextId = 20;

}  // namespace

frm2RMAs::frm2RMAs(WorksheetHost& host, QWidget* parent)
    : WorksheetPage(host, parent,
                    {.name = "frm2RMAs",
                     .caption = tr("Management Goals"),
                     .id = kID,
                     .helpContextId = kHelpContextId}) {
    AddTitle(tr("Objectives for Resource Management Areas"));
    auto* columns = new QHBoxLayout;
    columns->setSpacing(16);
    columns->addLayout(BuildList(), 2);
    columns->addLayout(BuildBoxes(), 3);
    Body().addLayout(columns, 1);
    EnableBoxes(false);
    cmdDelete_->setEnabled(false);
    ConnectHandlers();
}

QVBoxLayout* frm2RMAs::BuildList() {
    QLabel* lblList = PageParts::Label(this, "lblList", tr("Resource Management Areas"));
    lstRMAs_ = new AreaList(this);
    platform::NameByLabel(*lstRMAs_, "lstRMAs", *lblList);
    cmdAdd_ = new QPushButton(tr("&Add Management Area"), this);
    PageParts::Name(*cmdAdd_, "cmdAdd", tr("Add a management area"));
    cmdDelete_ = new QPushButton(tr("&Delete Management Area"), this);
    PageParts::Name(*cmdDelete_, "cmdDelete", tr("Delete the management area"));
    auto* rows = new QVBoxLayout;
    rows->setSpacing(Body().spacing());
    rows->addWidget(lblList);
    rows->addWidget(lstRMAs_, 1);
    rows->addWidget(PageParts::Instruction(
        this, "lblInstruction",
        tr("Add a Resource Management Area (RMA) by clicking the button below.  Then type the RMA "
           "name and objectives relevant to fire suppression in the boxes on the right.")));
    rows->addWidget(cmdAdd_);
    rows->addWidget(cmdDelete_);
    return rows;
}

QVBoxLayout* frm2RMAs::BuildBoxes() {
    QLabel* lblHeading = PageParts::Label(this, "lblHeading", tr("Resource Management Area"));
    txtHeading_ = new TextBox(this);
    txtHeading_->setMaxLength(kHeadingLength);
    platform::NameByLabel(*txtHeading_, "txtHeading", *lblHeading);
    QLabel* lblBody = PageParts::Label(this, "lblBody", tr("Management Objectives"));
    txtBody_ = new QPlainTextEdit(this);
    txtBody_->setTabChangesFocus(true);
    txtBody_->setUndoRedoEnabled(false);  // the worksheet has its own history
    platform::NameByLabel(*txtBody_, "txtBody", *lblBody);
    auto* rows = new QVBoxLayout;
    rows->setSpacing(Body().spacing());
    rows->addWidget(lblHeading);
    rows->addWidget(txtHeading_);
    rows->addWidget(lblBody);
    rows->addWidget(txtBody_, 1);
    return rows;
}

void frm2RMAs::ConnectHandlers() {
    Handle<&frm2RMAs::lstRMAs_Click, Entry::kOwn>(lstRMAs_, &QListWidget::currentRowChanged, this);
    Handle<&frm2RMAs::lstRMAs_Click, Entry::kOwn>(lstRMAs_, &AreaList::ClickedAgain, this);
    txtHeading_->installEventFilter(this);
    txtBody_->installEventFilter(this);
    Handle<&frm2RMAs::txtHeading_GotFocus>(txtHeading_, &TextBox::GotFocus, this);
    Handle<&frm2RMAs::txtHeading_Change>(txtHeading_, &QLineEdit::textChanged, this);
    Handle<&frm2RMAs::txtBody_Change>(txtBody_, &QPlainTextEdit::textChanged, this);
    Handle<&frm2RMAs::cmdAdd_Click, Entry::kBare>(cmdAdd_, &QPushButton::clicked, this);
    Handle<&frm2RMAs::cmdDelete_Click, Entry::kBare>(cmdDelete_, &QPushButton::clicked, this);
}

void frm2RMAs::Setup() {
    u91Trace::Procedure(QStringLiteral("frm2RMAs.Setup"));
    BecomeCurrent();
    const BusyScope busy;
    LoadList();
    if (lstRMAs_->count() > 0) {
        lstRMAs_->setCurrentRow(0);
        cmdDelete_->setEnabled(true);
    }
}

void frm2RMAs::LoadList() {
    u91Trace::Procedure(QStringLiteral("frm2RMAs.LoadList"));
    goals_.Load();
    const QSignalBlocker blocker(lstRMAs_);
    lstRMAs_->clear();
    for (int row = 0; row < goals_.Count(); ++row) {
        lstRMAs_->Append(goals_.Heading(row), goals_.Key(row));
    }
}

void frm2RMAs::ShowItem() {
    u91Trace::Procedure(QStringLiteral("frm2RMAs.ShowItem"));
    const BusyScope busy;
    const int row = ShownRow();
    txtHeading_->setText(goals_.Heading(row));
    // Of a text that is wider than the box, the beginning shows.
    txtHeading_->setCursorPosition(0);
    txtBody_->setPlainText(goals_.Body(row));
    bodyChanged_ = false;
    EnableBoxes(true);
}

void frm2RMAs::EnableBoxes(bool enabled) {
    txtHeading_->setEnabled(enabled);
    txtBody_->setEnabled(enabled);
}

int frm2RMAs::ShownRow() const {
    return goals_.RowOf(currentKey_).value_or(-1);
}

void frm2RMAs::lstRMAs_Click() {
    const int row = lstRMAs_->currentRow();
    if (row < 0) {
        return;
    }
    u91Trace::Procedure(QStringLiteral("lstRMAs_Click ") + goals_.Heading(row));
    try {
        Update();
    } catch (...) {
        SelectShown();
        throw;
    }
    currentKey_ = goals_.Key(row);
    ShowItem();
}

// An area that cannot be saved stays in the boxes; the list then goes back to it.
void frm2RMAs::SelectShown() {
    lstRMAs_->SelectSilently(ShownRow());
}

// Its entry is all that it leaves.
void frm2RMAs::txtHeading_GotFocus() {}

void frm2RMAs::txtHeading_Change() {
    const int row = ShownRow();
    if (!UIMode::NotBusy() || row < 0) {
        return;
    }
    BeginTyping(Box::kHeading);
    lstRMAs_->item(row)->setText(txtHeading_->text());
    goals_.SetHeading(row, txtHeading_->text());
}

void frm2RMAs::txtBody_Change() {
    if (!UIMode::NotBusy() || ShownRow() < 0) {
        return;
    }
    BeginTyping(Box::kBody);
    bodyChanged_ = true;
    if (typing_->lines != txtBody_->document()->blockCount()) {
        EndTyping();
    }
}

void frm2RMAs::BeginTyping(Box box) {
    if (typing_ && typing_->box == box) {
        return;
    }
    EndTyping();
    const int row = ShownRow();
    typing_ = {.box = box,
               .before = box == Box::kHeading ? goals_.Heading(row) : goals_.Body(row),
               .lines = txtBody_->document()->blockCount()};
}

void frm2RMAs::EndTyping() {
    TakeBody();
    const std::optional<Typing> typed = std::exchange(typing_, std::nullopt);
    const int row = ShownRow();
    if (!typed || row < 0) {
        return;
    }
    const QString after = typed->box == Box::kHeading ? goals_.Heading(row) : goals_.Body(row);
    if (after == typed->before) {
        return;
    }
    const auto put = [key = currentKey_, box = typed->box](const QString& text) {
        return [key, box, text](frm2RMAs& form) { form.PutText(key, box, text); };
    };
    Did<frm2RMAs>(tr("Typing"), put(typed->before), put(after));
}

bool frm2RMAs::EndOpenEdit() {
    const bool typed = typing_.has_value();
    EndTyping();
    return typed;
}

// A long text is taken out of its box when it is needed, not with every key.
void frm2RMAs::TakeBody() {
    if (std::exchange(bodyChanged_, false)) {
        goals_.SetBody(ShownRow(), LineBreaks::ForFile(txtBody_->document()->toRawText()));
    }
}

void frm2RMAs::Update() {
    EndTyping();
    const int row = ShownRow();
    if (row < 0 || !goals_.IsChanged(row)) {
        return;
    }
    u91Trace::Procedure(QStringLiteral("Update ") + platform::Str(currentKey_));
    goals_.Save(row);
}

void frm2RMAs::cmdAdd_Click() {
    Update();
    const int row = goals_.Add();
    {
        const QSignalBlocker blocker(lstRMAs_);
        lstRMAs_->Append(goals_.Heading(row), goals_.Key(row));
    }
    DidAdd(goals_.Key(row));
    lstRMAs_->setCurrentRow(row);
    cmdDelete_->setEnabled(true);
    txtHeading_->setFocus();
}

void frm2RMAs::cmdDelete_Click() {
    const std::int32_t key = currentKey_;
    Update();
    const auto row = goals_.RowOf(key);
    if (!row || !u92Utilities::ConfirmDelete(goals_.Heading(*row))) {
        return;
    }
    DidDelete(goals_.Delete(*row));
    ShowAfterDelete(0);
}

// The list is filled anew and an area is selected, if there is one.
void frm2RMAs::ShowAfterDelete(int row) {
    currentKey_ = 0;
    LoadList();
    if (lstRMAs_->count() > 0) {
        lstRMAs_->setCurrentRow(std::clamp(row, 0, lstRMAs_->count() - 1));
    } else {
        ShowNothing();
    }
}

void frm2RMAs::ShowNothing() {
    {
        const BusyScope busy;
        txtHeading_->clear();
        txtBody_->clear();
    }
    currentKey_ = 0;
    EnableBoxes(false);
    cmdDelete_->setEnabled(false);
}

void frm2RMAs::ShowArea(int row) {
    currentKey_ = goals_.Key(row);
    lstRMAs_->SelectSilently(row);
    cmdDelete_->setEnabled(true);
    ShowItem();
}

// The steps of undoing. Each leaves the file as the screen.

void frm2RMAs::PutText(std::int32_t key, Box box, const QString& text) {
    const auto row = goals_.RowOf(key);
    if (!row) {
        throw undo::GoneError(tr("The management area is no longer in the file."));
    }
    box == Box::kHeading ? goals_.SetHeading(*row, text) : goals_.SetBody(*row, text);
    goals_.Save(*row);
    lstRMAs_->item(*row)->setText(goals_.Heading(*row));
    ShowArea(*row);
    (box == Box::kHeading ? static_cast<QWidget*>(txtHeading_) : txtBody_)->setFocus();
}

void frm2RMAs::DidAdd(std::int32_t key) {
    const auto goal =
        std::make_shared<GoalList::Goal>(GoalList::Goal{.key = key, .heading = {}, .body = {}});
    Did<frm2RMAs>(
        tr("Add Management Area"), [goal](frm2RMAs& form) { form.TakeAway(*goal); },
        [goal](frm2RMAs& form) { form.PutBack(*goal); });
}

void frm2RMAs::DidDelete(const GoalList::Goal& deleted) {
    const auto goal = std::make_shared<GoalList::Goal>(deleted);
    Did<frm2RMAs>(
        tr("Delete Management Area"), [goal](frm2RMAs& form) { form.PutBack(*goal); },
        [goal](frm2RMAs& form) { form.TakeAway(*goal); });
}

void frm2RMAs::TakeAway(GoalList::Goal& goal) {
    Update();
    const auto row = goals_.RowOf(goal.key);
    if (!row) {
        throw undo::GoneError(tr("The management area is no longer in the file."));
    }
    goal = goals_.Delete(*row);
    ShowAfterDelete(*row);
}

void frm2RMAs::PutBack(const GoalList::Goal& goal) {
    Update();
    const int row = goals_.Restore(goal);
    LoadList();
    ShowArea(row);
}

// An action ends when its box is left.
bool frm2RMAs::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusOut) {
        platform::EventTrap::Run("frm2RMAs.EndTyping", [this] { EndTyping(); });
    }
    return WorksheetPage::eventFilter(watched, event);
}

void frm2RMAs::Unload() {
    u91Trace::FormUnload(objectName());
}
