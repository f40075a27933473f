#include "support/Screen.h"

#include <stdexcept>

namespace support {

Screen::Screen(int width, int height) {
    const QString screen = QStringLiteral(R"({"synchronousWindowSystemEvents": false,
        "windowFrameMargins": false,
        "screens": [{"name": "test", "x": 0, "y": 0, "width": %1, "height": %2,
                     "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})")
                               .arg(width)
                               .arg(height);
    if (!file_.open() || file_.write(screen.toUtf8()) < 0) {
        throw std::runtime_error("no screen can be described");
    }
    file_.close();
}

QByteArray Screen::Platform() const {
    return "offscreen:configfile=" + file_.fileName().toLocal8Bit();
}

}  // namespace support
