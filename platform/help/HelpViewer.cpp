#include "platform/help/HelpViewer.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QPointer>

#include "platform/dialogs/MsgBox.h"
#include "platform/help/HelpWindow.h"

namespace platform {
namespace {

QString helpFile;
QPointer<HelpWindow> window;

// Tells the user why there is no help; nothing else depends on it.
void TellFailure() {
    const bool exists = QFileInfo::exists(helpFile);
    MsgOptions options;
    options.icon = MsgIcon::kExclamation;
    MsgBox((exists ? QStringLiteral("The help file cannot be read.")
                   : QStringLiteral("The help file cannot be found.")) +
               kNewLine + QDir::toNativeSeparators(helpFile),
           options);
}

// The help window, opened when it is not; a dialog that waits for its answer must not lock it.
HelpWindow* Window() {
    if (window == nullptr) {
        window = HelpWindow::Open(helpFile).release();
        if (window != nullptr) {
            window->setAttribute(Qt::WA_DeleteOnClose);
        }
    }
    QWidget* modal = QApplication::activeModalWidget();
    if (window != nullptr && window->parentWidget() != modal) {
        window->setParent(modal, Qt::Window);
    }
    return window;
}

void Show(const QString& identifier) {
    HelpWindow* shown = Window();
    if (shown == nullptr) {
        TellFailure();
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

QString HelpViewer::HelpFile() {
    return helpFile;
}

void HelpViewer::ShowContext(int contextId, QWidget*) {
    Show(contextId > 0 ? QStringLiteral("context-%1").arg(contextId) : QString());
}

void HelpViewer::ShowContents(QWidget*) {
    Show(QString());
}

void HelpViewer::Close() {
    delete window;
}

}  // namespace platform
