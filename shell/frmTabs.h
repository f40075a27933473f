// The strip of six tabs below the worksheet.
//
// A switch first saves and unloads the worksheet that is showing, then loads and fills the new one.
// It is refused for the two worksheets that need a zone while the file has none.
#pragma once

#include <QWidget>

class vsIndexTab;

class frmTabs : public QWidget {
    Q_OBJECT

public:
    static constexpr int kHeightInTwips = 375;
    static constexpr int kHeight = 25;  // the same in pixels

    explicit frmTabs(QWidget* clientArea);

    void Form_Load();
    void Form_Resize();
    void Form_Unload();

    [[nodiscard]] vsIndexTab& Tab() const { return *vsTab1_; }
    [[nodiscard]] bool HasKeyboard() const;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void vsTab1_Switch(int oldTab, int newTab, bool& cancel);
    void vsTab1_Click();

    vsIndexTab* vsTab1_;
};
