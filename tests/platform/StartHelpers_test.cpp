#include "platform/system/StartHelpers.h"

#include <gtest/gtest.h>

#include "support/command.h"

namespace {

TEST(StartHelpers, ReadFonts_BeforeTheApplicationObject_LeavesItTheMainThread) {
    const auto run =
        tarn_test::RunCommand(tarn_test::Quoted(tarn_test::BuiltProgram("fonts_first")));
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.output.find("main() thread"), std::string::npos) << run.output;
}

}  // namespace
