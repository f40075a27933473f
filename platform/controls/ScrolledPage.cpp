#include "platform/controls/ScrolledPage.h"

#include <QDialog>
#include <QEvent>
#include <QLayout>
#include <QScreen>
#include <QScrollBar>

#include <algorithm>

namespace platform {

namespace {

constexpr QSize kWindowFrame(8, 40);
constexpr int kLeastLines = 4;

// A layout keeps what it has learned from the widgets below until they tell it to ask again.
void AskAgain(QWidget& widget) {
    for (QWidget* child : widget.findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
        if (!child->isWindow()) {
            AskAgain(*child);
        }
    }
    if (QLayout* layout = widget.layout()) {
        layout->invalidate();
        layout->activate();
    }
}

int Height(const QLayout& layout, int width) {
    return layout.hasHeightForWidth() ? layout.totalHeightForWidth(width)
                                      : layout.totalSizeHint().height();
}

// What scrolls. It is given more than the window has only when its controls cannot do with less.
class Content : public QWidget {
public:
    [[nodiscard]] int heightForWidth(int width) const override {
        return layout() == nullptr ? -1 : layout()->totalMinimumHeightForWidth(width);
    }
};

// With which nothing has to scroll sideways.
int LeastWidth(const QDialog& dialog) {
    int least = dialog.layout()->totalMinimumSize().width();
    if (const auto* page = dialog.findChild<ScrolledPage*>()) {
        least +=
            page->Page().layout()->totalMinimumSize().width() - page->minimumSizeHint().width();
    }
    return least;
}

}  // namespace

ScrolledPage::ScrolledPage(QWidget* parent, const char* name, const QString& accessibleName)
    : QScrollArea(parent) {
    setObjectName(QString::fromLatin1(name));
    setAccessibleName(accessibleName);
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus);
    auto* page = new Content;
    page->setObjectName(objectName() + QStringLiteral("Page"));
    page->setAccessibleName(accessibleName);
    setWidget(page);
    // The ground is that of the window.
    viewport()->setAutoFillBackground(false);
    page->setAutoFillBackground(false);
    page->installEventFilter(this);
}

QSize ScrolledPage::sizeHint() const {
    return Page().layout() == nullptr ? QScrollArea::sizeHint() : Page().layout()->totalSizeHint();
}

QSize ScrolledPage::minimumSizeHint() const {
    const int line = fontMetrics().height();
    return {verticalScrollBar()->sizeHint().width() + kLeastLines * line, kLeastLines * line};
}

bool ScrolledPage::hasHeightForWidth() const {
    return Page().layout() != nullptr && Page().layout()->hasHeightForWidth();
}

int ScrolledPage::heightForWidth(int width) const {
    return Page().layout() == nullptr ? -1 : Height(*Page().layout(), width);
}

// What the page needs has changed: whoever lays this area out must ask anew.
bool ScrolledPage::eventFilter(QObject* watched, QEvent* event) {
    if (watched == widget() && event->type() == QEvent::LayoutRequest) {
        updateGeometry();
    }
    return QScrollArea::eventFilter(watched, event);
}

int HeightAtWidth(QWidget& widget, int width) {
    AskAgain(widget);
    return Height(*widget.layout(), width);
}

void FitToScreen(QDialog& dialog, QSize wanted) {
    dialog.ensurePolished();
    AskAgain(dialog);
    const QScreen* screen = dialog.screen();
    const QSize room = screen == nullptr ? wanted : screen->availableSize() - kWindowFrame;
    const int width = std::min(std::max(wanted.width(), LeastWidth(dialog)), room.width());
    const int height = std::max(wanted.height(), Height(*dialog.layout(), width));
    dialog.resize(width, std::min(height, room.height()));
}

}  // namespace platform
