#include "platform/system/OwnFonts.h"

#include <QApplication>
#include <QCoreApplication>
#include <QDir>
#include <QFontDatabase>
#include <QFontMetrics>
#ifdef Q_OS_WIN
#include <QFontInfo>
#include <QSettings>
#endif

#include "platform/system/Files.h"

namespace platform {

#ifdef Q_OS_WIN

namespace {

// The system may call its letters by a name that no font has ("MS Shell Dlg") and keep elsewhere
// which one it means; the toolkit takes any font for it, one with serifs as well.
void TakeTheFontThatIsMeant() {
    QFont font = QApplication::font();
    const QString taken = QFontInfo(font).family();
    if (taken == font.family()) {
        return;
    }
    const QSettings meant(QStringLiteral("HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Windows NT\\"
                                         "CurrentVersion\\FontSubstitutes"),
                          QSettings::NativeFormat);
    for (const QString& family : {meant.value(font.family()).toString(), QStringLiteral("Segoe UI"),
                                  QStringLiteral("Tahoma"), QStringLiteral("DejaVu Sans")}) {
        if (QFontDatabase::hasFamily(family)) {
            font.setFamily(family);
            QApplication::setFont(font);
            return;
        }
    }
}

}  // namespace

#endif

void BringFontsWhereThereAreNone() {
#ifdef Q_OS_WIN
    TakeTheFontThatIsMeant();
#endif
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
