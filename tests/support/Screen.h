// A screen of a test's own, without a desktop: windows have no frames, so that sizes are exact.
#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryFile>

namespace support {

class Screen {
public:
    // Pixels.
    Screen(int width, int height);
    // What QT_QPA_PLATFORM has to be for a program to show on it; while the object lives.
    [[nodiscard]] QByteArray Platform() const;

private:
    QTemporaryFile file_;
};

}  // namespace support
