#include "worksheets/MomentLabel.h"

#include <QAccessible>
#include <QLineEdit>
#include <QPalette>

#include "platform/EventTrap.h"

namespace worksheets {

namespace {

constexpr int kMoment = 4000;  // milliseconds, enough to look up from the keyboard and read it

}  // namespace

MomentLabel::MomentLabel(const char* name, const QString& remark, QLineEdit& box, QWidget* parent)
    : QLabel(remark, parent), box_(box) {
    setObjectName(QString::fromLatin1(name));
    setAccessibleName(remark);
    setProperty("Caption", remark);
    setTextFormat(Qt::PlainText);
    QFont bold = font();
    bold.setBold(true);
    setFont(bold);
    QSizePolicy kept = sizePolicy();
    kept.setRetainSizeWhenHidden(true);
    setSizePolicy(kept);
    hide();
    box_.setAccessibleDescription(remark);
    timer_.setSingleShot(true);
    connect(&timer_, &QTimer::timeout, this,
            platform::EventTrap::Trapped("MomentLabel.Mark", [this](auto&&...) { Mark(false); }));
}

void MomentLabel::ShowForAMoment() {
    Mark(true);
    timer_.start(kMoment);
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

// Colors of the tool tips: made to be seen at once and legible in every scheme.
void MomentLabel::Mark(bool marked) {
    setVisible(marked);
    QPalette palette;
    if (marked) {
        palette.setColor(QPalette::Base, palette.color(QPalette::ToolTipBase));
        palette.setColor(QPalette::Text, palette.color(QPalette::ToolTipText));
    }
    box_.setPalette(palette);
}

}  // namespace worksheets
