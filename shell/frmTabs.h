// The strip of six tabs below the worksheet.
//
// A switch first saves and unloads the worksheet that is showing, then loads and fills the new one.
// It is refused for the two worksheets that need a zone while the file has none. Ctrl+PageUp and
// Ctrl+PageDown switch from wherever the keyboard is. In the strip's free part stands where the
// open file lies: the title bar has no room for that.
#pragma once

#include <QWidget>

class QLabel;
class vsIndexTab;

class frmTabs : public QWidget {
    Q_OBJECT

public:
    static constexpr int kHeightInTwips = 375;

    // That height in pixels, which grows with large fonts.
    [[nodiscard]] static int HeightFor(const QFont& font);

    explicit frmTabs(QWidget* clientArea);

    void Form_Load();
    void Form_Resize();
    void Form_Unload();

    [[nodiscard]] vsIndexTab& Tab() const { return *vsTab1_; }
    [[nodiscard]] bool HasKeyboard() const;
    // The path of the open file; an empty text while there is none.
    void ShowFile(const QString& path);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void AddStepKey(const QKeySequence& key, int step);
    void PlaceFile();
    void vsTab1_Switch(int oldTab, int newTab, bool* cancel);
    void vsTab1_CurrentChosen();
    void vsTab1_Click();

    vsIndexTab* vsTab1_;
    QLabel* lblFile_;
    QString path_;
};
