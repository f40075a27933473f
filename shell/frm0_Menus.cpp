// The frame's menus and their handlers, which dispatch on the menu items' numbers.

#include <QAction>
#include <QApplication>
#include <QCoreApplication>
#include <QMenu>
#include <QMenuBar>

#include "base/Handle.h"
#include "base/u91Trace.h"
#include "datafile/PrepDatafile.h"
#include "platform/EventTrap.h"
#include "platform/RuntimeError.h"
#include "platform/controls/vsIndexTab.h"
#include "platform/dialogs/MsgBox.h"
#include "platform/help/HelpViewer.h"
#include "shell/EditCommands.h"
#include "shell/ProgramTexts.h"
#include "shell/Worksheets.h"
#include "shell/a1Prep.h"
#include "shell/a3PrepForms.h"
#include "shell/frm0Start.h"
#include "shell/frm0_Prep.h"
#include "shell/frmTabs.h"

namespace {

enum TopMenu { kFile = 1, kWorksheet = 2, kEdit = 3, kHelp = 9 };
enum FileItem : std::int16_t { kNew = 1, kOpen = 2, kSeparator = 10 };
enum HelpItem : std::int16_t { kCurrentWorksheet = 1, kContents = 2, kAbout = 9 };

QString ItemName(const char* array, int index) {
    return QStringLiteral("%1_%2").arg(QLatin1String(array)).arg(index);
}

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(About)
};

QString AboutText() {
    return ProgramTexts::kTitle + platform::kNewLine +
           Texts::tr("Preseason TARN Preparation, 2005 Edition, Version 1") + platform::kNewLine +
           platform::kNewLine + ProgramTexts::NoticeOfRights();
}

}  // namespace

QMenu* frm0_Prep::AddTopMenu(int index, const QString& caption) {
    QMenu* menu = menuBar()->addMenu(caption);
    QString name = caption;
    name.remove(QLatin1Char('&'));
    menu->setObjectName(ItemName("mnuTopPopup", index));
    menu->setAccessibleName(name);
    menu->menuAction()->setObjectName(ItemName("mnuTop", index));
    mnuTop_[index] = menu;
    return menu;
}

template <auto handler>
QAction* frm0_Prep::AddItem(QMenu& menu, const QString& name, const QString& caption,
                            std::int16_t index) {
    QAction* item = menu.addAction(caption);
    item->setObjectName(name);
    connect(item, &QAction::triggered, this,
            [this, index] { base::RunHandler<handler, base::Entry::kOwn>(*this, index); });
    return item;
}

void frm0_Prep::BuildMenus() {
    menuBar()->setObjectName(QStringLiteral("menuBar"));
    menuBar()->setAccessibleName(tr("Menus"));
    menuBar()->setNativeMenuBar(false);

    QMenu& file = *AddTopMenu(kFile, tr("&File"));
    AddItem<&frm0_Prep::mnuFile_Click>(file, ItemName("mnuFile", kNew), tr("&New"), kNew);
    AddItem<&frm0_Prep::mnuFile_Click>(file, ItemName("mnuFile", kOpen), tr("&Open"), kOpen);
    file.addSeparator()->setObjectName(ItemName("mnuFile", kSeparator));
    AddItem<&frm0_Prep::mnuExit_Click>(file, QStringLiteral("mnuExit"), tr("E&xit"), 0);

    QMenu& worksheet = *AddTopMenu(kWorksheet, tr("&Worksheet"));
    for (int step = 1; step <= Worksheets::Count(); ++step) {
        QAction* item = AddItem<&frm0_Prep::mnuStep_Click>(
            worksheet, ItemName("mnuStep", step),
            Worksheets::Text(Worksheets::At(step).menuCaption), static_cast<std::int16_t>(step));
        item->setCheckable(true);
        mnuStep_.push_back(item);
    }

    QMenu& edit = *AddTopMenu(kEdit, tr("&Edit"));
    const auto addEdit = [&](std::int16_t index, const QString& caption, Qt::Key key) {
        AddItem<&frm0_Prep::mnuEdit_Click>(edit, ItemName("mnuEdit", index), caption, index)
            ->setShortcut(QKeySequence(Qt::CTRL | key));
    };
    addEdit(EditCommands::kCut, tr("Cu&t"), Qt::Key_X);
    addEdit(EditCommands::kCopy, tr("&Copy"), Qt::Key_C);
    addEdit(EditCommands::kPaste, tr("&Paste"), Qt::Key_V);

    QMenu& help = *AddTopMenu(kHelp, tr("&Help"));
    const auto addHelp = [&](std::int16_t index, const QString& caption) {
        AddItem<&frm0_Prep::mnuHelp_Click>(help, ItemName("mnuHelp", index), caption, index);
    };
    addHelp(kCurrentWorksheet, tr("Current &Worksheet   F1"));
    addHelp(kContents, tr("&Contents"));
    addHelp(kAbout, tr("&About ..."));

    EnableMenu(kWorksheet, false);
    EnableMenu(kEdit, false);
}

void frm0_Prep::EnableMenu(int top, bool enabled) {
    mnuTop_.at(top)->menuAction()->setEnabled(enabled);
}

void frm0_Prep::StepMenu_Check(std::int16_t index) {
    u91Trace::Procedure(QStringLiteral("frm0_Prep.StepMenu_Check"));
    for (QAction* item : mnuStep_) {
        item->setChecked(false);
    }
    mnuStep_.at(static_cast<std::size_t>(index) - 1)->setChecked(true);
}

void frm0_Prep::mnuFile_Click(std::int16_t index) {
    u91Trace::Start(QStringLiteral("mnuFile_Click %1").arg(index));
    if (PrepDatafile::IsDatafileOpen()) {
        const QString question = tr("Do you want to go on without saving it?");
        if (SaveOrAsk(question) == Leaving::kStay) {
            return;
        }
        // A dialog follows, and while it waits for the user the file alone must be complete. Where
        // it cannot be made so, another file can be chosen all the same.
        platform::EventTrap::Run("PrepDatafile.MakeDurable", PrepDatafile::MakeDurable);
        // It is about the file that may be closed next.
        platform::EventTrap::Run("PrepDatafile.ShowNews", PrepDatafile::ShowNews);
    }
    if (index == kNew) {
        a1Prep::NewDatafile();
    } else if (index == kOpen) {
        a1Prep::OpenDatafile();
    }
}

// The worksheet is saved here and once more by the unload: saving twice does no harm.
void frm0_Prep::mnuExit_Click(std::int16_t /*index*/) {
    u91Trace::Start(QStringLiteral("mnuExit_Click"));
    if (PrepDatafile::IsDatafileOpen() && !SaveBeforeLeaving()) {
        return;
    }
    close();
}

void frm0_Prep::mnuStep_Click(std::int16_t index) {
    // Choosing the item has turned its check mark over; only a set-up may do that.
    mnuStep_.at(static_cast<std::size_t>(index) - 1)->toggle();
    u91Trace::Procedure(QStringLiteral("mnuStep_Click %1").arg(index));
    if (!tabs_) {
        throw platform::RuntimeError(platform::kObjectNotSet,
                                     tr("There is no data file whose worksheets could be shown."));
    }
    const bool noneShows = a3PrepForms::CurrentForm() == nullptr;
    tabs_->Tab().SetCurrTab(index, noneShows);
}

void frm0_Prep::mnuEdit_Click(std::int16_t index) {
    u91Trace::Procedure(
        QStringLiteral("mnuEdit_Click %1 %2").arg(a3PrepForms::WorksheetID()).arg(index));
    EditCommands::Execute(index, ActiveControl());
}

void frm0_Prep::mnuHelp_Click(std::int16_t index) {
    u91Trace::Procedure(QStringLiteral("mnuHelp_Click %1").arg(index));
    switch (index) {
        case kCurrentWorksheet:
            platform::HelpViewer::ShowContext(platform::HelpContextId(ActiveForm()));
            break;
        case kContents:
            platform::HelpViewer::ShowContents();
            break;
        case kAbout:
            platform::MsgBox(AboutText());
            break;
        default:
            break;
    }
}

void frm0_Prep::RememberControl(QWidget* /*left*/, QWidget* control) {
    if (control != nullptr && clientArea_->isAncestorOf(control)) {
        lastControl_ = control;
    }
}

// A menu that was opened by keyboard has the keyboard itself while its item is chosen.
QWidget* frm0_Prep::ActiveControl() const {
    QWidget* const focus = QApplication::focusWidget();
    if (focus != nullptr && clientArea_->isAncestorOf(focus)) {
        return focus;
    }
    return lastControl_ != nullptr && lastControl_->isVisible() ? lastControl_ : nullptr;
}
