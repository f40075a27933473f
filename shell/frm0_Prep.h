// The main frame: the program's one top-level window.
//
// Its client area holds the start screen, and above that, while a file is open, one worksheet and
// the tab strip. Loading the frame is the program's start, unloading it the program's end.
#pragma once

#include <QMainWindow>
#include <QPointer>

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

class frm0Start;
class frmTabs;

class frm0_Prep : public QMainWindow {
    Q_OBJECT

public:
    explicit frm0_Prep(QString commandLine);
    ~frm0_Prep() override;

    // The frame that is loaded; "object variable not set" (91) when there is none.
    static frm0_Prep& Loaded();

    // The start-up sequence. Errors are passed over so that every step runs; the last one's number
    // is logged.
    void MDIForm_Load();
    void MDIForm_Resize();
    [[nodiscard]] bool IsUnloaded() const { return isUnloaded_; }

    // Shows the file name and the unit's name, which is "No Name" when the file has none.
    void SetTitleBar(const QString& fileName);
    void StepMenu_Check(std::int16_t index);
    static QString HelpFilePath();

    // A top menu by its number.
    void EnableMenu(int top, bool enabled);
    // Over the whole screen, without a window manager too.
    void Maximize();

    [[nodiscard]] QWidget& ClientArea() const { return *clientArea_; }
    [[nodiscard]] QSize ClientSize() const { return clientArea_->size(); }
    // The start screen, loaded when it is named first; FillWithStartScreen gives it the whole
    // client area.
    frm0Start& StartScreen();
    void FillWithStartScreen();
    // The tab strip, or null while it is not loaded.
    [[nodiscard]] frmTabs* Tabs() const { return tabs_.get(); }
    frmTabs& ShowTabs();
    void UnloadTabs();

    // The child form that has the keyboard, or the one that the user looks at.
    [[nodiscard]] QWidget* ActiveForm() const;
    // Gives the keyboard to the first control of a form, unless it is in the form already.
    void FocusForm(QWidget& form);
    // Writes what the worksheet holds into the file, when the desktop session ends.
    void SaveForSessionEnd();
    // Saves and ends the program without asking anything.
    void EndAtOnce();
    // Saves, when something ends the process with the frame still there.
    void SaveAtExit();
    // Warns the user once that the logs cannot be written.
    void ShowLogFailure();
    [[nodiscard]] bool HasShownLogFailure() const { return logFailureShown_; }

signals:
    void Unloaded();

protected:
    void resizeEvent(QResizeEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void BuildMenus();
    QMenu* AddTopMenu(int index, const QString& caption);
    template <auto handler>
    QAction* AddItem(QMenu& menu, const QString& name, const QString& caption, std::int16_t index);
    void mnuFile_Click(std::int16_t index);
    void mnuExit_Click(std::int16_t index);
    void mnuStep_Click(std::int16_t index);
    void mnuEdit_Click(std::int16_t index);
    void mnuHelp_Click(std::int16_t index);
    void RememberControl(QWidget* left, QWidget* control);
    [[nodiscard]] QWidget* ActiveControl() const;
    // Saves the worksheet; where that fails, asks whether it may be left unsaved.
    enum class Leaving { kSaved, kUnsaved, kStay };
    Leaving SaveOrAsk(const QString& question);
    // False when the worksheet could not be saved and the user wants to stay.
    bool SaveBeforeLeaving();
    bool MDIForm_Unload();
    void UnloadForms();

    static frm0_Prep* loaded_;
    QString commandLine_;
    QWidget* clientArea_;
    std::map<int, QMenu*> mnuTop_;
    std::vector<QAction*> mnuStep_;
    std::unique_ptr<frm0Start> startScreen_;
    std::unique_ptr<frmTabs> tabs_;
    QPointer<QWidget> lastControl_;  // the control of a form that had the keyboard last
    bool isUnloaded_ = false;
    bool leavesUnsaved_ = false;
    bool logFailureShown_ = false;
};
