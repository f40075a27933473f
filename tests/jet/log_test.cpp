// Logs whose checksums are right and whose contents make no sense: a writer with a mistake, or
// somebody's intent. None of them may touch the data file.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "page/bytes.h"
#include "page/checksum.h"
#include "page/header.h"
#include "page/log_format.h"
#include "page/log_ranges.h"
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

Contents AllOf(LogBuffer& buffer) {
    Contents all;
    for (const Bytes piece : buffer.Pieces()) all.insert(all.end(), piece.begin(), piece.end());
    return all;
}

// Seals the records anew.
void PutChecksumsRight(Contents& log) {
    std::uint64_t checksum = ReadU64(log, kLogHeaderSize - kLogChecksumSize);
    for (std::size_t at = kLogHeaderSize; at < log.size();) {
        const std::size_t end = at + ReadU32(log, at) - kLogChecksumSize;
        checksum = Checksum(Bytes(log).subspan(at, end - at), checksum);
        WriteU64(log, end, checksum);
        at = end + kLogChecksumSize;
    }
}

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

    [[nodiscard]] LogHeader Header(std::uint16_t version) const {
        const Bytes firstPage = Bytes(file_).first(pageSize_);
        return {.pageSize = static_cast<std::uint32_t>(pageSize_),
                .pageCount = kPages,
                .salt = 7,
                .commitCounter = ReadCommitCounter(firstPage, FormatOf(GetParam())),
                .version = version,
                .otherCounters = OtherCounters(firstPage, FormatOf(GetParam()))};
    }
    // A log that changes one byte of one page, as `mutate` leaves it, with the right checksum.
    [[nodiscard]] Contents Log(const Mutation& mutate, int entries = 1) const {
        LogBuffer built;
        const std::uint64_t seed = AppendLogHeader(built, Header(kLogVersion));
        const Bytes before = Bytes(file_).subspan(kPage.value * pageSize_, pageSize_);
        Contents after(before.begin(), before.end());
        after[500] ^= std::byte{1};
        LogRecordWriter record(built, LogRecordKind::kCommit, 1, kPages);
        for (int i = 0; i < entries; ++i) {
            record.AddPage(
                {.page = kPage, .before = before, .after = after, .from = 500, .end = 501},
                LogBase::kImage, {{.begin = 500, .end = 501}});
        }
        record.Finish(seed);
        Contents log = AllOf(built);
        log.resize(log.size() - kLogChecksumSize);
        mutate(log);
        log.resize(log.size() + kLogChecksumSize);
        WriteU32(log, kLogHeaderSize, static_cast<std::uint32_t>(log.size() - kLogHeaderSize));
        PutChecksumsRight(log);
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

TEST(Checksum, IsTheSameHoweverTheBytesAreCut) {
    Contents bytes(300);
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::byte>(i * 7);
    for (const std::size_t size : {0U, 5U, 31U, 32U, 33U, 300U}) {
        const Bytes all = Bytes(bytes).first(size);
        for (std::size_t cut = 0; cut <= size; ++cut) {
            RunningChecksum checksum(3);
            checksum.Add(all.first(cut / 2));
            checksum.Add(all.subspan(cut / 2, cut - cut / 2));
            checksum.Add(all.subspan(cut));
            ASSERT_EQ(checksum.Result(), Checksum(all, 3)) << size << " bytes cut at " << cut;
        }
    }
}

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

// The page at `kPage` as it was, then after one change after the other, each logged as the journal
// does.
class LogOfChanges : public LogContents {
protected:
    // Changes the bytes from `at` on.
    void Change(std::size_t at, std::size_t size) {
        if (states_.empty()) states_.push_back(PageIn(file_));
        Contents next = states_.back();
        for (std::size_t i = at; i < at + size; ++i) {
            next[i] ^= static_cast<std::byte>((i * 2654435761U >> 13) | 1);
        }
        states_.push_back(next);
    }
    // Moves the bytes from one place to another, as erasing or adding an entry of an index does.
    void Move(std::size_t from, std::size_t to, std::size_t size) {
        Contents next = states_.back();
        std::memmove(next.data() + to, states_.back().data() + from, size);
        states_.push_back(next);
    }
    [[nodiscard]] Contents Log(std::uint16_t version = kLogVersion) const {
        LogBuffer built;
        std::uint64_t seed = AppendLogHeader(built, Header(version));
        Contents log = AllOf(built);
        LoggedAs state = LoggedAs::kNothing;
        for (std::size_t i = 1; i < states_.size(); ++i) {
            PageChange change{.page = kPage,
                              .before = states_[i - 1],
                              .after = states_[i],
                              .end = states_[i].size()};
            change.from = FirstDifference(change.before, change.after, 0);
            std::vector<LogRange> ranges;
            FindRanges(change, ranges);
            LogBase base = BaseFor(change, state, ranges);
            if (version < 3) base = i == 1 ? LogBase::kImage : LogBase::kInLog;
            built.Clear();
            LogRecordWriter record(built, LogRecordKind::kCommit, i, kPages);
            const auto move =
                base == LogBase::kInLog && version > 3 ? TakeMove(change, ranges) : std::nullopt;
            if (move) {
                record.AddMovedPage(change, *move, ranges);
            } else {
                record.AddPage(change, base, ranges);
            }
            seed = record.Finish(seed);
            const Contents bytes = AllOf(built);
            log.insert(log.end(), bytes.begin(), bytes.end());
            state = LoggedAfter(base);
        }
        return log;
    }
    // What becomes of the page when it lies in the file like this; nothing when the log is foreign.
    [[nodiscard]] std::optional<Contents> Recovered(const Contents& page) const {
        Contents file = file_;
        std::copy(page.begin(), page.end(), file.begin() + PlaceInFile());
        FaultFileSystem files;
        files.SetContents(kFile, file);
        files.SetContents(kLog, Log());
        Recovery recovery;
        Pager::Open(files, kFile, {}, recovery)->Close();
        if (!recovery.foreignLogIgnored) return PageIn(files.Contents(kFile));
        EXPECT_EQ(files.Contents(kFile), file);
        return std::nullopt;
    }
    // Every mixture of pieces of the page as it was and as it is after one of the changes.
    void ForEachMixture(const std::function<void(const Contents&)>& visit) const {
        const std::size_t pieces = pageSize_ / kLogPiece;
        for (std::size_t last = 1; last < states_.size(); ++last) {
            for (std::size_t mask = 0; mask < std::size_t{1} << pieces; ++mask) {
                Contents page = states_[0];
                for (std::size_t i = 0; i < page.size(); ++i) {
                    if (mask >> (i / kLogPiece) & 1) page[i] = states_[last][i];
                }
                visit(page);
            }
        }
    }
    void ExpectMendedAndToldFromOthers() const {
        ForEachMixture([&](const Contents& page) { EXPECT_EQ(Recovered(page), states_.back()); });
        for (std::size_t at = 3; at < pageSize_; at += 101) {
            Contents page = states_[0];
            page[at] ^= std::byte{0x80};
            EXPECT_EQ(Recovered(page), std::nullopt) << at;
        }
    }
    [[nodiscard]] Contents PageIn(const Contents& file) const {
        return {file.begin() + PlaceInFile(),
                file.begin() + PlaceInFile() + static_cast<std::ptrdiff_t>(pageSize_)};
    }
    [[nodiscard]] std::ptrdiff_t PlaceInFile() const {
        return static_cast<std::ptrdiff_t>(kPage.value * pageSize_);
    }

    std::vector<Contents> states_;
};

INSTANTIATE_TEST_SUITE_P(Versions, LogOfChanges, testing::Values(Version::kJet3, Version::kJet4),
                         [](const auto& tested) {
                             return tested.param == Version::kJet3 ? "Jet3" : "Jet4";
                         });

TEST_P(LogOfChanges, PageThatChangedALittle_IsMendedFromAnyMixture) {
    Change(500, 20);
    Change(510, 40);
    Change(1200, 8);
    EXPECT_LT(Log().size(), pageSize_ / 4);
    ExpectMendedAndToldFromOthers();
}

TEST_P(LogOfChanges, PageThatChangedByMuch_IsMendedFromAnyMixture) {
    Change(100, pageSize_ - 200);
    Change(700, 5);
    ExpectMendedAndToldFromOthers();
}

TEST_P(LogOfChanges, PageThatChangedALittleAndThenByMuch_IsMendedFromAnyMixture) {
    Change(900, 10);
    Change(100, pageSize_ - 400);
    Change(1000, 10);
    ExpectMendedAndToldFromOthers();
}

TEST_P(LogOfChanges, BytesThatMoved_TakeNoRoomAndAreMendedFromAnyMixture) {
    Change(100, pageSize_ - 200);
    const std::size_t whole = Log().size();
    Move(613, 600, 1000);
    Move(300, 309, 900);
    Change(320, 3);
    Move(400, 464, 1300);
    Move(1300, 1299, 500);
    EXPECT_LT(Log().size(), whole + 900);
    ExpectMendedAndToldFromOthers();
}

TEST_P(LogOfChanges, BytesThatMoveOutOfThePage_PutTheLogAside) {
    Change(100, pageSize_ - 200);
    const std::size_t second = Log().size() + kLogRecordHead;
    Move(613, 600, 1000);
    const auto opened = [&](std::size_t at, std::size_t value) {
        Contents log = Log();
        WriteU16(log, second + at, static_cast<std::uint16_t>(value));
        PutChecksumsRight(log);
        return Open(log);
    };
    EXPECT_TRUE(opened(4, 6).applied);
    EXPECT_TRUE(opened(kLogEntryHead, pageSize_ - 900).foreignLogIgnored);
    EXPECT_TRUE(opened(kLogEntryHead + 2, pageSize_ - 900).foreignLogIgnored);
    EXPECT_TRUE(opened(kLogEntryHead + 4, pageSize_).foreignLogIgnored);
}

TEST_P(LogOfChanges, LogOfAFormerVersion_IsBroughtIn) {
    Change(500, 20);
    Change(600, 20);
    for (const std::uint16_t version : {std::uint16_t{2}, std::uint16_t{3}}) {
        FaultFileSystem files;
        files.SetContents(kFile, file_);
        files.SetContents(kLog, Log(version));
        Recovery recovery;
        Pager::Open(files, kFile, {}, recovery)->Close();
        EXPECT_TRUE(recovery.applied);
        EXPECT_EQ(recovery.operations, 2U);
        EXPECT_EQ(PageIn(files.Contents(kFile)), states_.back());
    }
}

// Whatever is wrong in a page entry with whole checksums.
TEST_P(LogOfChanges, AnyContradiction_PutsTheLogAside) {
    Change(500, 20);
    Change(600, 20);
    const Contents whole = Log();
    constexpr std::size_t kSecondEntryAt =
        kEntryAt + kLogEntryHead + 8 + 4 + 40 + kLogChecksumSize + kLogRecordHead;
    const auto opened = [&](std::size_t at, std::uint16_t value) {
        Contents log = whole;
        WriteU16(log, at, value);
        PutChecksumsRight(log);
        return Open(log);
    };
    EXPECT_TRUE(opened(kEntryAt + 4, 3).applied);
    const std::vector<std::pair<std::size_t, std::uint16_t>> contradictions = {
        {kEntryAt + 4, 4},                   // a page that should be in the log already
        {kEntryAt + 4, 5},                   // pieces without a whole page
        {kEntryAt + 4, 1},                   // an image that is too short
        {kEntryAt + 8, 7},                   // the checksum of another page
        {kEntryAt + kLogEntryHead + 12, 7},  // former bytes that are not those of the page
        {kSecondEntryAt + 4, 0},             // former bytes are missing
        {kSecondEntryAt + 4, 3},             // a page that is in the log already
        {kSecondEntryAt + 4, 5},             // likewise
        {kSecondEntryAt + 8, 500},           // former bytes that are not those of the log
        {kSecondEntryAt + 8, 0xFFF0},        // a range outside the page
    };
    for (const auto& [at, value] : contradictions) {
        EXPECT_TRUE(opened(at, value).foreignLogIgnored) << at << " " << value;
    }
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
