// The door between the program and its help window.
//
// The window needs libraries for the file and for printing that nothing else in the program does.
// It lies in a library of its own beside the program, and that is loaded when help is first asked
// for: a start without it is shorter.
#pragma once

#include <QMainWindow>
#include <QtPlugin>
#include <functional>
#include <memory>

namespace platform {

class HelpFrame : public QMainWindow {
public:
    // The page that carries this identifier. False when none does.
    virtual bool ShowIdentifier(const QString& identifier) = 0;
    virtual void ShowContents() = 0;
};

class HelpLibrary {
public:
    // The program's last trap, under which the window's handlers run.
    using Trap = bool (*)(const char* handler, const std::function<void()>& body);

    HelpLibrary() = default;
    HelpLibrary(const HelpLibrary&) = delete;
    HelpLibrary& operator=(const HelpLibrary&) = delete;
    virtual ~HelpLibrary() = default;

    // A window on this file, or nothing when it cannot be read.
    virtual std::unique_ptr<HelpFrame> Open(const QString& helpFile, Trap trap) = 0;
};

}  // namespace platform

Q_DECLARE_INTERFACE(platform::HelpLibrary, "TARNPrep.HelpLibrary")
