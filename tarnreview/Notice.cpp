#include "tarnreview/Notice.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

#include "platform/EventTrap.h"
#include "tarnreview/Parts.h"

namespace tarnreview {

using platform::EventTrap::Trapped;

Notice::Notice(const QString& name, const QString& accept, QWidget* parent) : QFrame(parent) {
    Parts::Name(*this, ("pnl" + name).toLatin1().constData(), tr("Notice"));
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::ToolTipBase);
    label_ = Parts::Words(this, ("lbl" + name).toLatin1().constData(), tr("Notice"));
    label_->setForegroundRole(QPalette::ToolTipText);
    accept_ = Parts::Button(this, ("cmd" + name).toLatin1().constData(), accept, {});
    auto* decline =
        Parts::Button(this, ("cmd" + name + "No").toLatin1().constData(), tr("Not Now"), {});
    auto* across = new QHBoxLayout(this);
    across->addWidget(label_, 1);
    across->addWidget(accept_);
    across->addWidget(decline);
    connect(accept_, &QPushButton::clicked, this, Trapped("Notice.Accept", [this](bool) {
                Withdraw();
                emit Accepted();
            }));
    connect(decline, &QPushButton::clicked, this, Trapped("Notice.Decline", [this](bool) {
                Withdraw();
                emit Declined();
            }));
    hide();
}

void Notice::Offer(const QString& words) {
    label_->setText(words);
    setAccessibleName(words);
    show();
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

}  // namespace tarnreview
