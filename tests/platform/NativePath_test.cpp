#include "platform/system/NativePath.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using platform::FromNativePath;
using platform::ShownPath;
using platform::ToNativePath;

#ifdef Q_OS_UNIX

TEST(NativePath, Names_ComeBackByteForByte) {
    for (const std::string name :
         {"", "Costs/A unit.fcd",
          "Monta\xC3\xB1"
          "a.fcd",
          "Monta\xF1"
          "a.fcd",
          "\xF0\x9F\x94\xA5 fire.fcd", "\xFF\xFE", "cut \xE2\x82", "\xED\xB2\x80 half"}) {
        EXPECT_EQ(ToNativePath(FromNativePath(name)).string(), name);
    }
}

TEST(NativePath, BytesThatAreNoCharacters_AreShownAsLatinLetters) {
    const QString name = FromNativePath(
        "Monta\xF1"
        "a.fcd");
    EXPECT_NE(name, QStringLiteral("Montaña.fcd"));
    EXPECT_EQ(ShownPath(name), QStringLiteral("Montaña.fcd"));
    EXPECT_EQ(ShownPath(QStringLiteral("🔥.fcd")), QStringLiteral("🔥.fcd"));
}

// The other system is asked itself; what a test hands over does not count there.
TEST(CommandLine, Words_AreOnePathWithItsBlanks) {
    std::string words[] = {"tarnprep", "-style", "my", "unit.fcd"};
    char* argv[] = {words[0].data(), words[1].data(), words[2].data(), words[3].data()};
    EXPECT_EQ(platform::CommandLine(4, argv), QStringLiteral("-style my unit.fcd"));
    EXPECT_EQ(platform::CommandLine(1, argv), QString());
}

#endif

}  // namespace
