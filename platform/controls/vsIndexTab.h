// The tab strip's tabs: a tab bar whose switch can be refused.
#pragma once

#include <QTabBar>

class vsIndexTab : public QTabBar {
    Q_OBJECT

public:
    explicit vsIndexTab(QWidget* parent = nullptr);

    // "|first|second": one tab for each text between the bars, the first of them with an empty
    // caption.
    void SetCaption(const QString& captions);
    void SetTabVisibleByIndex(int tab, bool visible);
    [[nodiscard]] int CurrTab() const;
    // Fires Switch and, unless that was refused, Click. Setting the tab that is current fires Click
    // only when `evenIfCurrent`.
    void SetCurrTab(int tab, bool evenIfCurrent = false);

signals:
    void Switch(int oldTab, int newTab, bool* cancel);
    void Click();
};
