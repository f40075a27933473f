#include "platform/system/Translations.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QTranslator>

#include <filesystem>

#include "support/paths.h"

namespace {

QString Pseudo() {
    const auto folder = support::BuildFolder() / "translations/pseudo";
    return QString::fromStdU16String(folder.u16string());
}
QString FileMenu() {
    return QCoreApplication::translate("frm0_Prep", "&File");
}

TEST(Translations, LanguageOfTheFolder_IsShownInTheUsersLanguage) {
    ASSERT_TRUE(platform::LoadTranslations(Pseudo(), QLocale(QStringLiteral("eo"))));
    EXPECT_TRUE(FileMenu().startsWith(QStringLiteral("[&F"))) << FileMenu().toStdString();
    for (auto* translator : QCoreApplication::instance()->findChildren<QTranslator*>()) {
        delete translator;
    }
    EXPECT_EQ(FileMenu(), QStringLiteral("&File"));
}

TEST(Translations, LanguageThatTheFolderLacks_LeavesTheTextsAsTheyAre) {
    EXPECT_FALSE(platform::LoadTranslations(Pseudo(), QLocale(QStringLiteral("de"))));
    EXPECT_EQ(FileMenu(), QStringLiteral("&File"));
    EXPECT_EQ(QCoreApplication::instance()->findChildren<QTranslator*>().size(), 0);
}

}  // namespace
