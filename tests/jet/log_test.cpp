// Logs whose checksums are right and whose contents make no sense: a writer with a mistake, or
// somebody's intent. None of them may touch the data file.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

#include "page/bytes.h"
#include "page/header.h"
#include "page/log_format.h"
#include "page/operation.h"
#include "page/pager.h"
#include "support/fault_file_system.h"

namespace jet {
namespace {

using tarn_test::FaultFileSystem;
using Contents = std::vector<std::byte>;
using Mutation = std::function<void(Contents& record)>;

constexpr char kFile[] = "a file.mdb";
constexpr char kLog[] = "a file.mdb-log";
constexpr std::uint32_t kPages = 6;
constexpr PageNumber kPage{3};

// Where the parts of the one record are, and of its one page entry.
constexpr std::size_t kKindAt = kLogHeaderSize + 4;
constexpr std::size_t kPagesAt = kLogHeaderSize + 16;
constexpr std::size_t kEntryAt = kLogHeaderSize + kLogRecordHead;

class LogContents : public testing::TestWithParam<Version> {
protected:
    LogContents() {
        auto pager = Pager::Create(files_, kFile, GetParam());
        {
            Operation operation(*pager);
            for (int i = 0; i < 4; ++i) operation.Allocate();
            operation.Commit();
        }
        pager->Close();
        file_ = files_.Contents(kFile);
        pageSize_ = FormatOf(GetParam()).pageSize;
    }

    // A log that changes one byte of one page, as `mutate` leaves it before its checksum is made.
    [[nodiscard]] Contents Log(const Mutation& mutate, int entries = 1) const {
        Contents log;
        const Bytes firstPage = Bytes(file_).first(pageSize_);
        const std::uint64_t seed = AppendLogHeader(
            log, {.pageSize = static_cast<std::uint32_t>(pageSize_),
                  .pageCount = kPages,
                  .salt = 7,
                  .commitCounter = ReadCommitCounter(firstPage, FormatOf(GetParam())),
                  .otherCounters = OtherCounters(firstPage, FormatOf(GetParam()))});
        const Bytes before = Bytes(file_).subspan(kPage.value * pageSize_, pageSize_);
        Contents after(before.begin(), before.end());
        after[500] ^= std::byte{1};
        LogRecordWriter record(log, LogRecordKind::kCommit, 1, kPages);
        for (int i = 0; i < entries; ++i) {
            record.AddPage(
                {.page = kPage, .before = before, .after = after, .firstDifference = 500},
                LogBase::kImage);
        }
        mutate(log);
        record.Finish(seed);
        return log;
    }
    // Opens the file beside that log and gives whether the log counted.
    [[nodiscard]] Recovery Open(const Contents& log) const {
        FaultFileSystem files;
        files.SetContents(kFile, file_);
        files.SetContents(kLog, log);
        Recovery recovery;
        Pager::Open(files, kFile, {}, recovery)->Close();
        if (!recovery.applied) {
            EXPECT_EQ(files.Contents(kFile), file_);
        }
        return recovery;
    }
    [[nodiscard]] std::size_t RangeAt() const { return kEntryAt + kLogEntryHead + pageSize_; }

    FaultFileSystem files_;
    Contents file_;
    std::size_t pageSize_ = 0;
};

INSTANTIATE_TEST_SUITE_P(Versions, LogContents, testing::Values(Version::kJet3, Version::kJet4),
                         [](const auto& tested) {
                             return tested.param == Version::kJet3 ? "Jet3" : "Jet4";
                         });

TEST_P(LogContents, WholeRecord_IsBroughtIn) {
    const Recovery recovery = Open(Log([](Contents&) {}));
    EXPECT_TRUE(recovery.applied);
    EXPECT_EQ(recovery.operations, 1U);
}

TEST_P(LogContents, AnyContradiction_PutsTheLogAside) {
    const auto set16 = [](std::size_t at, std::uint16_t value) -> Mutation {
        return [=](Contents& log) { WriteU16(log, at, value); };
    };
    const auto set32 = [](std::size_t at, std::uint32_t value) -> Mutation {
        return [=](Contents& log) { WriteU32(log, at, value); };
    };
    const std::vector<Mutation> contradictions = {
        set32(kKindAt, 9),             // a kind that there is not
        set32(kPagesAt, kPages - 1),   // a file that shrinks
        set32(kPagesAt, 0xFFFFFFFF),   // a file larger than the format allows
        set32(kEntryAt, kPages),       // a page that the file has not
        set16(kEntryAt + 4, 0),        // a page that should be in the log already
        set16(kEntryAt + 4, 2),        // an old page that should be new
        set16(kEntryAt + 4, 9),        // a base that there is not
        set16(kEntryAt + 6, 2),        // more ranges than there are
        set16(RangeAt(), 0xFFFF),      // a range outside the page
        set16(RangeAt() + 2, 0x7FFF),  // a range longer than its bytes
        [](Contents& log) { log.resize(log.size() + 3); },
        // A new page that brings an image along.
        [](Contents& log) {
            WriteU32(log, kPagesAt, kPages + 1);
            WriteU32(log, kEntryAt, kPages);
        }};
    for (std::size_t i = 0; i < contradictions.size(); ++i) {
        const Recovery recovery = Open(Log(contradictions[i]));
        EXPECT_TRUE(recovery.foreignLogIgnored) << i;
        EXPECT_FALSE(recovery.applied) << i;
    }
    // A page that is in the log already and brings its image along again.
    EXPECT_TRUE(Open(Log([](Contents&) {}, 2)).foreignLogIgnored);
    // Two entries are announced, and there is one.
    const auto cutInHalf = [](Contents& log) {
        log.resize(kEntryAt + (log.size() - kEntryAt) / 2);
    };
    EXPECT_TRUE(Open(Log(cutInHalf, 2)).foreignLogIgnored);
}

TEST_P(LogContents, RecordThatClaimsAnImpossibleLength_EndsTheLog) {
    for (const std::uint32_t length : {0U, 8U, 23U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        Contents log = Log([](Contents&) {});
        WriteU32(log, kLogHeaderSize, length);
        const Recovery recovery = Open(log);
        EXPECT_FALSE(recovery.applied) << length;
    }
}

}  // namespace
}  // namespace jet
