// The help window: contents, index and search beside the page.
#pragma once

#include <QHelpLink>
#include <QMainWindow>
#include <QTemporaryDir>
#include <memory>

class HelpBrowser;
class QAction;
class QHelpEngine;
class QToolBar;

class HelpWindow : public QMainWindow {
    Q_OBJECT

public:
    // A window on this file, or nothing when it cannot be read.
    static std::unique_ptr<HelpWindow> Open(const QString& helpFile);
    ~HelpWindow() override;

    // The page that carries this identifier. False when none does.
    bool ShowIdentifier(const QString& identifier);
    void ShowContents();

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    HelpWindow(std::unique_ptr<QTemporaryDir> folder, std::unique_ptr<QHelpEngine> engine);

    void MakeTools();
    QAction* AddTool(QToolBar& bar, const char* name, const QString& text, const QIcon& icon);
    [[nodiscard]] QWidget* MakeIndexPage();
    [[nodiscard]] QWidget* MakeSearchPage();
    void Print();
    void ShowFirst(const QList<QHelpLink>& links);

    // The engine keeps its working files here; they go with the window.
    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<QHelpEngine> engine_;
    HelpBrowser* browser_ = nullptr;
};
