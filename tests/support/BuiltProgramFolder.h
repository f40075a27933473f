// A program folder of a test's own: a temporary folder with a blank in its path, holding the
// template, the table of unit names and an empty folder Costs. The program's globals point to it
// while it exists.
#pragma once

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include "platform/system/ProgramFolder.h"
#include "support/paths.h"

namespace support {

// The folder that the build leaves beside the program's executable.
inline QString BuiltFolder() {
    return QString::fromStdU16String((support::BuildFolder() / "TARNPrep").u16string());
}

inline QByteArray Bytes(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

inline void WriteBytes(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    ASSERT_EQ(file.write(bytes), bytes.size());
}

inline void Copy(const QString& from, const QString& to) {
    ASSERT_TRUE(QFile::copy(from, to)) << from.toStdString() << " to " << to.toStdString();
    QFile::setPermissions(to, QFile::ReadOwner | QFile::WriteOwner);
}

class ProgramFolder {
public:
    ProgramFolder() : folder_(QDir::tempPath() + QStringLiteral("/TARN test XXXXXX")) {
        EXPECT_TRUE(folder_.isValid());
        QDir(folder_.path()).mkdir(QStringLiteral("Costs"));
        for (const char* name : {"FCD.new", "fcdname.dat"}) {
            Copy(BuiltFolder() + u'/' + QString::fromLatin1(name), Path(QString::fromLatin1(name)));
        }
        platform::SetProgramFolder(QDir::toNativeSeparators(folder_.path()));
    }
    ~ProgramFolder() { platform::SetProgramFolder(QString()); }
    ProgramFolder(const ProgramFolder&) = delete;
    ProgramFolder& operator=(const ProgramFolder&) = delete;

    [[nodiscard]] QString Path(const QString& name) const {
        return QDir::toNativeSeparators(folder_.filePath(name));
    }
    [[nodiscard]] QString CostsPath(const QString& name) const {
        return Path(QStringLiteral("Costs/") + name);
    }

    // A copy of the template in the costs folder.
    [[nodiscard]] QString NewFile(const QString& name) const {
        Copy(Path(QStringLiteral("FCD.new")), CostsPath(name));
        return CostsPath(name);
    }

    // The lines of the trace log without blank lines and without the time before each.
    [[nodiscard]] QStringList Trace() const {
        static const QRegularExpression time(QStringLiteral("^\\d\\d:\\d\\d:\\d\\d"));
        QFile file(Path(QStringLiteral("TARN.LOG")));
        if (!file.open(QIODevice::ReadOnly)) {
            return {};
        }
        QStringList lines;
        for (const QString& line :
             QString::fromUtf8(file.readAll()).split(QStringLiteral("\r\n"))) {
            if (!line.isEmpty()) {
                lines << QString(line).remove(time);
            }
        }
        return lines;
    }
    void ForgetTrace() const { QFile::remove(Path(QStringLiteral("TARN.LOG"))); }

private:
    QTemporaryDir folder_;
};

}  // namespace support
