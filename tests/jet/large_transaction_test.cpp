// Transactions that outgrow the memory that they may take: their pages wait in the log.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "jet/check.h"
#include "jet/database.h"
#include "jet/error.h"
#include "jet/recordset.h"
#include "support/command.h"
#include "support/fault_file_system.h"
#include "support/fault_runs.h"
#include "support/sanitizers.h"
#include "support/temp_folder.h"

namespace jet {
namespace {

using tarn_test::Fault;
using tarn_test::FaultFileSystem;
using tarn_test::Progress;

using Rows = std::map<std::int32_t, std::u16string>;

constexpr char kFile[] = "a file.mdb";
constexpr char kLog[] = "a file.mdb-log";

// So that some dozen pages are a large transaction.
OpenOptions LittleMemory() {
    OpenOptions options;
    options.cacheBytes = std::size_t{64} << 10;
    options.changedBytes = std::size_t{64} << 10;
    return options;
}

TableSchema Schema() {
    TableSchema schema;
    schema.name = "Rows";
    schema.columns = {{.name = "ID", .type = ColumnType::kLong},
                      {.name = "Text", .type = ColumnType::kMemo}};
    schema.indexes = {{.name = "PrimaryKey", .columns = {{"ID"}}, .primary = true}};
    return schema;
}

std::u16string TextOf(std::int32_t id, std::size_t length) {
    return std::u16string(length, static_cast<char16_t>(u'a' + id % 26));
}

void Add(Recordset& rows, std::int32_t id, const std::u16string& text) {
    rows.AddNew();
    rows.Set("ID", id);
    rows.Set("Text", text);
    rows.Update();
}

void SeekRow(Recordset& rows, std::int32_t id) {
    if (!rows.Seek(Comparison::kEqual, {id})) throw std::logic_error("the row is missing");
}

void Edit(Recordset& rows, std::int32_t id, const std::u16string& text) {
    SeekRow(rows, id);
    rows.Edit();
    rows.Set("Text", text);
    rows.Update();
}

void Delete(Recordset& rows, std::int32_t id) {
    SeekRow(rows, id);
    rows.Delete();
}

std::unique_ptr<Recordset> OpenRows(Database& database) {
    auto rows = database.OpenTable("Rows");
    rows->SetIndex("PrimaryKey");
    return rows;
}

Rows ReadRows(Database& database) {
    Rows found;
    const auto rows = OpenRows(database);
    for (; !rows->IsEof(); rows->MoveNext()) {
        found[rows->Get("ID").AsLong()] = rows->Get("Text").AsText();
    }
    return found;
}

// Deletes, edits and adds so much that most pages of the file change several times.
void ChangeMuch(Database& database) {
    const auto rows = OpenRows(database);
    for (std::int32_t id = 0; id < 60; id += 3) Delete(*rows, id);
    for (std::int32_t id = 1; id < 60; id += 3) Edit(*rows, id, TextOf(id + 1, 1200));
    for (std::int32_t id = 100; id < 200; ++id) Add(*rows, id, TextOf(id, 900));
    try {
        Add(*rows, 101, TextOf(0, 5000));
        throw std::logic_error("a second row has the same key");
    } catch (const Error& error) {
        if (error.Kind() != ErrorKind::kDuplicateKey) throw;
        rows->CancelUpdate();
    }
    for (std::int32_t id = 100; id < 200; id += 4) Edit(*rows, id, TextOf(id, 20));
}

class LargeTransactionTest : public ::testing::TestWithParam<Version> {
protected:
    LargeTransactionTest() {
        {
            const auto database = Database::Create(kFile, GetParam(), files_);
            database->CreateTable(Schema());
            const auto rows = OpenRows(*database);
            for (std::int32_t id = 0; id < 60; ++id) Add(*rows, id, TextOf(id, 700));
            database->Close();
        }
        const auto files = files_.Copy();
        const auto database = Open(*files);
        before_ = ReadRows(*database);
        ChangeMuch(*database);
        after_ = ReadRows(*database);
    }

    static std::unique_ptr<Database> Open(FaultFileSystem& files) {
        return Database::Open(kFile, LittleMemory(), files);
    }

    // What is in the file when it is opened again; the integrity check as well.
    static Rows Reopened(FaultFileSystem& files, const std::string& where = {}) {
        Rows found;
        {
            const auto database = Open(files);
            found = ReadRows(*database);
            database->Close();
        }
        const CheckReport report = CheckFile(kFile, files);
        EXPECT_TRUE(report.IsSound()) << where << "\n" << report.Text();
        return found;
    }

    FaultFileSystem files_;
    Rows before_;
    Rows after_;
};

INSTANTIATE_TEST_SUITE_P(Versions, LargeTransactionTest,
                         ::testing::Values(Version::kJet3, Version::kJet4));

TEST_P(LargeTransactionTest, Committed_IsThereAfterAKill) {
    const auto database = Open(files_);
    Transaction transaction = database->Begin();
    ChangeMuch(*database);
    EXPECT_GT(files_.Contents(kLog).size(), 100000U) << "pages wait in the log";
    EXPECT_EQ(Reopened(*files_.Copy()), before_) << "and count for nothing before the commit";
    files_.Arm(Fault::kNone, 0);
    transaction.Commit();
    EXPECT_EQ(files_.Steps(), 1);
    EXPECT_EQ(ReadRows(*database), after_);
    const auto killed = files_.Copy();
    EXPECT_EQ(Reopened(*killed), after_);
    database->Close();
    EXPECT_EQ(Reopened(files_), after_);
}

TEST_P(LargeTransactionTest, RolledBack_LeavesFileAndLogAsTheyWere) {
    const auto database = Open(files_);
    // Pages that are in memory only must come back, too.
    Edit(*OpenRows(*database), 30, u"before the transaction");
    const auto log = files_.Contents(kLog);
    const Rows rows = ReadRows(*database);
    {
        const Transaction transaction = database->Begin();
        ChangeMuch(*database);
        EXPECT_GT(files_.Contents(kLog).size(), log.size() + 100000);
    }
    EXPECT_EQ(files_.Contents(kLog), log);
    EXPECT_EQ(ReadRows(*database), rows);
    Edit(*OpenRows(*database), 31, u"after it");
    EXPECT_EQ(Reopened(*files_.Copy())[31], u"after it");
    database->Close();
    EXPECT_EQ(Reopened(files_)[30], u"before the transaction");
}

TEST_P(LargeTransactionTest, CutOff_IsReportedAndDiscarded) {
    const auto database = Open(files_);
    const Transaction transaction = database->Begin();
    ChangeMuch(*database);
    const auto files = files_.Copy();
    const std::uint64_t logged = files->Contents(kLog).size();
    const auto next = Open(*files);
    EXPECT_FALSE(next->OpeningRecovery().applied);
    EXPECT_GT(next->OpeningRecovery().discardedBytes, 100000U);
    EXPECT_LE(next->OpeningRecovery().discardedBytes, logged);
    EXPECT_EQ(ReadRows(*next), before_);
}

void RunMuch(FaultFileSystem& files, Progress& progress, int patience) {
    std::unique_ptr<Database> database;
    const auto persist = [&](const std::function<void()>& step) {
        tarn_test::Persist(files, patience, step);
    };
    persist([&] { database = Database::Open(kFile, LittleMemory(), files); });
    progress.underWay = true;
    persist([&] {
        Transaction transaction = database->Begin();
        ChangeMuch(*database);
        transaction.Commit();
    });
    progress.underWay = false;
    progress.acknowledged = 1;
    persist([&] { database->MakeDurable(); });
    progress.durable = 1;
    persist([&] { database->Close(); });
}

TEST_P(LargeTransactionTest, AnyStep_IsTheLastOfTheProcessOrTheMachine) {
    const std::vector<Rows> states{before_, after_};
    for (const Fault fault : {Fault::kStop, Fault::kStopHalfDone, Fault::kStopDone}) {
        for (int step = 1;; ++step) {
            const auto files = files_.Copy();
            files->Arm(fault, step);
            Progress progress;
            try {
                RunMuch(*files, progress, 0);
                break;
            } catch (const Error&) {
                ASSERT_TRUE(files->HasStopped());
            }
            const bool powerCut = step % 2 == 0;
            if (powerCut) {
                files->CutPower(static_cast<std::uint32_t>(step));
            } else {
                files->Restart();
            }
            const std::string where = "step " + std::to_string(step);
            EXPECT_TRUE(
                tarn_test::IsAcknowledgedState(states, Reopened(*files, where), progress, powerCut))
                << where;
        }
    }
}

TEST_P(LargeTransactionTest, AnyStep_Fails_AllOrNone) {
    const std::vector<Rows> states{before_, after_};
    tarn_test::FailAtEveryStep(
        files_, {Fault::kFail, Fault::kFailHalfDone, Fault::kFailDone},
        [](FaultFileSystem& files, Progress& progress) { RunMuch(files, progress, 1); },
        [&](FaultFileSystem& files, const Progress& progress, const std::string& where) {
            EXPECT_TRUE(
                tarn_test::IsAcknowledgedState(states, Reopened(files, where), progress, false))
                << where;
        });
}

TEST_P(LargeTransactionTest, FullDisk_AtAnyStep_AllOrNone) {
    const std::vector<Rows> states{before_, after_};
    tarn_test::FailAtEveryStep(
        files_, {Fault::kFullDisk},
        [](FaultFileSystem& files, Progress& progress) {
            try {
                RunMuch(files, progress, 0);
            } catch (const Error& error) {
                EXPECT_EQ(error.Kind(), ErrorKind::kDiskFull);
            }
            progress.underWay = false;
        },
        [&](FaultFileSystem& files, const Progress& progress, const std::string& where) {
            EXPECT_TRUE(
                tarn_test::IsAcknowledgedState(states, Reopened(files, where), progress, false))
                << where;
        });
}

TEST_P(LargeTransactionTest, AnyRead_Fails_TheTransactionGoesOnOrIsUndone) {
    for (int read = 1;; read += 7) {
        const auto files = files_.Copy();
        files->ArmReading(read);
        Progress progress;
        RunMuch(*files, progress, 1);
        const bool happened = files->Reads() >= read;
        files->Heal();
        EXPECT_EQ(Reopened(*files), after_) << "read " << read;
        if (!happened) break;
    }
}

// Transactions one after the other, committed and rolled back, with checkpoints and kills between
// them, against a plain map.
TEST_P(LargeTransactionTest, AtRandom_AgreesWithAPlainMap) {
    std::mt19937 random(7);
    const auto upTo = [&](std::uint32_t most) {
        return static_cast<std::int32_t>(random() % most);
    };
    Rows expected = before_;
    auto database = Open(files_);
    for (int round = 0; round < 40; ++round) {
        Rows wanted = expected;
        {
            std::optional<Transaction> transaction;
            if (round % 4 != 3) transaction.emplace(database->Begin());
            const auto rows = OpenRows(*database);
            for (int change = upTo(200); change > 0; --change) {
                const std::int32_t id = upTo(400);
                const std::u16string text = TextOf(id, static_cast<std::size_t>(upTo(2500)));
                if (!wanted.contains(id)) {
                    Add(*rows, id, text);
                    wanted[id] = text;
                } else if (upTo(3) == 0) {
                    Delete(*rows, id);
                    wanted.erase(id);
                } else {
                    Edit(*rows, id, text);
                    wanted[id] = text;
                }
            }
            const bool commits = !transaction || upTo(3) > 0;
            if (transaction && commits) transaction->Commit();
            if (commits) expected = wanted;
        }
        ASSERT_EQ(ReadRows(*database), expected) << round;
        if (round % 5 == 4) database->MakeDurable();
        if (round % 7 == 6) {
            // The next process goes on after a kill.
            const auto killed = files_.Copy();
            database.reset();
            for (const char* name : {kFile, kLog}) {
                files_.SetContents(name, killed->Contents(name));
            }
            database = Open(files_);
            ASSERT_EQ(ReadRows(*database), expected) << round;
        }
    }
    database->Close();
    EXPECT_EQ(Reopened(files_), expected);
}

// A process of its own says how much memory it took at most. TARN_ROWS sets the number of rows.
TEST(LargeTransactionMemory, StaysSmall_WhileATableIsFilled) {
    if (support::kIsSanitized) {
        GTEST_SKIP() << "A sanitizer takes memory of its own.";
    }
    if (!std::filesystem::exists("/proc/self/status")) {
        GTEST_SKIP() << "This system does not say there how much memory a process took.";
    }
    const char* const set = std::getenv("TARN_ROWS");
    const std::string rows = set == nullptr ? "300000" : set;
    for (const std::string end : {"commit", "rollback", "kill", "each"}) {
        const tarn_test::TempFolder folder;
        const std::string program = tarn_test::Quoted(tarn_test::BuiltProgram("add_many"));
        const std::string file = tarn_test::Quoted(folder.Path() / "many.mdb");
        const auto result = tarn_test::RunCommand(program + " " + file + " " + rows + " " + end);
        EXPECT_EQ(result.status, 0) << result.output;
        EXPECT_LT(std::stoul(result.output), 24U) << end << ", in MiB";
        const auto recovered = tarn_test::RunCommand(program + " " + file);
        EXPECT_EQ(recovered.status, 0) << recovered.output;
        EXPECT_LT(std::stoul(recovered.output), 24U) << "recovered after " << end;
        const auto database = Database::Open(folder.Path() / "many.mdb");
        EXPECT_EQ(database->OpenTable("Rows")->RecordCount(),
                  end == "rollback" ? 0 : std::stoi(rows));
    }
}

}  // namespace
}  // namespace jet
