#include "platform/EventTrap.h"

#include <gtest/gtest.h>

#include <QStringList>
#include <new>
#include <stdexcept>
#include <vector>

#include "jet/error.h"
#include "platform/RuntimeError.h"

namespace {

namespace EventTrap = platform::EventTrap;

class EventTrapTest : public testing::Test {
protected:
    void SetUp() override {
        EventTrap::Hooks hooks;
        hooks.report = [this](const EventTrap::Report& report) {
            reports_.push_back(report);
            steps_ += QStringLiteral("report");
        };
        hooks.remember = [this] { return [this] { steps_ += QStringLiteral("put back"); }; };
        hooks.idle = [this] {
            steps_ += QStringLiteral("idle");
            if (idleFails_) {
                throw platform::RuntimeError(platform::kDiskFull, "Disk full");
            }
        };
        EventTrap::Install(hooks);
    }
    void TearDown() override { EventTrap::Install({}); }

    std::vector<EventTrap::Report> reports_;
    QStringList steps_;
    bool idleFails_ = false;
};

TEST_F(EventTrapTest, HandlerThatEndsWell_RunsOnlyTheIdleStep) {
    EXPECT_TRUE(EventTrap::Run("form.cmd_Click", [this] {
        EXPECT_EQ(EventTrap::Depth(), 1);
        steps_ += QStringLiteral("body");
    }));
    EXPECT_EQ(steps_, QStringList({"body", "idle"}));
    EXPECT_EQ(EventTrap::Depth(), 0);
}

TEST_F(EventTrapTest, ReportCaught_ReportsTheErrorThatWasCaughtAndDoesNoMore) {
    platform::RuntimeError error(platform::kNoCurrentRecord, "No row");
    EventTrap::ReportCaught("form.Save", error);
    EXPECT_EQ(steps_, QStringList("report"));
    ASSERT_EQ(reports_.size(), 1U);
    EXPECT_EQ(reports_[0].handler, "form.Save");
    EXPECT_EQ(reports_[0].number, 3021);
    EXPECT_EQ(reports_[0].description, "No row");
}

TEST_F(EventTrapTest, Error_IsPutBackMadeDurableAndReported) {
    EXPECT_FALSE(EventTrap::Run("form.cmd_Click", [] {
        throw platform::RuntimeError(platform::kFileNotFound, "File not found");
    }));
    EXPECT_EQ(steps_, QStringList({"put back", "idle", "report"}));
    ASSERT_EQ(reports_.size(), 1U);
    EXPECT_EQ(reports_[0].handler, "form.cmd_Click");
    EXPECT_EQ(reports_[0].number, 53);
    EXPECT_EQ(reports_[0].description, "File not found");
}

TEST_F(EventTrapTest, Error_SaysWhatItIsAbout_AsWhoStandsNearestSaidIt) {
    EXPECT_FALSE(EventTrap::Run("form.cmd_Click", [] {
        platform::Concerning([] { return QStringLiteral("the worksheet"); },
                             [] {
                                 platform::Concerning(
                                     [] { return QStringLiteral("North, location 2"); },
                                     [] { throw platform::RuntimeError(61, "Disk full"); });
                             });
    }));
    ASSERT_EQ(reports_.size(), 1U);
    EXPECT_EQ(reports_[0].subject, "North, location 2");
    EXPECT_EQ(reports_[0].description, "Disk full");
}

TEST(EventTrapReport, Sentence_NamesItsSubjectOnce) {
    const platform::EventTrap::Report plain{"f", 3026, "Disk full", "North"};
    EXPECT_EQ(plain.Sentence(), "North: Disk full");
    const platform::EventTrap::Report named{"f", 6, "North cannot have 200 locations.", "North"};
    EXPECT_EQ(named.Sentence(), "North cannot have 200 locations.");
}

TEST_F(EventTrapTest, Concerning_WithoutAnError_AsksForNoName) {
    EXPECT_EQ(platform::Concerning([]() -> QString { throw std::logic_error("asked"); },
                                   [] { return 7; }),
              7);
}

TEST_F(EventTrapTest, EveryKindOfError_GetsANumber) {
    EventTrap::Run("a", [] { throw jet::Error(jet::ErrorKind::kDuplicateKey, "Twice"); });
    EventTrap::Run("b", [] { throw std::bad_alloc(); });
    EventTrap::Run("c", [] { throw std::logic_error("odd"); });
    EventTrap::Run("d", [] { throw 7; });
    ASSERT_EQ(reports_.size(), 4U);
    EXPECT_EQ(reports_[0].number, 3022);
    EXPECT_EQ(reports_[0].description, "Twice");
    EXPECT_EQ(reports_[1].number, 7);
    EXPECT_EQ(reports_[2].number, 51);
    EXPECT_TRUE(reports_[2].description.endsWith("odd"));
    EXPECT_EQ(reports_[3].number, 51);
}

TEST_F(EventTrapTest, NestedHandler_KeepsTheOuterOneRunning) {
    EXPECT_TRUE(EventTrap::Run("outer", [this] {
        EventTrap::Run("inner", [] { throw platform::RuntimeError(6, "Overflow"); });
        steps_ += QStringLiteral("outer goes on");
    }));
    EXPECT_EQ(steps_, QStringList({"put back", "report", "outer goes on", "idle"}));
}

TEST_F(EventTrapTest, FailingIdleStep_IsReportedToo) {
    idleFails_ = true;
    EXPECT_FALSE(EventTrap::Run("form.txt_Change", [] {}));
    ASSERT_EQ(reports_.size(), 1U);
    EXPECT_EQ(reports_[0].number, 61);
    EXPECT_EQ(EventTrap::Depth(), 0);
}

TEST_F(EventTrapTest, FailingIdleStep_OfTheSameCause_IsReportedOnce) {
    idleFails_ = true;
    EventTrap::Run("form.cmd_Click",
                   [] { throw platform::RuntimeError(platform::kDiskFull, "Disk full"); });
    EXPECT_EQ(reports_.size(), 1U);
    EventTrap::Run("form.cmd_Click", [] { throw platform::RuntimeError(6, "Overflow"); });
    EXPECT_EQ(reports_.size(), 3U);
}

TEST_F(EventTrapTest, Trapped_HandsArgumentsOn) {
    int sum = 0;
    auto handler = EventTrap::Trapped("h", [&](int a, int b) { sum = a + b; });
    handler(2, 3);
    EXPECT_EQ(sum, 5);
}

TEST_F(EventTrapTest, EveryHookFails_NothingGetsOut) {
    EventTrap::Hooks hooks;
    hooks.remember = []() -> std::function<void()> { throw std::bad_alloc(); };
    hooks.idle = [] { throw std::bad_alloc(); };
    hooks.report = [this](const EventTrap::Report& report) {
        reports_.push_back(report);
        throw std::bad_alloc();
    };
    EventTrap::Install(hooks);
    EXPECT_FALSE(EventTrap::Run("form.cmd_Click", [] { throw platform::RuntimeError(6, "Over"); }));
    ASSERT_EQ(reports_.size(), 2U);
    EXPECT_EQ(reports_[0].number, 6);
    EXPECT_EQ(reports_[1].number, 7);
    hooks.remember = [] { return [] { throw std::bad_alloc(); }; };
    EventTrap::Install(hooks);
    EXPECT_FALSE(EventTrap::Run("form.cmd_Click", [] { throw std::bad_alloc(); }));
    EXPECT_EQ(EventTrap::Depth(), 0);
}

TEST_F(EventTrapTest, Attempt_GivesWhatWasThrownAndReportsNothing) {
    EXPECT_FALSE(EventTrap::Attempt("a", [] {}));
    const auto failure =
        EventTrap::Attempt("a", [] { throw platform::RuntimeError(6, "Overflow"); });
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->handler, "a");
    EXPECT_EQ(failure->number, 6);
    EXPECT_EQ(failure->description, "Overflow");
    EXPECT_TRUE(reports_.empty());
    EXPECT_TRUE(steps_.isEmpty());
}

}  // namespace
