// Starts the frame on a screen of a given size and writes what it says and how large it is then, so
// that a test can have screens of many sizes. Usage: frame_on_screen PROGRAM-FOLDER WIDTH HEIGHT
#include <QApplication>
#include <QMessageBox>
#include <QTemporaryFile>
#include <QTimer>

#include <cstdio>

#include "platform/system/Host.h"
#include "shell/frm0_Prep.h"

namespace {

constexpr const char* kScreen = R"({"synchronousWindowSystemEvents": false,
    "windowFrameMargins": false,
    "screens": [{"name": "test", "x": 0, "y": 0, "width": %1, "height": %2,
                 "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})";

void Say(const QString& line) {
    std::puts(line.toUtf8().constData());
}

}  // namespace

int main(int argc, char* argv[]) {
    if (argc != 4) {
        std::fputs("usage: frame_on_screen PROGRAM-FOLDER WIDTH HEIGHT\n", stderr);
        return 2;
    }
    QTemporaryFile screen;
    if (!screen.open()) {
        return 1;
    }
    screen.write(QString::fromLatin1(kScreen)
                     .arg(QString::fromLatin1(argv[2]), QString::fromLatin1(argv[3]))
                     .toUtf8());
    screen.close();
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + screen.fileName().toLocal8Bit());
    int programNameOnly = 1;
    const QApplication application(programNameOnly, argv);
    platform::SetProgramFolder(QString::fromLocal8Bit(argv[1]));
    frm0_Prep frame{QString()};
    const QSize before = frame.size();
    QTimer answers;
    QObject::connect(&answers, &QTimer::timeout, &answers, [] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            Say(QStringLiteral("%1: %2").arg(box->windowTitle(), box->text()));
            box->accept();
        }
    });
    answers.start(1);
    frame.MDIForm_Load();
    Say(QStringLiteral("%1 x %2 at %3, %4, %5, %6")
            .arg(platform::ToTwips(frame.width()))
            .arg(platform::ToTwips(frame.height()))
            .arg(frame.x())
            .arg(frame.y())
            .arg(frame.isMaximized() ? QStringLiteral("maximised") : QStringLiteral("normal"),
                 frame.size() == before ? QStringLiteral("as it was") : QStringLiteral("sized")));
    return 0;
}
