#include "platform/controls/vsIndexTab.h"

#include <QApplication>
#include <QEvent>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QSignalBlocker>
#include <algorithm>

namespace {

constexpr int kStripHeight = 25;  // 375 twips
constexpr int kTextHeight = 19;   // what the style leaves of it for the caption
constexpr double kSmallestSize = 7.5;

}  // namespace

vsIndexTab::vsIndexTab(QWidget* parent) : QTabBar(parent) {
    setShape(QTabBar::RoundedSouth);
    setExpanding(false);
    setDrawBase(false);
    setUsesScrollButtons(true);
    setElideMode(Qt::ElideNone);
    setFocusPolicy(Qt::TabFocus);
    FitFont();
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
            // Assistive technology is told of tabs that are not visible, too.
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
    return {QTabBar::minimumSizeHint().width(), kStripHeight};
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

void vsIndexTab::changeEvent(QEvent* event) {
    QTabBar::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::ApplicationFontChange) {
        FitFont();
    }
}

QSize vsIndexTab::tabSizeHint(int tab) const {
    const QSize hint = QTabBar::tabSizeHint(tab);
    return {hint.width(), std::min(hint.height(), kStripHeight)};
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

void vsIndexTab::resizeEvent(QResizeEvent* event) {
    QTabBar::resizeEvent(event);
    FitFont();
}

// What the tabs that show would take in a font, their margins included.
int vsIndexTab::TabsWidth(const QFont& font) const {
    const QFontMetrics metrics(font);
    int width = 0;
    for (int tab = 0; tab < count(); ++tab) {
        if (isTabVisible(tab)) {
            const QString text = tabText(tab);
            width += QTabBar::tabSizeHint(tab).width() - fontMetrics().horizontalAdvance(text) +
                     metrics.horizontalAdvance(text);
        }
    }
    return width;
}

// A large application font would not fit into the strip, whose height is given, nor all tabs into
// a narrow window.
void vsIndexTab::FitFont() {
    QFont fitting = QApplication::font(this);
    const auto smaller = [&fitting] { fitting.setPointSizeF(fitting.pointSizeF() - 0.5); };
    while (QFontMetrics(fitting).height() > kTextHeight && fitting.pointSizeF() > 6) {
        smaller();
    }
    while (TabsWidth(fitting) > width() && fitting.pointSizeF() > kSmallestSize) {
        smaller();
    }
    if (fitting != font()) {
        setFont(fitting);
    }
}
