// The help window: contents, index and search beside the page.
#pragma once

#include <memory>
#include <utility>

#include "platform/help/HelpLibrary.h"

class QAction;
class QSplitter;
class QTabWidget;
class QToolBar;

namespace platform {

class HelpBrowser;
class HelpContents;
class HelpFile;

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
    void showEvent(QShowEvent* event) override;

private:
    HelpWindow(std::unique_ptr<HelpFile> file, HelpLibrary::Trap trap);

    // For connect(): runs `body` with the signal's arguments under the program's trap.
    template <typename Body>
    auto Trapped(const char* handler, Body body) {
        return [trap = trap_, handler, body = std::move(body)](auto&&... arguments) mutable {
            trap(handler, [&] { body(std::forward<decltype(arguments)>(arguments)...); });
        };
    }

    void MakeWays();
    void MakeTools();
    QAction* AddTool(QToolBar& bar, const char* name, const QString& text, const QIcon& icon);
    // The box to type in, once its page is chosen.
    void FocusBox(const QWidget& page);
    void FitNavigation();
    void Print();

    std::unique_ptr<HelpFile> file_;
    HelpLibrary::Trap trap_;
    HelpContents* contents_ = nullptr;
    HelpBrowser* browser_ = nullptr;
    QTabWidget* tabs_ = nullptr;
    QSplitter* splitter_ = nullptr;
};

}  // namespace platform
