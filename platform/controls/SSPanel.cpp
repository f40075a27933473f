#include "platform/controls/SSPanel.h"

#include <QFontMetrics>
#include <QPainter>
#include <QStyle>

#include "platform/controls/FittingFont.h"

namespace {

constexpr int kMargin = 4;

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
    painter.setFont(platform::FittingFont(font(), caption_, room.size()));
    style()->drawItemText(&painter, room, static_cast<int>(alignment_) | Qt::TextWordWrap,
                          palette(), isEnabled(), caption_, foregroundRole());
}

QSize SSPanel::sizeHint() const {
    if (layout() != nullptr || caption_.isEmpty()) {
        return QFrame::sizeHint();
    }
    const QSize text = fontMetrics().size(0, caption_);
    const int frame = 2 * frameWidth();
    return {text.width() + frame + 2 * kMargin, text.height() + frame + kMargin};
}
