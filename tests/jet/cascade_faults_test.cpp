// Cascades of a relationship through failing disks, killed processes and a lack of memory: a change
// of one row and of all that follow it is there as a whole or not at all.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "jet/check.h"
#include "jet/database.h"
#include "jet/recordset.h"
#include "relationship.h"
#include "sample_table.h"
#include "support/fault_file_system.h"
#include "support/fault_runs.h"

namespace jet {
namespace {

using tarn_test::Fault;
using tarn_test::FaultFileSystem;
using tarn_test::Progress;

constexpr char kFile[] = "a file.mdb";
constexpr int kZones = 60;

std::unique_ptr<Recordset> Find(Database& database, const char* table, int key) {
    auto rows = database.OpenTable(table);
    rows->SetIndex("Key");
    EXPECT_TRUE(rows->Seek(Comparison::kEqual, {key}));
    return rows;
}

// Units with zones, which go with their unit, and notes on a unit, which stay.
void MakeTables(Database& database) {
    const IndexSchema key = {.name = "Key", .columns = {{"Key"}}, .primary = true};
    const IndexSchema unit = {.name = "Unit", .columns = {{"Unit"}}};
    database.CreateTable({"Units", {{.name = "Key"}}, {key}});
    database.CreateTable({"Zones", {{.name = "Key"}, {.name = "Unit"}}, {key, unit}});
    database.CreateTable(
        {"Notes",
         {{.name = "Key"}, {.name = "Unit"}, {.name = "Text", .type = ColumnType::kMemo}},
         {key, unit}});
}

void AddRows(Database& database) {
    const auto units = database.OpenTable("Units");
    for (int unit = 1; unit <= 3; ++unit) {
        units->AddNew();
        units->Set("Key", unit);
        units->Update();
    }
    for (const char* table : {"Zones", "Notes"}) {
        const auto rows = database.OpenTable(table);
        for (int i = 0; i < kZones; ++i) {
            rows->AddNew();
            rows->Set("Key", i);
            rows->Set("Unit", i % 3 + 1);
            if (rows->Fields().size() > 2) rows->Set("Text", std::u16string(100, u't'));
            rows->Update();
        }
    }
}

std::string Rows(Database& database) {
    std::string all;
    for (const std::string& name : database.TableNames()) {
        const auto rows = database.OpenTable(name);
        rows->SetIndex("Key");
        for (; !rows->IsEof(); rows->MoveNext()) {
            for (const ColumnSchema& field : rows->Fields()) {
                const Value value = rows->Get(field.name);
                all += value.IsNull() ? "-" : std::to_string(value.AsText().size());
                if (field.type == ColumnType::kLong && !value.IsNull()) {
                    all += "=" + std::to_string(value.AsLong());
                }
                all += ' ';
            }
        }
    }
    return all;
}

void ChangeUnit(Database& database) {
    const auto units = Find(database, "Units", 1);
    units->Edit();
    units->Set("Key", 9);
    units->Update();
}

void DeleteUnit(Database& database) {
    Find(database, "Units", 2)->Delete();
}

class CascadeFaultsTest : public testing::TestWithParam<Version> {
protected:
    CascadeFaultsTest() {
        auto database = Database::Create(kFile, GetParam(), files_);
        MakeTables(*database);
        for (const auto& [child, cascades] :
             {std::pair{u"Zones", Cascades{.updates = true, .deletes = true}},
              std::pair{u"Notes", Cascades{.updates = true, .nulls = true}}}) {
            Relate(*database, u"Units", u"Key", child, u"Unit", cascades);
            database->Close();
            database = Database::Open(kFile, {}, files_);
        }
        AddRows(*database);
        database->Close();
        const auto files = files_.Copy();
        const auto copy = Database::Open(kFile, {}, *files);
        states_.push_back(Rows(*copy));
        ChangeUnit(*copy);
        states_.push_back(Rows(*copy));
        DeleteUnit(*copy);
        states_.push_back(Rows(*copy));
    }

    static void MakeChanges(FaultFileSystem& files, Progress& progress) {
        const auto database = Database::Open(kFile, {}, files);
        for (const auto change : {ChangeUnit, DeleteUnit}) {
            progress.underWay = true;
            change(*database);
            progress.underWay = false;
            ++progress.acknowledged;
        }
        database->Close();
    }

    void ExpectSound(FaultFileSystem& files, const Progress& progress, const std::string& where) {
        const auto database = Database::Open(kFile, {}, files);
        EXPECT_TRUE(tarn_test::IsAcknowledgedState(states_, Rows(*database), progress, false))
            << where << ", acknowledged " << progress.acknowledged;
        database->Close();
        const CheckReport report = CheckFile(kFile, files);
        EXPECT_TRUE(report.IsSound()) << where << "\n" << report.Text();
    }

    FaultFileSystem files_;
    std::vector<std::string> states_;
};

INSTANTIATE_TEST_SUITE_P(Versions, CascadeFaultsTest,
                         testing::Values(Version::kJet3, Version::kJet4),
                         [](const auto& tested) { return VersionName(tested.param); });

TEST_P(CascadeFaultsTest, AChangeAndADeletion_ReachAllThatFollows) {
    const auto database = Database::Open(kFile, {}, files_);
    ChangeUnit(*database);
    DeleteUnit(*database);
    EXPECT_EQ(database->OpenTable("Zones")->RecordCount(), kZones / 3 * 2);
    EXPECT_EQ(database->OpenTable("Notes")->RecordCount(), kZones);
    EXPECT_EQ(Find(*database, "Zones", 0)->Get("Unit"), Value(9));
    EXPECT_EQ(Find(*database, "Notes", 0)->Get("Unit"), Value(9));
    EXPECT_TRUE(Find(*database, "Notes", 1)->Get("Unit").IsNull());
    EXPECT_EQ(Find(*database, "Notes", 2)->Get("Unit"), Value(3));
}

TEST_P(CascadeFaultsTest, CutAtAnyWrite_LeavesAllOrNothing) {
    tarn_test::FailAtEveryStep(
        files_,
        {Fault::kStop, Fault::kStopHalfDone, Fault::kStopDone, Fault::kFail, Fault::kFullDisk},
        [](FaultFileSystem& files, Progress& progress) {
            try {
                MakeChanges(files, progress);
            } catch (const Error&) {
                // What failed without an end of the process was reported.
                if (!files.HasStopped()) progress.underWay = false;
            }
            files.Restart();
        },
        [this](FaultFileSystem& files, const Progress& progress, const std::string& where) {
            ExpectSound(files, progress, where);
        });
}

TEST_P(CascadeFaultsTest, AnyReadThatFails_LeavesAllOrNothing) {
    for (int read = 1;; ++read) {
        const auto files = files_.Copy();
        files->ArmReading(read);
        Progress progress;
        try {
            MakeChanges(*files, progress);
        } catch (const Error&) {
            progress.underWay = false;
        }
        const bool happened = files->Reads() >= read;
        files->Heal();
        ExpectSound(*files, progress, "read " + std::to_string(read));
        if (!happened) break;
    }
}

}  // namespace
}  // namespace jet
