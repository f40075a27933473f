#include "platform/helpwindow/HelpWindow.h"

#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPrintDialog>
#include <QPrinter>
#include <QScreen>
#include <QShowEvent>
#include <QSplitter>
#include <QStyle>
#include <QTabBar>
#include <QTabWidget>
#include <QToolBar>
#include <algorithm>

#include "platform/helpwindow/HelpBrowser.h"
#include "platform/helpwindow/HelpContents.h"
#include "platform/helpwindow/HelpFile.h"
#include "platform/helpwindow/HelpIndex.h"
#include "platform/helpwindow/HelpSearch.h"

namespace platform {

namespace {

constexpr int kNavigationWidth = 220;
constexpr int kTopicWidth = 620;
constexpr int kWidth = 900;
constexpr int kHeight = 640;
constexpr int kMargin = 4;
constexpr double kMostOfTheWindow = 0.4;  // for the ways to a topic

// A tool bar has parts of its own that nobody named.
void NameParts(QWidget& owner, const QString& name) {
    int number = 0;
    for (QWidget* part : owner.findChildren<QWidget*>()) {
        if (part->objectName().isEmpty()) {
            part->setObjectName(owner.objectName() + QStringLiteral("_%1").arg(++number));
        }
        if (part->focusPolicy() != Qt::NoFocus && part->accessibleName().isEmpty()) {
            part->setAccessibleName(name);
        }
    }
}

}  // namespace

std::unique_ptr<HelpWindow> HelpWindow::Open(const QString& helpFile, HelpLibrary::Trap trap) {
    std::unique_ptr<HelpFile> file = HelpFile::Open(helpFile);
    if (file == nullptr) {
        return nullptr;
    }
    return std::unique_ptr<HelpWindow>(new HelpWindow(std::move(file), trap));
}

HelpWindow::HelpWindow(std::unique_ptr<HelpFile> file, HelpLibrary::Trap trap)
    : file_(std::move(file)), trap_(trap) {
    setObjectName(QStringLiteral("frmHelp"));
    setWindowTitle(tr("TARN Prep Help"));
    setAccessibleName(windowTitle());
    browser_ = new HelpBrowser(*file_, this);
    browser_->setObjectName(QStringLiteral("txtTopic"));
    browser_->setAccessibleName(tr("Help topic"));
    MakeWays();
    splitter_ = new QSplitter;
    splitter_->setObjectName(QStringLiteral("splHelp"));
    splitter_->setAccessibleName(tr("Ways to a topic, and the topic"));
    splitter_->addWidget(tabs_);
    splitter_->addWidget(browser_);
    splitter_->setStretchFactor(1, 1);
    splitter_->setSizes({tabs_->minimumWidth(), kTopicWidth});
    splitter_->setChildrenCollapsible(false);
    setCentralWidget(splitter_);
    MakeTools();
    connect(browser_, &QTextBrowser::sourceChanged, contents_,
            [this](const QUrl& page) { contents_->Mark(HelpBrowser::PageAt(page)); });
    // The topic can be read and scrolled at once.
    browser_->setFocus();
    const QRect room = screen()->availableGeometry();
    resize(std::min(kWidth, room.width()), std::min(kHeight, room.height()));
}

// The topic's browser reads from the file, which goes first otherwise.
HelpWindow::~HelpWindow() {
    delete takeCentralWidget();
}

void HelpWindow::MakeWays() {
    tabs_ = new QTabWidget;
    contents_ = new HelpContents(file_->Contents(), tabs_);
    contents_->setObjectName(QStringLiteral("lstContents"));
    contents_->setAccessibleName(tr("Contents"));
    auto* index = new HelpIndex(file_->Index(), tabs_);
    auto* search = new HelpSearch(*file_, tabs_);
    tabs_->setObjectName(QStringLiteral("tabNavigation"));
    tabs_->setAccessibleName(tr("Ways to a topic"));
    tabs_->addTab(contents_, tr("&Contents"));
    tabs_->addTab(index, tr("&Index"));
    tabs_->addTab(search, tr("&Search"));
    tabs_->tabBar()->setAccessibleName(tabs_->accessibleName());
    // In a large font too, the captions of all three ways show.
    tabs_->setMinimumWidth(
        std::max(kNavigationWidth, tabs_->tabBar()->sizeHint().width() + 2 * kMargin));
    const auto show =
        Trapped("HelpWindow.Show", [this](const QString& page) { browser_->ShowPage(page); });
    connect(contents_, &HelpContents::PageChosen, this, show);
    connect(index, &HelpIndex::PageChosen, this, show);
    connect(search, &HelpSearch::PageChosen, this, show);
    connect(tabs_, &QTabWidget::currentChanged, this,
            [this] { FocusBox(*tabs_->currentWidget()); });
}

// Somebody who goes along the tabs by keyboard stays there.
void HelpWindow::FocusBox(const QWidget& page) {
    auto* box = page.findChild<QLineEdit*>();
    if (box != nullptr && !tabs_->tabBar()->hasFocus()) {
        box->setFocus();
        box->selectAll();
    }
}

// No title is cut that the window has room for.
void HelpWindow::FitNavigation() {
    const int around = splitter_->sizes().front() - contents_->viewport()->width();
    const int wanted = contents_->WidthOfTitles() + around;
    const int most = static_cast<int>(splitter_->width() * kMostOfTheWindow);
    const int ways = std::max(splitter_->sizes().front(), std::min(wanted, most));
    splitter_->setSizes({ways, splitter_->width() - ways});
}

bool HelpWindow::ShowIdentifier(const QString& identifier) {
    const QString page = file_->PageOf(identifier);
    if (!page.isEmpty()) {
        browser_->ShowPage(page);
    }
    return !page.isEmpty();
}

void HelpWindow::ShowContents() {
    if (!ShowIdentifier(QStringLiteral("contents"))) {
        browser_->ShowPage(file_->Contents().constFirst().page);
    }
}

// Its parts have their sizes only now.
void HelpWindow::showEvent(QShowEvent* event) {
    QMainWindow::showEvent(event);
    if (!event->spontaneous()) {
        FitNavigation();
    }
}

void HelpWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        close();
        return;
    }
    QMainWindow::keyPressEvent(event);
}

void HelpWindow::MakeTools() {
    QToolBar* bar = addToolBar(tr("Tools"));
    bar->setObjectName(QStringLiteral("barTools"));
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    bar->setMovable(false);
    bar->setContextMenuPolicy(Qt::PreventContextMenu);
    QAction* back =
        AddTool(*bar, "mnuBack", tr("&Back"), style()->standardIcon(QStyle::SP_ArrowBack));
    QAction* forward =
        AddTool(*bar, "mnuForward", tr("&Forward"), style()->standardIcon(QStyle::SP_ArrowForward));
    QAction* home =
        AddTool(*bar, "mnuHome", tr("&Home"), style()->standardIcon(QStyle::SP_DirHomeIcon));
    QAction* larger = AddTool(*bar, "mnuLarger", tr("&Larger text"), {});
    QAction* smaller = AddTool(*bar, "mnuSmaller", tr("S&maller text"), {});
    QAction* print = AddTool(*bar, "mnuPrint", tr("&Print..."), {});
    back->setShortcut(QKeySequence::Back);
    forward->setShortcut(QKeySequence::Forward);
    home->setShortcut(Qt::ALT | Qt::Key_Home);
    larger->setShortcut(QKeySequence::ZoomIn);
    smaller->setShortcut(QKeySequence::ZoomOut);
    print->setShortcut(QKeySequence::Print);
    auto* find = new QAction(this);
    find->setObjectName(QStringLiteral("mnuFind"));
    find->setShortcut(QKeySequence::Find);
    addAction(find);
    connect(find, &QAction::triggered, this, [this] {
        tabs_->setCurrentIndex(tabs_->count() - 1);
        FocusBox(*tabs_->currentWidget());
    });
    back->setEnabled(false);
    forward->setEnabled(false);
    connect(browser_, &QTextBrowser::backwardAvailable, back, &QAction::setEnabled);
    connect(browser_, &QTextBrowser::forwardAvailable, forward, &QAction::setEnabled);
    connect(back, &QAction::triggered, browser_, &QTextBrowser::backward);
    connect(forward, &QAction::triggered, browser_, &QTextBrowser::forward);
    connect(home, &QAction::triggered, this,
            Trapped("HelpWindow.Home", [this](bool) { ShowContents(); }));
    connect(larger, &QAction::triggered, this,
            [this] { browser_->SetTextSize(browser_->TextSize() + 1); });
    connect(smaller, &QAction::triggered, this,
            [this] { browser_->SetTextSize(browser_->TextSize() - 1); });
    connect(print, &QAction::triggered, this,
            Trapped("HelpWindow.Print", [this](bool) { Print(); }));
    NameParts(*bar, tr("Tools"));
}

QAction* HelpWindow::AddTool(QToolBar& bar, const char* name, const QString& text,
                             const QIcon& icon) {
    QAction* action = bar.addAction(icon, text);
    action->setObjectName(QString::fromLatin1(name));
    if (QWidget* button = bar.widgetForAction(action)) {
        QString plain = text;
        button->setAccessibleName(plain.remove(u'&'));
        button->setFocusPolicy(Qt::TabFocus);
    }
    return action;
}

void HelpWindow::Print() {
    QPrinter printer;
    QPrintDialog dialog(&printer, this);
    dialog.setObjectName(QStringLiteral("dlgPrint"));
    if (dialog.exec() == QDialog::Accepted) {
        browser_->print(&printer);
    }
}

}  // namespace platform
