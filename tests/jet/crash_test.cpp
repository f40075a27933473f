// Row operations through every kind of failure, in both formats: whatever step fails, is cut short
// or is the last of the process or of the machine, the file that comes back passes the integrity
// check and holds exactly the rows of a state that was acknowledged to the caller.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "jet/check.h"
#include "jet/database.h"
#include "jet/error.h"
#include "jet/recordset.h"
#include "support/fault_file_system.h"
#include "support/fault_runs.h"

namespace jet {
namespace {

using tarn_test::Fault;
using tarn_test::FaultFileSystem;
using tarn_test::Progress;
using Rows = std::vector<std::u16string>;
using Change = std::function<void(Database&)>;

constexpr char kFile[] = "a file.mdb";

TableSchema PeopleSchema(const std::string& name) {
    TableSchema schema;
    schema.name = name;
    schema.columns = {{.name = "ID", .type = ColumnType::kLong, .autoNumber = true},
                      {.name = "Name", .type = ColumnType::kText, .length = 40},
                      {.name = "Remarks", .type = ColumnType::kMemo},
                      {.name = "Size", .type = ColumnType::kSingle}};
    schema.indexes = {{.name = "PrimaryKey", .columns = {{"ID"}}, .primary = true, .unique = true},
                      {.name = "Name", .columns = {{"Name"}}, .unique = true}};
    return schema;
}

void Add(Database& database, const std::u16string& name, std::size_t remarks) {
    const auto people = database.OpenTable("People");
    people->AddNew();
    people->Set("Name", name);
    if (remarks > 0) people->Set("Remarks", std::u16string(remarks, u'r'));
    people->Set("Size", static_cast<float>(remarks));
    people->Update();
}

void Alter(Database& database, const std::u16string& name, const std::u16string& newName,
           std::size_t remarks) {
    const auto people = database.OpenTable("People");
    people->SetIndex("Name");
    if (!people->Seek(Comparison::kEqual, {name})) throw std::logic_error("the row is missing");
    people->Edit();
    people->Set("Name", newName);
    people->Set("Remarks", std::u16string(remarks, u's'));
    people->Update();
}

void Delete(Database& database, const std::u16string& name) {
    const auto people = database.OpenTable("People");
    people->SetIndex("Name");
    if (!people->Seek(Comparison::kEqual, {name})) throw std::logic_error("the row is missing");
    people->Delete();
}

// Rows of all kinds, a table and a refused row in one transaction.
void MakeManyChanges(Database& database) {
    Transaction transaction = database.Begin();
    for (int i = 0; i < 40; ++i) {
        const std::string digits = std::to_string(i);
        Add(database, u"row " + std::u16string(digits.begin(), digits.end()),
            i % 8 == 0 ? 3000U : 10U);
    }
    try {
        Add(database, u"row 7", 5000);
        throw std::logic_error("a second row has the same name");
    } catch (const Error& error) {
        if (error.Kind() != ErrorKind::kDuplicateKey) throw;
    }
    Alter(database, u"third", u"zzzz", 700);
    Delete(database, u"row 16");
    database.CreateTable(PeopleSchema("Within"));
    Delete(database, u"second");
    transaction.Commit();
}

void RollManyChangesBack(Database& database) {
    const Transaction transaction = database.Begin();
    Delete(database, u"row 3");
    Add(database, u"never", 6000);
    database.CreateTable(PeopleSchema("Never"));
}

// Every kind of operation: rows short and long, memos in the row, on one page and in a chain, rows
// that move, keys that change, pages that are freed, a table that is created; then transactions.
const std::vector<Change>& Changes() {
    static const std::vector<Change> changes = {
        [](Database& d) { Add(d, u"short", 0); },
        [](Database& d) { Add(d, u"on a page of its own", 900); },
        [](Database& d) { Alter(d, u"first", u"first", 20); },
        [](Database& d) { Alter(d, u"second", u"zzz moved in the index", 600); },
        [](Database& d) { Add(d, u"chain", 9000); },
        [](Database& d) { Alter(d, u"chain", u"a shorter chain", 5000); },
        [](Database& d) { Delete(d, u"a shorter chain"); },
        [](Database& d) { d.CreateTable(PeopleSchema("Others")); },
        [](Database& d) { Delete(d, u"first"); },
        [](Database& d) { Add(d, u"second", 20); },
        [](Database& d) { MakeManyChanges(d); },
        [](Database& d) { RollManyChangesBack(d); },
        [](Database& d) { Alter(d, u"row 39", u"at the end", 30); },
    };
    return changes;
}

Rows ReadRows(Database& database) {
    Rows rows;
    for (const std::string& name : database.TableNames()) {
        rows.emplace_back(name.begin(), name.end());
        const auto table = database.OpenTable(name);
        for (; !table->IsEof(); table->MoveNext()) {
            std::u16string row;
            for (const ColumnSchema& field : table->Fields()) {
                const Value value = table->Get(field.name);
                row += (value.IsNull() ? u"null" : value.AsText()) + u"|";
            }
            rows.push_back(std::move(row));
        }
    }
    return rows;
}

// Makes every change, making the file durable after each third.
void MakeChanges(FaultFileSystem& files, Progress& progress, int patience) {
    std::unique_ptr<Database> database;
    const auto persist = [&](const std::function<void()>& step) {
        tarn_test::Persist(files, patience, step);
    };
    persist([&] { database = Database::Open(kFile, {}, files); });
    for (const Change& change : Changes()) {
        progress.underWay = true;
        persist([&] { change(*database); });
        progress.underWay = false;
        ++progress.acknowledged;
        if (progress.acknowledged % 3 == 0) {
            persist([&] { database->MakeDurable(); });
            progress.durable = progress.acknowledged;
        }
    }
    persist([&] { database->Close(); });
}

class CrashTest : public ::testing::TestWithParam<Version> {
protected:
    CrashTest() {
        {
            const auto database = Database::Create(kFile, GetParam(), files_);
            database->CreateTable(PeopleSchema("People"));
            for (const char16_t* name : {u"first", u"second", u"third"}) Add(*database, name, 40);
            database->Close();
        }
        const auto files = files_.Copy();
        const auto database = Database::Open(kFile, {}, *files);
        states_.push_back(ReadRows(*database));
        for (const Change& change : Changes()) {
            change(*database);
            states_.push_back(ReadRows(*database));
        }
    }

    void ExpectSound(FaultFileSystem& files, const Progress& progress, bool powerCut,
                     const std::string& where) {
        Rows found;
        {
            const auto database = Database::Open(kFile, {}, files);
            found = ReadRows(*database);
            database->Close();
        }
        const CheckReport report = CheckFile(kFile, files);
        EXPECT_TRUE(report.IsSound()) << where << "\n" << report.Text();
        EXPECT_TRUE(tarn_test::IsAcknowledgedState(states_, found, progress, powerCut))
            << where << ", acknowledged " << progress.acknowledged;
        ++filesLookedAt_;
    }

    FaultFileSystem files_;
    std::vector<Rows> states_;
    int filesLookedAt_ = 0;
};

INSTANTIATE_TEST_SUITE_P(Versions, CrashTest, ::testing::Values(Version::kJet3, Version::kJet4));

TEST_P(CrashTest, AnyStep_IsTheLastOfTheProcessOrTheMachine) {
    for (const Fault fault : {Fault::kStop, Fault::kStopHalfDone, Fault::kStopDone}) {
        for (int step = 1;; ++step) {
            bool passed = false;
            // Seed 0 is the end of the process only.
            for (std::uint32_t seed = 0; seed < 8 && !passed; ++seed) {
                const auto files = files_.Copy();
                files->Arm(fault, step);
                Progress progress;
                try {
                    MakeChanges(*files, progress, 0);
                    passed = true;
                    continue;
                } catch (const Error&) {
                    ASSERT_TRUE(files->HasStopped());
                }
                if (seed == 0) {
                    files->Restart();
                } else {
                    files->CutPower(seed);
                }
                ExpectSound(*files, progress, seed > 0,
                            "step " + std::to_string(step) + ", seed " + std::to_string(seed));
            }
            if (passed) break;
        }
    }
    RecordProperty("files", filesLookedAt_);
    EXPECT_GT(filesLookedAt_, 300);
}

TEST_P(CrashTest, AnyStep_Fails_NothingIsLostAndTheRunGoesOn) {
    tarn_test::FailAtEveryStep(
        files_, {Fault::kFail, Fault::kFailHalfDone, Fault::kFailDone},
        [](FaultFileSystem& files, Progress& progress) { MakeChanges(files, progress, 1); },
        [this](FaultFileSystem& files, const Progress& progress, const std::string& where) {
            ExpectSound(files, progress, false, where);
        });
}

TEST_P(CrashTest, AnyRead_Fails_TheOperationIsUndoneAndSucceedsNext) {
    for (int read = 1;; ++read) {
        const auto files = files_.Copy();
        files->ArmReading(read);
        Progress progress;
        MakeChanges(*files, progress, 1);
        const bool happened = files->Reads() >= read;
        files->Heal();
        ExpectSound(*files, progress, false, "read " + std::to_string(read));
        if (!happened) break;
    }
}

TEST_P(CrashTest, FullDisk_FromAnyStepOn_LosesNothingTold) {
    tarn_test::FailAtEveryStep(
        files_, {Fault::kFullDisk},
        [](FaultFileSystem& files, Progress& progress) {
            try {
                MakeChanges(files, progress, 0);
            } catch (const Error& error) {
                EXPECT_EQ(error.Kind(), ErrorKind::kDiskFull);
            }
            // What the full disk ended was reported as failed.
            progress.underWay = false;
        },
        [this](FaultFileSystem& files, const Progress& progress, const std::string& where) {
            ExpectSound(files, progress, false, where);
        });
}

TEST_P(CrashTest, Create_StoppedAtAnyStep_LeavesNoFileThatLooksWhole) {
    for (int step = 1;; ++step) {
        FaultFileSystem files;
        files.Arm(step % 2 == 0 ? Fault::kStopHalfDone : Fault::kStopDone, step);
        try {
            Database::Create(kFile, GetParam(), files)->Close();
            break;
        } catch (const Error&) {
            ASSERT_TRUE(files.HasStopped());
        }
        files.Restart();
        try {
            const auto database = Database::Open(kFile, {}, files);
            database->Close();
            EXPECT_TRUE(CheckFile(kFile, files).IsSound()) << step;
        } catch (const Error&) {
            // Not there, or recognized as no database.
        }
    }
}

TEST_P(CrashTest, Create_FailsAtAnyStep_LeavesNothingBehind) {
    for (int step = 1;; ++step) {
        FaultFileSystem files;
        files.Arm(Fault::kFail, step);
        try {
            Database::Create(kFile, GetParam(), files)->Close();
            if (!files.HasHappened()) break;
        } catch (const Error&) {
            EXPECT_TRUE(files.Names().empty()) << step;
        }
    }
}

}  // namespace
}  // namespace jet
