#include <gtest/gtest.h>

#include <QApplication>

#include "platform/controls/ClipboardShortcuts.h"
#include "shell/LastTrap.h"
#include "support/Screen.h"

int main(int argc, char* argv[]) {
    testing::InitGoogleTest(&argc, argv);
    // A screen that the frame fits on.
    const support::Screen screen(1024, 768);
    qputenv("QT_QPA_PLATFORM", screen.Platform());
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    platform::InstallClipboardShortcutFilter();
    LastTrap::Install();
    return RUN_ALL_TESTS();
}
