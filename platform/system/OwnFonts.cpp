#include "platform/system/OwnFonts.h"

#include <QApplication>
#include <QCoreApplication>
#include <QDir>
#include <QFontDatabase>
#include <QFontMetrics>

#include "platform/system/Files.h"

namespace platform {

void BringFontsWhereThereAreNone() {
    // The families of a bare system are not empty: they hold names that stand for nothing.
    if (QFontMetrics(QApplication::font()).inFont(u'A')) {
        return;
    }
    const QDir folder(JoinPath(QCoreApplication::applicationDirPath(), QStringLiteral("fonts")));
    QStringList families;
    for (const QString& file : folder.entryList({QStringLiteral("*.ttf")}, QDir::Files)) {
        const int id = QFontDatabase::addApplicationFont(folder.filePath(file));
        families += QFontDatabase::applicationFontFamilies(id);
    }
    if (!families.isEmpty()) {
        QFont font = QApplication::font();
        font.setFamily(families.first());
        QApplication::setFont(font);
    }
}

}  // namespace platform
