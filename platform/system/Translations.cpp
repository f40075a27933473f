#include "platform/system/Translations.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>

#include <memory>

#include "platform/system/Files.h"

namespace platform {

namespace {

// The application owns what it has installed, and lets go of it when it ends.
bool Install(const QString& name, const QString& folder, const QLocale& locale) {
    auto translator = std::make_unique<QTranslator>(QCoreApplication::instance());
    if (!translator->load(locale, name, QStringLiteral("_"), folder)) {
        return false;
    }
    return QCoreApplication::installTranslator(translator.release());
}

}  // namespace

bool LoadTranslations(const QString& folder, const QLocale& locale) {
    // Buttons in a language that the questions above them are not in would help nobody.
    if (!Install(QStringLiteral("tarnprep"), folder, locale)) {
        return false;
    }
    Install(QStringLiteral("qtbase"), QLibraryInfo::path(QLibraryInfo::TranslationsPath), locale);
    return true;
}

bool LoadTranslations() {
    const QLocale locale = QLocale::system();
    // The texts are English as they stand, and looking for files takes time at each start.
    if (locale.language() == QLocale::C || locale.language() == QLocale::English) {
        return false;
    }
    return LoadTranslations(
        JoinPath(QCoreApplication::applicationDirPath(), QStringLiteral("translations")), locale);
}

}  // namespace platform
