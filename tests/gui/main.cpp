#include <gtest/gtest.h>

#include <QApplication>
#include <QTemporaryFile>

#include "platform/controls/ClipboardShortcuts.h"
#include "shell/LastTrap.h"

namespace {

// A screen that the frame fits on, without window decoration, so that sizes are exact.
constexpr const char* kScreen = R"({"synchronousWindowSystemEvents": false,
    "windowFrameMargins": false,
    "screens": [{"name": "test", "x": 0, "y": 0, "width": 1024, "height": 768,
                 "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})";

}  // namespace

int main(int argc, char* argv[]) {
    testing::InitGoogleTest(&argc, argv);
    QTemporaryFile screen;
    if (!screen.open() || screen.write(kScreen) < 0) {
        return 1;
    }
    screen.close();
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + screen.fileName().toLocal8Bit());
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    platform::InstallClipboardShortcutFilter();
    LastTrap::Install();
    return RUN_ALL_TESTS();
}
