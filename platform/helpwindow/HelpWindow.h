// The help window: contents, index and search beside the page.
#pragma once

#include <QHelpLink>
#include <QTemporaryDir>
#include <memory>
#include <utility>

#include "platform/help/HelpLibrary.h"

class HelpBrowser;
class QAction;
class QHelpEngine;
class QTabWidget;
class QToolBar;

class HelpWindow : public HelpFrame {
    Q_OBJECT

public:
    // A window on this file, or nothing when it cannot be read.
    static std::unique_ptr<HelpWindow> Open(const QString& helpFile, HelpLibrary::Trap trap);
    ~HelpWindow() override;

    bool ShowIdentifier(const QString& identifier) override;
    void ShowContents() override;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    HelpWindow(std::unique_ptr<QTemporaryDir> folder, std::unique_ptr<QHelpEngine> engine,
               HelpLibrary::Trap trap);

    // For connect(): runs `body` with the signal's arguments under the program's trap.
    template <typename Body>
    auto Trapped(const char* handler, Body body) {
        return [trap = trap_, handler, body = std::move(body)](auto&&... arguments) mutable {
            trap(handler, [&] { body(std::forward<decltype(arguments)>(arguments)...); });
        };
    }

    void MakeTools();
    QAction* AddTool(QToolBar& bar, const char* name, const QString& text, const QIcon& icon);
    [[nodiscard]] QWidget* MakeIndexPage();
    [[nodiscard]] QWidget* MakeSearchPage();
    // The box to type in, once its page is chosen.
    void FocusBox(const QWidget& page);
    // Marks the topic that is shown in the tree of contents.
    void FitNavigation();
    void MarkTopic(const QUrl& page);
    void Print();
    void ShowFirst(const QList<QHelpLink>& links);

    // The engine keeps its working files here; they go with the window.
    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<QHelpEngine> engine_;
    HelpLibrary::Trap trap_;
    HelpBrowser* browser_ = nullptr;
    QTabWidget* tabs_ = nullptr;
};
