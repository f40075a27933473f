// Transactions: all or none, savepoints, and where record sets stand afterwards.
#include "jet/transaction.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "jet/check.h"
#include "jet/database.h"
#include "jet/error.h"
#include "jet/recordset.h"
#include "support/fault_file_system.h"

namespace jet {
namespace {

using tarn_test::Fault;
using tarn_test::FaultFileSystem;

constexpr char kFile[] = "a file.mdb";
constexpr char kLog[] = "a file.mdb-log";

TableSchema ZoneSchema(const std::string& name) {
    TableSchema schema;
    schema.name = name;
    schema.columns = {{.name = "Zone", .type = ColumnType::kLong},
                      {.name = "Name", .type = ColumnType::kText, .length = 50}};
    schema.indexes = {{.name = "PrimaryKey", .columns = {{"Zone"}}, .primary = true},
                      {.name = "Name", .columns = {{"Name"}}}};
    return schema;
}

std::u16string NameOf(std::int32_t zone) {
    const std::string digits = std::to_string(zone);
    return u"zone " + std::u16string(digits.begin(), digits.end());
}

void Add(Recordset& zones, std::int32_t zone) {
    zones.AddNew();
    zones.Set("Zone", zone);
    zones.Set("Name", NameOf(zone));
    zones.Update();
}

void Rename(Recordset& zones, std::int32_t zone, const std::u16string& name) {
    zones.SetIndex("PrimaryKey");
    ASSERT_TRUE(zones.Seek(Comparison::kEqual, {zone}));
    zones.Edit();
    zones.Set("Name", name);
    zones.Update();
}

void Delete(Recordset& zones, std::int32_t zone) {
    zones.SetIndex("PrimaryKey");
    ASSERT_TRUE(zones.Seek(Comparison::kEqual, {zone}));
    zones.Delete();
}

std::int32_t Current(const Recordset& zones) {
    return zones.Get("Zone").AsLong();
}

std::vector<std::int32_t> Zones(Recordset& zones) {
    std::vector<std::int32_t> numbers;
    if (zones.IsEof() && zones.IsBof()) return numbers;
    for (zones.MoveFirst(); !zones.IsEof(); zones.MoveNext()) numbers.push_back(Current(zones));
    return numbers;
}

std::vector<std::int32_t> Zones(Database& database, const std::string& table = "Zones") {
    const auto zones = database.OpenTable(table);
    zones->SetIndex("PrimaryKey");
    return Zones(*zones);
}

std::optional<ErrorKind> ErrorOf(const std::function<void()>& body) {
    try {
        body();
        return std::nullopt;
    } catch (const Error& error) {
        return error.Kind();
    }
}

using Numbers = std::vector<std::int32_t>;

class TransactionTest : public ::testing::TestWithParam<Version> {
protected:
    TransactionTest() {
        database_ = Database::Create(kFile, GetParam(), files_);
        database_->CreateTable(ZoneSchema("Zones"));
        zones_ = database_->OpenTable("Zones");
        for (const std::int32_t zone : {10, 20, 30, 40}) Add(*zones_, zone);
        database_->MakeDurable();
        zones_->SetIndex("PrimaryKey");
    }

    // What the next process finds when this one ends now.
    Numbers AfterKill() {
        const auto files = files_.Copy();
        const auto database = Database::Open(kFile, {}, *files);
        return Zones(*database);
    }

    void ExpectSound() {
        database_->Close();
        const CheckReport report = CheckFile(kFile, files_);
        EXPECT_TRUE(report.IsSound()) << report.Text();
    }

    FaultFileSystem files_;
    std::unique_ptr<Database> database_;
    std::unique_ptr<Recordset> zones_;
};

INSTANTIATE_TEST_SUITE_P(Versions, TransactionTest,
                         ::testing::Values(Version::kJet3, Version::kJet4));

TEST_P(TransactionTest, Commit_BringsAllRows) {
    Transaction transaction = database_->Begin();
    Add(*zones_, 15);
    Rename(*zones_, 20, u"renamed");
    Delete(*zones_, 30);
    EXPECT_EQ(AfterKill(), (Numbers{10, 20, 30, 40}));
    transaction.Commit();
    EXPECT_FALSE(transaction.IsOpen());
    EXPECT_EQ(Zones(*database_), (Numbers{10, 15, 20, 40}));
    EXPECT_EQ(AfterKill(), (Numbers{10, 15, 20, 40}));
    EXPECT_EQ(zones_->RecordCount(), 4);
    ExpectSound();
}

TEST_P(TransactionTest, Commit_IsOneWriteToTheLog) {
    Transaction transaction = database_->Begin();
    files_.Arm(Fault::kNone, 0);
    for (std::int32_t zone = 100; zone < 200; ++zone) Add(*zones_, zone);
    EXPECT_EQ(files_.Steps(), 0);
    transaction.Commit();
    EXPECT_EQ(files_.Steps(), 1);
    EXPECT_EQ(database_->PendingOperations(), 1U);
}

TEST_P(TransactionTest, Commit_OfNothing_WritesNothing) {
    files_.Arm(Fault::kNone, 0);
    database_->Begin().Commit();
    EXPECT_EQ(files_.Steps(), 0);
    EXPECT_EQ(database_->PendingOperations(), 0U);
}

TEST_P(TransactionTest, Rollback_LeavesNothing) {
    const auto before = files_.Contents(kFile);
    Transaction transaction = database_->Begin();
    for (std::int32_t zone = 100; zone < 400; ++zone) Add(*zones_, zone);
    for (const std::int32_t zone : {10, 20, 30, 40}) Delete(*zones_, zone);
    transaction.Rollback();
    EXPECT_FALSE(transaction.IsOpen());
    EXPECT_EQ(Zones(*database_), (Numbers{10, 20, 30, 40}));
    EXPECT_EQ(zones_->RecordCount(), 4);
    ExpectSound();
    EXPECT_EQ(files_.Contents(kFile), before);
}

TEST_P(TransactionTest, Destructor_RollsBack) {
    {
        const Transaction transaction = database_->Begin();
        Add(*zones_, 15);
    }
    EXPECT_EQ(Zones(*database_), (Numbers{10, 20, 30, 40}));
    // The next one can begin.
    database_->Begin().Commit();
}

TEST_P(TransactionTest, MovedTransaction_EndsOnce) {
    std::optional<Transaction> kept;
    {
        Transaction transaction = database_->Begin();
        Add(*zones_, 15);
        kept.emplace(std::move(transaction));
    }
    EXPECT_TRUE(kept->IsOpen());
    kept->Commit();
    EXPECT_EQ(Zones(*database_), (Numbers{10, 15, 20, 30, 40}));
}

TEST_P(TransactionTest, RecordSets_SeeTheChangesAtOnce) {
    const auto other = database_->OpenTable("Zones");
    other->SetIndex("Name");
    const Transaction transaction = database_->Begin();
    Add(*zones_, 15);
    EXPECT_TRUE(other->Seek(Comparison::kEqual, {NameOf(15)}));
    Delete(*zones_, 40);
    EXPECT_FALSE(other->Seek(Comparison::kEqual, {NameOf(40)}));
    EXPECT_EQ(database_->OpenQuery("SELECT * FROM Zones WHERE Zone = 15")->RecordCount(), 1);
    EXPECT_EQ(other->RecordCount(), 4);
}

TEST_P(TransactionTest, SecondBegin_IsRefusedAndDisturbsNothing) {
    Transaction transaction = database_->Begin();
    Add(*zones_, 15);
    EXPECT_EQ(ErrorOf([&] { static_cast<void>(database_->Begin()); }), ErrorKind::kTransactionOpen);
    Add(*zones_, 16);
    transaction.Commit();
    EXPECT_EQ(Zones(*database_), (Numbers{10, 15, 16, 20, 30, 40}));
}

TEST_P(TransactionTest, MakeDurable_InsideIsRefused) {
    Add(*zones_, 5);
    Transaction transaction = database_->Begin();
    Add(*zones_, 15);
    const auto before = files_.Contents(kFile);
    EXPECT_EQ(ErrorOf([&] { database_->MakeDurable(); }), ErrorKind::kTransactionOpen);
    EXPECT_EQ(files_.Contents(kFile), before);
    transaction.Commit();
    database_->MakeDurable();
    EXPECT_EQ(database_->PendingOperations(), 0U);
}

TEST_P(TransactionTest, Commit_Twice_IsRefused) {
    Transaction transaction = database_->Begin();
    transaction.Commit();
    EXPECT_EQ(ErrorOf([&] { transaction.Commit(); }), ErrorKind::kNoTransaction);
    transaction.Rollback();
}

TEST_P(TransactionTest, Begin_OfAFileForReading_IsRefused) {
    database_->Close();
    const auto reader = Database::Open(kFile, {.readOnly = true}, files_);
    EXPECT_EQ(ErrorOf([&] { static_cast<void>(reader->Begin()); }), ErrorKind::kReadOnly);
}

TEST_P(TransactionTest, Close_RollsBack) {
    Transaction transaction = database_->Begin();
    Add(*zones_, 15);
    database_->Close();
    EXPECT_FALSE(transaction.IsOpen());
    EXPECT_EQ(ErrorOf([&] { transaction.Commit(); }), ErrorKind::kClosed);
    database_ = Database::Open(kFile, {}, files_);
    EXPECT_EQ(Zones(*database_), (Numbers{10, 20, 30, 40}));
}

TEST_P(TransactionTest, RefusedRow_IsUndoneAlone) {
    Transaction transaction = database_->Begin();
    Add(*zones_, 15);
    EXPECT_EQ(ErrorOf([&] { Add(*zones_, 20); }), ErrorKind::kDuplicateKey);
    EXPECT_EQ(ErrorOf([&] { Add(*zones_, 15); }), ErrorKind::kDuplicateKey);
    zones_->CancelUpdate();
    EXPECT_EQ(zones_->RecordCount(), 5);
    Add(*zones_, 25);
    transaction.Commit();
    EXPECT_EQ(Zones(*database_), (Numbers{10, 15, 20, 25, 30, 40}));
    EXPECT_EQ(AfterKill(), (Numbers{10, 15, 20, 25, 30, 40}));
    ExpectSound();
}

// Pages that the refused row took are taken again by the next one.
TEST_P(TransactionTest, RefusedRows_AmongMany_LeaveNoTrace) {
    Transaction transaction = database_->Begin();
    Numbers expected{10, 20, 30, 40};
    for (std::int32_t zone = 105; zone < 900; ++zone) {
        Add(*zones_, zone);
        expected.push_back(zone);
        EXPECT_EQ(ErrorOf([&] { Add(*zones_, zone - zone % 7); }), ErrorKind::kDuplicateKey);
    }
    EXPECT_EQ(ErrorOf([&] { database_->CreateTable(ZoneSchema("Zones")); }),
              ErrorKind::kAlreadyExists);
    transaction.Commit();
    EXPECT_EQ(Zones(*database_), expected);
    ExpectSound();
}

TEST_P(TransactionTest, CreatedTable_CommittedWithItsRows) {
    Transaction transaction = database_->Begin();
    database_->CreateTable(ZoneSchema("Others"));
    const auto others = database_->OpenTable("Others");
    Add(*others, 1);
    Add(*zones_, 15);
    transaction.Commit();
    Add(*others, 2);
    EXPECT_EQ(Zones(*database_, "Others"), (Numbers{1, 2}));
    ExpectSound();
}

TEST_P(TransactionTest, CreatedTable_RolledBack_IsGone) {
    Transaction transaction = database_->Begin();
    database_->CreateTable(ZoneSchema("Others"));
    const auto others = database_->OpenTable("Others");
    Add(*others, 1);
    transaction.Rollback();
    EXPECT_FALSE(database_->HasTable("Others"));
    EXPECT_EQ(ErrorOf([&] { others->MoveFirst(); }), ErrorKind::kNoSuchTable);
    EXPECT_EQ(ErrorOf([&] { Add(*others, 2); }), ErrorKind::kNoSuchTable);
    // Another one may take its name and its pages.
    database_->CreateTable(ZoneSchema("Others"));
    Add(*database_->OpenTable("Others"), 3);
    EXPECT_EQ(Zones(*database_, "Others"), (Numbers{3}));
    EXPECT_EQ(ErrorOf([&] { others->MoveFirst(); }), ErrorKind::kNoSuchTable);
    ExpectSound();
}

TEST_P(TransactionTest, Rollback_RecordThatExistedBefore_StaysCurrent) {
    Transaction transaction = database_->Begin();
    Rename(*zones_, 20, u"aaa");
    zones_->SetIndex("Name");
    ASSERT_TRUE(zones_->Seek(Comparison::kEqual, {u"aaa"}));
    transaction.Rollback();
    EXPECT_EQ(Current(*zones_), 20);
    EXPECT_EQ(zones_->Get("Name").AsText(), NameOf(20));
    // Its place is that of the old values.
    zones_->MovePrevious();
    EXPECT_EQ(Current(*zones_), 10);
}

TEST_P(TransactionTest, Rollback_OnAnAddedRecord_GoesToNeighbors) {
    for (const char* index : {"PrimaryKey", ""}) {
        zones_->SetIndex("PrimaryKey");
        Transaction transaction = database_->Begin();
        Add(*zones_, 50);
        zones_->SetIndex(index);
        zones_->MoveLast();
        ASSERT_EQ(Current(*zones_), 50);
        transaction.Rollback();
        EXPECT_EQ(ErrorOf([&] { static_cast<void>(zones_->Get("Zone")); }),
                  ErrorKind::kNoCurrentRecord);
        EXPECT_FALSE(zones_->IsEof());
        zones_->MovePrevious();
        EXPECT_EQ(Current(*zones_), 40);
    }
}

// The place of a record that was deleted may have been given to another one.
TEST_P(TransactionTest, Rollback_OnARecordInThePlaceOfAnother_IsNotMistaken) {
    Transaction transaction = database_->Begin();
    for (const std::int32_t zone : {10, 20, 30, 40}) Delete(*zones_, zone);
    for (const std::int32_t zone : {60, 70, 80, 90}) Add(*zones_, zone);
    ASSERT_TRUE(zones_->Seek(Comparison::kEqual, {70}));
    transaction.Rollback();
    EXPECT_EQ(ErrorOf([&] { zones_->Edit(); }), ErrorKind::kNoCurrentRecord);
    EXPECT_EQ(ErrorOf([&] { zones_->Delete(); }), ErrorKind::kNoCurrentRecord);
    zones_->MovePrevious();
    EXPECT_EQ(Current(*zones_), 40);
    EXPECT_EQ(Zones(*zones_), (Numbers{10, 20, 30, 40}));
}

TEST_P(TransactionTest, Rollback_OfTheCurrentRecordsDeletion_GoesToNeighbors) {
    Transaction transaction = database_->Begin();
    Delete(*zones_, 20);
    transaction.Rollback();
    EXPECT_EQ(ErrorOf([&] { zones_->Edit(); }), ErrorKind::kNoCurrentRecord);
    zones_->MoveNext();
    EXPECT_EQ(Current(*zones_), 30);
}

TEST_P(TransactionTest, Rollback_DropsAnOpenEdit) {
    Transaction transaction = database_->Begin();
    zones_->Edit();
    zones_->Set("Name", u"never");
    transaction.Rollback();
    EXPECT_FALSE(zones_->IsEditing());
    EXPECT_EQ(ErrorOf([&] { zones_->Update(); }), ErrorKind::kNoEditBegun);
}

TEST_P(TransactionTest, Rollback_QueryFromBefore_HasItsRowsBack) {
    const auto query = database_->OpenQuery("SELECT * FROM Zones ORDER BY Zone");
    Transaction transaction = database_->Begin();
    query->MoveNext();
    query->Delete();
    Add(*query, 50);
    EXPECT_EQ(query->RecordCount(), 4);
    query->MoveLast();
    transaction.Rollback();
    EXPECT_EQ(query->RecordCount(), 4);
    EXPECT_EQ(ErrorOf([&] { static_cast<void>(query->Get("Zone")); }), ErrorKind::kNoCurrentRecord);
    query->MovePrevious();
    EXPECT_EQ(Current(*query), 40);
    EXPECT_EQ(Zones(*query), (Numbers{10, 20, 30, 40}));
}

TEST_P(TransactionTest, Rollback_QueryFromWithin_KeepsWhatExistedBefore) {
    Transaction transaction = database_->Begin();
    Add(*zones_, 5);
    Add(*zones_, 50);
    Delete(*zones_, 20);
    const auto query = database_->OpenQuery("SELECT * FROM Zones ORDER BY Zone");
    query->MoveNext();
    query->MoveNext();
    ASSERT_EQ(Current(*query), 30);
    transaction.Rollback();
    EXPECT_EQ(Current(*query), 30);
    query->MovePrevious();
    EXPECT_EQ(Current(*query), 10);
    EXPECT_EQ(Zones(*query), (Numbers{10, 30, 40}));
}

TEST_P(TransactionTest, FailedCommit_LeavesNothing) {
    for (const Fault fault : {Fault::kFail, Fault::kFailHalfDone, Fault::kFailDone}) {
        Transaction transaction = database_->Begin();
        Add(*zones_, 15);
        Delete(*zones_, 40);
        ASSERT_TRUE(zones_->Seek(Comparison::kEqual, {15}));
        files_.Arm(fault, 1);
        EXPECT_EQ(ErrorOf([&] { transaction.Commit(); }), ErrorKind::kIo);
        EXPECT_FALSE(transaction.IsOpen());
        EXPECT_EQ(Zones(*database_), (Numbers{10, 20, 30, 40}));
        EXPECT_EQ(AfterKill(), (Numbers{10, 20, 30, 40}));
        EXPECT_EQ(zones_->RecordCount(), 4);
        EXPECT_EQ(ErrorOf([&] { static_cast<void>(zones_->Get("Zone")); }),
                  ErrorKind::kNoCurrentRecord);
    }
    Add(*zones_, 15);
    EXPECT_EQ(AfterKill(), (Numbers{10, 15, 20, 30, 40}));
    ExpectSound();
}

TEST_P(TransactionTest, FailedCommit_OfAFullDisk_LeavesNothingInTheLog) {
    Add(*zones_, 5);
    const auto log = files_.Contents(kLog);
    Transaction transaction = database_->Begin();
    Add(*zones_, 15);
    files_.Arm(Fault::kFullDisk, 1);
    EXPECT_EQ(ErrorOf([&] { transaction.Commit(); }), ErrorKind::kDiskFull);
    EXPECT_EQ(files_.Contents(kLog), log);
    files_.Heal();
    EXPECT_EQ(Zones(*database_), (Numbers{5, 10, 20, 30, 40}));
}

}  // namespace
}  // namespace jet
