#include "platform/controls/vsIndexTab.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QSignalBlocker>
#include <QWheelEvent>
#include <algorithm>

#include "platform/controls/FontScale.h"

namespace {

constexpr int kStripHeight = 25;  // 375 twips

}  // namespace

vsIndexTab::vsIndexTab(QWidget* parent) : QTabBar(parent) {
    setShape(QTabBar::RoundedSouth);
    setExpanding(false);
    setDrawBase(false);
    setUsesScrollButtons(true);
    setElideMode(Qt::ElideNone);
    setFocusPolicy(Qt::TabFocus);
    connect(this, &QTabBar::currentChanged, this, &vsIndexTab::OnCurrentChanged);
}

void vsIndexTab::SetCaption(const QString& captions) {
    const QSignalBlocker quiet(this);
    while (count() > 0) {
        removeTab(count() - 1);
    }
    for (QString caption : captions.split(u'|')) {
        const int tab = addTab(caption.replace(u'&', QStringLiteral("&&")));
        if (caption.isEmpty()) {
            // Assistive technology hears of tabs that are not visible, too.
            setAccessibleTabName(tab, tr("None"));
        }
    }
    current_ = currentIndex();
}

void vsIndexTab::SetTabVisibleByIndex(int tab, bool visible) {
    const QSignalBlocker quiet(this);
    setTabVisible(tab, visible);
    current_ = currentIndex();
}

int vsIndexTab::CurrTab() const {
    return currentIndex();
}

void vsIndexTab::SetCurrTab(int tab, bool evenIfCurrent) {
    if (tab == currentIndex()) {
        if (evenIfCurrent) {
            emit Click();
        }
        return;
    }
    if (tab >= 0 && tab < count()) {
        setCurrentIndex(tab);
    }
}

QSize vsIndexTab::minimumSizeHint() const {
    return {QTabBar::minimumSizeHint().width(), StripHeight(font())};
}

void vsIndexTab::mousePressEvent(QMouseEvent* event) {
    const bool isCurrent =
        event->button() == Qt::LeftButton && tabAt(event->position().toPoint()) == currentIndex();
    QTabBar::mousePressEvent(event);
    if (isCurrent) {
        emit CurrentChosen();
    }
}

void vsIndexTab::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Space || event->key() == Qt::Key_Return ||
        event->key() == Qt::Key_Enter) {
        emit CurrentChosen();
        return;
    }
    const int step = event->key() == Qt::Key_Home ? 1 : event->key() == Qt::Key_End ? -1 : 0;
    if (step == 0) {
        QTabBar::keyPressEvent(event);
        return;
    }
    int tab = step > 0 ? 0 : count() - 1;
    while (tab >= 0 && tab < count() && !(isTabVisible(tab) && isTabEnabled(tab))) {
        tab += step;
    }
    SetCurrTab(tab);
}

void vsIndexTab::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

int vsIndexTab::StripHeight(const QFont& font) {
    return platform::ScaledPixels(kStripHeight, font);
}

int vsIndexTab::TabsEnd() const {
    return count() == 0 ? 0 : tabRect(count() - 1).right() + 1;
}

QSize vsIndexTab::tabSizeHint(int tab) const {
    const QSize hint = QTabBar::tabSizeHint(tab);
    return {hint.width(), std::min(hint.height(), StripHeight(font()))};
}

// The tab bar has gone to its new tab already; the old one is shown again until the switch is
// allowed.
void vsIndexTab::OnCurrentChanged(int tab) {
    const int old = current_;
    ShowCurrent(old);
    if (switching_ || tab < 0 || tab == old || !isTabVisible(tab)) {
        return;
    }
    bool cancel = false;
    switching_ = true;
    emit Switch(old, tab, &cancel);
    switching_ = false;
    if (cancel) {
        return;
    }
    current_ = tab;
    ShowCurrent(tab);
    emit Click();
}

void vsIndexTab::ShowCurrent(int tab) {
    const QSignalBlocker quiet(this);
    setCurrentIndex(tab);
}
