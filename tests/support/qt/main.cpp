// Starts the tests of every layer that uses Qt.
#include <gtest/gtest.h>

#include <QApplication>

int main(int argc, char* argv[]) {
    testing::InitGoogleTest(&argc, argv);
    // No desktop is needed, and none is disturbed.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
