// Starts the frame on a screen of a given size and writes what it says and how large it is then, so
// that a test can have screens of many sizes. Usage: frame_on_screen PROGRAM-FOLDER WIDTH HEIGHT
#include <QApplication>

#include <cstdio>
#include <cstdlib>

#include "platform/system/ProgramFolder.h"
#include "platform/system/Twips.h"
#include "shell/frm0_Prep.h"
#include "support/Answers.h"
#include "support/Screen.h"

namespace {

void Say(const QString& line) {
    std::puts(line.toUtf8().constData());
}

}  // namespace

int main(int argc, char* argv[]) {
    if (argc != 4) {
        std::fputs("usage: frame_on_screen PROGRAM-FOLDER WIDTH HEIGHT\n", stderr);
        return 2;
    }
    const support::Screen screen(std::atoi(argv[2]), std::atoi(argv[3]));
    qputenv("QT_QPA_PLATFORM", screen.Platform());
    int programNameOnly = 1;
    const QApplication application(programNameOnly, argv);
    platform::SetProgramFolder(QString::fromLocal8Bit(argv[1]));
    frm0_Prep frame{QString()};
    const QSize before = frame.size();
    support::Answers answers;
    frame.MDIForm_Load();
    for (const support::Message& message : answers.Messages()) {
        Say(QStringLiteral("%1: %2").arg(message.title, message.text));
    }
    Say(QStringLiteral("%1 x %2 at %3, %4, %5, %6")
            .arg(platform::ToTwips(frame.width()))
            .arg(platform::ToTwips(frame.height()))
            .arg(frame.x())
            .arg(frame.y())
            .arg(frame.isMaximized() ? QStringLiteral("maximized") : QStringLiteral("normal"),
                 frame.size() == before ? QStringLiteral("as it was") : QStringLiteral("sized")));
    return 0;
}
