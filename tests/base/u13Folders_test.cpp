#include "base/u13Folders.h"

#include <gtest/gtest.h>

#include "support/LogFolder.h"
#include "support/system.h"

namespace {

TEST(u13Folders, CostsPath_FolderExists_IsBelowTheProgramFolder) {
    const LogFolder folder;
    ASSERT_TRUE(QDir(folder.Path()).mkdir(QStringLiteral("Costs")));
    EXPECT_EQ(u13Folders::CostsPath(), folder.Path(QStringLiteral("Costs")));
    EXPECT_EQ(folder.Trace(), QStringList("   u13Folders.CostsPath"));
}

TEST(u13Folders, CostsPath_FolderInOtherCase_IsThatFolder) {
    const LogFolder folder;
    if (!support::kNamesDifferByCase) {
        GTEST_SKIP() << "the system itself finds folders without regard to case";
    }
    ASSERT_TRUE(QDir(folder.Path()).mkdir(QStringLiteral("costs")));
    EXPECT_EQ(u13Folders::CostsPath(), folder.Path(QStringLiteral("costs")));
}

TEST(u13Folders, CostsPath_FolderMissing_IsStillBelowTheProgramFolder) {
    const LogFolder folder;
    EXPECT_EQ(u13Folders::CostsPath(), folder.Path(QStringLiteral("Costs")));
    EXPECT_FALSE(folder.Trace().join(u'\n').contains(QStringLiteral("Warning!")));
}

TEST(u13Folders, CostsPath_ListingFails_FallsBackWithAWarning) {
    const LogFolder folder;
    QFile inItsPlace(folder.Path(QStringLiteral("Costs")));
    ASSERT_TRUE(inItsPlace.open(QIODevice::WriteOnly));
    EXPECT_EQ(u13Folders::CostsPath(), folder.Path());
    EXPECT_EQ(folder.Trace().last(),
              QStringLiteral("  Warning!   Err = 75, CostsPath = ") + folder.Path());
}

}  // namespace
