// A program folder of a test's own, with a blank in its path, for as long as the object lives.
#pragma once

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QStringList>
#include <QTemporaryDir>

#include "platform/system/ProgramFolder.h"

class LogFolder {
public:
    LogFolder() : folder_(QDir::tempPath() + QStringLiteral("/tarn prep XXXXXX")) {
        EXPECT_TRUE(folder_.isValid());
        platform::SetProgramFolder(Path());
    }
    ~LogFolder() { platform::SetProgramFolder(QString()); }
    LogFolder(const LogFolder&) = delete;
    LogFolder& operator=(const LogFolder&) = delete;

    [[nodiscard]] QString Path(const QString& name = QString()) const {
        return QDir::toNativeSeparators(name.isEmpty() ? folder_.path() : folder_.filePath(name));
    }
    [[nodiscard]] QByteArray Bytes(const QString& name) const {
        QFile file(Path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    // The lines of a text file, each ended by carriage return and line feed; times read "hh:mm:ss",
    // dates "mm/dd/yyyy".
    [[nodiscard]] QStringList Lines(const QString& name) const {
        static const QRegularExpression kTime(QStringLiteral("^\\d\\d:\\d\\d:\\d\\d"));
        static const QRegularExpression kDate(QStringLiteral("^\\d\\d/\\d\\d/\\d{4}$"));
        QStringList lines = QString::fromUtf8(Bytes(name)).split(QStringLiteral("\r\n"));
        EXPECT_EQ(lines.takeLast(), QString()) << "the last line is not ended";
        for (QString& line : lines) {
            line.replace(kTime, QStringLiteral("hh:mm:ss"));
            line.replace(kDate, QStringLiteral("mm/dd/yyyy"));
        }
        return lines;
    }
    // The entries of the trace log without times and blank lines.
    [[nodiscard]] QStringList Trace() const {
        QStringList entries;
        for (QString line : Lines(QStringLiteral("TARN.LOG"))) {
            line.remove(QStringLiteral("hh:mm:ss"));
            if (!line.isEmpty()) {
                entries += line;
            }
        }
        return entries;
    }

private:
    QTemporaryDir folder_;
};

inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}
