#include "platform/help/HelpViewer.h"

#include <QApplication>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QPointer>
#include <QScreen>
#include <algorithm>

#include "platform/EventTrap.h"
#include "platform/dialogs/MsgBox.h"
#include "platform/help/HelpLibrary.h"
#include "platform/system/LateLibrary.h"

namespace platform {
namespace {

// What a person reads, in the language of the screen.
struct Texts {
    Q_DECLARE_TR_FUNCTIONS(HelpViewer)
};

constexpr int kLeastBeside = 480;  // pixels of width in which a topic can be read
constexpr int kLeastHeight = 400;

QString helpFile;
QPointer<HelpFrame> window;

// The library with the help window, loaded when it is asked for first; null when it is not there.
HelpLibrary* Library() {
    return LateLibrary<HelpLibrary>(QStringLiteral("tarnhelp"));
}

// Shows why there is no help; nothing else depends on it.
void ShowFailure() {
    QString reason = Texts::tr("The help file cannot be read.");
    if (!QFileInfo::exists(helpFile)) {
        reason = Texts::tr("The help file cannot be found.");
    } else if (Library() == nullptr) {
        reason = Texts::tr("The library for the help window cannot be loaded.");
    }
    MsgOptions options;
    options.icon = MsgIcon::kExclamation;
    MsgBox(reason + kNewLine + QDir::toNativeSeparators(helpFile), options);
}

// Beside the window that is being worked in where the screen has room for both, so that a topic can
// be read while its worksheet is filled; else at the screen's edge, over as little as possible.
void PlaceBeside(QWidget& help, const QWidget& work) {
    const QRect screen = work.screen()->availableGeometry();
    const QRect taken = work.frameGeometry();
    const int right = screen.right() - taken.right();
    const int left = taken.left() - screen.left();
    const int room = std::max(right, left);
    const int edges = taken.width() - work.width();
    const int caption = work.geometry().top() - taken.top();
    const int width = room >= kLeastBeside ? std::min(room - edges, help.width()) : help.width();
    const int height = std::min(std::max(work.height(), kLeastHeight),
                                screen.bottom() - taken.top() - caption - edges);
    const int x = room < kLeastBeside ? screen.right() + 1 - width - edges
                  : right >= left     ? taken.right() + 1
                                      : taken.left() - width - edges;
    help.resize(width, height);
    help.move(std::max(x, screen.left()), taken.top());
}

// The help window, opened when it is not; a dialog that waits for its answer must not lock it.
HelpFrame* Window() {
    HelpLibrary* const library = Library();
    if (window == nullptr && library != nullptr) {
        window = library->Open(helpFile, EventTrap::Run).release();
        if (window != nullptr) {
            window->setAttribute(Qt::WA_DeleteOnClose);
            if (const QWidget* work = QApplication::activeWindow()) {
                PlaceBeside(*window, *work);
            }
        }
    }
    QWidget* modal = QApplication::activeModalWidget();
    if (window != nullptr && window->parentWidget() != modal) {
        window->setParent(modal, Qt::Window);
    }
    return window;
}

void Show(const QString& identifier) {
    HelpFrame* shown = Window();
    if (shown == nullptr) {
        ShowFailure();
        return;
    }
    if (identifier.isEmpty() || !shown->ShowIdentifier(identifier)) {
        shown->ShowContents();
    }
    shown->show();
    shown->raise();
    shown->activateWindow();
}

}  // namespace

void HelpViewer::SetHelpFile(const QString& path) {
    helpFile = path;
    Close();
}

void HelpViewer::ShowContext(int contextId) {
    Show(contextId > 0 ? QStringLiteral("context-%1").arg(contextId) : QString());
}

void HelpViewer::ShowContents() {
    Show(QString());
}

void HelpViewer::Close() {
    delete window;
}

}  // namespace platform
