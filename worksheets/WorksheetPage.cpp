#include "worksheets/WorksheetPage.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QKeySequence>
#include <QLabel>
#include <QShortcut>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <map>
#include <utility>

#include "base/u91Trace.h"
#include "datafile/PrepDatatables.h"
#include "platform/EventTrap.h"
#include "platform/controls/FontScale.h"
#include "platform/controls/ScrolledPage.h"
#include "platform/controls/vsFlexGrid.h"
#include "platform/help/HelpViewer.h"
#include "worksheets/ChoiceBox.h"

using platform::ScrolledPage;
using worksheets::ChoiceBox;
using worksheets::WorksheetHost;
using worksheets::WorksheetPage;

namespace {

constexpr int kMargin = 16;
constexpr int kSpacing = 8;
constexpr int kColumnWidth = 980;  // beyond it, lines are too long to read and boxes to oversee
constexpr int kMostOfTheRoom = 1000;
constexpr double kTitleScale = 1.35;

// By column, in twips; forgotten with the file.
std::map<int, int>& WidthsInFile(const QString& worksheetID) {
    static std::map<QString, std::map<int, int>> widths;
    static int opening = 0;
    if (std::exchange(opening, PrepDatatables::Openings()) != PrepDatatables::Openings()) {
        widths.clear();
    }
    return widths[worksheetID];
}

}  // namespace

WorksheetPage::WorksheetPage(WorksheetHost& host, QWidget* parent, Identity identity)
    : QWidget(parent), host_(host), identity_(std::move(identity)), body_(new QVBoxLayout) {
    const char* loadName = identity_.loadName ? identity_.loadName : identity_.name;
    u91Trace::FormLoad(QString::fromLatin1(loadName));
    setObjectName(QString::fromLatin1(identity_.name));
    setWindowTitle(identity_.caption);
    setAccessibleName(identity_.caption);
    setAutoFillBackground(true);
    platform::SetHelpContextId(*this, identity_.helpContextId);
    // Where the screen is small and the letters are large, the page scrolls.
    auto* scrolled = new ScrolledPage(this, "pageArea", identity_.caption);
    column_ = new QWidget;
    column_->setObjectName(QStringLiteral("pageColumn"));
    column_->setAccessibleName(identity_.caption);
    column_->setLayout(body_);
    auto* across = new QHBoxLayout(&scrolled->Page());
    across->setContentsMargins(0, 0, 0, 0);
    across->addWidget(column_, kMostOfTheRoom);
    across->addStretch(1);
    SizeColumn();
    auto* whole = new QVBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->addWidget(scrolled);
    body_->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    body_->setSpacing(kSpacing);
    AddUndoKeys();
}

// In the whole window, so that it does not matter whether a cell, a box or nothing on the worksheet
// has the keyboard; a message box or dialog over it is another window.
void WorksheetPage::AddUndoKeys() {
    const auto add = [this](const QKeySequence& keys, const char* name, auto step) {
        auto* shortcut = new QShortcut(keys, this);
        connect(shortcut, &QShortcut::activated, this,
                platform::EventTrap::Trapped(name, [this, step] { (this->*step)(); }));
    };
    add(Qt::CTRL | Qt::Key_Z, "WorksheetPage.Undo", &WorksheetPage::Undo);
    add(Qt::CTRL | Qt::Key_Y, "WorksheetPage.Redo", &WorksheetPage::Redo);
    add(Qt::CTRL | Qt::SHIFT | Qt::Key_Z, "WorksheetPage.Redo", &WorksheetPage::Redo);
}

void WorksheetPage::AddStepKeys(ChoiceBox& box, const QKeySequence& previous,
                                const QKeySequence& next) {
    const auto add = [this, &box](const QKeySequence& keys, int by) {
        auto* shortcut = new QShortcut(keys, this);
        connect(shortcut, &QShortcut::activated, this,
                platform::EventTrap::Trapped("WorksheetPage.Step", [&box, by] {
                    if (by > 0 && box.hasFocus()) {
                        box.showPopup();
                    } else {
                        box.Step(by);
                    }
                }));
    };
    add(previous, -1);
    add(next, 1);
}

void WorksheetPage::KeepWidths(vsFlexGrid& grid) {
    const QString id = QString::fromLatin1(identity_.id);
    grid.SetWidthsByUser(WidthsInFile(id));
    connect(&grid, &vsFlexGrid::WidthSetByUser, this,
            platform::EventTrap::Trapped("WorksheetPage.KeepWidths", [id, &grid](auto&&...) {
                WidthsInFile(id) = grid.WidthsByUser();
            }));
}

undo::History& WorksheetPage::History() const {
    return undo::HistoryOf(QString::fromLatin1(identity_.id));
}

void WorksheetPage::Undo() {
    u91Trace::Procedure(QStringLiteral("WorksheetPage.Undo"));
    const int done = History().Done();
    if (EndOpenEdit() && History().Done() == done) {
        return;
    }
    History().Undo(*this);
}

void WorksheetPage::Redo() {
    u91Trace::Procedure(QStringLiteral("WorksheetPage.Redo"));
    (void)EndOpenEdit();
    History().Redo(*this);
}

void WorksheetPage::BecomeCurrent() {
    host_.PositionWorksheet(*this);
    host_.BecomeCurrent(QString::fromLatin1(identity_.id));
}

void WorksheetPage::AddTitle(const QString& text) {
    title_ = PageParts::Label(this, "lblTitle", text);
    title_->setWordWrap(true);
    SizeTitle();
    body_->addWidget(title_);
}

void WorksheetPage::UseWholeWidth() {
    usesWholeWidth_ = true;
    SizeColumn();
}

void WorksheetPage::SizeColumn() {
    column_->setMaximumWidth(usesWholeWidth_ ? QWIDGETSIZE_MAX
                                             : platform::ScaledPixels(kColumnWidth, font()));
}

void WorksheetPage::SizeTitle() {
    QFont larger = font();
    larger.setBold(true);
    larger.setPointSizeF(larger.pointSizeF() * kTitleScale);
    title_->setFont(larger);
}

void WorksheetPage::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange && column_ != nullptr) {
        SizeColumn();
    }
    if (event->type() == QEvent::FontChange && title_ != nullptr) {
        SizeTitle();
    }
}

namespace PageParts {

QLabel* Label(QWidget* parent, const char* name, const QString& text) {
    QLabel* label = platform::NamedLabel(parent, name, text);
    label->setTextFormat(Qt::PlainText);
    label->setProperty("Caption", text);
    return label;
}

QLabel* Instruction(QWidget* parent, const char* name, const QString& text) {
    QLabel* label = Label(parent, name, text);
    label->setWordWrap(true);
    return label;
}

ChoiceBox* Choice(QWidget* parent, const char* name, QLabel& label, int characters) {
    auto* box = new ChoiceBox(characters, parent);
    platform::NameByLabel(*box, name, label);
    box->view()->setAccessibleName(box->accessibleName());
    return box;
}

void SelectSilently(QComboBox& box, int index) {
    const QSignalBlocker blocker(box);
    box.setCurrentIndex(index);
}

}  // namespace PageParts
