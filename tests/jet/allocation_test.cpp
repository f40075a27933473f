// Memory that runs out: every allocation of every operation fails in turn, alone and with all that
// follow. The engine says so with its own error, the operation is undone, the database goes on, and
// the same operation succeeds when there is memory again.
//
// What the operations are given is made beforehand, so that only the engine's allocations fail.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <new>
#include <string>
#include <tuple>
#include <vector>

#include "jet/check.h"
#include "jet/database.h"
#include "jet/error.h"
#include "jet/failing_allocations.h"
#include "jet/recordset.h"
#include "support/sanitizers.h"

namespace jet {
namespace {

TableSchema Schema(const std::string& name) {
    TableSchema schema;
    schema.name = name;
    schema.columns = {{.name = "ID", .type = ColumnType::kLong},
                      {.name = "Name", .type = ColumnType::kText, .length = 40},
                      {.name = "Remarks", .type = ColumnType::kMemo}};
    schema.indexes = {{.name = "PrimaryKey", .columns = {{"ID"}}, .primary = true},
                      {.name = "Name", .columns = {{"Name"}}}};
    return schema;
}

Value Text(std::size_t length, char16_t letter) {
    return std::u16string(length, letter);
}

void Add(Recordset& rows, std::int32_t id, const Value& name, const Value& remarks) {
    rows.AddNew();
    rows.Set("ID", id);
    rows.Set("Name", name);
    rows.Set("Remarks", remarks);
    rows.Update();
}

// The rows as one text.
std::u16string Look(Database& database) {
    std::u16string all;
    for (const std::string& name : database.TableNames()) {
        const auto rows = database.OpenTable(name);
        all += std::u16string(name.begin(), name.end()) + u"\n";
        for (; !rows->IsEof(); rows->MoveNext()) {
            for (const char* field : {"ID", "Name", "Remarks"}) {
                all += rows->Get(field).AsText() + u"|";
            }
        }
    }
    return all;
}

using Parameters = std::tuple<Version, tarn_test::Shortage>;

class AllocationTest : public ::testing::TestWithParam<Parameters> {
protected:
    AllocationTest() : database_(Database::Create(file_, FileVersion(), *files_)) {
        database_->CreateTable(Schema("People"));
        const auto rows = database_->OpenTable("People");
        for (std::int32_t id = 1; id <= 60; ++id) {
            Add(*rows, id, Text(20, static_cast<char16_t>(u'a' + id % 26)),
                Text(id % 7 == 0 ? 3000 : 10, u'r'));
        }
    }
    ~AllocationTest() override { tarn_test::FailAllocation(-1); }

    static Version FileVersion() { return std::get<0>(GetParam()); }

    // False when it ran out of memory at the nth allocation; any other error is a failure.
    static bool Passes(long nth, const std::function<void()>& operation) {
        tarn_test::FailAllocation(nth, std::get<1>(GetParam()));
        try {
            operation();
            tarn_test::FailAllocation(-1);
            return true;
        } catch (const Error& error) {
            tarn_test::FailAllocation(-1);
            EXPECT_EQ(error.Kind(), ErrorKind::kOutOfMemory) << error.what();
        } catch (const std::bad_alloc&) {
            tarn_test::FailAllocation(-1);
            ADD_FAILURE() << "allocation " << nth << " came out as it was";
        }
        return false;
    }

    // Lets the allocations of `operation` fail one after the other until it passes. `restore` puts
    // things back before each attempt.
    static void FailEach(
        const std::function<void()>& operation, const std::function<void()>& look,
        const std::function<void()>& restore = [] {}) {
        for (long nth = 0; nth < 20000; nth += support::kOneOf) {
            restore();
            if (Passes(nth, operation)) {
                RecordProperty("allocations", static_cast<int>(nth));
                EXPECT_GT(nth, 0);
                return;
            }
            look();
            if (HasFailure()) {
                FAIL() << "at allocation " << nth;
            }
        }
        FAIL() << "the operation never passed";
    }

    // An operation that changes rows.
    void FailEachOfChange(const std::function<void()>& operation) {
        const std::u16string before = Look(*database_);
        FailEach(operation, [&] { EXPECT_TRUE(Look(*database_) == before); });
        EXPECT_NE(Look(*database_), before);
        ExpectSoundAfterClosing();
    }

    // One that changes none.
    void FailEachOfReading(const std::function<void()>& operation) {
        const std::u16string before = Look(*database_);
        FailEach(operation, [&] { EXPECT_TRUE(Look(*database_) == before); });
        EXPECT_EQ(Look(*database_), before);
        ExpectSoundAfterClosing();
    }

    void ExpectSoundAfterClosing() {
        database_->Close();
        EXPECT_FALSE(files_->Exists(log_));
        const CheckReport report = CheckFile(file_, *files_);
        EXPECT_TRUE(report.IsSound()) << report.Text();
    }

    std::vector<std::byte> Contents(const std::filesystem::path& path) {
        const auto file = files_->Open(path, OpenMode::kReadOnly);
        std::vector<std::byte> contents(static_cast<std::size_t>(file->Size()));
        file->Read(0, contents);
        return contents;
    }
    void SetContents(const std::filesystem::path& path, const std::vector<std::byte>& contents) {
        files_->Remove(path);
        files_->Open(path, OpenMode::kCreateNew)->Write(0, contents);
    }

    const std::filesystem::path file_ = "a file.mdb";
    const std::filesystem::path log_ = "a file.mdb-log";
    const std::filesystem::path other_ = "another.mdb";
    const Value name_ = Text(30, u'z');
    const Value remarks_ = Text(9000, u'q');
    std::unique_ptr<FileSystem> files_ = MakeMemoryFileSystem();
    std::unique_ptr<Database> database_;
};

INSTANTIATE_TEST_SUITE_P(Versions, AllocationTest,
                         ::testing::Combine(::testing::Values(Version::kJet3, Version::kJet4),
                                            ::testing::Values(tarn_test::Shortage::kOnce,
                                                              tarn_test::Shortage::kForGood)));

TEST_P(AllocationTest, Add_WithoutMemory_LeavesTheFileAsItWas) {
    const auto rows = database_->OpenTable("People");
    FailEachOfChange([&] { Add(*rows, 100, name_, remarks_); });
}

TEST_P(AllocationTest, AddToQuery_WithoutMemory_LeavesTheFileAsItWas) {
    const auto rows = database_->OpenQuery("SELECT * FROM People WHERE ID < 20 ORDER BY Name");
    const std::int32_t count = rows->RecordCount();
    FailEachOfChange([&] {
        EXPECT_EQ(rows->RecordCount(), count);
        Add(*rows, 100, name_, remarks_);
        EXPECT_EQ(rows->RecordCount(), count + 1);
    });
}

TEST_P(AllocationTest, AddNew_WithoutMemory_BeginsNoEdit) {
    const auto rows = database_->OpenTable("People");
    FailEach([&] { rows->AddNew(); }, [&] { EXPECT_FALSE(rows->IsEditing()); });
    EXPECT_TRUE(rows->IsEditing());
}

TEST_P(AllocationTest, Update_WithoutMemory_KeepsTheEditAndItsValues) {
    const auto rows = database_->OpenTable("People");
    rows->AddNew();
    rows->Set("ID", 100);
    rows->Set("Name", name_);
    rows->Set("Remarks", remarks_);
    FailEachOfChange([&] {
        ASSERT_TRUE(rows->IsEditing());
        rows->Update();
    });
}

TEST_P(AllocationTest, Append_WithoutMemory_KeepsTheEditAndItsPieces) {
    const auto rows = database_->OpenTable("People");
    const FieldId remarks = rows->Field("Remarks");
    const std::u16string piece(std::size_t{1} << 15, u'p');
    rows->Edit();
    int pieces = 0;
    const auto appendTheRest = [&] {
        for (; pieces < 10; ++pieces) rows->Append(remarks, piece);
        rows->Update();
    };
    for (long nth = 0; !Passes(nth, appendTheRest); nth += 1 + nth / 64) {
        ASSERT_TRUE(rows->IsEditing()) << "at allocation " << nth;
    }
    EXPECT_TRUE(rows->Get(remarks) == Value(std::u16string(10 * piece.size(), u'p')));
    ExpectSoundAfterClosing();
}

TEST_P(AllocationTest, Edit_WithoutMemory_LeavesTheFileAsItWas) {
    const auto rows = database_->OpenTable("People");
    rows->SetIndex("PrimaryKey");
    FailEachOfChange([&] {
        rows->Seek(Comparison::kEqual, {7});
        rows->Edit();
        rows->Set("Name", name_);
        rows->Set("Remarks", remarks_);
        rows->Update();
    });
}

TEST_P(AllocationTest, Delete_WithoutMemory_LeavesTheFileAsItWas) {
    const auto rows = database_->OpenTable("People");
    rows->SetIndex("PrimaryKey");
    FailEachOfChange([&] {
        rows->Seek(Comparison::kEqual, {14});
        rows->Delete();
    });
}

TEST_P(AllocationTest, CreateTable_WithoutMemory_LeavesTheFileAsItWas) {
    const TableSchema schema = Schema("Others");
    FailEachOfChange([&] { database_->CreateTable(schema); });
}

TEST_P(AllocationTest, Transaction_WithoutMemory_LeavesTheFileAsItWas) {
    const auto rows = database_->OpenTable("People");
    const auto query = database_->OpenQuery("SELECT * FROM People WHERE ID < 20");
    rows->SetIndex("PrimaryKey");
    const TableSchema schema = Schema("Others");
    const Value short_ = Text(10, u's');
    FailEachOfChange([&] {
        Transaction transaction = database_->Begin();
        for (std::int32_t id = 100; id < 110; ++id) Add(*rows, id, name_, short_);
        Add(*query, 110, name_, remarks_);
        rows->Seek(Comparison::kEqual, {14});
        rows->Delete();
        database_->CreateTable(schema);
        transaction.Commit();
    });
}

TEST_P(AllocationTest, TransactionOfAHundredRows_WithoutMemory_LeavesTheFileAsItWas) {
    const auto rows = database_->OpenTable("People");
    rows->SetIndex("PrimaryKey");
    const Value memo = Text(700, u'm');
    FailEachOfChange([&] {
        Transaction transaction = database_->Begin();
        for (std::int32_t id = 100; id < 140; ++id) Add(*rows, id, name_, memo);
        for (std::int32_t id = 1; id <= 60; ++id) {
            rows->Seek(Comparison::kEqual, {id});
            if (id > 40) {
                rows->Delete();
                continue;
            }
            rows->Edit();
            rows->Set("Name", name_);
            rows->Set("Remarks", memo);
            rows->Update();
        }
        transaction.Commit();
    });
}

TEST_P(AllocationTest, RowInATransaction_WithoutMemory_IsUndoneAlone) {
    const auto rows = database_->OpenTable("People");
    Transaction transaction = database_->Begin();
    Add(*rows, 99, name_, remarks_);
    const std::u16string before = Look(*database_);
    FailEach([&] { Add(*rows, 100, name_, remarks_); },
             [&] { EXPECT_TRUE(Look(*database_) == before); });
    transaction.Commit();
    EXPECT_EQ(rows->RecordCount(), 62);
    ExpectSoundAfterClosing();
}

TEST_P(AllocationTest, MakeDurable_WithoutMemory_CanBeTriedAgain) {
    FailEachOfReading([&] { database_->MakeDurable(); });
}

TEST_P(AllocationTest, Walk_WithoutMemory_IsReported) {
    FailEachOfReading([&] {
        const auto rows = database_->OpenTable("People");
        rows->SetIndex("Name");
        rows->MoveLast();
        rows->MovePrevious();
        rows->MoveFirst();
        rows->MoveNext();
        static_cast<void>(rows->Get("Remarks"));
        std::u16string text;
        rows->ReadText(rows->Field("Name"), text);
        static_cast<void>(database_->Describe("people"));
        static_cast<void>(database_->TableNames());
    });
}

TEST_P(AllocationTest, Query_WithoutMemory_IsReported) {
    FailEachOfReading([&] {
        static_cast<void>(database_->OpenQuery("SELECT * FROM People WHERE ID > 9 ORDER BY Name"));
    });
}

TEST_P(AllocationTest, Check_WithoutMemory_IsReportedAndFindsNothingWrong) {
    database_->MakeDurable();
    FailEachOfReading([&] {
        const CheckReport report = CheckDatabase(*database_);
        if (!report.IsSound()) throw Error(ErrorKind::kDamaged, "unsound");
    });
    FailEach([&] { static_cast<void>(CheckFile(file_, *files_)); }, [] {});
}

TEST_P(AllocationTest, Repair_WithoutMemory_LeavesNoTarget) {
    database_->Close();
    FailEach([&] { static_cast<void>(RepairFile(file_, other_, *files_)); },
             [&] { EXPECT_FALSE(files_->Exists(other_)); });
    EXPECT_TRUE(CheckFile(other_, *files_).IsSound());
}

TEST_P(AllocationTest, Create_WithoutMemory_LeavesNoFile) {
    FailEach([&] { static_cast<void>(Database::Create(other_, FileVersion(), *files_)); },
             [&] { EXPECT_FALSE(files_->Exists(other_)); });
    EXPECT_TRUE(CheckFile(other_, *files_).IsSound());
}

// Reads all fields of all records, with no memory to be had once the second scan is under way.
void WalkTwice(Recordset& rows) {
    std::u16string text;
    std::int64_t sum = 0;
    for (const long allocations : {-1L, 0L}) {
        rows.MoveFirst();
        rows.MoveNext();
        tarn_test::FailAllocation(allocations);
        for (; !rows.IsEof(); rows.MoveNext()) {
            std::int32_t id = 0;
            rows.ReadLong(FieldId{0}, id);
            for (const int field : {1, 2}) rows.ReadText(FieldId{field}, text);
            sum += id + static_cast<std::int64_t>(text.size());
        }
        tarn_test::FailAllocation(-1);
    }
    EXPECT_GT(sum, 0);
}

TEST_P(AllocationTest, Walking_InAnyOrder_TakesNoMemory) {
    const auto rows = database_->OpenTable("People");
    for (const char* index : {"", "PrimaryKey", "Name"}) {
        rows->SetIndex(index);
        EXPECT_NO_THROW(WalkTwice(*rows)) << index;
    }
}

TEST_P(AllocationTest, Seeking_TakesNoMemory) {
    const auto rows = database_->OpenTable("People");
    rows->SetIndex("PrimaryKey");
    for (const long allocations : {-1L, 0L}) {
        tarn_test::FailAllocation(allocations);
        for (std::int32_t id = 1; id <= 60; ++id) {
            std::int32_t found = 0;
            EXPECT_TRUE(rows->Seek(Comparison::kEqual, {id}) && rows->ReadLong(FieldId{0}, found) &&
                        found == id);
        }
        tarn_test::FailAllocation(-1);
    }
}

TEST_P(AllocationTest, Open_WithoutMemory_LeavesTheFileAsItWas) {
    database_->Close();
    const auto before = Contents(file_);
    FailEach([&] { Database::Open(file_, {}, *files_)->Close(); },
             [&] { EXPECT_TRUE(Contents(file_) == before); });
    EXPECT_TRUE(CheckFile(file_, *files_).IsSound());
}

// What the process that ran out of memory leaves, the next one recovers.
TEST_P(AllocationTest, OpenAfterCrashAndClose_WithoutMemory_LoseNothing) {
    const std::u16string before = Look(*database_);
    const auto data = Contents(file_);
    const auto log = Contents(log_);
    database_.reset();
    const auto interrupt = [&] {
        SetContents(file_, data);
        SetContents(log_, log);
    };
    FailEach([&] { Database::Open(file_, {}, *files_)->Close(); },
             [&] {
                 const auto again = Database::Open(file_, {}, *files_);
                 EXPECT_TRUE(Look(*again) == before);
                 again->Close();
                 EXPECT_TRUE(CheckFile(file_, *files_).IsSound());
             },
             interrupt);
    std::unique_ptr<Database> open;
    std::u16string edited;
    FailEach([&] { open->Close(); },
             [&] {
                 open.reset();
                 open = Database::Open(file_, {}, *files_);
                 EXPECT_TRUE(Look(*open) == edited);
             },
             [&] {
                 open.reset();
                 interrupt();
                 open = Database::Open(file_, {}, *files_);
                 const auto rows = open->OpenTable("People");
                 rows->Edit();
                 rows->Set("Remarks", remarks_);
                 rows->Update();
                 edited = Look(*open);
             });
}

}  // namespace
}  // namespace jet
