#include "tarnreview/frmReview.h"

#include <QDragEnterEvent>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>
#include <QScreen>
#include <QStatusBar>
#include <QTabBar>
#include <QTabWidget>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>

#include "platform/EventTrap.h"
#include "platform/dialogs/MsgBox.h"
#include "platform/help/HelpViewer.h"
#include "platform/system/Files.h"
#include "platform/system/NativePath.h"
#include "season/data_file.h"
#include "season/file_name.h"
#include "tarnreview/ChartsPage.h"
#include "tarnreview/ComparePage.h"
#include "tarnreview/FileWatch.h"
#include "tarnreview/FindingsPage.h"
#include "tarnreview/Notice.h"
#include "tarnreview/Parts.h"
#include "tarnreview/RecentFiles.h"
#include "tarnreview/ReportPage.h"

namespace tarnreview {

using Parts::Text;
using platform::EventTrap::Trapped;

namespace fs = std::filesystem;

namespace {

constexpr int kHelpContextId = 90;
constexpr QSize kUsual(1180, 720);

QString TitleOf(const fs::path& path) {
    return platform::ShownPath(platform::FromNativePath(path.filename()));
}

// Why a file was refused, below its name.
void ShowRefusal(const fs::path& path, const std::exception& reason) {
    platform::MsgOptions options;
    options.icon = platform::MsgIcon::kExclamation;
    options.informative = QString::fromUtf8(reason.what());
    platform::MsgBox(QObject::tr("%1 cannot be read.").arg(TitleOf(path)), options);
}

}  // namespace

frmReview::frmReview(QString path) : wanted_(std::move(path)) {
    Parts::Name(*this, "frmReview", tr("TARN Review"));
    setWindowTitle(tr("TARN Review"));
    setAcceptDrops(true);
    platform::SetHelpContextId(*this, kHelpContextId);
    auto* ground = new QWidget(this);
    Parts::Name(*ground, "pnlGround", tr("TARN Review"));
    setCentralWidget(ground);
    auto* column = new QVBoxLayout(ground);
    BuildButtons();
    column->addWidget(rowButtons_);
    BuildNotices();
    column->addWidget(lastYear_);
    column->addWidget(changed_);
    BuildPages();
    column->addWidget(tabReview_, 1);
    lblFigure_ = new QLabel(this);
    lblFigure_->setTextFormat(Qt::PlainText);
    Parts::Name(*lblFigure_, "lblFigure", tr("Figure under the pointer"));
    statusBar()->setObjectName(QStringLiteral("barStatus"));
    statusBar()->setAccessibleName(tr("Status"));
    statusBar()->addWidget(lblFigure_, 1);
    AddKeys();
    resize(kUsual.boundedTo(screen()->availableSize()));
}

frmReview::~frmReview() = default;

void frmReview::BuildPages() {
    tabReview_ = new QTabWidget(this);
    Parts::Name(*tabReview_, "tabReview", tr("Pages"));
    Parts::Name(*tabReview_->tabBar(), "barPages", tr("Pages"));
    lblWelcome_ = Parts::Words(this, "lblWelcome", tr("Welcome"));
    lblWelcome_->setAlignment(Qt::AlignCenter);
    lblWelcome_->setText(
        tr("Open a data file, or drop one here.\n\n"
           "TARN Review looks for what seems wrong or missing, draws the figures, "
           "compares them with last year's and makes the report. The data file "
           "is only read."));
    tabReview_->addTab(lblWelcome_, tr("&Findings"));
}

// The first frame is there, and waits for nothing of this.
void frmReview::Furnish() {
    const auto listener = [this](const QString& words) { lblFigure_->setText(words); };
    findings_ = new FindingsPage(case_, listener, this);
    charts_ = new ChartsPage(case_, listener, this);
    report_ = new ReportPage(case_, this);
    compare_ = new ComparePage(case_, listener, this);
    watch_ = new FileWatch(this);
    connect(findings_, &FindingsPage::Chosen, charts_,
            Trapped("ChartsPage.GoTo",
                    [this](const review::Finding& finding) { charts_->GoTo(finding); }));
    connect(watch_, &FileWatch::Touched, this,
            Trapped("frmReview.CheckForChange", [this] { CheckForChange(); }));
    tabReview_->addTab(charts_, tr("&Charts"));
    tabReview_->addTab(report_, tr("&Report"));
    tabReview_->addTab(compare_, tr("Co&mpare"));
    ShowRecent();
    if (!wanted_.isEmpty()) {
        OpenFile(wanted_);
    }
}

void frmReview::OpenFile(const QString& path) {
    const fs::path native = platform::ToNativePath(platform::FindPath(path));
    try {
        case_.Open(native);
    } catch (const season::Refused& refused) {
        ShowRefusal(native, refused);
        return;
    }
    RecentFiles::Add(path);
    ShowRecent();
    watch_->Watch(path);
    changed_->Withdraw();
    ShowFile();
    OfferLastYear();
    // Whoever works with keys goes on from the first finding.
    if (tabReview_->currentWidget() == findings_) {
        findings_->setFocus();
    }
}

void frmReview::ShowFile() {
    if (lblWelcome_ != nullptr) {
        tabReview_->removeTab(0);
        delete lblWelcome_;
        lblWelcome_ = nullptr;
        tabReview_->insertTab(0, findings_, tr("&Findings"));
        tabReview_->setCurrentIndex(0);
    }
    setWindowTitle(tr("TARN Review - %1").arg(TitleOf(case_.Season()->path)));
    charts_->ShowFile();
    findings_->ShowFile();
    report_->ShowFile();
    compare_->ShowFile();
    for (QPushButton* button : {cmdPrevious_, cmdPrint_, cmdSave_, cmdNewYear_}) {
        button->setEnabled(true);
    }
}

void frmReview::OfferLastYear() {
    lastYear_->Withdraw();
    const auto older = LastYearsFile(case_.Season()->path);
    if (older && case_.Previous() == nullptr) {
        offered_ = *older;
        lastYear_->Offer(tr("Last year's file, %1, lies beside this one.").arg(TitleOf(*older)));
    }
}

void frmReview::OpenPrevious(const fs::path& path) {
    try {
        case_.OpenPrevious(path);
    } catch (const season::Refused& refused) {
        ShowRefusal(path, refused);
        return;
    }
    lastYear_->Withdraw();
    ShowFile();
}

void frmReview::ReadAgain() {
    if (!HasFile()) {
        return;
    }
    changed_->Withdraw();
    try {
        case_.OpenAgain();
    } catch (const season::Refused& refused) {
        ShowRefusal(case_.Season()->path, refused);
        return;
    }
    watch_->Watch(platform::FromNativePath(case_.Season()->path));
    ShowFile();
}

void frmReview::CheckForChange() {
    if (!HasFile() || !case_.HasChanged()) {
        return;
    }
    const fs::path& path = case_.Season()->path;
    std::error_code failed;
    changed_->Offer(
        fs::exists(path, failed)
            ? tr("%1 was changed on the disk. What is shown is what it held before.")
                  .arg(TitleOf(path))
            : tr("%1 is gone from the disk. What is shown is what it held.").arg(TitleOf(path)));
}

// Where a file system says nothing of changes, coming back to the window does.
bool frmReview::event(QEvent* event) {
    const bool handled = QMainWindow::event(event);
    if (event->type() == QEvent::WindowActivate && isFurnished_) {
        platform::EventTrap::Run("frmReview.CheckForChange", [this] { CheckForChange(); });
    }
    if (event->type() == QEvent::UpdateRequest && !isFurnished_) {
        isFurnished_ = true;
        QTimer::singleShot(0, this, Trapped("frmReview.Furnish", [this] { Furnish(); }));
    }
    return handled;
}

void frmReview::dragEnterEvent(QDragEnterEvent* event) {
    const QList<QUrl> urls = event->mimeData()->urls();
    if (urls.size() == 1 && urls.front().isLocalFile()) {
        event->acceptProposedAction();
    }
}

void frmReview::dropEvent(QDropEvent* event) {
    const QString path = event->mimeData()->urls().value(0).toLocalFile();
    event->acceptProposedAction();
    // The program that the file was dragged from waits until this is over.
    QTimer::singleShot(0, this, Trapped("frmReview.Drop", [this, path] { OpenFile(path); }));
}

}  // namespace tarnreview
