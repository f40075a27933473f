// The question before something is deleted.
#include "base/u92Utilities.h"

#include <gtest/gtest.h>

#include "support/Answers.h"
#include "support/LogFolder.h"

namespace {

TEST(ConfirmDelete, Box_NamesTheItemAndProposesNo) {
    const LogFolder folder;
    const support::Answers answers;
    EXPECT_FALSE(u92Utilities::ConfirmDelete(QStringLiteral("Engine <b> & Co")));
    ASSERT_EQ(answers.Messages().size(), 1U);
    const support::Message& box = answers.Messages().front();
    EXPECT_EQ(box.text, QStringLiteral("Do you really want to delete Engine <b> & Co"));
    EXPECT_EQ(box.title, QStringLiteral("Delete"));
    EXPECT_EQ(box.icon, QMessageBox::Critical);
    EXPECT_EQ(box.buttons, QMessageBox::Yes | QMessageBox::No);
    EXPECT_EQ(box.defaultButton, QMessageBox::No);
    EXPECT_EQ(folder.Trace(), QStringList(QStringLiteral("   u92Utilities.ConfirmDelete")));
}

TEST(ConfirmDelete, Yes_Confirms) {
    const LogFolder folder;
    const support::Answers answers({QMessageBox::Yes});
    EXPECT_TRUE(u92Utilities::ConfirmDelete(QStringLiteral("North")));
}

}  // namespace
