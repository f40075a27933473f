#include "platform/system/NativePath.h"

#include <QtGlobal>
#ifdef Q_OS_WIN
#define WIN32_LEAN_AND_MEAN
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <shellapi.h>
#endif

#include <QStringList>
#include <QUtf8StringView>
#include <algorithm>
#include <memory>
#include <string>

namespace platform {

#ifdef Q_OS_UNIX

namespace {

constexpr char16_t kStray = 0xDC00;  // added to the byte
constexpr char16_t kFirstStray = 0xDC80;
constexpr char16_t kLastStray = 0xDCFF;
constexpr qsizetype kLongestCharacter = 4;  // bytes

// How many bytes the first character takes; 0 when they are none.
qsizetype FirstCharacter(QByteArrayView bytes) {
    const qsizetype most = std::min(kLongestCharacter, bytes.size());
    for (qsizetype length = 1; length <= most; ++length) {
        if (QUtf8StringView(bytes.data(), length).isValidUtf8()) {
            return length;
        }
    }
    return 0;
}

// A half of a pair of surrogates belongs to a character.
bool IsStray(const QString& text, qsizetype at) {
    const char16_t unit = text[at].unicode();
    return unit >= kFirstStray && unit <= kLastStray &&
           (at == 0 || !text[at - 1].isHighSurrogate());
}

}  // namespace

QString FromNativePath(const std::filesystem::path& path) {
    QByteArrayView rest(path.native());
    QString text;
    while (!rest.isEmpty()) {
        const qsizetype length = FirstCharacter(rest);
        if (length == 0) {
            text += QChar(char16_t(kStray + static_cast<unsigned char>(rest.front())));
        } else {
            text += QString::fromUtf8(rest.first(length));
        }
        rest = rest.sliced(std::max<qsizetype>(length, 1));
    }
    return text;
}

std::filesystem::path ToNativePath(const QString& path) {
    std::string bytes;
    qsizetype done = 0;
    for (qsizetype at = 0; at < path.size(); ++at) {
        if (IsStray(path, at)) {
            bytes += path.sliced(done, at - done).toStdString();
            bytes += static_cast<char>(path[at].unicode() - kStray);
            done = at + 1;
        }
    }
    return bytes + path.sliced(done).toStdString();
}

QString ShownPath(QString path) {
    for (qsizetype at = 0; at < path.size(); ++at) {
        if (IsStray(path, at)) {
            path[at] = QChar(char16_t(path[at].unicode() - kStray));
        }
    }
    return path;
}

#else

QString FromNativePath(const std::filesystem::path& path) {
    return QString::fromStdWString(path.native());
}

std::filesystem::path ToNativePath(const QString& path) {
    return path.toStdU16String();
}

QString ShownPath(QString path) {
    return path;
}

#endif

#ifdef Q_OS_WIN

// The words that main() is given there have lost what the system's own code page lacks.
QString CommandLine(int /*argc*/, char* /*argv*/[]) {
    int count = 0;
    const std::unique_ptr<LPWSTR, decltype(&::LocalFree)> all(
        ::CommandLineToArgvW(::GetCommandLineW(), &count), ::LocalFree);
    QStringList words;
    for (int i = 1; all != nullptr && i < count; ++i) {
        words += QString::fromWCharArray(all.get()[i]);
    }
    return words.join(QLatin1Char(' '));
}

#else

QString CommandLine(int argc, char* argv[]) {
    QStringList words;
    for (int i = 1; i < argc; ++i) {
        words += FromNativePath(argv[i]);
    }
    return words.join(QLatin1Char(' '));
}

#endif

}  // namespace platform
