#include "platform/controls/FittingFont.h"

#include <QFontInfo>
#include <QFontMetrics>
#include <QLayout>
#include <QScreen>
#include <QWidget>
#include <algorithm>

namespace {

constexpr double kSmallest = 0.5;
constexpr double kStep = 0.5;  // points
constexpr double kSmallestOfDialog = 7;
constexpr QSize kWindowFrame(8, 40);

bool Fits(const QFont& font, const QString& text, QSize room) {
    const QFontMetrics metrics(font);
    const QRect wrapped =
        metrics.boundingRect(QRect(0, 0, room.width(), 0), Qt::TextWordWrap, text);
    return wrapped.width() <= room.width() && wrapped.height() <= room.height();
}

// A layout keeps what it has learnt from the widgets below until they tell it to ask again.
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

int Height(QLayout& layout, int width) {
    return layout.hasHeightForWidth() ? layout.totalHeightForWidth(width)
                                      : layout.totalSizeHint().height();
}

QSize Needed(QWidget& dialog, QSize wanted) {
    AskAgain(dialog);
    const int width = std::max(wanted.width(), dialog.layout()->totalMinimumSize().width());
    return {width, std::max(wanted.height(), Height(*dialog.layout(), width))};
}

bool HasRoom(const QWidget& page) {
    const QLayout& layout = *page.layout();
    const QSize least = layout.totalMinimumSize();
    const int height = layout.hasHeightForWidth() ? layout.totalMinimumHeightForWidth(page.width())
                                                  : least.height();
    return least.width() <= page.width() && height <= page.height();
}

}  // namespace

namespace platform {

QFont FittingFont(const QFont& font, const QString& text, QSize room) {
    const double size = QFontInfo(font).pointSizeF();
    QFont fitting = font;
    for (double smaller = size - kStep; smaller >= size * kSmallest && !Fits(fitting, text, room);
         smaller -= kStep) {
        fitting.setPointSizeF(smaller);
    }
    return fitting;
}

int HeightAtWidth(QWidget& widget, int width) {
    AskAgain(widget);
    return Height(*widget.layout(), width);
}

void FitToScreen(QWidget& dialog, QSize wanted) {
    dialog.ensurePolished();
    const QScreen* screen = dialog.screen();
    const QSize room = screen == nullptr ? wanted : screen->availableSize() - kWindowFrame;
    const QSize least = wanted.boundedTo(room);
    QSize size = Needed(dialog, least);
    QFont font = dialog.font();
    while (size != size.boundedTo(room) && font.pointSizeF() - kStep >= kSmallestOfDialog) {
        font.setPointSizeF(font.pointSizeF() - kStep);
        dialog.setFont(font);
        size = Needed(dialog, least);
    }
    dialog.resize(size.boundedTo(room));
}

void FitToSize(QWidget& page) {
    if (page.parentWidget() == nullptr) {
        return;
    }
    QFont font = page.parentWidget()->font();
    if (page.font().pointSizeF() == font.pointSizeF() && HasRoom(page)) {
        return;
    }
    page.setFont(font);
    AskAgain(page);
    while (!HasRoom(page) && font.pointSizeF() - kStep >= kSmallestOfDialog) {
        font.setPointSizeF(font.pointSizeF() - kStep);
        page.setFont(font);
        AskAgain(page);
    }
}

}  // namespace platform
