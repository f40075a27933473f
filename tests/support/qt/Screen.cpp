#include "support/Screen.h"

#include <QFileInfo>

#include <stdexcept>

namespace support {

Screen::Screen(int width, int height) {
    const QString screen = QStringLiteral(R"({"synchronousWindowSystemEvents": false,
        "windowFrameMargins": false,
        "screens": [{"name": "test", "x": 0, "y": 0, "width": %1, "height": %2,
                     "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})")
                               .arg(width)
                               .arg(height);
#ifdef Q_OS_WIN
    // A colon separates the settings of a platform: there is no room for a drive's.
    file_.setFileTemplate(QStringLiteral("tarn screen XXXXXX"));
#endif
    if (!file_.open() || file_.write(screen.toUtf8()) < 0) {
        throw std::runtime_error("no screen can be described");
    }
    file_.close();
}

QByteArray Screen::Platform() const {
#ifdef Q_OS_WIN
    const QString name = QFileInfo(file_.fileName()).fileName();
#else
    const QString name = file_.fileName();
#endif
    return "offscreen:configfile=" + name.toLocal8Bit();
}

}  // namespace support
