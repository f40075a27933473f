// The tab strip's tabs: a tab bar whose switch can be refused.
//
// Every road to another tab - click, arrow keys, SetCurrTab, assistive technology - first emits
// Switch, while the old tab still is the current one, and then Click. Choosing the current tab once
// more emits CurrentChosen. A tab that is not visible is out of everybody's reach, and the wheel,
// which a hand may turn in passing, changes nothing. Captions keep the application's font; what
// does not fit scrolls.
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

    // The strip's height at a font: 375 twips, and more for larger ones.
    [[nodiscard]] static int StripHeight(const QFont& font);
    // Where the last tab ends.
    [[nodiscard]] int TabsEnd() const;

    [[nodiscard]] QSize minimumSizeHint() const override;

signals:
    void Switch(int oldTab, int newTab, bool* cancel);
    void Click();
    void CurrentChosen();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    [[nodiscard]] QSize tabSizeHint(int tab) const override;

private:
    void OnCurrentChanged(int tab);
    void ShowCurrent(int tab);

    int current_ = -1;
    bool switching_ = false;
};
