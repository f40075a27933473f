#include "tarnreview/ReviewIcon.h"

#include <QPainter>
#include <QPixmap>

#include "platform/controls/LateIcon.h"

namespace {

constexpr int kSide = 64;

QIcon Drawn() {
    QPixmap picture(kSide, kSide);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0x2f, 0x4f, 0x7f));
    painter.drawRoundedRect(picture.rect(), 12, 12);
    painter.setBrush(QColor(0xff, 0xaa, 0x50));
    painter.drawRect(QRect(10, 34, 9, 18));
    painter.drawRect(QRect(22, 24, 9, 28));
    painter.drawRect(QRect(34, 40, 9, 12));
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(Qt::white, 5, Qt::SolidLine, Qt::RoundCap));
    painter.drawEllipse(QPoint(36, 26), 14, 14);
    painter.drawLine(QPoint(46, 36), QPoint(55, 47));
    return picture;
}

}  // namespace

QIcon ReviewIcon() {
    return platform::LateIcon(Drawn);
}
