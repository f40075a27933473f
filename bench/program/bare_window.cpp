// The floor of every comparison: the least that a program with a window of this toolkit can be.
#include <QApplication>
#include <QWidget>

int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    QWidget window;
    window.setGeometry(0, 0, 808, 608);
    window.show();
    return QApplication::exec();
}
