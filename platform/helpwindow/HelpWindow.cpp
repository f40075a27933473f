#include "platform/helpwindow/HelpWindow.h"

#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QHelpContentWidget>
#include <QHelpEngine>
#include <QHelpIndexWidget>
#include <QHelpSearchEngine>
#include <QHelpSearchQueryWidget>
#include <QHelpSearchResultWidget>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPrintDialog>
#include <QPrinter>
#include <QScreen>
#include <QSplitter>
#include <QStyle>
#include <QTabBar>
#include <QTabWidget>
#include <QToolBar>
#include <QVBoxLayout>
#include <algorithm>

#include "platform/helpwindow/HelpBrowser.h"

namespace {

constexpr int kNavigationWidth = 220;
constexpr int kTopicWidth = 620;
constexpr int kMargin = 4;
constexpr double kMostOfTheWindow = 0.4;  // for the ways to a topic
constexpr auto kSplitter = "splHelp";

// The engine reads help files through a collection, a file of its own that must be writable.
bool MakeCollection(const QString& collection, const QString& helpFile) {
    QHelpEngineCore core(collection);
    core.setReadOnly(false);
    return core.setupData() && core.registerDocumentation(helpFile);
}

// The engine's own widgets are made of unnamed parts.
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

// The entry of a page in the tree of contents. Chapters begin with their first page: of two entries
// that lead to it, the one of the page itself is meant.
QModelIndex TopicIn(const QHelpContentModel& model, const QModelIndex& chapter, const QUrl& page) {
    for (int row = 0; row < model.rowCount(chapter); ++row) {
        const QModelIndex entry = model.index(row, 0, chapter);
        const QModelIndex below = TopicIn(model, entry, page);
        if (below.isValid()) {
            return below;
        }
        const QHelpContentItem* item = model.contentItemAt(entry);
        if (item != nullptr && item->url().path() == page.path()) {
            return entry;
        }
    }
    return {};
}

}  // namespace

std::unique_ptr<HelpWindow> HelpWindow::Open(const QString& helpFile, HelpLibrary::Trap trap) {
    auto folder = std::make_unique<QTemporaryDir>();
    if (!folder->isValid() || QHelpEngineCore::namespaceName(helpFile).isEmpty()) {
        return nullptr;
    }
    const QString collection = folder->filePath(QStringLiteral("help.qhc"));
    if (!MakeCollection(collection, helpFile)) {
        return nullptr;
    }
    auto engine = std::make_unique<QHelpEngine>(collection);
    engine->setUsesFilterEngine(true);
    if (!engine->setupData() || engine->registeredDocumentations().isEmpty()) {
        return nullptr;
    }
    return std::unique_ptr<HelpWindow>(new HelpWindow(std::move(folder), std::move(engine), trap));
}

HelpWindow::HelpWindow(std::unique_ptr<QTemporaryDir> folder, std::unique_ptr<QHelpEngine> engine,
                       HelpLibrary::Trap trap)
    : folder_(std::move(folder)), engine_(std::move(engine)), trap_(trap) {
    setObjectName(QStringLiteral("frmHelp"));
    setWindowTitle(tr("TARN Prep Help"));
    setAccessibleName(windowTitle());
    browser_ = new HelpBrowser(*engine_, this);
    browser_->setObjectName(QStringLiteral("txtTopic"));
    browser_->setAccessibleName(tr("Help topic"));
    engine_->contentWidget()->setObjectName(QStringLiteral("lstContents"));
    engine_->contentWidget()->setAccessibleName(tr("Contents"));

    auto* tabs = new QTabWidget;
    tabs_ = tabs;
    tabs->setObjectName(QStringLiteral("tabNavigation"));
    tabs->setAccessibleName(tr("Ways to a topic"));
    tabs->addTab(engine_->contentWidget(), tr("&Contents"));
    tabs->addTab(MakeIndexPage(), tr("&Index"));
    tabs->addTab(MakeSearchPage(), tr("&Search"));
    tabs->tabBar()->setAccessibleName(tabs->accessibleName());
    auto* splitter = new QSplitter;
    splitter->setObjectName(QString::fromLatin1(kSplitter));
    splitter->setAccessibleName(tr("Ways to a topic, and the topic"));
    splitter->addWidget(tabs);
    splitter->addWidget(browser_);
    splitter->setStretchFactor(1, 1);
    // In a large font too, the captions of all three ways show.
    const int ways = std::max(kNavigationWidth, tabs->tabBar()->sizeHint().width() + 2 * kMargin);
    tabs->setMinimumWidth(ways);
    splitter->setSizes({ways, kTopicWidth});
    splitter->setChildrenCollapsible(false);
    setCentralWidget(splitter);
    MakeTools();

    const auto show =
        Trapped("HelpWindow.Show", [this](const QUrl& url) { browser_->setSource(url); });
    connect(engine_->contentWidget(), &QHelpContentWidget::linkActivated, this, show);
    // The engine makes the contents list beside the program's other work.
    connect(engine_->contentModel(), &QHelpContentModel::contentsCreated, this, [this] {
        engine_->contentWidget()->expandToDepth(1);
        FitNavigation();
        MarkTopic(browser_->source());
    });
    connect(browser_, &QTextBrowser::sourceChanged, this,
            [this](const QUrl& page) { MarkTopic(page); });
    connect(tabs, &QTabWidget::currentChanged, this, [this] { FocusBox(*tabs_->currentWidget()); });
    // The topic can be read and scrolled at once.
    browser_->setFocus();
    engine_->searchEngine()->reindexDocumentation();
    const QRect room = screen()->availableGeometry();
    resize(std::min(900, room.width()), std::min(640, room.height()));
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
    auto* splitter = findChild<QSplitter*>(QString::fromLatin1(kSplitter));
    const QAbstractItemView& tree = *engine_->contentWidget();
    const int around = splitter->sizes().front() - tree.viewport()->width();
    const int wanted = tree.sizeHintForColumn(0) + around;
    const int most = static_cast<int>(splitter->width() * kMostOfTheWindow);
    const int ways = std::max(splitter->sizes().front(), std::min(wanted, most));
    splitter->setSizes({ways, splitter->width() - ways});
}

void HelpWindow::MarkTopic(const QUrl& page) {
    const auto* model = engine_->contentModel();
    QHelpContentWidget* tree = engine_->contentWidget();
    const QModelIndex topic = TopicIn(*model, {}, page);
    if (topic.isValid() && topic != tree->currentIndex()) {
        tree->setCurrentIndex(topic);
        tree->scrollTo(topic);
    }
}

// The engine's widgets are children of this window but speak to the engine, which goes first.
HelpWindow::~HelpWindow() {
    delete takeCentralWidget();
}

bool HelpWindow::ShowIdentifier(const QString& identifier) {
    const QList<QHelpLink> links = engine_->documentsForIdentifier(identifier);
    ShowFirst(links);
    return !links.isEmpty();
}

void HelpWindow::ShowContents() {
    if (ShowIdentifier(QStringLiteral("contents"))) {
        return;
    }
    const QString space = engine_->registeredDocumentations().constFirst();
    const QList<QUrl> pages = engine_->files(space, QStringList(), QStringLiteral("html"));
    if (!pages.isEmpty()) {
        browser_->setSource(pages.first());
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

QWidget* HelpWindow::MakeIndexPage() {
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    auto* label = new QLabel(tr("L&ook for:"));
    auto* filter = new QLineEdit;
    filter->setObjectName(QStringLiteral("txtIndex"));
    filter->setAccessibleName(tr("Look for"));
    label->setObjectName(QStringLiteral("lblIndex"));
    label->setBuddy(filter);
    QHelpIndexWidget* list = engine_->indexWidget();
    list->setObjectName(QStringLiteral("lstIndex"));
    list->setAccessibleName(tr("Index"));
    layout->addWidget(label);
    layout->addWidget(filter);
    layout->addWidget(list);
    connect(filter, &QLineEdit::textChanged, list,
            [list](const QString& text) { list->filterIndices(text); });
    connect(filter, &QLineEdit::returnPressed, list, &QHelpIndexWidget::activateCurrentItem);
    connect(list, &QHelpIndexWidget::documentActivated, this,
            [this](const QHelpLink& link) { browser_->setSource(link.url); });
    connect(list, &QHelpIndexWidget::documentsActivated, this,
            [this](const QList<QHelpLink>& links) { ShowFirst(links); });
    return page;
}

QWidget* HelpWindow::MakeSearchPage() {
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    QHelpSearchEngine* search = engine_->searchEngine();
    QHelpSearchQueryWidget* query = search->queryWidget();
    QHelpSearchResultWidget* results = search->resultWidget();
    query->setObjectName(QStringLiteral("pnlQuery"));
    results->setObjectName(QStringLiteral("lstResults"));
    NameParts(*query, tr("Search for"));
    NameParts(*results, tr("Topics found"));
    layout->addWidget(query);
    layout->addWidget(results, 1);
    connect(query, &QHelpSearchQueryWidget::search, search,
            [search, query] { search->search(query->searchInput()); });
    connect(results, &QHelpSearchResultWidget::requestShowLink, this,
            [this](const QUrl& url) { browser_->setSource(url); });
    return page;
}

void HelpWindow::Print() {
    QPrinter printer;
    QPrintDialog dialog(&printer, this);
    dialog.setObjectName(QStringLiteral("dlgPrint"));
    if (dialog.exec() == QDialog::Accepted) {
        browser_->print(&printer);
    }
}

void HelpWindow::ShowFirst(const QList<QHelpLink>& links) {
    if (!links.isEmpty()) {
        browser_->setSource(links.first().url);
    }
}
