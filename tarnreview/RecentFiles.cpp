#include "tarnreview/RecentFiles.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include "platform/system/Files.h"
#include "platform/system/ProgramFolder.h"

namespace {

constexpr int kMost = 9;

QString ListFile() {
    return platform::JoinPath(platform::ProgramFolder(), QStringLiteral("review.recent"));
}

}  // namespace

namespace RecentFiles {

QStringList List() {
    QFile file(ListFile());
    QStringList paths;
    if (file.open(QIODevice::ReadOnly)) {
        const QStringList lines =
            QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        for (const QString& line : lines) {
            if (paths.size() < kMost && QFileInfo(line).isFile() && !paths.contains(line)) {
                paths += line;
            }
        }
    }
    return paths;
}

void Add(const QString& path) {
    QStringList paths = List();
    const QString whole = QFileInfo(path).absoluteFilePath();
    paths.removeAll(whole);
    paths.prepend(whole);
    QSaveFile file(ListFile());
    if (file.open(QIODevice::WriteOnly)) {
        file.write(paths.mid(0, kMost).join(QLatin1Char('\n')).toUtf8());
        file.commit();
    }
}

}  // namespace RecentFiles
