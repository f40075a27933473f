// Reads the fonts in another thread and makes the application object after that, as a start does
// whose thread is the quicker one. Whatever the toolkit complains about comes out on the streams.

#include <QApplication>

#include "platform/system/StartHelpers.h"

int main(int argc, char* argv[]) {
    platform::Beside(platform::ReadFonts).Wait();
    const QApplication application(argc, argv);
    return 0;
}
