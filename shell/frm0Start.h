// The start screen: what the program is for, and New, Open and Exit.
//
// It always fills the frame's client area. While a file is open its panels are hidden and it is the
// background behind the worksheets.
#pragma once

#include <QWidget>

class FLabel;
class QLabel;
class QPushButton;
class QVBoxLayout;
class SSPanel;

namespace platform {
class ScrolledPage;
}

class frm0Start : public QWidget {
    Q_OBJECT

public:
    explicit frm0Start(QWidget* clientArea);

    void Form_Load();
    void Form_Unload();
    // Hides the panels; the form no longer reacts to the user.
    void SetBackground();
    // Shows them again.
    void SetForeground();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void BuildOverview();
    void BuildButtons();
    QPushButton* AddButton(QVBoxLayout& column, const char* name, const QString& caption,
                           const QString& accessibleName);
    void ArrangeControls();
    void ShowPanels(bool shown);
    void FitToSize();
    void SizeTexts(double points);
    // Gives the title what the column below leaves of its share of the window.
    void FitTitle(int share, int columnHeight);
    [[nodiscard]] int RoomBesideTitle() const;
    [[nodiscard]] int TitleStrip() const;
    void cmdNew_Click();
    void cmdOpen_Click();
    void cmdExit_Click();

    QLabel* lblTitle_;
    SSPanel* pnlOverview_ = nullptr;
    FLabel* flbOverview_ = nullptr;
    SSPanel* pnlButtons_ = nullptr;
    FLabel* flbStart_ = nullptr;
    QPushButton* cmdNew_ = nullptr;
    QLabel* lblCopyright_;
    platform::ScrolledPage* column_;
    QSize fittedSize_;  // what sizes and fonts were last chosen for
    QFont fittedFont_;
};
