// Whole operations through every kind of failure: for each step that changes a file, in turn, that
// step fails, is cut short, or is the last thing that the process does; then the machine goes on or
// loses its power. What comes back must be a state that was acknowledged to the caller.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "jet/error.h"
#include "page/bytes.h"
#include "page/checksum.h"
#include "page/log_format.h"
#include "page/operation.h"
#include "page/pager.h"
#include "support/fault_file_system.h"
#include "support/fault_runs.h"

namespace jet {
namespace {

using tarn_test::Fault;
using tarn_test::FaultFileSystem;
using tarn_test::Progress;
using Snapshot = std::vector<std::byte>;

constexpr char kFile[] = "a file.mdb";
constexpr char kLog[] = "a file.mdb-log";

Snapshot Take(Pager& pager) {
    Snapshot all;
    for (std::uint32_t page = 0; page < pager.PageCount(); ++page) {
        const PageRef ref = pager.Page(PageNumber{page});
        all.insert(all.end(), ref.Data().begin(), ref.Data().end());
    }
    // The counter distinguishes states of the file, it is none of their contents.
    WriteCommitCounter(all, pager.FileFormat(), 0);
    return all;
}

std::unique_ptr<Pager> OpenFile(FileSystem& files, Recovery* recovery = nullptr) {
    Recovery ignored;
    return Pager::Open(files, kFile, {}, recovery == nullptr ? ignored : *recovery);
}

// One operation that changes pages here and there, allocates and frees.
void ChangeSomething(Pager& pager, std::mt19937& draw) {
    Operation operation(pager);
    const int changes = 1 + static_cast<int>(draw() % 3);
    for (int i = 0; i < changes; ++i) {
        const PageNumber page{2 + static_cast<std::uint32_t>(draw() % 4)};
        const MutableBytes bytes = operation.Change(page);
        const std::size_t at = draw() % (bytes.size() - 40);
        for (std::size_t k = 0; k < 1 + draw() % 40; ++k) {
            bytes[at + k] = static_cast<std::byte>(draw());
        }
    }
    if (draw() % 2 == 0) {
        const PageNumber page = operation.Allocate();
        operation.Change(page)[draw() % 1000] = std::byte{0x5A};
        if (draw() % 3 == 0) operation.Free(page);
    }
    operation.Commit();
}

class JournalTest : public ::testing::TestWithParam<Version> {
protected:
    JournalTest() {
        auto pager = Pager::Create(files_, kFile, GetParam());
        Operation operation(*pager);
        for (int i = 0; i < 4; ++i) operation.Allocate();
        operation.Commit();
        pager->Close();
    }

    FaultFileSystem files_;
};

INSTANTIATE_TEST_SUITE_P(Versions, JournalTest, ::testing::Values(Version::kJet3, Version::kJet4),
                         [](const auto& instance) {
                             return instance.param == Version::kJet3 ? "Jet3" : "Jet4";
                         });

constexpr int kRounds = 2;
constexpr int kOperations = 3;

// The run that faults are planted into: rounds of operations, each made durable. A step that fails
// is tried again `patience` times. Throws when the process stops or patience is used up.
void PlayRun(FaultFileSystem& files, int patience, Progress& progress,
             const std::vector<Snapshot>* expected, std::vector<Snapshot>* record = nullptr) {
    std::unique_ptr<Pager> pager;
    const auto persist = [&](const std::function<void()>& step) {
        tarn_test::Persist(files, patience, step);
    };
    const auto look = [&] {
        if (record != nullptr) record->push_back(Take(*pager));
        if (expected != nullptr && !files.HasStopped()) {
            ASSERT_EQ(Take(*pager), (*expected)[progress.acknowledged])
                << "after " << progress.acknowledged;
        }
    };
    persist([&] { pager = OpenFile(files); });
    look();
    for (int round = 0; round < kRounds; ++round) {
        for (int i = 0; i < kOperations; ++i) {
            persist([&] {
                progress.underWay = true;
                std::mt19937 draw(static_cast<std::uint32_t>(round * kOperations + i));
                try {
                    ChangeSomething(*pager, draw);
                } catch (const Error&) {
                    look();  // the operation left no trace
                    throw;
                }
                ++progress.acknowledged;
                progress.underWay = false;
            });
            look();
        }
        persist([&] { pager->MakeDurable(); });
        progress.durable = progress.acknowledged;
        look();
    }
    persist([&] { pager->Close(); });
}

// Opens what a run left and compares. The log must be removed or empty once the file is closed.
void ExpectState(FaultFileSystem& files, const std::vector<Snapshot>& states,
                 const Progress& progress, bool powerCut, const std::string& where) {
    const auto pager = OpenFile(files);
    const Snapshot found = Take(*pager);
    EXPECT_TRUE(tarn_test::IsAcknowledgedState(states, found, progress, powerCut))
        << where << ", acknowledged " << progress.acknowledged << ", durable " << progress.durable;
    pager->Close();
    EXPECT_TRUE(files.Contents(kLog).empty()) << where;
    // The emptying of a log can be undone in part; what comes back then is no use and put away.
    const std::size_t most = powerCut ? 2 : 1;
    EXPECT_LE(files.Names().size(), most) << where;
}

class FaultTest : public JournalTest {
protected:
    FaultTest() {
        Progress progress;
        const auto files = files_.Copy();
        PlayRun(*files, 0, progress, nullptr, &states_);
        // The look after making durable repeats the state before it.
        states_.erase(std::unique(states_.begin(), states_.end()), states_.end());
    }

    std::vector<Snapshot> states_;
};

INSTANTIATE_TEST_SUITE_P(Versions, FaultTest, ::testing::Values(Version::kJet3, Version::kJet4),
                         [](const auto& instance) {
                             return instance.param == Version::kJet3 ? "Jet3" : "Jet4";
                         });

TEST_P(FaultTest, AnyStep_IsTheLastOfTheProcess_EverythingToldIsThere) {
    int tried = 0;
    for (const Fault fault : {Fault::kStop, Fault::kStopHalfDone, Fault::kStopDone}) {
        for (int step = 1;; ++step, ++tried) {
            const auto files = files_.Copy();
            files->Arm(fault, step);
            Progress progress;
            try {
                PlayRun(*files, 0, progress, &states_);
                break;
            } catch (const Error&) {
                ASSERT_TRUE(files->HasStopped());
            }
            files->Restart();
            ExpectState(*files, states_, progress, false, "step " + std::to_string(step));
        }
    }
    EXPECT_GT(tried, 50);
}

TEST_P(FaultTest, AnyStep_ThenThePowerFails_EverythingDurableIsThere) {
    for (const Fault fault : {Fault::kStop, Fault::kStopHalfDone, Fault::kStopDone}) {
        for (int step = 1;; ++step) {
            bool passed = false;
            for (std::uint32_t seed = 0; seed < 40 && !passed; ++seed) {
                const auto files = files_.Copy();
                files->Arm(fault, step);
                Progress progress;
                try {
                    PlayRun(*files, 0, progress, &states_);
                    passed = true;
                } catch (const Error&) {
                    files->CutPower(seed);
                    ExpectState(*files, states_, progress, true,
                                "step " + std::to_string(step) + ", seed " + std::to_string(seed));
                }
            }
            if (passed) break;
        }
    }
}

TEST_P(FaultTest, AnyStep_FailsOnce_TheRunGoesOnWithNothingLost) {
    tarn_test::FailAtEveryStep(
        files_, {Fault::kFail, Fault::kFailHalfDone, Fault::kFailDone},
        [this](FaultFileSystem& files, Progress& progress) {
            PlayRun(files, 1, progress, &states_);
        },
        [this](FaultFileSystem& files, const Progress& progress, const std::string& where) {
            ExpectState(files, states_, progress, false, where);
        });
}

TEST_P(FaultTest, AnyStep_FailsOnce_ThenThePowerFailsLater_EverythingDurableIsThere) {
    for (int step = 1;; ++step) {
        bool happened = false;
        for (int later = step + 1;; ++later) {
            bool passed = false;
            for (std::uint32_t seed = 0; seed < 6 && !passed; ++seed) {
                const auto files = files_.Copy();
                files->Arm(Fault::kFail, step);
                files->AlsoArm(seed % 2 == 0 ? Fault::kStop : Fault::kStopHalfDone, later);
                Progress progress;
                try {
                    PlayRun(*files, 1, progress, &states_);
                    passed = true;
                } catch (const Error&) {
                    ASSERT_TRUE(files->HasStopped());
                    files->CutPower(seed);
                    ExpectState(*files, states_, progress, true,
                                "steps " + std::to_string(step) + ", " + std::to_string(later) +
                                    ", seed " + std::to_string(seed));
                }
                happened = happened || files->HasHappened();
            }
            if (passed) break;
        }
        if (!happened) break;
    }
}

TEST_P(FaultTest, RecoveryStops_AtAnyStep_TheNextOneCompletesIt) {
    for (int step = 2;; ++step) {
        bool passed = false;
        for (int second = 1; !passed; ++second) {
            for (std::uint32_t seed = 0; seed < 12; ++seed) {
                const auto files = files_.Copy();
                files->Arm(Fault::kStopDone, step);
                Progress progress;
                try {
                    PlayRun(*files, 0, progress, &states_);
                    passed = true;
                    break;
                } catch (const Error&) {
                }
                files->Restart();
                files->Arm(seed % 2 == 0 ? Fault::kStopHalfDone : Fault::kStopDone, second);
                try {
                    OpenFile(*files)->Close();
                    passed = true;
                } catch (const Error&) {
                    ASSERT_TRUE(files->HasStopped());
                }
                files->CutPower(seed);
                ExpectState(*files, states_, progress, true,
                            "steps " + std::to_string(step) + ", " + std::to_string(second));
            }
        }
        const auto files = files_.Copy();
        files->Arm(Fault::kStopDone, step);
        Progress progress;
        try {
            PlayRun(*files, 0, progress, &states_);
            break;
        } catch (const Error&) {
        }
    }
}

// Writes all of four pages anew.
void ChangeMuch(Pager& pager, std::mt19937& draw) {
    Operation operation(pager);
    for (std::uint32_t page = 2; page < 6; ++page) {
        for (std::byte& byte : operation.Change(PageNumber{page})) {
            byte = static_cast<std::byte>(draw());
        }
    }
    operation.Commit();
}

// Gives false when the run has no such step.
bool StopAtCutWrite(FaultFileSystem& files, int step, int thousandths, Snapshot& expected) {
    const auto pager = OpenFile(files);
    std::mt19937 draw(3);
    ChangeMuch(*pager, draw);
    expected = Take(*pager);
    files.CutAt(thousandths);
    files.Arm(Fault::kStopHalfDone, step);
    try {
        pager->MakeDurable();
    } catch (const Error&) {
        EXPECT_TRUE(files.HasStopped());
    }
    return files.HasStopped();
}

TEST_P(JournalTest, Write_CutAtAnyByteByTheEndOfTheProcess_IsRecovered) {
    int cuts = 0;
    for (int step = 1;; ++step) {
        bool stopped = false;
        for (int thousandths = 1; thousandths < 1000; thousandths += 37) {
            const auto files = files_.Copy();
            Snapshot expected;
            stopped = StopAtCutWrite(*files, step, thousandths, expected);
            if (!stopped) break;
            ++cuts;
            files->Restart();
            Recovery recovery;
            const auto pager = OpenFile(*files, &recovery);
            ASSERT_EQ(Take(*pager), expected) << "step " << step << ", " << thousandths;
            EXPECT_FALSE(recovery.foreignLogIgnored);
        }
        if (!stopped) break;
    }
    EXPECT_GT(cuts, 100);
}

// The counter that the file has, were its bytes written one by one.
TEST_P(JournalTest, Write_CutWithinTheCommitCounter_IsRecovered) {
    const std::size_t counterAt = CommitCounterOffset(FormatOf(GetParam()));
    std::vector<std::byte> file = files_.Contents(kFile);
    WriteU16(file, counterAt, 0x01FF);
    files_.SetContents(kFile, file);
    Snapshot expected;
    ASSERT_TRUE(StopAtCutWrite(files_, 3, 0, expected));
    files_.Restart();
    file = files_.Contents(kFile);
    ASSERT_EQ(ReadU16(file, counterAt), 0x01FF);
    WriteU16(file, counterAt, 0x0100);
    files_.SetContents(kFile, file);
    Recovery recovery;
    const auto pager = OpenFile(files_, &recovery);
    EXPECT_TRUE(recovery.applied);
    EXPECT_EQ(Take(*pager), expected);
}

TEST_P(JournalTest, Log_BesideAFileOfWhichOnePieceIsAnothers_IsSetAside) {
    Snapshot expected;
    ASSERT_TRUE(StopAtCutWrite(files_, 3, 900, expected));
    files_.Restart();
    const auto file = files_.Contents(kFile);
    const auto log = files_.Contents(kLog);
    const std::size_t page = FormatOf(GetParam()).pageSize;
    for (const std::size_t at : {3 * page + 5, 3 * page + 600, 5 * page - 1}) {
        FaultFileSystem files;
        auto other = file;
        other[at] ^= std::byte{0x55};
        files.SetContents(kFile, other);
        files.SetContents(kLog, log);
        Recovery recovery;
        OpenFile(files, &recovery)->Close();
        EXPECT_TRUE(recovery.foreignLogIgnored) << "at " << at;
    }
}

TEST_P(FaultTest, FullDisk_FromAnyStepOn_LosesNothingToldAndGoesOnWhenThereIsRoom) {
    tarn_test::FailAtEveryStep(
        files_, {Fault::kFullDisk},
        [this](FaultFileSystem& files, Progress& progress) {
            try {
                PlayRun(files, 0, progress, &states_);
            } catch (const Error& error) {
                EXPECT_EQ(error.Kind(), ErrorKind::kDiskFull);
            }
        },
        [this](FaultFileSystem& files, const Progress& progress, const std::string& where) {
            ExpectState(files, states_, progress, false, where);
        });
}

TEST_P(FaultTest, AnyRead_Fails_NothingIsLostOrChanged) {
    for (int read = 1;; ++read) {
        const auto files = files_.Copy();
        {
            // Something to recover, so that those reads are among them.
            const auto pager = OpenFile(*files);
            std::mt19937 draw(0);
            ChangeSomething(*pager, draw);
            files->Arm(Fault::kStop, 1);
        }
        files->Restart();
        files->ArmReading(read);
        Progress progress{.acknowledged = 1, .durable = 1};
        bool failed = false;
        try {
            OpenFile(*files)->Close();
        } catch (const Error&) {
            failed = true;
        }
        files->Heal();
        ExpectState(*files, states_, progress, false, "read " + std::to_string(read));
        if (!failed) break;
    }
}

TEST_P(JournalTest, MakeDurable_TakesTwoFlushesAndNoneWithoutChange) {
    const auto pager = OpenFile(files_);
    files_.Arm(Fault::kNone, 0);
    std::mt19937 draw(1);
    for (int i = 0; i < 50; ++i) ChangeSomething(*pager, draw);
    EXPECT_EQ(files_.Flushes(), 0);
    EXPECT_EQ(files_.Steps(), 50);  // one write for each operation
    pager->MakeDurable();
    EXPECT_EQ(files_.Flushes(), 2);
    pager->MakeDurable();
    {
        Operation operation(*pager);
        operation.Change(PageNumber{3});
        operation.Commit();
    }
    pager->MakeDurable();
    EXPECT_EQ(files_.Flushes(), 2);
    EXPECT_TRUE(files_.Contents(kLog).empty());
}

TEST_P(JournalTest, FullDisk_WhileMadeDurable_LeavesTheFileAloneAsItWas) {
    bool happened = true;
    int refused = 0;
    for (int at = 1; happened; ++at) {
        ASSERT_LT(at, 1000);
        const auto files = files_.Copy();
        const auto before = files->Contents(kFile);
        const auto pager = OpenFile(*files);
        std::mt19937 draw(21);
        for (int i = 0; i < 6; ++i) ChangeSomething(*pager, draw);
        const Snapshot state = Take(*pager);
        files->Arm(Fault::kFullDisk, at);
        try {
            pager->MakeDurable();
        } catch (const Error& error) {
            EXPECT_EQ(error.Kind(), ErrorKind::kDiskFull);
            EXPECT_EQ(files->Contents(kFile), before) << "step " << at;
            ++refused;
        }
        happened = files->HasHappened();
        files->Heal();
        pager->MakeDurable();
        EXPECT_EQ(Take(*pager), state);
        pager->Close();
        EXPECT_EQ(Take(*OpenFile(*files)), state);
    }
    EXPECT_GT(refused, 1);
}

TEST_P(JournalTest, FileAlone_AfterMakeDurable_IsComplete) {
    const auto pager = OpenFile(files_);
    std::mt19937 draw(2);
    ChangeSomething(*pager, draw);
    pager->MakeDurable();
    FaultFileSystem copy;
    copy.SetContents(kFile, files_.Contents(kFile));
    EXPECT_EQ(Take(*OpenFile(copy)), Take(*pager));
}

// A file and a log that was left beside it by a process that ended.
struct Pair {
    std::vector<std::byte> file;
    std::vector<std::byte> log;
    Snapshot state;
};

Pair LeaveLog(FaultFileSystem& files, std::uint32_t seed) {
    Pair pair;
    {
        const auto pager = OpenFile(files);
        std::mt19937 draw(seed);
        ChangeSomething(*pager, draw);
        ChangeSomething(*pager, draw);
        pair.state = Take(*pager);
        files.Arm(Fault::kStop, 1);
    }
    files.Restart();
    pair.file = files.Contents(kFile);
    pair.log = files.Contents(kLog);
    return pair;
}

// Opening must leave the file as it is, say so, and keep the log under another name.
void ExpectForeign(const std::vector<std::byte>& file, const std::vector<std::byte>& log) {
    FaultFileSystem files;
    files.SetContents(kFile, file);
    files.SetContents(kLog, log);
    Recovery recovery;
    OpenFile(files, &recovery)->Close();
    EXPECT_FALSE(recovery.applied);
    EXPECT_TRUE(recovery.foreignLogIgnored);
    EXPECT_EQ(files.Contents(kFile), file);
    EXPECT_EQ(files.Contents(std::string(kLog) + "-old"), log);
}

// The same with a log that nobody can know about.
void ExpectRefused(const std::vector<std::byte>& file, const std::vector<std::byte>& log) {
    FaultFileSystem files;
    files.SetContents(kFile, file);
    files.SetContents(kLog, log);
    for (const bool readOnly : {false, true}) {
        Recovery recovery;
        try {
            OpenOptions options;
            options.readOnly = readOnly;
            Pager::Open(files, kFile, options, recovery);
            FAIL() << "nobody knows what that log says";
        } catch (const Error& error) {
            EXPECT_EQ(error.Kind(), ErrorKind::kUnsupportedVersion);
        }
        EXPECT_EQ(files.Contents(kFile), file);
        EXPECT_EQ(files.Contents(kLog), log);
    }
}

TEST_P(JournalTest, Open_WithoutALog_MakesOneAndFlushesNothing) {
    files_.Arm(Fault::kNone, 0);
    const auto pager = OpenFile(files_);
    EXPECT_EQ(files_.Steps(), 1);
    EXPECT_TRUE(files_.Exists(kLog));
}

TEST_P(JournalTest, SecurePlace_FlushesTheFolderOnce_InsteadOfTheFirstMakeDurable) {
    const auto stepsOf = [this](bool secured) {
        const auto files = files_.Copy();
        const auto pager = OpenFile(*files);
        if (secured) {
            files->Arm(Fault::kNone, 0);
            pager->SecureLog();
            pager->SecureLog();
            EXPECT_EQ(files->Steps(), 1);
        }
        std::mt19937 draw(1);
        ChangeSomething(*pager, draw);
        files->Arm(Fault::kNone, 0);
        pager->MakeDurable();
        return files->Steps();
    };
    EXPECT_EQ(stepsOf(false), stepsOf(true) + 1);
}

TEST_P(JournalTest, SecurePlace_ThatFails_IsTriedAgain) {
    const auto pager = OpenFile(files_);
    files_.Arm(Fault::kFail, 1);
    pager->SecureLog();
    files_.Arm(Fault::kNone, 0);
    pager->SecureLog();
    EXPECT_EQ(files_.Steps(), 1);
}

TEST_P(JournalTest, Open_WithPendingLog_BringsItInAndSaysSo) {
    const Pair pair = LeaveLog(files_, 5);
    EXPECT_NE(pair.file.size(), 0U);
    Recovery recovery;
    const auto pager = OpenFile(files_, &recovery);
    EXPECT_TRUE(recovery.applied);
    EXPECT_FALSE(recovery.foreignLogIgnored);
    EXPECT_EQ(recovery.operations, 2U);
    EXPECT_EQ(Take(*pager), pair.state);
    EXPECT_TRUE(files_.Contents(kLog).empty());
}

TEST_P(JournalTest, Open_ReadOnlyWithPendingLog_ShowsItAndTouchesNothing) {
    const Pair pair = LeaveLog(files_, 5);
    Recovery recovery;
    {
        const auto reader =
            Pager::Open(files_, kFile, {.exclusive = false, .readOnly = true}, recovery);
        const auto beside =
            Pager::Open(files_, kFile, {.exclusive = false, .readOnly = true}, recovery);
        EXPECT_TRUE(recovery.applied);
        EXPECT_EQ(recovery.operations, 2U);
        EXPECT_EQ(Take(*reader), pair.state);
        EXPECT_EQ(Take(*beside), pair.state);
    }
    EXPECT_EQ(files_.Contents(kFile), pair.file);
    EXPECT_EQ(files_.Contents(kLog), pair.log);
}

TEST_P(JournalTest, Open_ReadOnly_MakesNoLogAndAllowsNoChange) {
    const auto before = files_.Contents(kFile);
    Recovery recovery;
    const auto pager = Pager::Open(files_, kFile, {.exclusive = false, .readOnly = true}, recovery);
    const auto beside =
        Pager::Open(files_, kFile, {.exclusive = false, .readOnly = true}, recovery);
    try {
        const Operation operation(*pager);
        FAIL() << "an operation began";
    } catch (const Error& error) {
        EXPECT_EQ(error.Kind(), ErrorKind::kReadOnly);
    }
    EXPECT_EQ(files_.Names(), std::vector<std::string>{kFile});
    EXPECT_EQ(files_.Contents(kFile), before);
}

TEST_P(JournalTest, Log_OfAnotherFile_IsSetAside) {
    FaultFileSystem other;
    {
        auto pager = Pager::Create(other, kFile, GetParam());
        Operation operation(*pager);
        for (int i = 0; i < 4; ++i) operation.Change(operation.Allocate())[50] = std::byte{9};
        operation.Commit();
        pager->Close();
    }
    const Pair pair = LeaveLog(other, 6);
    ExpectForeign(files_.Contents(kFile), pair.log);
}

TEST_P(JournalTest, Log_OfAnEarlierStateOfTheFile_IsSetAside) {
    const Pair pair = LeaveLog(files_, 7);
    OpenFile(files_)->Close();
    {
        const auto pager = OpenFile(files_);
        std::mt19937 draw(8);
        ChangeSomething(*pager, draw);
        pager->Close();
    }
    ExpectForeign(files_.Contents(kFile), pair.log);
}

TEST_P(JournalTest, Log_OfALaterStateOfTheFile_IsSetAside) {
    const auto early = files_.Contents(kFile);
    {
        const auto pager = OpenFile(files_);
        std::mt19937 draw(8);
        ChangeSomething(*pager, draw);
        pager->Close();
    }
    ExpectForeign(early, LeaveLog(files_, 7).log);
}

TEST_P(JournalTest, Log_OfAFileWithOneOtherByte_IsSetAside) {
    Pair pair = LeaveLog(files_, 9);
    // The map of free pages is touched by every allocation.
    const std::size_t at = FormatOf(GetParam()).pageSize + 600;
    pair.file[at] ^= std::byte{1};
    bool touched = false;
    {
        FaultFileSystem files;
        files.SetContents(kFile, pair.file);
        files.SetContents(kLog, pair.log);
        Recovery recovery;
        OpenFile(files, &recovery)->Close();
        touched = recovery.foreignLogIgnored;
    }
    if (touched) ExpectForeign(pair.file, pair.log);
    EXPECT_TRUE(touched);
}

// Changes the file, and gives the beginning of the log that was emptied after it: what a power cut
// can bring back.
std::vector<std::byte> BeginningOfAnEmptiedLog(FaultFileSystem& files) {
    std::size_t firstEnd = 0;
    std::vector<std::byte> log;
    {
        const auto pager = OpenFile(files);
        for (const std::byte value : {std::byte{1}, std::byte{2}, std::byte{1}}) {
            Operation operation(*pager);
            operation.Change(PageNumber{3})[700] = value;
            operation.Commit();
            if (value == std::byte{2}) firstEnd = files.Contents(kLog).size();
        }
        log = files.Contents(kLog);
        pager->Close();
    }
    log.resize(firstEnd);
    return log;
}

TEST_P(JournalTest, BeginningOfALog_ThatIsInTheFileAsAWhole_IsNotReplayed) {
    // It alone would put the byte back to a value that it had on the way.
    const auto log = BeginningOfAnEmptiedLog(files_);
    ExpectForeign(files_.Contents(kFile), log);
}

TEST_P(JournalTest, LogSetAside_IsReportedUntilItIsRemoved) {
    const std::vector<std::byte> beginning = BeginningOfAnEmptiedLog(files_);
    files_.SetContents(kLog, beginning);
    const std::filesystem::path kept = std::string(kLog) + "-old";
    for (int opening = 0; opening < 3; ++opening) {
        Recovery recovery;
        OpenFile(files_, &recovery)->Close();
        EXPECT_EQ(recovery.keptLogs, std::vector{kept}) << opening;
        EXPECT_EQ(files_.Contents(kept.string()), beginning) << opening;
    }
    files_.Remove(kept);
    Recovery recovery;
    OpenFile(files_, &recovery)->Close();
    EXPECT_TRUE(recovery.keptLogs.empty());
}

TEST_P(JournalTest, Log_WithADamagedHeader_IsKeptAndReported) {
    Pair pair = LeaveLog(files_, 5);
    for (const std::size_t at : {0U, 6U, 24U, 60U}) {
        const auto files = files_.Copy();
        std::vector<std::byte> log = pair.log;
        log[at] ^= std::byte{0x10};
        files->SetContents(kLog, log);
        for (int opening = 0; opening < 2; ++opening) {
            Recovery recovery;
            OpenFile(*files, &recovery)->Close();
            EXPECT_EQ(recovery.keptLogs.size(), 1U) << at;
            EXPECT_EQ(files->Contents(std::string(kLog) + "-old"), log);
        }
    }
}

// Another program counts up its own counter, whichever of them that is.
TEST_P(JournalTest, Log_BesideAFileThatAnotherProgramCommittedTo_IsKeptAndReported) {
    const Pair pair = LeaveLog(files_, 5);
    const std::size_t counters = CommitCounterOffset(FormatOf(GetParam()));
    for (const std::size_t slot : {std::size_t{0}, std::size_t{1}, std::size_t{255}}) {
        for (const int commits : {1, 5, 1000}) {
            auto file = pair.file;
            const std::size_t at = counters + 2 * slot;
            WriteU16(file, at, static_cast<std::uint16_t>(ReadU16(file, at) + commits));
            ExpectForeign(file, pair.log);
        }
    }
}

TEST_P(JournalTest, MakeDurable_AfterAnotherProgramCommitted_IsRefusedAndLosesNothing) {
    const std::size_t counters = CommitCounterOffset(FormatOf(GetParam()));
    for (const std::size_t slot : {std::size_t{0}, std::size_t{1}, std::size_t{255}}) {
        const auto files = files_.Copy();
        std::vector<std::byte> foreign;
        {
            const auto pager = OpenFile(*files);
            std::mt19937 draw(5);
            ChangeSomething(*pager, draw);
            foreign = files->Contents(kFile);
            const std::size_t at = counters + 2 * slot;
            WriteU16(foreign, at, static_cast<std::uint16_t>(ReadU16(foreign, at) + 1));
            const auto file = files->Open(kFile, OpenMode::kReadWrite);
            file->Write(0, foreign);
            EXPECT_THROW(pager->MakeDurable(), Error) << slot;
            EXPECT_THROW(pager->Close(), Error) << slot;
        }
        EXPECT_EQ(files->Contents(kFile), foreign) << slot;
        Recovery recovery;
        OpenFile(*files, &recovery)->Close();
        EXPECT_EQ(recovery.keptLogs.size(), 1U) << slot;
        EXPECT_EQ(files->Contents(kFile), foreign) << slot;
    }
}

TEST_P(JournalTest, Log_OfALaterVersion_IsRefusedAndStays) {
    Pair pair = LeaveLog(files_, 5);
    WriteU16(pair.log, 26, kLogVersion + 1);
    // Where that version has its checksum is not known.
    for (const bool checked : {false, true}) {
        if (checked) {
            WriteU64(pair.log, kLogHeaderSize - kLogChecksumSize,
                     Checksum(Bytes(pair.log).first(kLogHeaderSize - kLogChecksumSize), 0));
        }
        ExpectRefused(pair.file, pair.log);
    }
}

TEST_P(JournalTest, CutTail_IsReported) {
    Pair pair = LeaveLog(files_, 5);
    pair.log.insert(pair.log.end(), 100, std::byte{0x55});
    files_.SetContents(kLog, pair.log);
    Recovery recovery;
    const auto pager = OpenFile(files_, &recovery);
    EXPECT_EQ(recovery.operations, 2U);
    EXPECT_EQ(recovery.discardedBytes, 100U);
    EXPECT_EQ(Take(*pager), pair.state);
}

TEST_P(JournalTest, LogSetAside_OfALaterStateOfTheFile_Stays) {
    const auto early = files_.Contents(kFile);
    static_cast<void>(BeginningOfAnEmptiedLog(files_));
    const Pair later = LeaveLog(files_, 7);
    files_.SetContents(kFile, early);
    OpenFile(files_)->Close();
    OpenFile(files_)->Close();
    EXPECT_EQ(files_.Contents(std::string(kLog) + "-old"), later.log);
}

TEST_P(JournalTest, Log_ThatIsNone_IsSetAside) {
    std::vector<std::byte> text(300, std::byte{'x'});
    ExpectForeign(files_.Contents(kFile), text);
}

TEST_P(JournalTest, Log_CutOffAnywhere_GivesTheOperationsThatAreWhole) {
    const auto before = files_.Contents(kFile);
    Snapshot first;
    Snapshot second;
    {
        const auto pager = OpenFile(files_);
        std::mt19937 draw(10);
        ChangeSomething(*pager, draw);
        first = Take(*pager);
        ChangeSomething(*pager, draw);
        second = Take(*pager);
        files_.Arm(Fault::kStop, 1);
    }
    files_.Restart();
    const auto log = files_.Contents(kLog);
    std::size_t ones = 0;
    for (std::size_t size = 0; size <= log.size(); size += 7) {
        FaultFileSystem files;
        files.SetContents(kFile, before);
        files.SetContents(kLog, {log.begin(), log.begin() + static_cast<std::ptrdiff_t>(size)});
        Recovery recovery;
        const auto pager = OpenFile(files, &recovery);
        EXPECT_FALSE(recovery.foreignLogIgnored) << size;
        ASSERT_LT(recovery.operations, 2U) << size;
        if (recovery.operations == 1) {
            ++ones;
            EXPECT_EQ(Take(*pager), first) << size;
        } else {
            pager->Close();
            EXPECT_EQ(files.Contents(kFile), before) << size;
        }
    }
    EXPECT_GT(ones, 5U);
}

TEST_P(JournalTest, Log_WithOneBitFlippedAnywhere_NeverGivesHalfAnOperation) {
    const auto before = files_.Contents(kFile);
    const Pair pair = LeaveLog(files_, 11);
    std::vector<Snapshot> states;
    {
        FaultFileSystem files;
        files.SetContents(kFile, before);
        const auto pager = OpenFile(files);
        states.push_back(Take(*pager));
        std::mt19937 draw(11);
        ChangeSomething(*pager, draw);
        states.push_back(Take(*pager));
    }
    for (std::size_t at = 0; at < pair.log.size(); at += 3) {
        FaultFileSystem files;
        auto log = pair.log;
        log[at] ^= std::byte{1} << (at % 8);
        files.SetContents(kFile, before);
        files.SetContents(kLog, log);
        try {
            const Snapshot found = Take(*OpenFile(files));
            EXPECT_TRUE(found == states[0] || found == states[1]) << at;
        } catch (const Error& error) {
            // What is taken for a later version of the log.
            EXPECT_EQ(error.Kind(), ErrorKind::kUnsupportedVersion);
            EXPECT_EQ(at, 27U);
        }
    }
}

TEST_P(JournalTest, RefusedFile_WithALogBesideIt_StaysAndSoDoesTheLog) {
    const Pair pair = LeaveLog(files_, 12);
    auto damaged = pair.file;
    damaged[4] ^= std::byte{1};
    FaultFileSystem files;
    files.SetContents(kFile, damaged);
    files.SetContents(kLog, pair.log);
    EXPECT_THROW(OpenFile(files), Error);
    EXPECT_EQ(files.Contents(kFile), damaged);
    EXPECT_EQ(files.Contents(kLog), pair.log);
}

TEST_P(JournalTest, Abandon_LeavesTheFileAsItWasAndNoLog) {
    const auto before = files_.Contents(kFile);
    const auto pager = OpenFile(files_);
    std::mt19937 draw(13);
    ChangeSomething(*pager, draw);
    pager->Abandon();
    EXPECT_EQ(files_.Contents(kFile), before);
    EXPECT_EQ(files_.Names(), std::vector<std::string>{kFile});
}

}  // namespace
}  // namespace jet
