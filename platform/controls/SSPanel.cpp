#include "platform/controls/SSPanel.h"

#include <QFontMetrics>
#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

#include <algorithm>

namespace {

constexpr int kMargin = 4;

bool IsFigure(const QString& text) {
    const auto isDigit = [](QChar c) { return c.isDigit(); };
    const auto isLetter = [](QChar c) { return c.isLetter(); };
    return std::any_of(text.begin(), text.end(), isDigit) &&
           std::none_of(text.begin(), text.end(), isLetter);
}

}  // namespace

SSPanel::SSPanel(QWidget* parent) : QFrame(parent) {
    setFrameStyle(QFrame::Panel | QFrame::Raised);
}

QString SSPanel::Caption() const {
    return caption_;
}

void SSPanel::SetCaption(const QString& caption) {
    if (caption == caption_) {
        return;
    }
    caption_ = caption;
    // The name says what the panel is, the description what it shows.
    setAccessibleDescription(caption);
    updateGeometry();
    update();
}

void SSPanel::SetCaptionAlignment(Qt::Alignment alignment) {
    alignment_ = alignment;
    update();
}

void SSPanel::paintEvent(QPaintEvent* event) {
    QFrame::paintEvent(event);
    if (caption_.isEmpty()) {
        return;
    }
    QPainter painter(this);
    const QRect room = contentsRect().adjusted(kMargin, 0, -kMargin, 0);
    int flags = static_cast<int>(alignment_);
    QString shown = Shown();
    if (shown != caption_ && WrapsInto(room)) {
        flags |= Qt::TextWordWrap;
        shown = caption_;
    }
    style()->drawItemText(&painter, room, flags, palette(), isEnabled(), shown, foregroundRole());
}

bool SSPanel::WrapsInto(const QRect& room) const {
    return !IsFigure(caption_) &&
           room.contains(fontMetrics().boundingRect(room, Qt::TextWordWrap, caption_));
}

// A part of a figure would be another figure.
QString SSPanel::Shown() const {
    const int room = contentsRect().width() - 2 * kMargin;
    if (fontMetrics().size(0, caption_).width() <= room) {
        return caption_;
    }
    return IsFigure(caption_) ? QStringLiteral("####")
                              : fontMetrics().elidedText(caption_, Qt::ElideRight, room);
}

bool SSPanel::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip && toolTip().isEmpty()) {
        const QPoint at = static_cast<QHelpEvent*>(event)->globalPos();
        QToolTip::showText(at, Shown() == caption_ ? QString() : caption_, this);
        return true;
    }
    return QFrame::event(event);
}

QSize SSPanel::minimumSizeHint() const {
    return layout() == nullptr && IsFigure(caption_) ? sizeHint() : QFrame::minimumSizeHint();
}

QSize SSPanel::sizeHint() const {
    if (layout() != nullptr || caption_.isEmpty()) {
        return QFrame::sizeHint();
    }
    const QSize text = fontMetrics().size(0, caption_);
    const int frame = 2 * frameWidth();
    return {text.width() + frame + 2 * kMargin, text.height() + frame + kMargin};
}
