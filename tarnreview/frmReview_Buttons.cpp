// The buttons of the window, their keys, and what they do.
#include <QDir>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QMenu>
#include <QPushButton>
#include <QShortcut>

#include "platform/EventTrap.h"
#include "platform/dialogs/CommonDialog.h"
#include "platform/dialogs/MsgBox.h"
#include "platform/dialogs/RunModal.h"
#include "platform/help/HelpViewer.h"
#include "platform/system/CostsFolder.h"
#include "platform/system/NativePath.h"
#include "review/next_year.h"
#include "season/data_file.h"
#include "season/file_name.h"
#include "tarnreview/ComparePage.h"
#include "tarnreview/FlowLayout.h"
#include "tarnreview/Notice.h"
#include "tarnreview/Parts.h"
#include "tarnreview/PrintReport.h"
#include "tarnreview/RecentFiles.h"
#include "tarnreview/SaveAs.h"
#include "tarnreview/SaveDialog.h"
#include "tarnreview/frmNewYear.h"
#include "tarnreview/frmReview.h"

namespace tarnreview {

using platform::EventTrap::Trapped;

namespace fs = std::filesystem;

namespace {

void ShowNotWritten(const QString& path, const std::exception& reason) {
    platform::MsgOptions options;
    options.icon = platform::MsgIcon::kExclamation;
    options.informative = QString::fromUtf8(reason.what());
    platform::MsgBox(
        QObject::tr("%1 was not saved.").arg(platform::ShownPath(QFileInfo(path).fileName())),
        options);
}

}  // namespace

void frmReview::BuildButtons() {
    rowButtons_ = new QWidget(this);
    Parts::Name(*rowButtons_, "rowButtons", tr("What can be done"));
    auto* row = new FlowLayout(rowButtons_);
    const auto add = [&](const char* name, const QString& caption, const QString& tip,
                         void (frmReview::*click)()) {
        QPushButton* const button = Parts::Button(rowButtons_, name, caption, tip);
        row->addWidget(button);
        if (click != nullptr) {
            connect(button, &QPushButton::clicked, this,
                    Trapped("frmReview.Click", [this, click](bool) { (this->*click)(); }));
        }
        return button;
    };
    cmdOpen_ = add("cmdOpen", tr("&Open..."), tr("Choose a data file to look at (Ctrl+O)"),
                   &frmReview::cmdOpen_Click);
    cmdRecent_ =
        add("cmdRecent", tr("R&ecent"), tr("Data files that were looked at last"), nullptr);
    mnuRecent_ = new QMenu(cmdRecent_);
    Parts::Name(*mnuRecent_, "mnuRecent", tr("Recent files"));
    cmdRecent_->setMenu(mnuRecent_);
    cmdPrevious_ =
        add("cmdPrevious", tr("&Last Year..."), tr("Choose the file to compare with (Ctrl+L)"),
            &frmReview::cmdPrevious_Click);
    cmdPrint_ =
        add("cmdPrint", tr("&Print..."), tr("Look at the report's pages and print (Ctrl+P)"),
            &frmReview::cmdPrint_Click);
    cmdSave_ =
        add("cmdSave", tr("&Save..."),
            tr("Save the report, the differences, or all figures for other programs (Ctrl+S)"),
            &frmReview::cmdSave_Click);
    cmdNewYear_ =
        add("cmdNewYear", tr("&New Year..."), tr("Begin next year's file from this one (Ctrl+N)"),
            &frmReview::cmdNewYear_Click);
    add("cmdHelp", tr("&Help"), tr("Read about this window (F1)"), &frmReview::Help);
    for (QPushButton* button : {cmdPrevious_, cmdPrint_, cmdSave_, cmdNewYear_}) {
        button->setEnabled(false);
    }
}

void frmReview::AddKeys() {
    const auto add = [this](const QKeySequence& keys, const char* name, auto step) {
        auto* shortcut = new QShortcut(keys, this);
        connect(shortcut, &QShortcut::activated, this, Trapped(name, step));
    };
    const auto press = [&](const QKeySequence& keys, QPushButton* button) {
        add(keys, "frmReview.Key", [button] { button->click(); });
    };
    press(Qt::CTRL | Qt::Key_O, cmdOpen_);
    press(Qt::CTRL | Qt::Key_L, cmdPrevious_);
    press(Qt::CTRL | Qt::Key_P, cmdPrint_);
    press(Qt::CTRL | Qt::Key_S, cmdSave_);
    press(Qt::CTRL | Qt::Key_N, cmdNewYear_);
    add(Qt::Key_F5, "frmReview.ReadAgain", [this] { ReadAgain(); });
    add(Qt::Key_F1, "frmReview.Help", [this] { Help(); });
    add(Qt::CTRL | Qt::Key_Q, "frmReview.Close", [this] { close(); });
    add(Qt::CTRL | Qt::Key_W, "frmReview.Close", [this] { close(); });
}

void frmReview::BuildNotices() {
    lastYear_ = new Notice(QStringLiteral("LastYear"), tr("Co&mpare with It"), this);
    changed_ = new Notice(QStringLiteral("Changed"), tr("Read It &Again"), this);
    connect(lastYear_, &Notice::Accepted, this,
            Trapped("frmReview.OpenPrevious", [this] { OpenPrevious(offered_); }));
    connect(changed_, &Notice::Accepted, this,
            Trapped("frmReview.ReadAgain", [this] { ReadAgain(); }));
    connect(changed_, &Notice::Declined, this,
            Trapped("frmReview.Keep", [this] { case_.AcceptChange(); }));
}

void frmReview::ShowRecent() {
    mnuRecent_->clear();
    for (const QString& path : RecentFiles::List()) {
        QString shown = platform::ShownPath(path);
        QAction* const item = mnuRecent_->addAction(shown.replace(u'&', QStringLiteral("&&")));
        connect(item, &QAction::triggered, this,
                Trapped("frmReview.Recent", [this, path](bool) { OpenFile(path); }));
    }
    cmdRecent_->setEnabled(!mnuRecent_->isEmpty());
}

QString frmReview::AskForDataFile(const QString& title) const {
    platform::OpenFileRequest request;
    request.title = title;
    request.initialFolder =
        HasFile() ? QFileInfo(platform::FromNativePath(case_.Season()->path)).absolutePath()
                  : platform::CostsFolder();
    request.filter = tr("TARN Prep files (*.fcd)|*.fcd|All Files (*.*)|*.*");
    return platform::CommonDialog::ShowOpen(request, const_cast<frmReview*>(this));
}

void frmReview::cmdOpen_Click() {
    const QString path = AskForDataFile(tr("Open a Data File"));
    if (!path.isEmpty()) {
        OpenFile(path);
    }
}

void frmReview::cmdPrevious_Click() {
    const QString path = AskForDataFile(tr("Choose Last Year's File"));
    if (!path.isEmpty()) {
        OpenPrevious(platform::ToNativePath(path));
    }
}

void frmReview::cmdPrint_Click() {
    const QString name =
        tr("%1 report")
            .arg(platform::ShownPath(platform::FromNativePath(case_.Season()->path.filename())));
    PrintReport::Preview(this, case_.Report(SaveAs::Today()), name);
}

void frmReview::cmdSave_Click() {
    const fs::path& source = case_.Season()->path;
    const QString base = platform::FromNativePath(source.stem());
    const QString folder = QFileInfo(platform::FromNativePath(source)).absolutePath();
    const QStringList filters = SaveAs::Filters(case_);
    const qsizetype differences = case_.Previous() != nullptr ? filters.size() - 1 : -1;
    // Whoever looks at the differences means them.
    const bool meansThem = differences >= 0 && tabReview_->currentWidget() == compare_;
    const auto [path, filter] = SaveDialog::Ask(
        this, {tr("Save"), folder, base + (meansThem ? tr(" differences") : tr(" report")), filters,
               true, meansThem ? differences : 0});
    if (path.isEmpty()) {
        return;
    }
    try {
        SaveAs::Save(case_,
                     filter == differences ? SaveAs::What::kDifferences : SaveAs::What::kReport,
                     platform::ToNativePath(path));
    } catch (const std::exception& reason) {
        ShowNotWritten(path, reason);
    }
}

void frmReview::cmdNewYear_Click() {
    const season::Season& season = *case_.Season();
    frmNewYear dialog(season, this);
    if (platform::RunModal(dialog) != QDialog::Accepted) {
        return;
    }
    const auto name = season::ParseFileName(season.path);
    const QString title =
        name ? Parts::Text(name->unit + name->state + season::TwoDigits(dialog.Year()) + ".FCD")
             : QString();
    const QString folder = QFileInfo(platform::FromNativePath(season.path)).absolutePath();
    const QString path =
        SaveDialog::Ask(
            this,
            {tr("Save New Year's File"), folder, title, {tr("TARN Prep files (*.fcd)")}, false})
            .path;
    if (path.isEmpty()) {
        return;
    }
    try {
        season::WriteNew(review::NextYear(season, dialog.Year(), dialog.DroppedZones()),
                         platform::ToNativePath(path));
    } catch (const std::exception& reason) {
        ShowNotWritten(path, reason);
        return;
    }
    platform::MsgOptions options;
    options.icon = platform::MsgIcon::kInformation;
    platform::MsgBox(tr("%1 was made. Open it in TARN Prep to go on.")
                         .arg(platform::ShownPath(QFileInfo(path).fileName())),
                     options);
}

void frmReview::Help() {
    platform::HelpViewer::ShowContext(
        platform::HelpContextId(focusWidget() ? focusWidget() : this));
}

}  // namespace tarnreview
