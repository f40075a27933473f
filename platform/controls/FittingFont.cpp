#include "platform/controls/FittingFont.h"

#include <QFontInfo>
#include <QFontMetrics>
#include <QLayout>
#include <QWidget>
#include <algorithm>

namespace {

constexpr double kSmallest = 0.5;
constexpr double kStep = 0.5;  // points
constexpr double kSmallestOfDialog = 7;

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
