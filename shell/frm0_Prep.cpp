#include "shell/frm0_Prep.h"

#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QMenuBar>
#include <QScreen>
#include <QTimer>
#include <optional>

#include "base/Handle.h"
#include "base/u91Trace.h"
#include "datafile/PrepDatafile.h"
#include "datafile/PrepProperties.h"
#include "platform/EventTrap.h"
#include "platform/RuntimeError.h"
#include "platform/controls/vsIndexTab.h"
#include "platform/dialogs/MsgBox.h"
#include "platform/help/HelpViewer.h"
#include "platform/system/Files.h"
#include "platform/system/ProgramFolder.h"
#include "platform/system/Twips.h"
#include "shell/EditCommands.h"
#include "shell/ProgramTexts.h"
#include "shell/a1Prep.h"
#include "shell/a3PrepForms.h"
#include "shell/frm0Start.h"
#include "shell/frmTabs.h"

using base::Entry;
using base::Handle;
using platform::EventTrap::Attempt;
using platform::EventTrap::Run;
using platform::EventTrap::Trapped;

frm0_Prep* frm0_Prep::loaded_ = nullptr;

namespace {

constexpr int kRetryInMs = 20;

// What the frame has on a screen for which it is not sized by the display check.
QSize SizeOnSmallScreen(const QScreen* screen) {
    constexpr QSize kWanted(808, 608);
    constexpr QSize kDecoration(4, 40);
    return screen == nullptr ? kWanted : kWanted.boundedTo(screen->availableSize() - kDecoration);
}

// Saves the worksheet of the file that is open; what prevented it, with an entry in the logs.
std::optional<platform::EventTrap::Report> FailureToSave() {
    const auto failure = platform::EventTrap::Attempt("a3PrepForms.UpdateCurrentWorksheet",
                                                      a3PrepForms::UpdateCurrentWorksheet);
    if (failure) {
        Attempt("u91Trace.Error", [&failure] {
            u91Trace::Error(QStringLiteral("a3PrepForms.UpdateCurrentWorksheet: Error %1, ")
                                .arg(failure->number) +
                            failure->Sentence());
        });
    }
    return failure;
}

}  // namespace

frm0_Prep::frm0_Prep(QString commandLine)
    : commandLine_(std::move(commandLine)), clientArea_(new QWidget(this)) {
    loaded_ = this;
    setObjectName(QStringLiteral("frm0_Prep"));
    setAccessibleName(ProgramTexts::kName);
    setWindowTitle(ProgramTexts::kName);
    setContextMenuPolicy(Qt::NoContextMenu);
    clientArea_->setObjectName(QStringLiteral("clientArea"));
    clientArea_->setAccessibleName(tr("Client area"));
    setCentralWidget(clientArea_);
    BuildMenus();
    resize(SizeOnSmallScreen(screen()));
    Handle<&frm0_Prep::RememberControl, Entry::kOwn>(qApp, &QApplication::focusChanged, this);
    Handle<&frm0_Prep::SaveForSessionEnd, Entry::kOwn>(qApp, &QGuiApplication::commitDataRequest,
                                                       this, Qt::DirectConnection);
    Handle<&frm0_Prep::SaveForSessionEnd, Entry::kOwn>(qApp, &QGuiApplication::saveStateRequest,
                                                       this, Qt::DirectConnection);
    qApp->installEventFilter(this);
}

frm0_Prep::~frm0_Prep() {
    // The forms still ask for the frame while they are destroyed.
    a3PrepForms::UnloadForm();
    tabs_.reset();
    startScreen_.reset();
    loaded_ = nullptr;
}

frm0_Prep& frm0_Prep::Loaded() {
    if (loaded_ == nullptr) {
        throw platform::RuntimeError(platform::kObjectNotSet,
                                     QStringLiteral("The main window is not loaded."));
    }
    return *loaded_;
}

void frm0_Prep::MDIForm_Load() {
    int lastError = 0;
    const auto step = [&lastError](const std::function<void()>& body) {
        const auto failure = Attempt("frm0_Prep.MDIForm_Load", body);
        if (failure) {
            lastError = failure->number;
        }
        return failure;
    };
    u91Trace::SetTolerant(true);
    a1Prep::ConnectDatafile();
    step([] { u91Trace::ProgramStart(ProgramTexts::kTitle); });
    step([this] { a1Prep::DisplayCheck(*this); });
    show();
    step([] { platform::HelpViewer::SetHelpFile(HelpFilePath()); });
    if (commandLine_.isEmpty()) {
        step(a1Prep::StartWithoutFile);
    } else if (const auto failure = step([this] { a1Prep::StartWithFile(commandLine_); })) {
        step([&failure] {
            platform::MsgOptions options;
            options.informative = failure->description;
            platform::MsgBox(tr("The file was opened, but it cannot be shown."), options);
        });
    }
    // A log that cannot be written has stopped none of the steps, and yet it was an error.
    const int number = lastError != 0 ? lastError : u91Trace::PassedOverNumber();
    if (number != 0) {
        step([number] { u91Trace::Error(QStringLiteral("Error during startup %1").arg(number)); });
    }
    step([] { u91Trace::Finished(QStringLiteral("Loading TARN Prep")); });
    ShowLogFailure();
}

void frm0_Prep::MDIForm_Resize() {
    u91Trace::Procedure(QStringLiteral("frm0_Prep_Resize %1 x %2")
                            .arg(platform::ToTwips(width()))
                            .arg(platform::ToTwips(height())));
    FillWithStartScreen();
    a3PrepForms::ArrangeWorksheets();
}

void frm0_Prep::SetTitleBar(const QString& fileName) {
    u91Trace::Procedure(QStringLiteral("frm0_Prep.SetTitleBar"));
    QString title =
        QStringLiteral("TARN Prep:  [") + fileName + QStringLiteral("]  ") +
        PrepProperties::GetPropertyWithDefault(QStringLiteral("UnitName"), tr("No Name"));
    // In a window's title this stands for the mark of unsaved changes, doubled for itself.
    const QString placeholder = QStringLiteral("[*]");
    setWindowTitle(title.replace(placeholder, placeholder + placeholder));
}

QString frm0_Prep::HelpFilePath() {
    u91Trace::Procedure(QStringLiteral("frm0_Prep.HelpFilePath"));
    return platform::FindFile(platform::ProgramFolder(), QStringLiteral("TARNPlus.hlp"));
}

void frm0_Prep::Maximize() {
    if (const QScreen* here = screen()) {
        setGeometry(here->availableGeometry());
    }
    showMaximized();
}

frm0Start& frm0_Prep::StartScreen() {
    if (!startScreen_) {
        startScreen_ = std::make_unique<frm0Start>(clientArea_);
        // Its texts are measured once, for the size that it is going to have.
        startScreen_->resize(ClientSize());
        startScreen_->Form_Load();
        startScreen_->show();
        startScreen_->lower();
    }
    return *startScreen_;
}

void frm0_Prep::FillWithStartScreen() {
    StartScreen().setGeometry(QRect(QPoint(0, 0), ClientSize()));
}

frmTabs& frm0_Prep::ShowTabs() {
    if (!tabs_) {
        tabs_ = std::make_unique<frmTabs>(clientArea_);
        tabs_->Form_Load();
    }
    tabs_->ShowFile(PrepDatafile::CurrentPath());
    tabs_->show();
    return *tabs_;
}

void frm0_Prep::UnloadTabs() {
    if (tabs_) {
        tabs_->Form_Unload();
        tabs_.reset();
    }
}

QWidget* frm0_Prep::ActiveForm() const {
    for (QWidget* widget = ActiveControl(); widget != nullptr; widget = widget->parentWidget()) {
        if (widget->parentWidget() == clientArea_ && widget != tabs_.get()) {
            return widget;
        }
    }
    QWidget* worksheet = a3PrepForms::CurrentForm();
    return worksheet != nullptr ? worksheet : startScreen_.get();
}

void frm0_Prep::FocusForm(QWidget& form) {
    QWidget* const focus = QApplication::focusWidget();
    if (focus != nullptr && form.isAncestorOf(focus)) {
        return;
    }
    for (QWidget* next = form.nextInFocusChain(); next != &form; next = next->nextInFocusChain()) {
        if (form.isAncestorOf(next) && next->isVisibleTo(&form) && next->isEnabled() &&
            (next->focusPolicy() & Qt::TabFocus) != 0) {
            next->setFocus(Qt::OtherFocusReason);
            return;
        }
    }
}

void frm0_Prep::SaveForSessionEnd() {
    Run("frm0_Prep.SaveForSessionEnd", [] {
        if (PrepDatafile::IsDatafileOpen()) {
            a3PrepForms::UpdateCurrentWorksheet();
            // A dialog may be open, whose handler would make it durable only at its end.
            PrepDatafile::MakeDurable();
        }
    });
}

void frm0_Prep::EndAtOnce() {
    if (isUnloaded_) {
        return;
    }
    if (PrepDatafile::IsDatafileOpen()) {
        (void)FailureToSave();
    }
    // Saved, or beyond saving: there is nobody to ask. A handler that waits for a dialog must come
    // to its end before its form may go.
    QWidget* const waiting = QApplication::activeModalWidget();
    constexpr int kThisOne = 1;
    if (waiting != nullptr || platform::EventTrap::Depth() > kThisOne) {
        if (waiting != nullptr) {
            waiting->close();
        }
        QTimer::singleShot(kRetryInMs, this,
                           Trapped("frm0_Prep.EndAtOnce", [this] { EndAtOnce(); }));
        return;
    }
    leavesUnsaved_ = true;
    close();
}

void frm0_Prep::SaveAtExit() {
    if (isUnloaded_ || !PrepDatafile::IsDatafileOpen()) {
        return;
    }
    (void)FailureToSave();
    Attempt("PrepDatafile.CloseDatafile", PrepDatafile::CloseDatafile);
}

void frm0_Prep::ShowLogFailure() {
    const QString failure = u91Trace::PassedOverFailure();
    if (failure.isEmpty() || logFailureShown_) {
        return;
    }
    logFailureShown_ = true;
    platform::MsgOptions options;
    options.informative = failure;
    platform::MsgBox(tr("The program's logs cannot be written; the program works without them."),
                     options);
}

void frm0_Prep::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    if (!isUnloaded_) {
        Run("frm0_Prep.MDIForm_Resize", [this] { MDIForm_Resize(); });
    }
}

void frm0_Prep::closeEvent(QCloseEvent* event) {
    bool leave = true;
    if (!isUnloaded_) {
        Run("frm0_Prep.MDIForm_Unload", [this, &leave] { leave = MDIForm_Unload(); });
    }
    event->setAccepted(leave);
    if (leave) {
        Run("frm0_Prep.Unloaded", [this] { emit Unloaded(); });
    }
}

// F1 opens the topic of the form that has the keyboard, a dialog's own one included.
bool frm0_Prep::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress || !watched->isWidgetType() ||
        static_cast<QKeyEvent*>(event)->key() != Qt::Key_F1) {
        return QMainWindow::eventFilter(watched, event);
    }
    auto* const control = static_cast<QWidget*>(watched);
    QWidget* const window = control->window();
    const bool isDialogOfOurs = window != this && platform::HelpContextId(window) != 0;
    if (window != this && (!isDialogOfOurs || window->inherits("QMessageBox"))) {
        return QMainWindow::eventFilter(watched, event);
    }
    Run("frm0_Prep.F1", [&] {
        const QWidget* form = isDialogOfOurs ? control : ActiveForm();
        platform::HelpViewer::ShowContext(platform::HelpContextId(form));
    });
    return true;
}

frm0_Prep::Leaving frm0_Prep::SaveOrAsk(const QString& question) {
    const auto failure = FailureToSave();
    if (!failure) {
        return Leaving::kSaved;
    }
    platform::MsgOptions options;
    options.icon = platform::MsgIcon::kStop;
    options.buttons = platform::MsgButtons::kYesNo;
    options.secondIsDefault = true;
    options.informative = failure->Sentence();
    const QString text = tr("The worksheet could not be saved.") + platform::kNewLine + question;
    return platform::MsgBox(text, options) == platform::MsgAnswer::kYes ? Leaving::kUnsaved
                                                                        : Leaving::kStay;
}

bool frm0_Prep::SaveBeforeLeaving() {
    const Leaving leaving = SaveOrAsk(tr("Do you want to leave the program without saving it?"));
    leavesUnsaved_ = leaving == Leaving::kUnsaved;
    return leaving != Leaving::kStay;
}

bool frm0_Prep::MDIForm_Unload() {
    u91Trace::Procedure(QStringLiteral("frm0_Prep.MDIForm_Unload"));
    if (PrepDatafile::IsDatafileOpen()) {
        if (!leavesUnsaved_ && !SaveBeforeLeaving()) {
            return false;
        }
        // The program ends even when closing fails; the trap reports it.
        Run("PrepDatafile.CloseDatafile", [] { PrepDatafile::CloseDatafile(); });
    }
    isUnloaded_ = true;
    UnloadForms();
    platform::HelpViewer::Close();
    u91Trace::ProgramEnd(ProgramTexts::kName);
    return true;
}

void frm0_Prep::UnloadForms() {
    Run("a3PrepForms.UnloadForm", [] { a3PrepForms::UnloadForm(); });
    UnloadTabs();
    if (startScreen_) {
        // It stays until the frame goes: its Exit button may be what ends the program.
        startScreen_->Form_Unload();
        startScreen_->hide();
    }
}
